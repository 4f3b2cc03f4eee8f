#include "application.h"
#include "platform/programentry.h"

int platform::programMain(const std::vector<std::string>& arguments)
{
    return dbservice::run(arguments);
}
