// writerprocess FOLDER PREFIX BATCHES ROWS: writes batches of rows into the drive store of a folder. Exit code 0 when
// the log shows no failure.

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbproviderbase.h"
#include "platform/programentry.h"
#include "platform/text.h"
#include "support/batches.h"
#include "support/logcapture.h"

#include <cstdlib>
#include <iostream>

int platform::programMain(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 4) {
        return 2;
    }
    testsupport::LogCapture log;
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(arguments[0]));
    DatabaseService::DriverDBProviderBase drive;
    testsupport::writeBatches(drive, arguments[1], std::stoi(arguments[2]), std::stoi(arguments[3]));
    const testing::AssertionResult clean = log.failuresWere({});
    std::cerr << clean.message();
    return clean ? EXIT_SUCCESS : EXIT_FAILURE;
}
