#include "platform/programentry.h"

int main(int argc, char** argv)
{
    return platform::programMain(argc > 0 ? std::vector<std::string>(argv + 1, argv + argc)
                                          : std::vector<std::string>());
}
