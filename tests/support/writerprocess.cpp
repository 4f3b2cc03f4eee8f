// writerprocess FOLDER PREFIX BATCHES ROWS: writes batches of rows into the drive store of a folder. Exit code 0 when
// the log shows no failure.

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbproviderbase.h"
#include "platform/text.h"
#include "support/batches.h"
#include "support/logcapture.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 5) {
        return 2;
    }
    testsupport::LogCapture log;
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(argv[1]));
    DatabaseService::DriverDBProviderBase drive;
    testsupport::writeBatches(drive, argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    const testing::AssertionResult clean = log.failuresWere({});
    std::cerr << clean.message();
    return clean ? EXIT_SUCCESS : EXIT_FAILURE;
}
