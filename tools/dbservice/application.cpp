#include "application.h"

#include "command.h"
#include "commandline.h"
#include "commands/commands.h"
#include "databaseservice/version.h"
#include "platform/environment.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <iostream>

namespace dbservice {

namespace {

std::string versions()
{
    return "dbservice " + DatabaseService::LibraryVersion() + "\nSQLite " + DatabaseService::SqliteVersion() +
        "\norder of names " + DatabaseService::NameOrderVersion();
}

Command describeProgram(GlobalOptions& options)
{
    return {
        .name = "dbservice",
        .summary = "Works on the database stores of a user's folder.",
        .arguments =
            {
                argument<&GlobalOptions::folder>(
                    "--folder",
                    "The user's database folder, also from DBSERVICE_FOLDER; without either the current folder, if it "
                    "holds store files",
                    {.type = "STORE"}),
                argument<&GlobalOptions::logFile>(
                    "--log", "Write everything that the library logs to FILE, rotated at 10 MiB", {.type = "FILE"}),
                argument<&GlobalOptions::json>("--json", "Print results as JSON with the stored names as keys"),
                argument<&GlobalOptions::quiet>("--quiet", "No progress and no notes; warnings and errors stay"),
                shows<GlobalOptions>("--version", versions, "Show the versions of library, SQLite and order of names"),
            },
        .details = "Results go to standard output, everything else to standard error.\n"
                   "Exit code: 0 done, 1 something failed or was lost, 2 wrong usage.\n"
                   "Help on a command: dbservice COMMAND --help",
        .parts = allCommands(),
        .run = Action::fills(options),
    };
}

int runCommand(const GlobalOptions& options, const Command& command)
{
    Session session(options);
    int code = failed;
    try {
        code = command(session);
    } catch (const Failure& reason) {
        session.reporter().error(reason.what());
        code = reason.exitCode();
    } catch (const std::exception& error) {
        session.reporter().error(std::string("cannot go on: ") + error.what());
    }
    session.stopModules(); // what they have yet to do may fail as well
    if (code == 0 && session.libraryFailures() > 0) {
        session.reporter().error("cannot vouch for the result: the store reported " +
                                 counted(session.libraryFailures(), "failure", "failures") +
                                 ", see the warnings above");
        code = failed;
    }
    if (!std::cout.flush()) {
        session.reporter().error("cannot write the result to standard output");
        code = failed;
    }
    return code;
}

} // namespace

int run(const std::vector<std::string>& arguments)
{
    GlobalOptions options;
    options.folder = platform::environmentVariable("DBSERVICE_FOLDER");
    try {
        return runCommandLine(describeProgram(options), arguments,
                              [&options](const Command& command) { return runCommand(options, command); });
    } catch (const std::exception& error) { // the session could not begin
        std::cerr << "dbservice: " << printable(error.what()) << std::endl;
        return failed;
    }
}

} // namespace dbservice
