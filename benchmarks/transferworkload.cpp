#include "transferworkload.h"

namespace benchmarks {

TransferWorkload::TransferWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_completed(completedTransfers(rows), folder),
      m_downloads(downloads(rows), folder),
      m_uploads(uploads(rows), folder),
      m_tasks(transferTasks(rows), folder)
{
}

std::vector<Operation> TransferWorkload::operations()
{
    std::vector<Operation> all;
    for (const std::vector<Operation>& some :
         {m_completed.operations(), m_downloads.operations(), m_uploads.operations(), m_tasks.operations()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

} // namespace benchmarks
