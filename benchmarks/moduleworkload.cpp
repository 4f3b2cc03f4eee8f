#include "moduleworkload.h"

#include "clientservices/globalparamwrapper.h"
#include "clientservices/modulebase.h"
#include "databaseservice/transmissiondbmodule.h"
#include "expertcells.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace benchmarks {

using DatabaseService::TransmissionDB::DownloadTaskProperty;
using DatabaseService::TransmissionDB::TransmissionDBModule;

namespace {

constexpr std::size_t posters = 4;

// Modules are made once in a client; here each round has its own.
class OwnModule final : public TransmissionDBModule {
public:
    OwnModule() = default;
    ~OwnModule() override { StopWork(); }
};

class EmptyHandler final : public TessixDeskClient::ModuleBase {
public:
    explicit EmptyHandler(std::size_t& handled)
        : m_message(BindMessage([&handled](std::uint64_t, std::int64_t) { ++handled; }))
    {
        CreateThread("messages", 0, 0, nullptr);
    }

    void post(std::size_t number) { TryPostThreadMessage(m_message, 0, static_cast<std::int64_t>(number)); }
    void stop() { StopWork(); }

private:
    unsigned m_message;
};

// What one would write who needs no more than a queue.
class PlainQueue final {
public:
    explicit PlainQueue(std::size_t& handled) : m_thread([this, &handled] { run(handled); }) { }

    void post(std::size_t number)
    {
        const std::lock_guard lock(m_mutex);
        m_queue.emplace_back(1, number);
        m_filled.notify_one();
    }

    void stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_queue.emplace_back(quit, 0);
            m_filled.notify_one();
        }
        m_thread.join();
    }

private:
    static constexpr unsigned quit = 0;

    void run(std::size_t& handled)
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            m_filled.wait(lock, [this] { return !m_queue.empty(); });
            const auto [message, number] = m_queue.front();
            m_queue.pop_front();
            if (message == quit) {
                return;
            }
            lock.unlock();
            ++handled;
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_filled;
    std::deque<std::pair<unsigned, std::size_t>> m_queue;
    std::thread m_thread;
};

template <class Queue> void passMessages(std::size_t messages, std::size_t& handled)
{
    Queue queue(handled);
    std::vector<std::thread> threads;
    for (std::size_t poster = 0; poster < posters; ++poster) {
        threads.emplace_back([&queue, share = messages / posters] {
            for (std::size_t number = 0; number < share; ++number) {
                queue.post(number);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    queue.stop();
}

std::vector<std::shared_ptr<DownloadTaskProperty>> copiesOf(const std::vector<DownloadTaskProperty>& records)
{
    std::vector<std::shared_ptr<DownloadTaskProperty>> copies;
    copies.reserve(records.size());
    for (const DownloadTaskProperty& record : records) {
        copies.push_back(std::make_shared<DownloadTaskProperty>(record));
    }
    return copies;
}

} // namespace

ModuleWorkload::ModuleWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_messages(std::max<std::size_t>(rows, 20'000)),
      m_folder(folder / "module"),
      m_downloads(downloads(std::min<std::size_t>(rows, 2000)))
{
}

std::vector<Operation> ModuleWorkload::operations()
{
    return {passingMessages(), updatingRowByRow()};
}

Operation ModuleWorkload::passingMessages()
{
    const auto contender = [this](const char* name, void (*pass)(std::size_t, std::size_t&)) {
        return Contender{name, [this] { m_handled = 0; }, [this, pass] { pass(m_messages, m_handled); },
                         [this] {
                             if (m_handled != m_messages / posters * posters) {
                                 throw std::runtime_error(fmt::format("{} messages were handled", m_handled));
                             }
                             return m_handled;
                         }};
    };
    return {"messages",
            fmt::format("{} messages, {} posters", m_messages / posters * posters, posters),
            1.5,
            {contender("library", &passMessages<EmptyHandler>), contender("plain queue", &passMessages<PlainQueue>)},
            {}};
}

void ModuleWorkload::openStore()
{
    std::filesystem::remove_all(m_folder);
    std::filesystem::create_directory(m_folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(m_folder.generic_wstring());
    m_downloads.create();
    m_downloads.insert(m_downloads.records)();
    m_expert.open(m_folder / m_downloads.file);
}

Operation ModuleWorkload::updatingRowByRow()
{
    const auto library = [this] {
        return [module = std::make_shared<OwnModule>(), tasks = copiesOf(m_downloads.changed)] {
            for (const std::shared_ptr<DownloadTaskProperty>& task : tasks) {
                module->UpdateDownloadTask(task);
            }
            module->StopWork();
        };
    };
    const auto expert = [this] {
        return [this] {
            for (const DownloadTaskProperty& task : m_downloads.changed) {
                m_expert.transaction("BEGIN IMMEDIATE;", m_downloads.updateText, [&](sqlite3_stmt* stmt) {
                    m_expert.runForEach(stmt, std::vector{&task}, [](sqlite3_stmt* one, const auto* record) {
                        constexpr int last = std::tuple_size_v<decltype(membersOf(*record))>;
                        return bindAll(one, withoutFirst(membersOf(*record))) && bindCell(one, last, record->id);
                    });
                });
            }
        };
    };
    const auto contender = [this](const char* name, const std::function<std::function<void()>()>& make) {
        return Contender{name,
                         [this, make] {
                             openStore();
                             m_run = make();
                         },
                         [this] { m_run(); },
                         [this] {
                             m_run = nullptr;
                             const auto rows = m_downloads.readAll();
                             if (!sameRecords(rows, m_downloads.changed)) {
                                 throw std::runtime_error("the rows are not those that were posted");
                             }
                             return rows.size();
                         }};
    };
    return {"posted-updates",
            fmt::format("{} posted updates, a commit each", m_downloads.changed.size()),
            1.10,
            {contender("library", library), contender("expert", expert)},
            {}};
}

ModuleWorkload::Posting ModuleWorkload::measurePosting()
{
    openStore();
    std::vector<double> seconds;
    OwnModule module;
    for (const std::shared_ptr<DownloadTaskProperty>& task : copiesOf(m_downloads.changed)) {
        const auto begin = std::chrono::steady_clock::now();
        module.UpdateDownloadTask(task);
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    module.StopWork();
    std::sort(seconds.begin(), seconds.end());
    return {seconds.size(), seconds[seconds.size() / 2], seconds[seconds.size() * 99 / 100]};
}

} // namespace benchmarks
