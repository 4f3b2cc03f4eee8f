// Any bytes as the file of the earlier client generation: its readers, and the migration into a store.
#include "databaseservice/v10.h"
#include "fuzzing.h"
#include "migration/legacymigration.h"
#include "support/storestate.h"

void fuzzing::attempt(const std::string& input)
{
    startAnew();
    const fs::path file = scratch / "legacy" / "old.dat";
    testsupport::writeBytes(file, input);
    DatabaseService::V10::InitDB(file.wstring());
    std::vector<DatabaseService::V10::GalleryFile> pictures;
    DatabaseService::V10::GetAllGalleryFile(pictures);
    try {
        for (const auto& table : migration::run({file, "main.dat", "gallery.dat"}).tables) {
            expect(table.read == table.written + table.alreadyThere + table.failed + (control ? 1 : 0),
                   "not every row is accounted for in " + std::string(table.legacyTable));
        }
    } catch (const migration::Error&) { // before anything is written
        expect(filesBelow(".") == filesBelow(samples / "store"), "a store was written to");
    }
    DatabaseService::CloseKeptConnections();
    expect(DatabaseService::ListKeptConnections().empty(), "a reader keeps a transaction open");
    testsupport::stateOf("."); // throws unless the files are sound
}
