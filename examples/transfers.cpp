// A module: uploads are posted, the stop waits until they are written, and then they are read back.
#include "start.h"

#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"

using namespace DatabaseService::TransmissionDB;

int main(int argc, char** argv)
{
    const auto failures = start(argc > 1 ? argv[1] : "store");
    TransmissionDBModule& module = TransmissionDBModule::GetInstance(); // starts the thread
    module.OnUserLogin();                                               // creates the tables
    TransDbConnThread& store = *TransDbConnThread::GetInstance();
    store.DeleteUploadTask(); // what an earlier run left: uploads have ids of the caller's

    std::list<std::shared_ptr<UploadTaskProperty>> uploads;
    for (int id = 1; id <= 100; ++id) {
        auto upload = std::make_shared<UploadTaskProperty>(); // all numbers are 0, all texts empty
        upload->id = id;
        upload->fileName = "picture " + std::to_string(id) + ".jpg";
        upload->totalLength = 2'048'000;
        uploads.push_back(std::move(upload));
    }
    module.InsertUploadTask(uploads); // returns at once. A list is one transaction; a post for each would be a hundred
    module.StopWork();                // returns when all that was posted is written. There is no second start

    std::vector<UploadTaskProperty> waiting; // the module reads no uploads: this does
    store.GetAllUploadTaskProperties(waiting);
    std::cout << waiting.size() << " uploads wait\n";
    return failures->count() == 0 && waiting.size() == 100 ? 0 : 1;
}
