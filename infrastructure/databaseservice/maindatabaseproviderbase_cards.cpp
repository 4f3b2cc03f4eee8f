#include "databaseservice/engine/recordio.h"
#include "databaseservice/maindatabaseproviderbase.h"
#include "databaseservice/tables/maincolumns.h"

#include <utility>

namespace DatabaseService {

namespace {

template <class Card> constexpr auto cardColumns = pick(CardColumns<Card>::table, CardColumns<Card>::All);

} // namespace

void MainDatabaseProviderBase::InsertWaitHandleCardItem(int key, std::string value)
{
    static const auto& replace = neverDestroyed(Statement<T_WaitHandleCardItem>{
        "INSERT OR REPLACE INTO T_WaitHandleCardItem ([key],value)VALUES (:key,:value);",
        parametersOf(cardColumns<T_WaitHandleCardItem>)});
    writeRecords(*this, replace, std::vector{T_WaitHandleCardItem{key, std::move(value)}});
}

void MainDatabaseProviderBase::InsertNotepadCardItem(int key, std::string value)
{
    static const auto& replace = neverDestroyed(Statement<T_NotepadCard>{
        "INSERT OR REPLACE INTO T_NotepadCard ([key],value)\n                         VALUES (:key,:value);",
        parametersOf(cardColumns<T_NotepadCard>)});
    writeRecords(*this, replace, std::vector{T_NotepadCard{key, std::move(value)}});
}

void MainDatabaseProviderBase::RemoveWaitHandleCardItem()
{
    Execute("DELETE FROM T_WaitHandleCardItem");
}

void MainDatabaseProviderBase::RemoveNotepadCardItem()
{
    Execute("DELETE FROM T_NotepadCard");
}

void MainDatabaseProviderBase::GetWaitHandleCardItem(std::vector<T_WaitHandleCardItem>& items)
{
    readRecords(*this, "SELECT [key], value FROM T_WaitHandleCardItem;", nullptr, cardColumns<T_WaitHandleCardItem>,
                items);
}

void MainDatabaseProviderBase::GetNotepadCardItem(std::vector<T_NotepadCard>& items)
{
    readRecords(*this, "SELECT [key], value FROM T_NotepadCard;", nullptr, cardColumns<T_NotepadCard>, items);
}

} // namespace DatabaseService
