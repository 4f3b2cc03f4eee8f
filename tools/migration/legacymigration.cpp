#include "legacymigration.h"

#include "filelook.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "tablemove.h"
#include "tables.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace migration {

namespace {

/// A table of the legacy file, and a column by which it is told from a table of the same name in today's stores.
struct LegacyTable {
    std::string_view name;
    std::string_view ownColumn;
};

constexpr std::array legacyTables{
    LegacyTable{"GalleryFile", "CoverUniqueId"},
    LegacyTable{"AlbumLocalVersion", "AlbumVersion"},
    LegacyTable{"Album", "AlbumId"},
    LegacyTable{"DownloadTask", "RelativePath"},
    LegacyTable{"TransferCompleteCloudTask", "RelativePath"},
    LegacyTable{"UploadTask", "RelativePath"},
    LegacyTable{"UserProperties", "Id"},
    LegacyTable{"UserLog", "IsMaintenanceLog"},
    LegacyTable{"UBAUserLog", "IsMaintenanceLog"},
};

constexpr std::string_view unreachedLog = "UBAUserLog";

void requireReadable(FileLook& store, const fs::path& file)
{
    if (!store.isReadable()) {
        throw Error("the store's file " + platform::toUtf8(file.filename()) +
                    " cannot be read: it is no database, damaged or locked");
    }
}

std::optional<std::string> rememberedRun(FileLook& mainStore)
{
    std::optional<std::string> remembered;
    if (mainStore.hasTable("UserProperties")) {
        mainStore.scan("[Key],Value", "UserProperties", [&](sqlite3_stmt* stored) {
            if (Value::stored(stored, 1).text == platform::toUtf8(rememberedKey)) {
                remembered = Value::stored(stored, 2).text;
            }
        });
    }
    return remembered;
}

/// What the store remembers: words for whoever looks at the settings.
std::wstring summaryOf(const Report& report)
{
    int64 read = 0;
    int64 written = 0;
    for (const TableReport& table : report.tables) {
        read += table.read;
        written += table.written;
    }
    const auto seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    return L"time=" + std::to_wstring(seconds) + L" read=" + std::to_wstring(read) + L" written=" +
        std::to_wstring(written) + L" lost=" + std::to_wstring(report.lost);
}

/// One run after its checks.
class Run {
public:
    Run(const Plan& plan, const Progress& progress)
        : m_plan(plan),
          m_legacy(plan.legacyFile),
          m_main(plan.mainFile),
          m_gallery(plan.galleryFile),
          m_steps(progress, countAll())
    {
    }

    Report toTheEnd()
    {
        carry<GalleryFiles, AlbumVersions, Albums, DownloadTasks, CompletedTasks, UploadTasks, Settings, UserLogs>();
        if (!m_plan.skipUba) {
            carry<UbaLogs>();
            m_report.outOfReach = m_legacyRows[unreachedLog].value_or(0);
        }
        m_report.lost = m_report.outOfReach;
        for (const TableReport& table : m_report.tables) {
            m_report.lost += table.lost();
        }
        remember();
        for (std::size_t i = 0; i < m_report.tables.size(); ++i) {
            TableReport& table = m_report.tables[i];
            table.inStore = m_stores[i]->countRows(table.table).value_or(-1);
        }
        return std::move(m_report);
    }

private:
    int64 countAll()
    {
        int64 rows = 0;
        for (const LegacyTable& table : legacyTables) {
            const auto counted = m_legacyRows.emplace(table.name, m_legacy.countRows(table.name)).first->second;
            // One log is not read, and the other one twice.
            const int times = table.name == unreachedLog ? 0 : table.name == "UserLog" && !m_plan.skipUba ? 2 : 1;
            rows += times * counted.value_or(0);
        }
        return rows;
    }

    template <class... Tables> void carry() { (carryOne<Tables>(), ...); }

    template <class Table> void carryOne()
    {
        TableReport& report = m_report.tables.emplace_back();
        FileLook& store = *m_stores.emplace_back(Table::store == Store::Main ? &m_main : &m_gallery);
        if (!m_report.stopped.empty()) {
            report.legacyTable = Table::legacyTable;
            report.table = Table::table;
            report.inLegacy = m_legacyRows[Table::legacyTable].value_or(0);
            report.trouble = "not read, as the run had ended";
            return;
        }
        try {
            const bool taken =
                TableMove<Table>(m_plan, m_legacy, m_legacyRows[Table::legacyTable], store, m_steps, report).run();
            m_allTaken = m_allTaken && taken;
        } catch (const StoreFailure& failure) {
            m_report.stopped = failure.what();
        }
    }

