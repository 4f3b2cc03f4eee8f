#include "databaseservice/databaseservice.h"

#include "clientservices/cloudlogger.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/transdbconn.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <exception>

namespace DatabaseService {

std::wstring g_userDataBaseFolder;

namespace {

class FolderError : public std::exception {
public:
    const char* what() const noexcept override { return "The db file folder is empty or does not exist."; }
};

void checkFolder(const std::wstring& folder)
{
    if (folder.empty() || !platform::exists(folder)) {
        throw FolderError();
    }
}

void checkFolder(const std::wstring& folder, const std::wstring& galleryDbName)
{
    checkFolder(folder);
    if (galleryDbName.empty()) {
        throw FolderError();
    }
}

template <class Text> void logStart(int line, const Text& message)
{
    Logger::CloudLogger::GetInstance()->Output(0, 2, line, "DatabaseService::InitDataBase", message, true);
}

void startMainStore()
{
    logStart(__LINE__, "InitMainDatabase.Start");
    MainDatabaseProvider::InitMainDatabase();
    logStart(__LINE__, "InitMainDatabase.End");
}

} // namespace

void InitDataBase(const std::wstring& folder)
{
    logStart(__LINE__, "InitDB.Start(One parameter)");
    checkFolder(folder);
    g_userDataBaseFolder = folder;
    logStart(__LINE__, L"g_userDataBaseFolder = " + folder);
    startMainStore();
    FastAccessDBProvider::InitFastAccessDB();
    logStart(__LINE__, "InitDB.End(One parameter)");
}

void InitDataBase(const std::wstring& folder, std::wstring galleryDbName)
{
    logStart(__LINE__, "InitDB.Start(Two parameters),pGalleryDbName:" + platform::toUtf8(galleryDbName));
    checkFolder(folder, galleryDbName);
    g_userDataBaseFolder = folder;
    startMainStore();
    GalleryDBProvider::InitGalleryDatabase(galleryDbName);
    FastAccessDBProvider::InitFastAccessDB();
    logStart(__LINE__, "InitDB.End(Two parameters)");
}

void ResetDataBase(const std::wstring& folder, std::wstring galleryDbName)
{
    checkFolder(folder, galleryDbName);
    g_userDataBaseFolder = folder;
    GalleryDBProvider::ResetGalleryDatabase(galleryDbName);
}

void ResetDataBaseChangeUser(const std::wstring& folder)
{
    checkFolder(folder);
    TransmissionDB::TransDbConn::DeleteTable(folder);
}

} // namespace DatabaseService
