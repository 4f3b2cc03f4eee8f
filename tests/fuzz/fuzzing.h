#pragma once

#include "application.h"
#include "clientservices/globalparamwrapper.h"
#include "databaseservice/keptconnections.h"
#include "support/filebytes.h"

#include <iostream>
#include <sstream>

/// What the programs share, each of which tries inputs of libFuzzer's. They run where the script `run` puts them.
namespace fuzzing {

namespace fs = std::filesystem;
using testsupport::filesBelow;

void attempt(const std::string& input);

/// Whether the property is to be broken on purpose, and the program to find that.
inline const bool control = std::getenv("FUZZ_CONTROL") != nullptr;

inline void expect(bool holds, const std::string& broken)
{
    if (!holds) {
        std::cerr << "FELL " << broken << std::endl;
        std::abort();
    }
}

inline const fs::path samples = "/fuzz/samples"; ///< in `store` one of each store, and folders for other files
inline const fs::path scratch = "/fuzz/scratch"; ///< nothing else can be written to
/// Makes the scratch folder as the samples are, with its `store` for the current folder and for the library's.
inline void startAnew()
{
    fs::remove_all(scratch);
    fs::copy(samples, scratch, fs::copy_options::recursive);
    fs::current_path(scratch / "store");
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(fs::current_path().wstring());
}

/// Runs the tool in this process, and gives its exit code.
inline int runTool(const std::vector<std::string>& arguments)
{
    std::stringbuf told[2];
    std::streambuf* const before[]{std::cout.rdbuf(&told[0]), std::cerr.rdbuf(&told[1])};
    const int code = dbservice::run(arguments);
    std::cout.rdbuf(before[0]);
    std::cerr.rdbuf(before[1]);
    DatabaseService::CloseKeptConnections(DatabaseService::OpenTransactions::RollBack);
    expect(code >= 0 && code <= 2, "it ends with code " + std::to_string(code));
    expect(code == 0 || !(told[0].str() + told[1].str()).empty(), "it does not say why it failed");
    expect(fs::is_empty(scratch / "tmp"), "it left something among the temporary files");
    return code;
}

} // namespace fuzzing
