#pragma once

#include "Platform/Platform.h"

namespace ravik::platform {

/// The desktop's file manager over the session bus (org.freedesktop.FileManager1), started by the bus if it has to be.
class FileManager : public FileViewer {
public:
    /// `bus` in D-Bus's form; empty: there is none.
    explicit FileManager(std::string bus) : m_bus(std::move(bus)) {}

    /// Returns at once: the bus may take its time to start the file manager.
    void reveal(const std::filesystem::path& file) override;

private:
    std::string m_bus;
};

}  // namespace ravik::platform
