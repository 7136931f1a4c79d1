#pragma once

#include "Platform/Terminal.h"

namespace ravik::platform {

/// Standard input, output and error.
class PosixTerminal : public Terminal {
public:
    bool canAsk() const override;
    bool isOutput() const override;
    bool hasLostReader() const override;
    int columns() const override;
    std::optional<std::string> readLine(const std::function<void()>& prompt) override;
};

}  // namespace ravik::platform
