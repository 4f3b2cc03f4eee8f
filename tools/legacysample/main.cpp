// legacysample [--clean] FILE [ROWS [STORE GALLERY]]: writes a made-up file of the earlier client generation, with ugly
// rows or clean, and, on demand, puts rows into a store that get in the way of some of its rows.

#include "clientservices/globalparamwrapper.h"
#include "legacysample.h"
#include "platform/programentry.h"
#include "platform/text.h"

#include <exception>
#include <iostream>
#include <string>

int platform::programMain(const std::vector<std::string>& all)
{
    const bool clean = !all.empty() && all.front() == "--clean";
    const std::vector<std::string> arguments(all.begin() + (clean ? 1 : 0), all.end());
    if (arguments.empty() || arguments.size() == 3 || arguments.size() > 4) {
        std::cerr << "usage: legacysample [--clean] FILE [ROWS [STORE GALLERY]]\n";
        return 2;
    }
    try {
        const std::filesystem::path file(std::u8string(arguments[0].begin(), arguments[0].end()));
        if (file.has_parent_path()) {
            std::filesystem::create_directories(file.parent_path());
        }
        legacysample::write(std::filesystem::absolute(file), arguments.size() > 1 ? std::stoll(arguments[1]) : 10'000,
                            clean ? legacysample::Content::Clean : legacysample::Content::Ugly);
        if (arguments.size() == 4) {
            std::filesystem::create_directories(std::u8string(arguments[2].begin(), arguments[2].end()));
            GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(arguments[2]));
            legacysample::putInTheWay(platform::toWide(arguments[3]));
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "legacysample: " << error.what() << '\n';
        return 1;
    }
}
