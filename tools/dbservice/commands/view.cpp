#include "command.h"
#include "drive/fileclass.h"
#include "drive/listpage.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <map>
#include <string>

namespace dbservice {

namespace {

struct ViewOptions {
    const KnownClass* shown = nullptr;
    PageOptions page;
};

/// By word and by number.
std::map<std::string, const KnownClass*> classesByName()
{
    std::map<std::string, const KnownClass*> classes;
    for (const KnownClass& known : fileClasses) {
        classes[known.word] = &known;
        classes[std::to_string(static_cast<int>(known.number))] = &known;
    }
    return classes;
}

int view(Session& session, const ViewOptions& options)
{
    DatabaseService::CloudDriverDb& lists = session.readLists();
    Page page;
    page.total = lists.GetTypeTotalNumber(options.shown->view);
    page.summary = options.shown->name;
    lists.QueryTypeFile(options.shown->view, static_cast<int>(options.page.offset),
                        static_cast<int>(options.page.count), options.page.sort, page.rows);
    warnOfStrays(session, page.rows);
    showPage(session, page, options.page, TimeColumn::Modified, Beside::Paths);
    return 0;
}

} // namespace

Command viewCommand()
{
    return {
        .name = "view",
        .group = group::showDrive,
        .summary = "List the files of one class, wherever they are, page by page",
        .arguments = {choice<&ViewOptions::shown>("CLASS", classesByName(),
                                                  "picture, video, audio, document or other, or 2, 4, 8, 16 or 32",
                                                  {.required = true}),
                      within<&ViewOptions::page>(pageOptions())},
        .details = "Rows in the bin, on their way there or not to be displayed are left out.\n"
                   "With --json each line is a row with its stored columns, and its path.",
        .example = "dbservice view picture --sort -modified",
        .run = view,
    };
}

} // namespace dbservice