    /// Last of all, so that a run that was interrupted is not remembered.
    void remember()
    {
        if (m_plan.dryRun || !m_allTaken || !m_report.stopped.empty()) {
            return;
        }
        const std::wstring value = summaryOf(m_report);
        mainstore::UpdateUserProperties(rememberedKey, value);
        m_report.remembered = mainstore::GetUserPropertieByKey(rememberedKey) == value;
    }

    const Plan& m_plan;
    FileLook m_legacy;
    FileLook m_main;
    FileLook m_gallery;
    std::map<std::string_view, std::optional<int64>> m_legacyRows;
    Steps m_steps;
    Report m_report;
    std::vector<FileLook*> m_stores; // of the report's tables
    bool m_allTaken = true;
};

/// Then pages may be missing in the file.
bool hasWriteAheadLog(fs::path file)
{
    std::error_code ignored;
    return fs::exists(file += "-wal", ignored);
}

bool isSameFile(const fs::path& file, const fs::path& other)
{
    std::error_code ignored;
    return fs::equivalent(file, other, ignored);
}

} // namespace

bool Report::isWhole() const
{
    return stopped.empty() && lost == 0 &&
        std::ranges::all_of(tables, [](const TableReport& table) { return table.trouble.empty(); });
}

void requireLegacyFile(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) {
        throw Error("there is no such file");
    }
    if (!fs::is_regular_file(status)) {
        throw Error("it is not a file");
    }
    const std::string text = platform::toUtf8(file);
    if (fs::path::preferred_separator == '/' && text.find('\\') != std::string::npos) {
        throw Error("its path holds a backslash, which the reader takes for the end of a folder");
    }
    if (fs::path(std::u8string(text.begin(), text.end())) != file) {
        throw Error("its path is not UTF-8");
    }
    FileLook look(file);
    // SQLite itself does not mind an end that lies within the last page.
    const auto bytes = look.number("SELECT page_count * page_size FROM pragma_page_count(), pragma_page_size()");
    const bool cut = bytes && fs::file_size(file) < static_cast<std::uintmax_t>(*bytes) && !hasWriteAheadLog(file);
    if (!look.isReadable() || cut) {
        throw Error("it is no database, damaged, cut short or locked");
    }
    bool any = false;
    for (const LegacyTable& table : legacyTables) {
        if (look.hasTable(table.name)) {
            any = true;
            if (!look.hasColumn(table.name, table.ownColumn)) {
                throw Error("its table " + std::string(table.name) + " lacks the column " +
                            std::string(table.ownColumn) +
                            ", so it comes from another program or is one of today's stores");
            }
        }
    }
    if (!any) {
        throw Error("it has none of the tables of the earlier client generation");
    }
}

bool isComplete(const fs::path& file)
{
    FileLook look(file);
    return std::ranges::all_of(legacyTables, [&](const LegacyTable& table) { return look.hasTable(table.name); });
}

Report run(const Plan& plan, const Progress& progress)
{
    requireLegacyFile(plan.legacyFile);
    for (const fs::path& store : {plan.mainFile, plan.galleryFile}) {
        if (isSameFile(plan.legacyFile, store)) {
            throw Error("it is the store's own file " + platform::toUtf8(store.filename()));
        }
        FileLook look(store);
        requireReadable(look, store);
    }
    FileLook mainStore(plan.mainFile);
    if (auto earlier = rememberedRun(mainStore); earlier && !plan.again) {
        Report report;
        report.earlierRun = std::move(earlier);
        return report;
    }
    // Its result is no more than whether tables could be laid down: a file that may not be written is read all the
    // same.
    V10::InitDB(platform::toWide(platform::toUtf8(plan.legacyFile)));
    if (!plan.dryRun) {
        mainstore::InitMainDatabase();
        gallery::InitGalleryDatabase(platform::toWide(platform::toUtf8(plan.galleryFile.filename())));
    }
    return Run(plan, progress).toTheEnd();
}

} // namespace migration
