#include "command.h"
#include "drive/drivetree.h"
#include "drive/listpage.h"
#include "drive/nameglob.h"
#include "platform/namecompare.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <unordered_map>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

struct FindOptions {
    std::string pattern;
    unsigned offset = 0;
    unsigned count = 100;
    bool heedsCase = false;
};

struct Match {
    std::string id;
    std::string name;
};

std::vector<Match> matchesOf(Session& session, const FindOptions& options)
{
    const NameGlob glob(options.pattern, options.heedsCase ? NameGlob::Case::Heeded : NameGlob::Case::Ignored);
    std::vector<Match> matches;
    session.driveAsItIs().run("SELECT fileId, name FROM DriveDataTable", {}, [&](const Database::Row& row) {
        if (glob.matches(row.text(1))) {
            matches.push_back({std::string(row.text(0)), std::string(row.text(1))});
        }
    });
    std::sort(matches.begin(), matches.end(), [](const Match& left, const Match& right) {
        const int byName = platform::compareNames(left.name, right.name);
        return byName != 0 ? byName < 0 : left.id < right.id;
    });
    return matches;
}

int find(Session& session, const FindOptions& options)
{
    const std::vector<Match> matches = matchesOf(session, options);
    const std::size_t first = std::min<std::size_t>(options.offset, matches.size());
    const std::size_t last = first + std::min<std::size_t>(options.count, matches.size() - first);
    std::vector<std::string> ids;
    for (std::size_t i = first; i < last; ++i) {
        ids.push_back(matches[i].id);
    }
    Page page;
    page.total = static_cast<std::int64_t>(matches.size());
    page.summary = "rows whose name matches";
    page.rows = DriveTree(session.readDrive()).rowsById(ids);
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        places[ids[i]] = i;
    }
    std::sort(page.rows.begin(), page.rows.end(), [&](const DriveDataTable& left, const DriveDataTable& right) {
        return places[left.GetFileid()] < places[right.GetFileid()];
    });
    warnOfStrays(session, page.rows);
    PageOptions shown;
    shown.offset = options.offset;
    shown.count = options.count;
    showPage(session, page, shown, TimeColumn::Modified, Beside::PathsAndHidden);
    return 0;
}

} // namespace

Command findCommand()
{
    return {
        .name = "find",
        .group = group::showDrive,
        .summary = "Find files and folders by name, wherever they are, hidden ones too",
        .arguments = {argument<&FindOptions::pattern>("PATTERN", "Such as *.jpg, or a part of the name",
                                                      {.required = true}),
                      argument<&FindOptions::heedsCase>("--case", "Tell capitals from small letters"),
                      argument<&FindOptions::offset>("--offset", "How many rows to leave out first",
                                                     {.showsDefault = true}),
                      argument<&FindOptions::count>("--count", "How many rows to show", {.showsDefault = true})},
        .details =
            "* stands for any characters, ? for one, [a-z] and [!a-z] for one of some, and \\ takes the meaning\n"
            "from the next; quotes keep the shell from reading them. Rows come by name, those that lists hide\n"
            "with the reason. With --json each line is a row with its stored columns, path, and hidden.",
        .example = "dbservice find \"IMG_20[0-9]*.jpg\"",
        .run = find,
    };
}

} // namespace dbservice
