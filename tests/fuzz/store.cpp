// Any bytes as a store's file under the tool; the first one tells which store's.
#include "fuzzing.h"
#include "support/sqlitefile.h"

void fuzzing::attempt(const std::string& input)
{
    constexpr const char* names[]{"DriveModuleData.dat", "main.dat", "FastAccess.dat", "transmission.dat",
                                  "gallery.dat"};
    const std::string name = names[input.empty() ? 0 : static_cast<unsigned char>(input[0]) % std::size(names)];
    startAnew();
    testsupport::writeBytes(name, input.empty() ? "" : input.substr(1));
    const auto before = filesBelow(".");
    runTool({"ls", "/"});
    runTool({"check", "."});
    const int code = runTool({"recover", name, "../saved"});
    testsupport::writeBytes(control ? "main.dat" : "../other", "");
    expect(filesBelow(".") == before, "a file of the store was written to");
    expect(code != 0 || fs::exists("../saved"), "nothing was saved");
    testsupport::SqliteFile saved("../saved", testsupport::SqliteFile::Collation::NameCompare);
    expect(saved.value("PRAGMA integrity_check") == "'ok'", "what was saved is damaged");
}
