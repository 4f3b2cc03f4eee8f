// The modules' threads: posts from several sides, a stop in the middle of them, the end of the object.

#include "databaseservice/fastaccessdbmodule.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"
#include "harness.h"
#include "support/heldmodule.h"
#include "support/runonthreads.h"

using namespace testsupport;
using DatabaseService::FastAccessDB::FastAccessDBModule;
using DatabaseService::TransmissionDB::TransmissionDBModule;

namespace reliability {

namespace {

bool post(TransmissionDBModule& module)
{
    return module.ExecuteSQL("INSERT INTO UploadTaskTable(errorCode) VALUES (1)");
}
bool post(FastAccessDBModule& module)
{
    static DatabaseService::FastAccessTable row;
    return module.InsertFastAccessData(&row, {});
}

/// Gives how many posts were accepted.
template <class Module> int round(unsigned posts, bool stops)
{
    std::atomic<int> accepted = 0;
    HeldModule<Module> module;
    runOnThreads(4, [&](int thread) {
        for (unsigned left = posts; left > 0; --left) {
            if (thread == 3 && left == posts / 2 + 1) {
                stops ? module.StopWork() : module.end();
            }
            accepted += post(module);
        }
    });
    CommonAbility::WaitForThread(module);
    return accepted;
}

} // namespace

void threads(Run& run)
{
    Folders folders;
    const FaultyDisk disk; // does not flush
    for (int left = run.part(1000); left > 0; --left) {
        const bool transfers = run.random() % 2 == 0;
        const bool stops = run.random() % 2 == 0;
        const auto posts = static_cast<unsigned>(1 + run.random() % 6);
        run.trying((transfers ? "transfers, " : "shortcuts, ") + std::to_string(posts) + " posts");
        folders.fresh();
        DatabaseService::TransmissionDB::TransDbConnThread::GetInstance()->InitDatabase();
        DatabaseService::FastAccessDBProvider::InitFastAccessDB();
        const int accepted = run.control + // a post is told that was none
            (transfers ? round<TransmissionDBModule>(posts, stops) : round<FastAccessDBModule>(posts, stops));
        SqliteFile file(folders.path() / (transfers ? "transmission.dat" : "FastAccess.dat"));
        const std::string table = transfers ? "UploadTaskTable" : "FastAccess";
        run.expect(file.value("SELECT count(*) FROM " + table) == std::to_string(accepted),
                   "rows are not those accepted");
    }
}

} // namespace reliability
