#include "command.h"
#include "commands/commands.h"
#include "databaseservice/version.h"
#include "platform/paths.h"
#include "stores/session.h"
#include "stores/storelook.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <iostream>

namespace dbservice {

namespace {

constexpr const char* words(NameIndex names)
{
    switch (names) {
    case NameIndex::Absent:
        return "absent";
    case NameIndex::Agrees:
        return "agrees";
    case NameIndex::Disagrees:
        break;
    }
    return "disagrees";
}

std::string told(NameIndex names)
{
    const std::string order = std::string("this build's order of names, ") + DatabaseService::NameOrderVersion();
    switch (names) {
    case NameIndex::Absent:
        return "nameIndex keeps no order of names; this build's is " + std::string(DatabaseService::NameOrderVersion());
    case NameIndex::Agrees:
        return "nameIndex agrees with " + order;
    case NameIndex::Disagrees:
        break;
    }
    return "nameIndex DISAGREES with " + order + "; `dbservice reindex` brings it into that order";
}

std::string meaning(const StoreLook& look)
{
    if (look.kind != nullptr) {
        return look.kind->meaning;
    }
    if (!look.trouble.empty()) {
        return "not known";
    }
    return look.rows.empty() ? "not a store: it has no tables" : "not a store: it has none of the library's tables";
}

Json toJson(const StoreLook& look)
{
    Json json{{"file", platform::toUtf8(look.file)},
              {"kind", look.kind == nullptr ? Json() : Json(look.kind->word)},
              {"size", look.size},
              {"beside", Json::array()},
              {"schema", Json::array()},
              {"tables", Json::object()},
              {"nameIndex", look.names ? Json(words(*look.names)) : Json()},
              {"nameOrder", DatabaseService::NameOrderVersion()},
              {"trouble", look.trouble.empty() ? Json() : Json(look.trouble)}};
    for (const auto& [file, size] : look.beside) {
        json["beside"].push_back({{"file", platform::toUtf8(file)}, {"size", size}});
    }
    for (const ShapeDifference& difference : look.differences) {
        json["schema"].push_back(difference.text);
    }
    for (const auto& [table, rows] : look.rows) {
        json["tables"][table] = rows;
    }
    return json;
}

void print(const StoreLook& look)
{
    Table table({{"Field"}, {"Value"}});
    table.add({"kind", meaning(look)});
    table.add({"size", humanSize(static_cast<std::int64_t>(look.size))});
    for (const auto& [file, size] : look.beside) {
        table.add({"beside it", platform::toUtf8(file.filename()) + ", " + humanSize(static_cast<std::int64_t>(size))});
    }
    for (const ShapeDifference& difference : look.differences) {
        table.add({"schema", difference.text});
    }
    if (look.kind != nullptr && look.differences.empty()) {
        table.add({"schema", "as this library lays it down"});
    }
    if (look.names) {
        table.add({"names", told(*look.names)});
    }
    for (const auto& [name, rows] : look.rows) {
        table.add({name, counted(rows, "row", "rows")});
    }
    if (!look.trouble.empty()) {
        table.add({"trouble", look.trouble});
    }
    std::cout << printable(platform::toUtf8(look.file)) << '\n';
    table.print(std::cout, Session::outputWidth());
}

int info(Session& session, const std::string& named)
{
    int code = 0;
    bool first = true;
    for (const std::filesystem::path& file : databasesMeant(session, named)) {
        const StoreLook look = lookAtStore(session, file);
        if (session.json()) {
            std::cout << toLine(toJson(look)) << '\n';
        } else {
            std::cout << (first ? "" : "\n");
            print(look);
        }
        first = false;
        if (!look.trouble.empty()) {
            code = failed;
            session.reporter().error("cannot read all of " + platform::toUtf8(file) + ": " + look.trouble);
        }
    }
    return code;
}

} // namespace

Command infoCommand()
{
    return {
        .name = "info",
        .group = group::stores,
        .summary = "Show which store files are in a folder, and what is in each",
        .arguments = {argument<std::string>(
            "PATH", "A database file, whatever it is called, or a folder; without it the store's folder")},
        .details = "A file's kind is told by its tables and not by its name. Nothing is made or changed.\n"
                   "schema: what its tables and indexes have otherwise than this library lays them down.\n"
                   "names: whether the index of names is in this build's order.\n"
                   "trouble: why something could not be read; `dbservice check` tells more. The exit code is 1 then.",
        .example = "dbservice info ~/from-a-user/renamed.bin",
        .run = info,
    };
}

} // namespace dbservice
