#pragma once

// The names of the store files, as the stores themselves take them; all are ASCII. The gallery's file is not among
// them, since the client names it, and the legacy file lies anywhere.
namespace DatabaseService {

/// The file of the drive's tree and of its synchronisation, in the user's database folder. `DriverDBProvider` finds it
/// by itself; `CloudDriverDb::InitDatabasePath` wants the whole path:
///
/// ```cpp
/// const std::filesystem::path folder = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
/// CloudDriverDb::InitDatabasePath((folder / driveStoreFile).wstring());
/// ```
inline constexpr const wchar_t* driveStoreFile = L"DriveModuleData.dat";

/// The file of settings, logs of usage, changes of files and cards: `MainDatabaseProvider`.
inline constexpr const wchar_t* mainStoreFile = L"main.dat";

/// The file of the shortcut list: `FastAccessDB::FastAccessDBModule`, `FastAccessDBProvider`.
inline constexpr const wchar_t* shortcutStoreFile = L"FastAccess.dat";

/// The file of uploads, downloads and finished transfers: `TransmissionDB`.
inline constexpr const wchar_t* transferStoreFile = L"transmission.dat";

} // namespace DatabaseService
