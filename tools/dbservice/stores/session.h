#pragma once

#include "databaseservice/clouddriverdb.h"
#include "databaseservice/driverdbprovider.h"
#include "stores/database.h"
#include "stores/readablestore.h"
#include "stores/storekind.h"
#include "stores/tracefile.h"
#include "terminal/reporter.h"

#include <array>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Logger {
class LogSink;
}
namespace TessixDeskClient {
class ModuleBase;
}

namespace dbservice {

class StoreLog;

/// What the command line says for every command.
struct GlobalOptions {
    std::string folder;    ///< empty: the current folder, if it holds store files
    std::string logFile;   ///< empty: none
    std::string traceFile; ///< likewise
    bool json = false;
    bool quiet = false;
    double waitSeconds = 3; ///< for a lock that another program has
};

/// The files by which a folder is known to be a store.
inline constexpr std::array<std::string_view, 4> storeFileNames{driveFileName, mainFileName, transferFileName,
                                                                shortcutFileName};

/// One run of the tool: the store it works on, what the library logs meanwhile, and where things are told.
/// Throws a `Failure` where the log file cannot be used, and where the store is asked for and cannot be.
class Session {
public:
    explicit Session(const GlobalOptions& options);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    bool json() const { return m_options.json; }
    /// Whether the command shows what is in a store and changes nothing of it.
    bool onlyShows() const { return m_readable || !m_opened.empty(); }
    Reporter& reporter() { return m_reporter; }
    /// The width to which tables on standard output are cut, 0 for no limit.
    static int outputWidth();

    /// Throws where the command line names none and the current folder is none.
    const std::filesystem::path& storeFolder() const;
    /// Makes the folder if it is missing, and says so.
    void makeStoreFolder();

    // Each of these has the library open its files in the right place from here on, and names the file in warnings.

    /// A store's file for a command that only shows: no byte of it changes. `Always` where the library lays down tables
    /// before it reads.
    void readStore(const std::filesystem::path& fileName, ReadableStore::Copy copied);
    /// A store's file for a command that changes what is in it; it has to be there.
    void editStore(const std::filesystem::path& fileName);
    /// A store's file for a command that lays it down where it is missing.
    void makeStore(const std::filesystem::path& fileName);
    /// All the files in the folder, under a name for all. Throws unless one of them is a store's.
    void editAllStores(const std::string& name);
    /// What warnings of the library's failures begin with, in place of the file's name.
    void nameInWarnings(const std::string& name);

    /// The drive store for a command that only shows: no byte of the store changes.
    DatabaseService::DriverDBProvider& readDrive();
    /// The lists of the same store, likewise; on one connection, which stays open.
    DatabaseService::CloudDriverDb& readLists();
    /// The drive store for writing, with its tables laid down. Throws before it writes anything if names are stored in
    /// another order than this build's.
    DatabaseService::DriverDBProvider& writeDrive();
    /// The same for a command that changes what is in a store, which has to be there.
    DatabaseService::DriverDBProvider& editDrive();
    /// The drive store as it is, for a command that mends it.
    DatabaseService::DriverDBProvider& mendDrive();

    /// A database file that a person named, whatever it is called, for a command that only shows: no byte of it
    /// changes. Good until the end of the run.
    Database& openToRead(const std::filesystem::path& file);
    /// The drive store's file so, for what the library has no function for.
    Database& driveAsItIs();

    /// One of the library's modules. Its thread runs from here on until `stopModules`, at the latest until the end of
    /// the command, whichever way that ends.
    template <class Module> Module& module()
    {
        Module& started = Module::GetInstance();
        stopLater(started);
        return started;
    }
    /// Returns once all that was posted to the modules is done. They do not start again.
    void stopModules();

    /// How many failures the library has logged in this run.
    int libraryFailures() const;
    /// Throws "cannot `what`" if the library has logged any.
    void stopIfFailed(const std::string& what) const;

    /// Whether anything has been met that makes the results worthless.
    bool hasTrouble() const;
    /// The file and the reason behind that, or "see the warnings above" where neither is known. For the end of a run.
    std::string cause();
    /// Looks through the whole file of the store and its indexes, for a command whose figures contradict each other.
    /// Throws a `Failure` "cannot `what`" if the file is damaged.
    void examineStore(const std::string& what);

private:
    void stopLater(TessixDeskClient::ModuleBase& module);
    void requireStoreFolder() const;
    void useFolder(const std::filesystem::path& folder, const std::filesystem::path& store);
    std::filesystem::path shown(const std::filesystem::path& file) const;

    GlobalOptions m_options;
    Reporter m_reporter;
    std::shared_ptr<StoreLog> m_log;
    std::shared_ptr<Logger::LogSink> m_logFile;
    std::optional<TraceFile> m_trace;
    mutable std::filesystem::path m_folder; ///< empty until it is asked for
    std::filesystem::path m_store;          ///< the name of its file
    struct OpenedFile {
        explicit OpenedFile(const std::filesystem::path& named);

        std::filesystem::path file;
        ReadableStore readable;
        Database database;
    };

    std::optional<ReadableStore> m_readable;
    std::list<OpenedFile> m_opened;
    Database* m_driveAsItIs = nullptr;
    DatabaseService::DriverDBProvider m_drive;
    std::optional<DatabaseService::CloudDriverDb> m_lists; // closed before the copy that it reads is removed
    std::vector<TessixDeskClient::ModuleBase*> m_modules;
};

/// A path from a command line's argument, with every byte kept where paths are bytes.
std::filesystem::path pathFromArgument(std::string_view argument);

/// Whether the path loses nothing when it is written as UTF-8.
bool isUnicode(const std::filesystem::path& path);

} // namespace dbservice
