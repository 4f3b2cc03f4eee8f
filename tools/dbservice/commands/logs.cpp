#include "command.h"
#include "stores/session.h"
#include "stores/tablelist.h"

namespace dbservice {

namespace {

int logs(Session& session, const TablePage& page)
{
    const std::vector<ListedTable::Column> columns{
        {"id"},      {"time"},  {"action"}, {"code"}, {"info"}, {"useTime"}, {"startTime", Shown::Time},
        {"traceId"}, {"extend"}};
    const std::vector<ListedTable> tables{{"UserLogTable", columns, "id DESC"}, {"UBAUserLog", columns, "id DESC"}};
    listTables(session, session.openToRead(session.storeFolder() / mainFileName), tables, page);
    return 0;
}

} // namespace

Command logsCommand()
{
    return {
        .name = "logs",
        .group = group::otherStores,
        .summary = "List the records of usage in main.dat that wait to be sent, the newest first",
        .arguments = tablePageOptions(),
        .details =
            "Both tables of them, UserLogTable and UBAUserLog, a page of each. The values are the client's own.\n"
            "With --json each line is a row with its table and all stored columns.",
        .example = "dbservice logs --count 20",
        .run = logs,
    };
}

} // namespace dbservice
