// The file of the earlier client generation: its settings, read whole. The one that is read here is made first.
#include "start.h"

#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/keptconnections.h"
#include "databaseservice/v10.h"

#include <fstream>

using namespace DatabaseService;

int main(int argc, char** argv)
{
    const std::filesystem::path folder = argc > 1 ? argv[1] : "store";
    const auto failures = start(folder);
    const std::filesystem::path file = std::filesystem::absolute(folder) / "legacy.db"; // no store: anywhere will do
    std::ofstream{file};                                                                // empty, whatever was there
    V10::InitDB(file.wstring());                                                        // lays down what the file lacks

    CommonSqliteDb plain; // SQL of one's own, beside the stores
    plain.OpenUnicodePath(file.wstring().c_str());
    plain.ExcuteSql("INSERT INTO UserProperties (key, Value) VALUES ('Language', 'en-GB')");
    plain.Close();

    std::vector<V10::UserProperties> settings;
    if (!V10::GetAllUserProperties(settings)) {
        return 1;
    }
    for (const V10::UserProperties& setting : settings) {
        std::cout << setting.key << " = " << setting.Value << '\n';
    }
    CloseKeptConnections(); // each call above has left one open; now the file can be moved or deleted
    return failures->count() == 0 && settings.size() == 1 && ListKeptConnections().empty() ? 0 : 1;
}
