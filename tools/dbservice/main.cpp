#include "application.h"
#include "platform/programentry.h"
#include "platform/termination.h"
#include "stores/temporaryfolder.h"

int platform::programMain(const std::vector<std::string>& arguments)
{
    platform::onTermination(dbservice::TemporaryFolder::removeAllForGood);
    return dbservice::run(arguments);
}
