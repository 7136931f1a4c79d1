#pragma once

#include <string>

#include "Cli/Command.h"
#include "Core/Ending/Actions.h"

namespace ravik::cli {

/// The question as text, its lists cut like the panel's.
std::string questionText(const Confirmation& question);

/// Prints the question and takes "y" or "yes" for a yes; anything else, Return alone, the end of input and Ctrl-C
/// are a no. Without a terminal nobody can be asked, which is a no as well.
class TerminalAsker : public Asker {
public:
    /// `alwaysYes`: the caller has answered beforehand, with --yes.
    TerminalAsker(Context& context, bool alwaysYes) : m_context(context), m_alwaysYes(alwaysYes) {}
    Task<bool> ask(const Confirmation& question) override;

    /// True if a question found nobody to answer it.
    bool foundNobody() const { return m_foundNobody; }

private:
    Context& m_context;
    bool m_alwaysYes;
    bool m_foundNobody = false;
};

}  // namespace ravik::cli
