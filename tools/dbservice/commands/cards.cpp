#include "command.h"
#include "stores/session.h"
#include "stores/tablelist.h"

namespace dbservice {

namespace {

int cards(Session& session, const TablePage& page)
{
    const std::vector<ListedTable> tables{{"T_NotepadCard", {{"key"}, {"value"}}, "key"},
                                          {"T_WaitHandleCardItem", {{"key"}, {"value"}}, "key"}};
    listTables(session, session.openToRead(session.storeFolder() / mainFileName), tables, page);
    return 0;
}

} // namespace

Command cardsCommand()
{
    return {
        .name = "cards",
        .group = group::otherStores,
        .summary = "List the cards in main.dat",
        .arguments = tablePageOptions(),
        .details = "Notes and what waits to be dealt with, T_NotepadCard and T_WaitHandleCardItem, a page of each. A "
                   "value is in\n"
                   "a form of the client's own. With --json each line is a row with its table and all stored columns.",
        .example = "dbservice cards",
        .run = cards,
    };
}

} // namespace dbservice
