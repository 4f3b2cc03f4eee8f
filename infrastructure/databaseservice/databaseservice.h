#pragma once

#include "databaseservice/export.h"

#include <string>

/// Start and reset of the stores.
///
/// ```cpp
/// const std::wstring folder = L"store";                             // a folder that exists
/// GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder); // where each store looks for its file
/// DatabaseService::InitDataBase(folder, L"gallery.dat");            // main store, gallery, shortcut list
/// DatabaseService::DriverDBProvider().InitDatabase();               // the drive's store starts by itself
/// ```
///
/// Threads: one at a time; everything runs on the calling thread, and `g_userDataBaseFolder` is not locked.
/// Failure: when `folder` is empty or does not exist, or a name is empty, a type derived from `std::exception` alone
/// is thrown, whose `what()` is "The db file folder is empty or does not exist."; nothing else has happened then. A
/// store that fails is lines in the log, and the next one goes on.
namespace DatabaseService {

/// The folder of the last call that accepted one, for the client to look at. Stores do not ask here: they open their
/// files in `GlobalParamWrapper::GetUserDataBaseFolder`, which the client sets to the same folder beforehand.
DATABASESERVICE_EXPORT extern std::wstring g_userDataBaseFolder;

/// Starts the main store and the shortcut list. May be called again: what is there stays as it is. Only that `folder`
/// exists is tested, not that it is a folder.
DATABASESERVICE_EXPORT void InitDataBase(const std::wstring& folder);

/// Starts the main store, the gallery store in the file of that name, and the shortcut list, in this order.
DATABASESERVICE_EXPORT void InitDataBase(const std::wstring& folder, std::wstring galleryDbName);

/// Drops the tables of the gallery store in the file of that name; the next start with it creates them again. Other
/// stores are not touched.
DATABASESERVICE_EXPORT void ResetDataBase(const std::wstring& folder, std::wstring galleryDbName);

/// Drops the tables of the transfer store, for a change of user; they come back with the next log-in, or the next read
/// through `TransDbConn`. `folder` is tested and nothing else, `g_userDataBaseFolder` stays as it is, and other stores
/// are not touched. What is posted to `TransmissionDBModule` and not yet written comes later.
DATABASESERVICE_EXPORT void ResetDataBaseChangeUser(const std::wstring& folder);

} // namespace DatabaseService
