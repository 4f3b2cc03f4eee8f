#include "command.h"
#include "commands/commands.h"
#include "platform/paths.h"
#include "stores/session.h"
#include "stores/storecheck.h"
#include "stores/storelook.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/json.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct CheckOptions {
    std::string path;
    bool repair = false;
};

class Report {
public:
    explicit Report(const Session& session) : m_session(session) { }

    void add(const fs::path& file, const Findings& findings)
    {
        ++m_files;
        for (const Finding& finding : findings) {
            ++m_count[static_cast<std::size_t>(finding.severity)];
            const std::string name = platform::toUtf8(file);
            if (m_session.json()) {
                std::cout << toLine({{"severity", word(finding.severity)},
                                     {"file", name},
                                     {"table", finding.table},
                                     {"key", finding.key},
                                     {"what", finding.what}})
                          << '\n';
            } else {
                std::cout << word(finding.severity) << ": " << printable(name)
                          << (finding.table.empty() ? "" : ": " + printable(finding.table))
                          << (finding.key.empty() ? "" : " " + inCell(finding.key)) << ": " << printable(finding.what)
                          << '\n';
            }
        }
    }

    void addRepair(const fs::path& file, const fs::path& copy) const
    {
        if (m_session.json()) {
            std::cout << toLine({{"repaired", platform::toUtf8(file)}, {"copy", platform::toUtf8(copy)}}) << '\n';
        } else {
            std::cout << "repaired: " << printable(platform::toUtf8(file)) << ": its indexes are made anew; as it was "
                      << "it is in " << printable(platform::toUtf8(copy)) << '\n';
        }
    }

    /// Gives the exit code.
    int end() const
    {
        const auto [errors, warnings, notes] = m_count;
        if (m_session.json()) {
            std::cout << toLine({{"errors", errors}, {"warnings", warnings}, {"notes", notes}, {"files", m_files}})
                      << '\n';
        } else {
            std::cout << counted(errors, "error", "errors") << ", " << counted(warnings, "warning", "warnings") << ", "
                      << counted(notes, "note", "notes") << " in " << counted(m_files, "file", "files") << '\n';
        }
        return errors > 0 ? failed : 0;
    }

private:
    const Session& m_session;
    std::array<std::int64_t, 3> m_count{}; ///< by severity
    std::int64_t m_files = 0;
};

int check(Session& session, const CheckOptions& options)
{
    Report report(session);
    int code = 0;
    for (const fs::path& file : storesMeant(session, options.path)) {
        Findings findings = checkStore(session, file);
        const bool mendable =
            std::any_of(findings.begin(), findings.end(), [](const Finding& finding) { return finding.mendable; });
        if (options.repair && mendable) {
            try {
                report.addRepair(file, makeIndexesAnew(file));
                findings = checkStore(session, file);
            } catch (const Failure& failure) {
                session.reporter().error(failure.what());
                code = failed;
            }
        }
        report.add(file, findings);
    }
    return std::max(code, report.end());
}

} // namespace

Command checkCommand()
{
    return {
        .name = "check",
        .group = group::stores,
        .summary = "Look for damage in store files and for rows that make no sense",
        .arguments =
            {argument<&CheckOptions::path>("PATH",
                                           "A database file, whatever it is called, or a folder, of which every file "
                                           "is meant that ends in .dat; without it the store's folder"),
             argument<&CheckOptions::repair>("--repair",
                                             "Make indexes anew that are missing, damaged or in another order, after "
                                             "a copy of the file beside it; nothing else changes")},
        .details = "A line tells each finding: an error where the library reads or writes something else than was "
                   "meant, a warning\nwhere rows are not found or work waits for ever, a note for what is good to "
                   "know. The first rows of a kind\nare told one by one. The exit code is 1 with errors, and 0 with "
                   "warnings and notes alone.\nWhat is damaged beyond its indexes: `dbservice recover`.",
        .example = "dbservice check ~/from-a-user",
        .run = check,
    };
}

} // namespace dbservice
