#include "application.h"

int main(int argc, char** argv)
{
    return dbservice::run(argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>());
}
