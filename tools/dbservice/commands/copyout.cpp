#include "command.h"
#include "platform/paths.h"
#include "stores/databasefiles.h"
#include "stores/session.h"
#include "stores/storecopy.h"
#include "stores/temporaryfolder.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/json.h"
#include "terminal/table.h"

#include <algorithm>
#include <iostream>
#include <random>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct CopyOptions {
    std::string destination;
    bool redact = false;
};

struct Copied {
    fs::path file;
    fs::path copy;
};

/// A folder beside the destination, which takes its place when all is well, and is removed otherwise.
class NewFolder {
public:
    explicit NewFolder(const fs::path& destination) : m_destination(destination), m_path(destination)
    {
        std::error_code error;
        if (fs::exists(fs::symlink_status(destination, error))) {
            throw Failure("cannot copy to " + platform::toUtf8(destination) +
                          ": it is there already; name a folder that is not");
        }
        m_path += ".part" + std::to_string(std::random_device()());
        if (!fs::create_directory(m_path, error)) {
            throw Failure("cannot make the folder " + platform::toUtf8(m_path) + ": " + error.message());
        }
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;
    ~NewFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    const fs::path& path() const { return m_path; }

    void takePlace()
    {
        std::error_code error;
        fs::rename(m_path, m_destination, error);
        if (error) {
            throw Failure("cannot name the copy " + platform::toUtf8(m_destination) + ": " + error.message());
        }
    }

private:
    fs::path m_destination;
    fs::path m_path;
};

bool isNamedByClient(const fs::path& name)
{
    return std::find(storeFileNames.begin(), storeFileNames.end(), platform::toUtf8(name)) == storeFileNames.end();
}

std::vector<Copied> copyRedacted(Session& session, const std::vector<fs::path>& names, const fs::path& target)
{
    const TemporaryFolder plain;
    const auto numbered = [&](std::size_t i) { return plain.path() / (std::to_string(i) + ".dat"); };
    Pseudonyms pseudonyms;
    for (std::size_t i = 0; i < names.size(); ++i) {
        copyDatabase(session, session.storeFolder() / names[i], numbered(i));
        Database copy(numbered(i), Database::Access::Read, platform::toUtf8(names[i]));
        addTexts(copy, pseudonyms);
    }
    pseudonyms.assign();
    std::vector<Copied> copied;
    int galleries = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        copied.push_back({names[i], names[i]});
        if (isNamedByClient(names[i])) {
            copied.back().copy = "gallery" + std::to_string(++galleries) + ".dat";
        }
        writeRedacted(numbered(i), target / copied.back().copy, pseudonyms, platform::toUtf8(names[i]));
    }
    return copied;
}

std::vector<Copied> copyPlain(Session& session, const std::vector<fs::path>& names, const fs::path& target)
{
    std::vector<Copied> copied;
    for (const fs::path& name : names) {
        copyDatabase(session, session.storeFolder() / name, target / name);
        copied.push_back({name, name});
    }
    return copied;
}

int copyOut(Session& session, const CopyOptions& options)
{
    const fs::path destination = fs::absolute(pathFromArgument(options.destination)).lexically_normal();
    session.nameInWarnings("the stores");
    const std::vector<fs::path> names = databaseFilesIn(session.storeFolder());
    int code = 0;
    for (const std::string_view store : storeFileNames) {
        std::error_code ignored;
        if (fs::exists(session.storeFolder() / store, ignored) &&
            std::find(names.begin(), names.end(), fs::path(store)) == names.end()) {
            session.reporter().error("cannot copy " + std::string(store) + ": it is empty or no database");
            code = failed;
        }
    }
    if (names.empty()) {
        throw Failure("cannot copy the stores: " + platform::toUtf8(session.storeFolder()) +
                      " holds no databases; --folder names the folder of the stores");
    }
    NewFolder made(destination.has_filename() ? destination : destination.parent_path());
    const std::vector<Copied> copied = (options.redact ? copyRedacted : copyPlain)(session, names, made.path());
    session.stopIfFailed("copy the stores");
    Table table({{"File"}, {"Copy"}, {"Bytes", Table::Align::Right}});
    for (const auto& [file, copy] : copied) {
        const auto bytes = static_cast<std::int64_t>(fs::file_size(made.path() / copy));
        table.add({platform::toUtf8(file), platform::toUtf8(copy), grouped(bytes)});
        if (session.json()) {
            std::cout << toLine({{"file", platform::toUtf8(file)}, {"copy", platform::toUtf8(copy)}, {"bytes", bytes}})
                      << '\n';
        }
    }
    made.takePlace();
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
    return code;
}

} // namespace

Command copyoutCommand()
{
    return {
        .name = "copy-out",
        .group = group::stores,
        .summary = "Copy all stores of the folder while the client works, so that somebody else may look",
        .arguments = {argument<&CopyOptions::destination>("DEST", "The folder for the copies; it may not be there yet",
                                                          {.required = true}),
                      argument<&CopyOptions::redact>("--redact",
                                                     "Replace names, paths, ids and all other texts by pseudonyms")},
        .details =
            "Each file is copied as it is between two changes; whoever writes to it waits meanwhile.\n"
            "With --redact the same text becomes the same pseudonym in all files, so that the tree holds together. A\n"
            "pseudonym keeps the place in the order of names, the script of the first letter, capitals, whether the\n"
            "text is up to 8, 16, 32 ... characters long, and a known extension. It is random in all else, and "
            "another\n"
            "one in the next copy. Numbers and times stay, and so do mime types, drive#file, drive#folder, root and\n"
            "SyncCloudFolder, and the schema. Galleries become gallery1.dat and so on.\n"
            "Not even unused parts of the files hold the texts, since those have never been in them.",
        .example = "dbservice copy-out ~/for-support --redact",
        .run = copyOut,
    };
}

} // namespace dbservice
