#include "scan/diskvalues.h"

#include "drive/fileclass.h"

#include <cstring>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

void put(const DiskValues& values, DriveDataTable& row)
{
    row.SetName(std::string(values.name));
    row.SetMimeType(std::string(values.mimeType));
    row.SetSize(values.size);
    row.SetContentVersion(std::string(values.contentVersion));
    row.SetParentId(std::string(values.parentId));
    row.SetCreatedTime(values.created);
    row.SetModifiedTime(values.modified);
    row.SetFileExtSign(values.extensionSign);
    row.SetClassIndex(values.classIndex);
}

bool holds(const DriveDataTable& row, const DiskValues& values)
{
    return row.GetName() == values.name && row.GetMimeType() == values.mimeType && row.GetSize() == values.size &&
        row.GetContentVersion() == values.contentVersion && row.GetParentId() == values.parentId &&
        row.GetCreatedTime() == values.created && row.GetModifiedTime() == values.modified &&
        row.GetFileExtSign() == values.extensionSign && row.GetClassIndex() == values.classIndex;
}

void append(std::string& bytes, std::int64_t number)
{
    const std::size_t end = bytes.size();
    bytes.resize(end + sizeof number);
    std::memcpy(bytes.data() + end, &number, sizeof number);
}

} // namespace

DiskValues valuesOf(const DiskEntry& entry, std::string_view parentId, MadeUpTexts& texts)
{
    texts.id = entry.id();
    // In nanoseconds, so that a change within one second is seen.
    texts.contentVersion = std::to_string(entry.status.modifiedNanoseconds);
    DiskValues values;
    values.id = texts.id;
    values.name = entry.shownName;
    values.mimeType = entry.mimeType;
    values.contentVersion = texts.contentVersion;
    values.parentId = parentId;
    values.size = entry.status.size;
    values.created = wholeSeconds(entry.status.createdNanoseconds);
    values.modified = wholeSeconds(entry.status.modifiedNanoseconds);
    values.extensionSign = extensionSign(entry.group);
    values.classIndex = static_cast<std::int32_t>(entry.isFolder() ? FileClass::Folder : classOf(entry.group));
    return values;
}

DriveDataTable newRow(const DiskEntry& entry, std::string_view parentId, const std::string& path)
{
    MadeUpTexts texts;
    const DiskValues values = valuesOf(entry, parentId, texts);
    DriveDataTable row;
    row.SetFileid(texts.id);
    put(values, row);
    row.SetLocalAbsolutePath(path);
    row.SetCloudContentStatus(1);
    return row;
}

bool update(DriveDataTable& row, const DiskEntry& entry, std::string_view parentId)
{
    MadeUpTexts texts;
    DiskValues values = valuesOf(entry, parentId, texts);
    std::string waiting;
    if (row.GetRenameBatchId() != 0) {
        waiting = row.GetName();
        values.name = waiting;
    }
    if (holds(row, values)) {
        return false;
    }
    put(values, row);
    return true;
}

Digest digestOf(const DiskValues& values, std::string& scratch)
{
    scratch.clear();
    for (const std::string_view text :
         {values.id, values.name, values.mimeType, values.contentVersion, values.parentId}) {
        append(scratch, static_cast<std::int64_t>(text.size()));
        scratch += text;
    }
    for (const std::int64_t number : {values.size, values.created, values.modified, std::int64_t{values.extensionSign},
                                      std::int64_t{values.classIndex}}) {
        append(scratch, number);
    }
    return digestOf(scratch);
}

} // namespace dbservice
