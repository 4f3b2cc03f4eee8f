#include "command.h"
#include "databaseservice/maindatabaseprovider.h"
#include "platform/text.h"
#include "stores/session.h"
#include "terminal/confirm.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <algorithm>
#include <iostream>

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

Json toJson(const std::wstring& key, const std::wstring& value)
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
    confirm(session.reporter(), "Remove " + properties + " from " + mainFileName + "?", options.yes);
    store::DeleteAllUserProperties();
    const int left = store::CountUserProperties();
    session.stopIfFailed("remove all properties");
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

Command propertiesCommand()
{
    const Argument key = text<&PropertyOptions::key>("KEY", "The setting", {.required = true});
    return {
        .name = "properties",
        .group = group::otherStores,
        .summary = "Show and change the client's settings in main.dat",
        .example = "dbservice properties list",
        .parts =
            {
                {
                    .name = "list",
                    .summary = "List all settings",
                    .details = "With --json each line is a row with its stored columns.",
                    .example = "dbservice --json properties list",
                    .run = list,
                },
                {
                    .name = "get",
                    .summary = "Show the value of one setting, as it is stored",
                    .arguments = {key},
                    .example = "dbservice properties get SyncCloudFolder",
                    .run = get,
                },
                {
                    .name = "set",
                    .summary = "Add a setting or replace its value",
                    .arguments = {key,
                                  text<&PropertyOptions::value>(
                                      "VALUE", "Its value; one that begins with - comes behind a -- of its own",
                                      {.required = true})},
                    .example = "dbservice properties set limit -- -1",
                    .run = set,
                },
                {
                    .name = "remove-all",
                    .summary = "Remove all settings",
                    .arguments = {argument<&PropertyOptions::yes>(yesFlag())},
                    .example = "dbservice properties remove-all --yes",
                    .run = removeAll,
                },
            },
    };
}

} // namespace dbservice
