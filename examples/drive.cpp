// The drive: a folder with a picture in it, and a new name that the cloud has yet to learn.
#include "start.h"

#include "databaseservice/driverdbprovider.h"

using DatabaseService::DriveDataTable;

int main(int argc, char** argv)
{
    const auto failures = start(argc > 1 ? argv[1] : "store");
    DatabaseService::DriverDBProvider drive;
    drive.InitDatabase(); // creates what is missing

    DriveDataTable folder;
    folder.SetFileid("album");
    folder.SetParentId("root");
    folder.SetName("Holidays");
    folder.SetMimeType(DriveDataTable::folderMimeType);

    DriveDataTable picture;
    picture.SetFileid("picture");
    picture.SetParentId("album");
    picture.SetName("beach.jpg");
    picture.SetMimeType("image/jpeg");
    drive.ReplaceDriveAllData({folder, picture}); // one transaction

    picture.SetName("sunrise.jpg"); // what lists show at once
    picture.SetRenameName("sunrise.jpg");
    picture.SetRenameTime(1'700'000'000);
    picture.SetRenameBatchId(1); // any number but 0: the rename is pending
    drive.RenameDriveDataById({picture});

    for (const DriveDataTable& child : drive.GetDriveDataByParentId("album")) {
        std::cout << child.GetName() << (child.GetRenameBatchId() != 0 ? ", its new name is pending\n" : "\n");
    }
    return failures->count() == 0 && drive.GetDriveDataById("picture").GetRenameName() == "sunrise.jpg" ? 0 : 1;
}
