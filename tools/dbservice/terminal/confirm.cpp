#include "terminal/confirm.h"

#include "platform/terminal.h"
#include "stores/session.h"
#include "terminal/failure.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace dbservice {

void addYes(CLI::App& command, bool& yes)
{
    command.add_flag("--yes", yes, "Do not ask");
}

void confirm(Session& session, const std::string& question, bool yes)
{
    if (yes) {
        return;
    }
    if (!platform::isTerminal(platform::Stream::Input)) {
        throw Failure("cannot ask whether to go on, since there is no terminal; --yes goes on without", wrongUsage);
    }
    session.reporter().ask(question + " [y/N]");
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y" && answer != "yes") {
        throw Failure("nothing has been changed");
    }
}

} // namespace dbservice
