#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/maindatabaseproviderbase.h"
#include "databaseservice/tables/maincolumns.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace DatabaseService {

namespace {

constexpr auto allColumns = pick(UserPropertiesColumns::table, UserPropertiesColumns::All);

const Statement<UserProperties>& replaceProperty()
{
    static const auto& replace = neverDestroyed(Statement<UserProperties>{
        "INSERT OR REPLACE INTO UserProperties ([Key],[Value]) VALUES (:Key,:Value);", parametersOf(allColumns)});
    return replace;
}

const Statement<UserProperties>& insertProperty()
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UserProperties (", allColumns));
    return insert;
}

} // namespace

std::vector<UserProperties> MainDatabaseProviderBase::GetAllUserProperties()
{
    std::vector<UserProperties> properties;
    readRecords(*this, "SELECT \"Key\",\n       Value\n  FROM UserProperties;\n", nullptr, allColumns, properties);
    const auto syncFolder = std::ranges::find(properties, UserProperties::syncCloudFolderKey, &UserProperties::key);
    if (syncFolder != properties.end()) {
        if (auto longName = platform::longPathName(syncFolder->value)) {
            syncFolder->value = std::move(*longName);
        }
    }
    return properties;
}

std::wstring MainDatabaseProviderBase::GetUserPropertieByKey(const std::wstring& key)
{
    static const auto& select = neverDestroyed(statementOf<std::wstring>(
        "SELECT\n        Value\n        FROM UserProperties\n        WHERE Key = :Key;\n", ":Key"));
    auto bound = oneValue(select, key);
    FirstCell value;
    run(*this, {.sql = select.sql, .elements = &bound, .rows = &value});
    return platform::toWide(value.text());
}

void MainDatabaseProviderBase::UpdateUserProperties(const std::wstring& key, const std::wstring& value)
{
    writeRecords(*this, replaceProperty(), std::vector{UserProperties{key, value}});
}

void MainDatabaseProviderBase::UpdateUserProperties(std::vector<UserProperties>& properties)
{
    writeRecords(*this, replaceProperty(), properties);
}

void MainDatabaseProviderBase::InsertUserProperties(const std::wstring& key, const std::wstring& value)
{
    writeRecords(*this, insertProperty(), std::vector{UserProperties{key, value}});
}

void MainDatabaseProviderBase::InsertUserProperties(std::vector<UserProperties>& properties)
{
    writeRecords(*this, insertProperty(), properties);
}

void MainDatabaseProviderBase::DeleteAllUserProperties()
{
    Execute("DELETE FROM UserProperties;");
}

int MainDatabaseProviderBase::CountUserProperties()
{
    return static_cast<int>(readNumber(*this, "SELECT COUNT(*) FROM UserProperties;"));
}

} // namespace DatabaseService
