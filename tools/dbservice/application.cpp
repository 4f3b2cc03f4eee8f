#include "application.h"

#include "bashcompletion.h"
#include "command.h"
#include "commandline.h"
#include "commands/commands.h"
#include "databaseservice/version.h"
#include "manual.h"
#include "platform/environment.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <iostream>
#include <sstream>
#include <string>

namespace dbservice {

namespace {

std::string versions()
{
    return "dbservice " + DatabaseService::LibraryVersion() + "\nSQLite " + DatabaseService::SqliteVersion() +
        "\norder of names " + DatabaseService::NameOrderVersion();
}

Command describeProgram(GlobalOptions& options);

template <class Text> std::string ofProgram(Text text)
{
    GlobalOptions options;
    return text(describeProgram(options));
}

std::string manual()
{
    return ofProgram(
        [](const Command& program) { return manualPage(program, "dbservice " + DatabaseService::LibraryVersion()); });
}

std::string completion()
{
    return ofProgram(bashCompletion);
}

Command describeProgram(GlobalOptions& options)
{
    constexpr double longestWait = 1'000'000;
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
                argument<&GlobalOptions::traceFile>("--trace",
                                                    "Write to FILE what each call of the library takes: to open, to "
                                                    "wait for locks, to work, to commit; "
                                                    "the trace viewers of browsers open it",
                                                    {.type = "FILE"}),
                argument<&GlobalOptions::waitSeconds>(
                    "--wait", "How long to wait for a file that another program has locked",
                    {.showsDefault = true, .type = "SECONDS", .range = Range{0, longestWait}}),
                argument<&GlobalOptions::json>("--json", "Print results as JSON with the stored names as keys"),
                argument<&GlobalOptions::quiet>("--quiet", "No progress and no notes; warnings and errors stay"),
                shows<GlobalOptions>("--version", versions, "Show the versions of library, SQLite and order of names"),
                shows<GlobalOptions>("--man", manual, "Print the manual page", {.hidden = true}),
                shows<GlobalOptions>("--bash-completion", completion, "Print a script that completes the commands",
                                     {.hidden = true}),
            },
        .details = "Results go to standard output, everything else to standard error.\n"
                   "Exit code: 0 done, 1 something failed or was lost, 2 wrong usage.\n"
                   "Help on a command: dbservice COMMAND --help",
        .parts = allCommands(),
        .run = Action::fills(options),
    };
}

/// Takes what goes to standard output meanwhile.
class HeldOutput {
public:
    HeldOutput() : m_output(std::cout.rdbuf(&m_held)) { }
    HeldOutput(const HeldOutput&) = delete;
    HeldOutput& operator=(const HeldOutput&) = delete;
    ~HeldOutput() { std::cout.rdbuf(m_output); }

    std::string text() const { return m_held.str(); }

private:
    std::stringbuf m_held;
    std::streambuf* const m_output;
};

int runCommand(const GlobalOptions& options, const Command& command)
{
    Session session(options);
    int code = failed;
    std::string failure;
    std::string results;
    {
        const HeldOutput held;
        try {
            code = command(session);
        } catch (const NotFound& reason) {
            failure = session.hasTrouble() ? "cannot read the store" : reason.what();
        } catch (const Failure& reason) {
            failure = reason.what();
            code = reason.exitCode();
        } catch (const std::exception& error) {
            failure = std::string("cannot go on: ") + error.what();
        }
        results = held.text();
    }
    session.stopModules(); // what they have yet to do may fail as well
    const bool trouble = session.hasTrouble();
    if (!trouble || !session.onlyShows()) { // half a list is none
        std::cout << results;
    }
    if (!std::cout.flush()) {
        session.reporter().error("cannot write the result to standard output");
        code = failed;
    }
    if (trouble) {
        if (session.onlyShows()) {
            failure = "cannot read the store";
        } else if (failure.empty()) {
            failure = "cannot vouch for the result";
        }
        failure += ": " + session.cause();
        code = failed;
    }
    if (!failure.empty()) {
        session.reporter().error(failure);
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
