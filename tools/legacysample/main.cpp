// legacysample [--clean] FILE [ROWS [STORE GALLERY]]: writes a made-up file of the earlier client generation, with ugly
// rows or clean, and, on demand, puts rows into a store that get in the way of some of its rows.

#include "clientservices/globalparamwrapper.h"
#include "legacysample.h"
#include "platform/programentry.h"
#include "platform/text.h"

#include <exception>
#include <iostream>
#include <string>

int platform::programMain(const std::vector<std::string>& arguments)
{
    const bool clean = !arguments.empty() && arguments.front() == "--clean";
    const std::vector<std::string> words(arguments.begin() + (clean ? 1 : 0), arguments.end());
    if (words.empty() || words.size() == 3 || words.size() > 4) {
        std::cerr << "usage: legacysample [--clean] FILE [ROWS [STORE GALLERY]]\n";
        return 2;
    }
    try {
        const std::filesystem::path file(std::u8string(words[0].begin(), words[0].end()));
        if (file.has_parent_path()) {
            std::filesystem::create_directories(file.parent_path());
        }
        legacysample::write(std::filesystem::absolute(file), words.size() > 1 ? std::stoll(words[1]) : 10'000,
                            clean ? legacysample::Content::Clean : legacysample::Content::Ugly);
        if (words.size() == 4) {
            std::filesystem::create_directories(std::u8string(words[2].begin(), words[2].end()));
            GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(words[2]));
            legacysample::putInTheWay(platform::toWide(words[3]));
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "legacysample: " << error.what() << '\n';
        return 1;
    }
}
