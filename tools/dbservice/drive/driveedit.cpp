#include "drive/driveedit.h"

#include "clientservices/globalparamwrapper.h"
#include "drive/drivefields.h"
#include "drive/drivemarkers.h"
#include "drive/pendinglist.h"
#include "stores/nameindexmark.h"
#include "stores/session.h"
#include "terminal/failure.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace dbservice {

using DatabaseService::DriveDataTable;

DriveEdit::DriveEdit(Session& session, std::string verb)
    : m_session(session),
      m_drive(session.editDrive()),
      m_tree(m_drive),
      m_verb(std::move(verb)),
      m_batchId(
          std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch())
              .count()),
      m_time(GlobalParamWrapper::GetInstance()->GetServerTime())
{
}

void DriveEdit::refuse(const std::string& path, const std::string& reason) const
{
    throw Failure("cannot " + m_verb + " " + path + ": " + reason);
}

DriveDataTable DriveEdit::rowToChange(const std::string& path)
{
    DriveDataTable row = m_tree.find(path);
    if (row.GetParentId().empty()) {
        refuse(path, "it is the root");
    }
    if (isInBin(row)) {
        refuse(path, "it is in the bin");
    }
    if (isDeleted(row)) {
        refuse(path, "it waits for its deletion; `dbservice restore` takes that back");
    }
    requireNothingAboveDeleted(row, path);
    return row;
}

DriveTree::Place DriveEdit::folderToFill(const std::string& folder, const std::string& path)
{
    DriveTree::Place place = m_tree.place(folder);
    if (!place.isFolder()) {
        refuse(path, (folder.empty() ? "/" : folder) + " is not a folder");
    }
    if (isDeleted(place.row)) {
        refuse(path, "the folder " + folder + " is deleted or waits for it");
    }
    requireNothingAboveDeleted(place.row, path);
    return place;
}

void DriveEdit::requireNothingAboveDeleted(const DriveDataTable& row, const std::string& path)
{
    for (const DriveDataTable& folder : m_tree.foldersToBe(row)) {
        if (isDeleted(folder)) {
            refuse(path, "the folder " + m_tree.pathsOf({folder}).front() + " above it is deleted or waits for it");
        }
    }
}

void DriveEdit::requireFreeName(const std::string& folderId, const std::string& name, const std::string& path)
{
    if (m_tree.isTaken(folderId, name)) {
        refuse(path, "the folder has something of the name " + name + ", or will have it after a pending move");
    }
}

void DriveEdit::write(Writer writer, const std::vector<Row>& rows)
{
    m_session.stopIfFailed(m_verb + " anything");
    NameIndexMark(m_session.storeFolder() / driveFileName).keepThrough([&] {
        (m_drive.*writer)(rows);
        return !m_session.hasTrouble();
    });
    std::vector<std::string> ids;
    for (const Row& row : rows) {
        ids.push_back(row.GetFileid());
        std::erase_if(m_written, [&](const Row& earlier) { return earlier.GetFileid() == row.GetFileid(); });
        m_written.push_back(row);
    }
    const std::vector<Row> stored = m_tree.rowsById(ids);
    m_session.stopIfFailed("confirm what was written");
    for (const Row& row : rows) {
        if (std::none_of(stored.begin(), stored.end(),
                         [wanted = toJson(row)](const Row& other) { return toJson(other) == wanted; })) {
            throw Failure("cannot confirm what was written: the row id:" + row.GetFileid() +
                          " is not as it should be; did another program write to it?");
        }
    }
}

void DriveEdit::show(const std::string& note)
{
    std::vector<PendingOperation> operations;
    for (const Row& row : m_written) {
        std::vector<Marker> markers = markersOf(row);
        std::erase_if(markers, [this](const Marker& marker) { return marker.batchId != m_batchId; });
        if (markers.empty()) {
            markers.push_back({"withdrawn", 0, 0, {}, {}});
        }
        for (const Marker& marker : markers) {
            operations.push_back({row, marker});
        }
    }
    showPending(m_session, m_tree, operations);
    m_session.reporter().note(note);
}

} // namespace dbservice
