#include "terminal/confirm.h"

#include "platform/terminal.h"
#include "terminal/failure.h"
#include "terminal/reporter.h"

#include <iostream>

namespace dbservice {

About yesFlag()
{
    return {"--yes", "Do not ask"};
}

void confirm(Reporter& reporter, const std::string& question, bool yes)
{
    if (yes) {
        return;
    }
    if (!platform::isTerminal(platform::Stream::Input)) {
        throw Failure("cannot ask whether to go on, since there is no terminal; --yes goes on without", wrongUsage);
    }
    reporter.ask(question + " [y/N]");
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y" && answer != "yes") {
        throw Failure("nothing has been changed");
    }
}

} // namespace dbservice
