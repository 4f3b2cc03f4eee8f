// Lists of the drive by page: the sorted one of a folder, and the pictures wherever they are.
#include "start.h"

#include "databaseservice/clouddriverdb.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/storefiles.h"

using namespace DatabaseService;

int main(int argc, char** argv)
{
    const std::filesystem::path folder = argc > 1 ? argv[1] : "store";
    const auto failures = start(folder);
    DriverDBProvider drive;
    drive.InitDatabase();

    std::vector<DriveDataTable> pictures(25);
    for (std::size_t number = 0; number < pictures.size(); ++number) {
        pictures[number].SetFileid("list-" + std::to_string(number));
        pictures[number].SetParentId("list");
        pictures[number].SetName("picture " + std::to_string(number) + ".jpg");
        pictures[number].SetMimeType("image/jpeg");
        pictures[number].SetClassIndex(2); // pictures, in the views by class
    }
    drive.ReplaceDriveAllData(pictures);

    CloudDriverDb::InitDatabasePath((folder / driveStoreFile).wstring()); // the whole path, and before the object
    CloudDriverDb lists;
    constexpr std::size_t pageSize = 10;
    std::size_t seen = 0;
    std::vector<DriveDataTable> page;
    do {
        page.clear(); // lists append
        lists.QueryChildFile("list", static_cast<int>(seen), pageSize, CLOUD_DB_SORT_NAME_ASC, page);
        if (!page.empty()) {
            std::cout << page.front().GetName() << " to " << page.back().GetName() << '\n';
        }
        seen += page.size();
    } while (page.size() == pageSize);
    std::cout << lists.GetTypeTotalNumber(CLOUD_DB_VIEW_CLASS2) << " pictures in all\n";
    return failures->count() == 0 && seen == 25 ? 0 : 1;
}
