#include "application.h"

#include "commands/commands.h"
#include "databaseservice/version.h"
#include "platform/environment.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace dbservice {

namespace {

std::string versions()
{
    return "dbservice " + DatabaseService::LibraryVersion() + "\nSQLite " + DatabaseService::SqliteVersion() +
        "\norder of names " + DatabaseService::NameOrderVersion();
}

void addGlobalOptions(CLI::App& app, GlobalOptions& options)
{
    app.add_option("--folder", options.folder,
                   "The user's database folder, also from DBSERVICE_FOLDER; without either the current folder, if it "
                   "holds store files")
        ->type_name("STORE");
    app.add_option("--log", options.logFile, "Write everything that the library logs to FILE, rotated at 10 MiB")
        ->type_name("FILE");
    app.add_flag("--json", options.json, "Print results as JSON with the stored names as keys");
    app.add_flag("--quiet", options.quiet, "No progress and no notes; warnings and errors stay");
    app.set_version_flag("--version", versions, "Show the versions of library, SQLite and order of names");
    app.footer("Results go to standard output, everything else to standard error.\n"
               "Exit code: 0 done, 1 something failed or was lost, 2 wrong usage.\n"
               "Help on a command: dbservice COMMAND --help");
}

// CLI11 reads "[a,b]" and "{}" as lists where several values may come, and has no switch for it. A last byte that no
// argument can hold hides their ends.
constexpr char plainEnd = '\0';

std::vector<std::string> withPlainEnds(const std::vector<std::string>& arguments)
{
    std::vector<std::string> marked = arguments;
    for (std::string& argument : marked) {
        if (argument.starts_with('[') || argument.starts_with('{')) {
            argument += plainEnd;
        }
    }
    return marked;
}

void dropPlainEnds(CLI::App& command)
{
    for (CLI::Option* const option : command.get_options()) {
        option->transform([](std::string argument) {
            if (argument.ends_with(plainEnd)) {
                argument.pop_back();
            }
            return argument;
        });
    }
    for (CLI::App* const part : command.get_subcommands({})) {
        dropPlainEnds(*part);
    }
}

/// In the order of the help.
void addCommands(CLI::App& app, Command& chosen)
{
    struct Group {
        const char* title;
        std::vector<void (*)(CLI::App&, Command&)> commands;
    };
    for (const Group& group : {
             Group{"Stores", {addInit, addScan, addReindex, addReset}},
             Group{"Show the drive", {addLs, addView, addRecycle, addStat, addCount, addPending, addConfig}},
             Group{"Change the drive", {addMkdir, addRename, addMv, addRm, addRestore}},
             Group{"Other stores", {addProperties, addShortcuts, addGallery, addTransfers, addMigrate}},
         }) {
        for (const auto add : group.commands) {
            add(app, chosen);
            app.get_subcommands({}).back()->group(group.title);
        }
    }
    dropPlainEnds(app);
}

int misused(const char* what)
{
    std::cerr << "dbservice: " << printable(what) << "\nTry `dbservice --help`." << std::endl;
    return wrongUsage;
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
    Command command;
    CLI::App app("Works on the database stores of a user's folder.", "dbservice");
    app.fallthrough();
    app.allow_windows_style_options(false); // "/Photos" is a path
    app.require_subcommand(0, 1);           // none is told apart below, with a better text
    app.get_formatter()->column_width(28);
    addGlobalOptions(app, options);
    addCommands(app, command);
    try {
        const std::vector<std::string> marked = withPlainEnds(arguments);
        app.parse(std::vector<std::string>(marked.rbegin(), marked.rend()));
        return command ? runCommand(options, command) : misused("no command is given");
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        return misused(error.what());
    } catch (const std::exception& error) { // the session could not begin
        std::cerr << "dbservice: " << printable(error.what()) << std::endl;
        return failed;
    }
}

} // namespace dbservice
