#include "command.h"
#include "stores/session.h"
#include "stores/tablelist.h"

namespace dbservice {

namespace {

int changes(Session& session, const TablePage& page)
{
    const std::vector<ListedTable> tables{{"T_CloudFileTable",
                                           {{"id"},
                                            {"changeType"},
                                            {"deleted"},
                                            {"fileName"},
                                            {"localFileName"},
                                            {"size"},
                                            {"modifiedTime", Shown::Time},
                                            {"localModifiedTime", Shown::Time},
                                            {"status"},
                                            {"fileStatus"},
                                            {"fileId"},
                                            {"parentId"}},
                                           "id DESC"}};
    listTables(session, session.openToRead(session.storeFolder() / mainFileName), tables, page);
    return 0;
}

} // namespace

Command changesCommand()
{
    return {
        .name = "changes",
        .group = group::otherStores,
        .summary = "List the changes in the cloud drive that main.dat keeps, the newest first",
        .arguments = tablePageOptions(),
        .details = "What the cloud says of a file beside what this computer has. The values are the client's own.\n"
                   "With --json each line is a row with its table and all stored columns.",
        .example = "dbservice changes --offset 100",
        .run = changes,
    };
}

} // namespace dbservice
