#include "stores/storekind.h"

#include "databaseservice/driverdbprovider.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/v10.h"

namespace dbservice {

namespace {

void layDownDrive()
{
    DatabaseService::DriverDBProvider().InitDatabase();
}

void layDownMain()
{
    DatabaseService::MainDatabaseProvider::InitMainDatabase();
}

void layDownGallery()
{
    DatabaseService::GalleryDBProvider::InitGalleryDatabase(L"gallery.dat");
}

void layDownShortcuts()
{
    DatabaseService::FastAccessDBProvider::InitFastAccessDB();
}

void layDownTransfers()
{
    auto& transfers = *DatabaseService::TransmissionDB::TransDbConnThread::GetInstance();
    transfers.InitDatabase();
    transfers.CreateTransferTaskTable();
}

/// The library looks for this file on the disk before it opens it, so its name is one that every disk has.
constexpr const wchar_t* newLegacyFile = L"\\.";

void layDownLegacy()
{
    DatabaseService::V10::InitDB(newLegacyFile);
}

} // namespace

const std::array<StoreKind, storeKindCount>& storeKinds()
{
    static constexpr std::array<StoreKind, storeKindCount> kinds{{
        {"drive", "drive store", L"/new/DriveModuleData.dat", layDownDrive},
        {"main", "main store", L"/new/main.dat", layDownMain},
        {"gallery", "gallery", L"/new/gallery.dat", layDownGallery},
        {"shortcuts", "shortcut list", L"/new/FastAccess.dat", layDownShortcuts},
        {"transfers", "transfers", L"/new/transmission.dat", layDownTransfers},
        {"legacy", "file of the earlier client generation", newLegacyFile, layDownLegacy},
    }};
    return kinds;
}

} // namespace dbservice
