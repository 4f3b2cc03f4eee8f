#include "commands/commands.h"
#include "databaseservice/maindatabaseprovider.h"
#include "platform/text.h"
#include "stores/session.h"
#include "terminal/confirm.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"
#include "textarguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

namespace dbservice {

using DatabaseService::UserProperties;
namespace store = DatabaseService::MainDatabaseProvider;

namespace {

struct PropertyOptions {
    std::string key;
    std::string value;
    bool yes = false;
};

std::vector<UserProperties> readAll(Session& session)
{
    session.readStore(mainFileName, ReadableStore::Copy::WhereNeeded);
    std::vector<UserProperties> properties = store::GetAllUserProperties();
    session.stopIfFailed("read the properties");
    return properties;
}

nlohmann::ordered_json toJson(const std::wstring& key, const std::wstring& value)
{
    return {{"Key", platform::toUtf8(key)}, {"Value", platform::toUtf8(value)}};
}

int list(Session& session)
{
    Table table({{"Key"}, {"Value"}});
    for (const auto& [key, value] : readAll(session)) {
        table.add({platform::toUtf8(key), platform::toUtf8(value)});
        if (session.json()) {
            std::cout << toLine(toJson(key, value)) << '\n';
        }
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
    return 0;
}

int get(Session& session, const PropertyOptions& options)
{
    const std::wstring key = platform::toWide(options.key);
    const std::vector<UserProperties> all = readAll(session);
    if (std::none_of(all.begin(), all.end(), [&](const UserProperties& property) { return property.key == key; })) {
        throw Failure("cannot find the property " + options.key);
    }
    const std::wstring value = store::GetUserPropertieByKey(key);
    if (session.json()) {
        std::cout << toLine(toJson(key, value)) << '\n';
    } else {
        std::cout << printable(platform::toUtf8(value)) << '\n';
    }
    return 0;
}

int set(Session& session, const PropertyOptions& options)
{
    const std::wstring key = platform::toWide(options.key);
    const std::wstring value = platform::toWide(options.value);
    session.editStore(mainFileName);
    store::InitMainDatabase();
    store::UpdateUserProperties(key, value);
    if (store::GetUserPropertieByKey(key) != value) {
        throw Failure("cannot set the property " + options.key + ": it is not what it should be afterwards");
    }
    if (session.json()) {
        std::cout << toLine(toJson(key, value)) << '\n';
    }
    return 0;
}

int removeAll(Session& session, const PropertyOptions& options)
{
    session.editStore(mainFileName);
    const int before = store::CountUserProperties();
    session.stopIfFailed("read the properties");
    const std::string properties = counted(before, "property", "properties");
    confirm(session, "Remove " + properties + " from " + mainFileName + "?", options.yes);
    store::DeleteAllUserProperties();
    const int left = store::CountUserProperties();
    if (left > 0) {
        throw Failure("cannot remove all properties: " + grouped(left) + " are still there");
    }
    if (session.json()) {
        std::cout << toLine({{"removed", before}}) << '\n';
    } else {
        std::cout << "Removed " << properties << '\n';
    }
    return 0;
}

} // namespace

void addProperties(CLI::App& app, Command& chosen)
{
    const auto options = std::make_shared<PropertyOptions>();
    CLI::App* const command = app.add_subcommand("properties", "Show and change the client's settings in main.dat");
    command->require_subcommand(1);
    const auto add = [&](const char* name, const char* description, auto run) {
        CLI::App* const action = command->add_subcommand(name, description);
        action->callback(
            [&chosen, options, run] { chosen = [options, run](Session& session) { return run(session, *options); }; });
        return action;
    };
    const auto addKey = [&](CLI::App* action) { addText(*action, "KEY", options->key, "The setting")->required(); };

    add("list", "List all settings", [](Session& session, const PropertyOptions&) {
        return list(session);
    })->footer("With --json each line is a row with its stored columns.");
    addKey(add("get", "Show the value of one setting, as it is stored", get));
    CLI::App* const setting = add("set", "Add a setting or replace its value", set);
    addKey(setting);
    addText(*setting, "VALUE", options->value, "Its value; one that begins with - comes behind a -- of its own")
        ->required();
    addYes(*add("remove-all", "Remove all settings", removeAll), options->yes);
}

} // namespace dbservice
