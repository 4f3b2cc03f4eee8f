// exitprocess FOLDER MADE STOPPED POSTS: makes the modules in the order of MADE, "tf" or "ft", posts to both, stops
// those in STOPPED in its order, and exits while the others work. Exit code 0 when the log shows no failure until then.

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/fastaccessdbmodule.h"
#include "databaseservice/transmissiondbmodule.h"
#include "platform/neverdestroyed.h"
#include "platform/programentry.h"
#include "platform/text.h"
#include "support/logcapture.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

using DatabaseService::FastAccessDB::FastAccessDBModule;
using DatabaseService::TransmissionDB::TransmissionDBModule;

namespace {

// Comes after the static objects of all functions are destroyed, and gives handlers time to miss them.
[[maybe_unused]] const int lastToCome = std::atexit([] { std::this_thread::sleep_for(std::chrono::milliseconds(50)); });

TessixDeskClient::ModuleBase& module(char name)
{
    using Module = TessixDeskClient::ModuleBase;
    return name == 't' ? static_cast<Module&>(TransmissionDBModule::GetInstance()) : FastAccessDBModule::GetInstance();
}

} // namespace

int platform::programMain(const std::vector<std::string>& arguments)
{
    testsupport::LogCapture log;
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(arguments.at(0)));
    for (const char name : arguments.at(1)) {
        module(name).OnUserLogin();
    }
    static auto& shortcut = platform::neverDestroyed(new DatabaseService::FastAccessTable);
    for (int post = std::stoi(arguments.at(3)); post > 0; --post) {
        TransmissionDBModule::GetInstance().ExecuteSQL("INSERT INTO UploadTaskTable(errorCode) VALUES (1)");
        FastAccessDBModule::GetInstance().InsertFastAccessData(&shortcut, {});
    }
    for (const char name : arguments.at(2)) {
        module(name).StopWork();
    }
    const testing::AssertionResult clean = log.failuresWere({});
    std::cerr << (clean ? "" : clean.message());
    return clean ? EXIT_SUCCESS : EXIT_FAILURE;
}
