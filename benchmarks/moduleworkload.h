#pragma once

#include "databaseservice/transferrecords.h"
#include "harness.h"
#include "tableworkload.h"
#include "transfertables.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

namespace benchmarks {

/// What the message threads cost: messages through an empty handler beside a plain queue with a mutex and a condition
/// variable, and posted updates of one row each beside the same commits by an expert.
class ModuleWorkload {
public:
    ModuleWorkload(std::size_t rows, const std::filesystem::path& folder);

    std::vector<Operation> operations();

    /// How long a call that posts holds up its caller, while the module is busy with what was posted before.
    struct Posting {
        std::size_t calls = 0;
        double median = 0; ///< seconds
        double percentile99 = 0;
    };
    Posting measurePosting();

private:
    Operation passingMessages();
    Operation updatingRowByRow();
    void openStore();

    std::size_t m_messages;
    std::filesystem::path m_folder;
    TableSubject<DatabaseService::TransmissionDB::DownloadTaskProperty> m_downloads;
    std::size_t m_handled = 0;
    std::function<void()> m_run;
    ExpertConnection m_expert{ExpertConnection::Kind::PerCall};
};

} // namespace benchmarks
