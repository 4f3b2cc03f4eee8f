#include "commands/commands.h"
#include "drive/fileclass.h"
#include "drive/listpage.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <CLI/CLI.hpp>

#include <map>
#include <memory>
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
    showPage(session, page, options.page, TimeColumn::Modified);
    return 0;
}

} // namespace

void addView(CLI::App& app, Command& chosen)
{
    const auto options = std::make_shared<ViewOptions>();
    const auto classes = classesByName();
    CLI::App* const command =
        app.add_subcommand("view", "List the files of one class, wherever they are, page by page");
    command
        ->add_option_function<std::string>(
            "CLASS", [options, classes](const std::string& name) { options->shown = classes.at(name); },
            "picture, video, audio, document or other, or 2, 4, 8, 16 or 32")
        ->check(CLI::IsMember(classes))
        ->type_name("TEXT")
        ->required();
    addPageOptions(*command, options->page);
    command->footer("Rows in the bin, on their way there or not to be displayed are left out.\n"
                    "With --json each line is a row with its stored columns.");
    command->callback([&chosen, options] { chosen = [options](Session& session) { return view(session, *options); }; });
}

} // namespace dbservice
