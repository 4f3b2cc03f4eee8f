#pragma once

#include <string>

namespace CLI {
class App;
}

namespace dbservice {

class Session;

/// Adds --yes to a command that asks before it acts.
void addYes(CLI::App& command, bool& yes);

/// Returns only if the person agrees: in advance, with `yes`, or when asked on the terminal. Throws a `Failure`
/// otherwise; where nobody can be asked it is one of wrong usage.
void confirm(Session& session, const std::string& question, bool yes);

} // namespace dbservice
