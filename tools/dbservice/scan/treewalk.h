#pragma once

#include "scan/scanrecord.h"
#include "scan/sourcefolder.h"

#include <string>
#include <vector>

namespace dbservice {

class Session;

/// Goes down through the source folder by folder, as far as the caller wants, and shows how far it has come.
class TreeWalk {
public:
    struct Folder {
        NativeText path;
        std::string id;
        double share = 1; // of the whole work, for the progress
        std::vector<DiskEntry> entries;
    };

    /// Begins with the source itself.
    TreeWalk(Session& session, SourceFolder& source, ScanRecord& record);

    bool atEnd() const { return m_waiting.empty(); }
    /// Fills in the next folder with its entries. False for one that cannot be read: nothing below it is to be touched.
    bool next(Folder& folder);

    /// To be called once for each folder before any of its entries is entered: its subfolders take their shares of it,
    /// and the rest is done.
    void take(Folder& folder);
    /// Puts an entry on the list of folders to walk, if it is one.
    void enter(const Folder& parent, const DiskEntry& entry);
    /// All entries.
    void enter(const Folder& parent);

    void showProgress() const;

private:
    Session& m_session;
    SourceFolder& m_source;
    ScanRecord& m_record;
    std::vector<Folder> m_waiting;
    double m_done = 0;
};

} // namespace dbservice
