#include "command.h"
#include "databaseservice/version.h"
#include "drive/drivefields.h"
#include "stores/nameindex.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <iostream>

namespace dbservice {

namespace {

int reindex(Session& session)
{
    DatabaseService::DriverDBProvider& drive = session.mendDrive();
    const NameIndex before = examineNameIndex();
    session.stopIfFailed("look at the index of names");
    if (before == NameIndex::Absent) {
        throw Failure("cannot rebuild the index of names: the store has none; `dbservice init` makes it");
    }
    rebuildNameIndex(drive);
    session.stopIfFailed("rebuild the index of names");
    if (examineNameIndex() != NameIndex::Agrees) {
        throw Failure("cannot rebuild the index of names: it is still in another order");
    }
    const bool agreed = before == NameIndex::Agrees;
    const int rows = drive.CountDriverData();
    if (session.json()) {
        std::cout << toLine({{"index", "nameIndex"},
                             {"rows", rows},
                             {"order", DatabaseService::NameOrderVersion()},
                             {"agreedBefore", agreed}})
                  << '\n';
    } else {
        std::cout << "nameIndex: rebuilt with " << counted(rows, "row", "rows") << " in the order "
                  << DatabaseService::NameOrderVersion()
                  << (agreed ? ", in which it was before" : "; it was in another order before") << '\n';
    }
    return 0;
}

} // namespace

Command reindexCommand()
{
    return {
        .name = "reindex",
        .group = group::stores,
        .summary = "Bring the stored index of names into this build's order",
        .details =
            "For a store that was written on another system, or by a build with another order of names. From then "
            "on\nthe builds with that order must not write to it any more.",
        .example = "dbservice reindex",
        .run = reindex,
    };
}

} // namespace dbservice
