#include "stores/newfile.h"

#include "platform/paths.h"
#include "terminal/failure.h"

#include <random>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

void requireFree(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(file, error);
    if (!fs::status_known(status)) {
        throw Failure("cannot make " + platform::toUtf8(file) + ": " + error.message());
    }
    if (fs::exists(status)) {
        throw Failure("cannot make " + platform::toUtf8(file) +
                      ": something of that name is there already, and nothing is overwritten");
    }
}

} // namespace

NewFile::NewFile(const fs::path& name)
    : m_name(name),
      m_partial(fs::path(name) += ".partial" + std::to_string(std::random_device()()))
{
    requireFree(m_name);
    requireFree(m_partial);
}

NewFile::~NewFile()
{
    std::error_code ignored;
    fs::remove(m_partial, ignored);
    fs::remove(fs::path(m_partial) += "-journal", ignored);
}

void NewFile::giveName() const
{
    std::error_code error;
    fs::create_hard_link(m_partial, m_name, error); // fails where the name has been taken meanwhile
    if (error) {                                    // or where the disk knows no such thing
        requireFree(m_name);
        fs::rename(m_partial, m_name, error);
    }
    if (error) {
        throw Failure("cannot make " + platform::toUtf8(m_name) + ": " + error.message());
    }
}

} // namespace dbservice
