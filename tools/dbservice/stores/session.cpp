#include "stores/session.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/logsinks.h"
#include "clientservices/modulebase.h"
#include "databaseservice/version.h"
#include "platform/paths.h"
#include "platform/terminal.h"
#include "platform/text.h"
#include "stores/nameindex.h"
#include "stores/storefile.h"
#include "stores/storelog.h"
#include "stores/storeshape.h"
#include "stores/storewatch.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

bool holdsStoreFiles(const fs::path& folder)
{
    for (const std::string_view name : storeFileNames) {
        std::error_code error;
        const fs::file_status status = fs::status(folder / name, error);
        if (!fs::status_known(status)) {
            throw Failure("cannot look at " + platform::toUtf8(folder / name) + ": " + error.message());
        }
        if (fs::exists(status)) {
            return true;
        }
    }
    return false;
}

fs::path chooseFolder(const std::string& folder)
{
    if (folder.empty() && !holdsStoreFiles(fs::current_path())) {
        throw Failure("cannot tell which store is meant: the current folder holds no store files; "
                      "name the store's folder with --folder STORE or in DBSERVICE_FOLDER");
    }
    const fs::path path = fs::absolute(pathFromArgument(folder.empty() ? "." : folder)).lexically_normal();
    if (!isUnicode(path)) {
        throw Failure("cannot use the store folder " + platform::toUtf8(path) + ": its name is not UTF-8");
    }
    return path.has_filename() ? path : path.parent_path();
}

} // namespace

Session::Session(const GlobalOptions& options) : m_options(options), m_log(std::make_shared<StoreLog>(m_reporter))
{
    StoreWatch::instance().begin(
        std::chrono::milliseconds(std::llround(options.waitSeconds * 1000)), [this](const fs::path& file) {
            m_reporter.note("waiting for " + platform::toUtf8(shown(file)) + ", which another program has locked");
        });
    if (options.quiet) {
        m_reporter.beQuiet();
    }
    if (!options.logFile.empty()) {
        constexpr std::size_t maxBytes = 10 << 20;
        constexpr std::size_t maxFiles = 3;
        try {
            m_logFile = Logger::MakeRotatingFileSink(pathFromArgument(options.logFile), maxBytes, maxFiles);
        } catch (const std::exception& error) {
            throw Failure("cannot write the log file " + options.logFile + ": " + error.what());
        }
    }
    if (!options.traceFile.empty()) {
        m_trace.emplace(pathFromArgument(options.traceFile));
    }
    Logger::CloudLogger::GetInstance()->AddSink(m_log);
    Logger::CloudLogger::GetInstance()->AddSink(m_logFile);
}

Session::~Session()
{
    stopModules();
    StoreWatch::instance().end();
    Logger::CloudLogger::GetInstance()->RemoveSink(m_logFile);
    Logger::CloudLogger::GetInstance()->RemoveSink(m_log);
}

int Session::outputWidth()
{
    return platform::terminalWidth(platform::Stream::Output);
}

void Session::makeStoreFolder()
{
    std::error_code error;
    if (fs::create_directories(storeFolder(), error)) {
        m_reporter.note("made the folder " + platform::toUtf8(storeFolder()));
    } else if (error) {
        throw Failure("cannot make the store folder " + platform::toUtf8(storeFolder()) + ": " + error.message());
    }
}

void Session::readStore(const fs::path& fileName, ReadableStore::Copy copied)
{
    requireStoreFolder();
    m_readable.emplace(storeFolder(), fileName, copied);
    useFolder(m_readable->folder(), fileName);
}

void Session::editStore(const fs::path& fileName)
{
    requireStoreFolder();
    requireStoreFile(storeFolder(), fileName);
    useFolder(storeFolder(), fileName);
}

void Session::makeStore(const fs::path& fileName)
{
    requireStoreFolder();
    requireDatabaseOrNothing(storeFolder() / fileName);
    useFolder(storeFolder(), fileName);
}

void Session::editAllStores(const std::string& name)
{
    requireStoreFolder();
    if (!holdsStoreFiles(storeFolder())) {
        throw Failure("cannot open the stores: " + platform::toUtf8(storeFolder()) + " holds no store files");
    }
    useFolder(storeFolder(), name);
}

void Session::nameInWarnings(const std::string& name)
{
    m_log->setStore(name);
}

const fs::path& Session::storeFolder() const
{
    if (m_folder.empty()) {
        m_folder = chooseFolder(m_options.folder);
    }
    return m_folder;
}

DatabaseService::DriverDBProvider& Session::readDrive()
{
    if (!m_readable) {
        readStore(driveFileName, ReadableStore::Copy::WhereNeeded);
    }
    return m_drive;
}

DatabaseService::CloudDriverDb& Session::readLists()
{
    readDrive();
    if (!m_lists) {
        const fs::path file = m_readable->folder() / driveFileName;
        DatabaseService::CloudDriverDb::InitDatabasePath(platform::toWide(platform::toUtf8(file)));
        m_lists.emplace();
        // Longer than the watch, which ends the wait.
        m_lists->setBusyTimeout(static_cast<int>(std::lround((m_options.waitSeconds + 1) * 1000)));
        stopIfFailed("open the lists of the drive store");
    }
    return *m_lists;
}

