#pragma once

#include "command.h"

#include <string>

namespace dbservice {

class Reporter;

/// The flag --yes of a command that asks before it acts.
About yesFlag();

/// Returns only if the person agrees: in advance, with `yes`, or when asked on the terminal. Throws a `Failure`
/// otherwise; where nobody can be asked it is one of wrong usage.
void confirm(Reporter& reporter, const std::string& question, bool yes);

} // namespace dbservice
