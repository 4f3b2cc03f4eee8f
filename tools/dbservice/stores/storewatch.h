#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace dbservice {

/// Hears what SQLite meets in the files of every connection of this process, the library's own too. The library
/// answers a failed step with what came before it, and waits for a locked file without end; this knows of both.
///
/// It stands between SQLite and the system's files. A lock that is refused for longer than the limit fails at once from
/// then on, so that the library gives up. So does the reading of a page that holds only zeros: the end of a long
/// value would pass for text. Views are refused, since what a store keeps lies in tables, and so is a name between
/// double quotes that is no column, which SQLite would take for text. A statement that goes on far beyond what the
/// size of its file explains is ended, since a file may bring a trigger without an end.
///
/// Threads: any, but for `begin` and `end`.
class StoreWatch {
public:
    /// What makes the answers of a run worthless.
    struct Fault {
        std::filesystem::path file; ///< empty if unknown
        std::string reason;
        bool isLock = false; ///< another program has locked the file
    };

    /// The watch of this process. The first call comes ahead of any other use of SQLite. Throws where that cannot be
    /// set up.
    static StoreWatch& instance();

    /// A run begins, without a fault. From here on a refused lock is waited for as long as `limit`. `onWait` is called
    /// once for each wait that a person would notice, on the thread that waits.
    void begin(std::chrono::milliseconds limit, std::function<void(const std::filesystem::path&)> onWait);
    /// `onWait` is not called any more.
    void end();

    /// The first one, if there was any.
    std::optional<Fault> fault() const;
    /// Adds what somebody else found.
    void report(const Fault& fault);

    /// As long as one stands, pages are copied and not read: one that holds only zeros is no fault, since it may be
    /// unused.
    class CopiesPages {
    public:
        CopiesPages();
        CopiesPages(const CopiesPages&) = delete;
        CopiesPages& operator=(const CopiesPages&) = delete;
        ~CopiesPages();
    };

    /// What SQLite last said on this thread, whether the run can bear it or not, such as "no such column: x".
    static Fault lastComplaint();
    /// A message of SQLite's with what its words leave out.
    static std::string explained(const std::string& message);

    struct Impl;

    /// While one lives, what is met on its thread is kept here and does not make the run's answers worthless: for a
    /// command that looks at damaged files on purpose. One at a time.
    class Bearing {
    public:
        Bearing();
        Bearing(const Bearing&) = delete;
        Bearing& operator=(const Bearing&) = delete;
        ~Bearing();

        /// The first one, if there was any.
        const std::optional<Fault>& fault() const { return m_fault; }

    private:
        friend struct StoreWatch::Impl;

        std::optional<Fault> m_fault;
    };

private:
    StoreWatch();

    Impl& m_impl;
};

} // namespace dbservice