DatabaseService::DriverDBProvider& Session::writeDrive()
{
    makeStore(driveFileName);
    std::error_code ignored;
    if (fs::exists(storeFolder() / driveFileName, ignored)) {
        const NameIndex index = examineNameIndexUnlessMarked(storeFolder() / driveFileName);
        stopIfFailed("look at the order of names in the drive store");
        if (index == NameIndex::Disagrees) {
            throw Failure("cannot write to the store: its index of names is in another order than this build's (" +
                          DatabaseService::NameOrderVersion() +
                          "), so that rows would be lost from lists; nothing has been written; "
                          "`dbservice reindex` brings the index into this order");
        }
    }
    m_drive.InitDatabase();
    stopIfFailed("lay down the drive store");
    return m_drive;
}

DatabaseService::DriverDBProvider& Session::editDrive()
{
    editStore(driveFileName);
    return writeDrive();
}

DatabaseService::DriverDBProvider& Session::mendDrive()
{
    editStore(driveFileName);
    return m_drive;
}

Session::OpenedFile::OpenedFile(const fs::path& named)
    : file(fs::absolute(named).lexically_normal()),
      readable(file.parent_path(), file.filename(), ReadableStore::Copy::WhereNeeded, platform::toUtf8(named)),
      // A copy's journal can only be rolled back by one who may write.
      database(readable.folder() / file.filename(),
               readable.isCopy() ? Database::Access::Write : Database::Access::Read, platform::toUtf8(named))
{
}

Database& Session::openToRead(const fs::path& file)
{
    return m_opened.emplace_back(file).database;
}

Database& Session::driveAsItIs()
{
    if (m_driveAsItIs == nullptr) {
        m_driveAsItIs = &openToRead(storeFolder() / driveFileName);
    }
    return *m_driveAsItIs;
}

void Session::stopModules()
{
    for (TessixDeskClient::ModuleBase* const module : std::exchange(m_modules, {})) {
        module->StopWork();
    }
}

void Session::stopLater(TessixDeskClient::ModuleBase& module)
{
    if (std::find(m_modules.begin(), m_modules.end(), &module) == m_modules.end()) {
        m_modules.push_back(&module);
    }
}

int Session::libraryFailures() const
{
    return m_log->failures();
}

void Session::stopIfFailed(const std::string& what) const
{
    if (hasTrouble()) {
        throw Failure("cannot " + what);
    }
}

bool Session::hasTrouble() const
{
    return libraryFailures() > 0 || StoreWatch::instance().fault();
}

std::string Session::cause()
{
    const StoreWatch::Fault fault = StoreWatch::instance().fault().value_or(m_log->firstReason());
    if (fault.reason.empty()) {
        return "the store reported " + counted(libraryFailures(), "failure", "failures") + ", see the warnings above";
    }
    if (fault.file.empty()) {
        return fault.reason;
    }
    std::string reason = cutShort(fault.file);
    if (reason.empty() && fault.reason.find("no such column") != std::string::npos) {
        try {
            reason = missingColumns(fault.file);
        } catch (const Failure&) { // then the first reason is the best
        }
    }
    return platform::toUtf8(shown(fault.file)) + ": " + (reason.empty() ? fault.reason : reason);
}

void Session::examineStore(const std::string& what)
{
    const std::vector<std::string> found = StoreFile(m_store).texts("PRAGMA integrity_check(1)");
    stopIfFailed(what);
    if (found != std::vector<std::string>{"ok"}) {
        const fs::path folder = m_readable ? m_readable->folder() : storeFolder();
        StoreWatch::instance().report({folder / m_store, "damaged: " + (found.empty() ? "" : found.front())});
        throw Failure("cannot " + what);
    }
}

void Session::requireStoreFolder() const
{
    std::error_code error;
    const fs::file_status status = fs::status(storeFolder(), error);
    if (!fs::is_directory(status)) {
        throw Failure("cannot open the store: " + platform::toUtf8(storeFolder()) +
                      (!fs::status_known(status) ? ": " + error.message()
                           : fs::exists(status)  ? " is not a folder"
                                                 : " does not exist"));
    }
}

void Session::useFolder(const fs::path& folder, const fs::path& store)
{
    m_store = store;
    m_log->setStore(platform::toUtf8(store));
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(platform::toUtf8(folder)));
}

/// A file as the person knows it: a temporary copy stands for its original.
fs::path Session::shown(const fs::path& file) const
{
    for (const OpenedFile& opened : m_opened) {
        if (file.parent_path() == opened.readable.folder() && file.filename() == opened.file.filename()) {
            return opened.file;
        }
    }
    return m_readable && file.parent_path() == m_readable->folder() ? storeFolder() / file.filename() : file;
}

fs::path pathFromArgument(std::string_view argument)
{
    return fs::path(std::u8string(argument.begin(), argument.end()));
}

bool isUnicode(const fs::path& path)
{
    return pathFromArgument(platform::toUtf8(path)) == path;
}

} // namespace dbservice
