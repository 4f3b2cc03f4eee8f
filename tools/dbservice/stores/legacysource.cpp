#include "stores/legacysource.h"

#include "migration/legacymigration.h"
#include "platform/paths.h"
#include "terminal/failure.h"

#include <fstream>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

bool isWritable(const fs::path& file)
{
    return std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).is_open();
}

} // namespace

LegacySource::LegacySource(const fs::path& file)
{
    const fs::path folder = file.parent_path();
    const fs::path name = file.filename();
    m_readable.emplace(folder, name, ReadableStore::Copy::WhereNeeded, "the legacy file");
    m_file = m_readable->folder() / name;
    try {
        migration::requireLegacyFile(m_file);
    } catch (const migration::Error& error) {
        throw Failure("cannot migrate " + platform::toUtf8(file) + ": " + error.what());
    }
    if (m_readable->folder() == folder && (!migration::isComplete(file) || !isWritable(file))) {
        m_readable.emplace(folder, name, ReadableStore::Copy::Always, "the legacy file");
        m_file = m_readable->folder() / name;
    }
}

} // namespace dbservice
