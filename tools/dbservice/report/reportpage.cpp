#include "report/reportpage.h"

#include "report/html.h"
#include "report/pagetexts.h"
#include "terminal/displaytext.h"
#include "terminal/json.h"

#include <algorithm>
#include <array>
#include <limits>
#include <ostream>
#include <random>
#include <string_view>

namespace dbservice {

namespace {

constexpr std::size_t shownOperations = 100;

std::string cell(const std::string& text)
{
    return "<td class=\"text\">" + escaped(text) + "</td>";
}

std::string numberCell(const std::string& text)
{
    return "<td class=\"number\">" + escaped(text) + "</td>";
}

std::string files(std::int64_t count)
{
    return counted(count, "file", "files");
}

/// What no text of the page can know.
std::string randomWord()
{
    std::random_device random;
    return std::to_string(random()) + std::to_string(random());
}

class Page {
public:
    Page(const Report& report, std::ostream& out) : m_report(report), m_out(out) { }

    void write()
    {
        const std::string nonce = randomWord();
        m_out
            << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            << R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; )"
            << "script-src 'nonce-" << nonce << "'\">\n"
            << "<title>Stores in " << escaped(m_report.folder) << "</title>\n<style>\n"
            << pageStyle << "</style>\n</head>\n<body>\n<header>\n<h1>Stores in " << escaped(m_report.folder)
            << "</h1>\n<p class=\"quiet\">As of " << humanTime(m_report.time) << " UTC, by "
            << escaped(m_report.versions) << ".</p>\n</header>\n<main>\n";
        writeFindings();
        writeStores();
        if (m_report.drive) {
            writeDrive(*m_report.drive);
        }
        writePending();
        writeTransfers();
        m_out << "</main>\n";
        if (m_report.drive && !m_report.drive->entries.empty()) {
            m_out << R"(<script type="application/json" id="entries">)" << inScript(toLine(entries(*m_report.drive)))
                  << "</script>\n<script nonce=\"" << nonce << "\">\n"
                  << pageScript << "</script>\n";
        }
        m_out << "</body>\n</html>\n";
    }

private:
    void writeFindings()
    {
        m_out << "<h2>Findings</h2>\n";
        if (std::ranges::all_of(m_report.checked, [](const auto& checked) { return checked.findings.empty(); })) {
            m_out << "<p>Nothing is wrong with these files.</p>\n";
            return;
        }
        m_out << "<table>\n";
        for (const auto& [file, findings] : m_report.checked) {
            for (const Finding& finding : findings) {
                const std::string severity = word(finding.severity);
                m_out << "<tr><td class=\"" << severity << "\">" << severity << "</td>" << cell(file)
                      << cell(finding.table + (finding.key.empty() ? "" : " " + inCell(finding.key)))
                      << cell(finding.what) << "</tr>\n";
            }
        }
        m_out << "</table>\n";
    }

    void writeStores()
    {
        m_out << "<h2>Files</h2>\n<div class=\"columns\">\n";
        for (const Report::Store& store : m_report.stores) {
            m_out << "<section>\n<h3>" << escaped(store.file) << "</h3>\n<p class=\"quiet\">" << escaped(store.kind)
                  << ", " << humanSize(store.bytes) << "</p>\n";
            if (!store.trouble.empty()) {
                m_out << "<p class=\"error\">" << escaped(store.trouble) << "</p>\n";
            }
            std::int64_t most = 1;
            for (const Report::Table& table : store.tables) {
                most = std::max(most, table.bytes.value_or(table.rows));
            }
            m_out << "<table>\n<tr><th>Table</th><th class=\"number\">Rows</th><th class=\"number\">Size</th><th></th>"
                     "</tr>\n";
            for (const Report::Table& table : store.tables) {
                m_out << "<tr>" << cell(table.name) << numberCell(grouped(table.rows))
                      << numberCell(table.bytes ? humanSize(*table.bytes) : "")
                      << bar(table.bytes.value_or(table.rows), most) << "</tr>\n";
            }
            m_out << "</table>\n</section>\n";
        }
        m_out << "</div>\n";
    }

    void writeDrive(const DriveMap& drive)
    {
        m_out << "<h2>The drive</h2>\n<div class=\"figures\">\n";
        writeFigure(grouped(drive.files), "files");
        writeFigure(grouped(drive.folders), "folders");
        writeFigure(humanSize(drive.bytes), "in files");
        if (m_report.pending) {
            writeFigure(grouped(static_cast<std::int64_t>(m_report.pending->size())), "operations waiting");
        }
        m_out << "</div>\n<p class=\"quiet\">What is in the bin does not count.</p>\n";
        if (drive.inCircles > 0) {
            m_out << "<p class=\"error\">" << counted(drive.inCircles, "row is", "rows are")
                  << " below a folder that is below itself.</p>\n";
        }
        m_out << "<section id=\"walk\" hidden>\n<h3>By size</h3>\n<nav id=\"way\" aria-label=\"folder\"></nav>\n"
                 "<p id=\"about\" class=\"quiet\" aria-live=\"polite\"></p>\n<div id=\"map\"></div>\n"
                 "<p class=\"quiet\">A click on a folder goes into it. Each folder shows its largest entries, and one "
                 "tile for the rest.</p>\n</section>\n";
        writeLargest(drive);
        m_out << "<div class=\"columns\">\n";
        writeShares("By class", drive.classes);
        writeShares("By extension", drive.extensions);
        writeShares("By last change", drive.ages);
        m_out << "</div>\n";
    }

    void writeFigure(const std::string& number, const char* what)
    {
        m_out << "<div><b>" << number << "</b>" << what << "</div>\n";
    }

    /// The largest folders directly below the top, for readers without the script.
    void writeLargest(const DriveMap& drive)
    {
        std::vector<const DriveMap::Entry*> below;
        for (const DriveMap::Entry& entry : drive.entries) {
            if (entry.parent == 0 && entry.isFolder) {
                below.push_back(&entry);
            }
        }
        constexpr std::size_t shown = 12;
        below.resize(std::min(below.size(), shown));
        if (below.empty()) {
            return;
        }
        m_out << "<h3>The largest folders below the top</h3>\n<table>\n";
        for (const DriveMap::Entry* entry : below) {
            m_out << "<tr>" << cell(entry->name) << numberCell(files(entry->files))
                  << numberCell(humanSize(entry->bytes)) << bar(entry->bytes, below.front()->bytes) << "</tr>\n";
        }
        m_out << "</table>\n";
    }

    void writeShares(const char* title, const std::vector<Share>& shares)
    {
        std::int64_t most = 1;
        for (const Share& share : shares) {
            most = std::max(most, share.bytes);
        }
        m_out << "<section>\n<h3>" << title << "</h3>\n<table>\n";
        for (const Share& share : shares) {
            m_out << "<tr>" << cell(share.label) << numberCell(files(share.files)) << numberCell(humanSize(share.bytes))
                  << bar(share.bytes, most) << "</tr>\n";
        }
        m_out << "</table>\n</section>\n";
    }

    static std::string bar(std::int64_t part, std::int64_t whole)
    {
        const double percent = whole > 0 ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0;
        return R"(<td class="bar"><span style="width:)" + twoDecimals(percent) + "%\"></span></td>";
    }

    void writePending()
    {
        m_out << "<h2>Operations that wait for the cloud</h2>\n";
        if (!m_report.pending || m_report.pending->empty()) {
            m_out << (m_report.pending ? "<p>None.</p>\n" : "<p>They could not be read; see the findings.</p>\n");
            return;
        }
        const std::vector<Report::Operation>& operations = *m_report.pending;
        writeTimeLine(operations);
        m_out << "<table>\n<tr><th>Operation</th><th>When</th><th>Path</th><th>Becomes</th></tr>\n";
        for (std::size_t i = 0; i < std::min(shownOperations, operations.size()); ++i) {
            const auto& [path, marker] = operations[i];
            m_out << "<tr>" << cell(marker.operation) << cell(timeOf(marker) > 0 ? humanTime(timeOf(marker)) : "")
                  << cell(path) << cell(marker.newName) << "</tr>\n";
        }
        m_out << "</table>\n";
        if (operations.size() > shownOperations) {
            m_out << "<p class=\"quiet\">And "
                  << grouped(static_cast<std::int64_t>(operations.size() - shownOperations))
                  << " more; dbservice pending lists all.</p>\n";
        }
    }

    /// Seconds; from the batch id, which a client counts in microseconds, where the marker has no time. 0 for none.
    static std::int64_t timeOf(const Marker& marker)
    {
        constexpr std::int64_t perSecond = 1'000'000;
        constexpr std::int64_t year2000 = 946'684'800;
        constexpr std::int64_t year2100 = 4'102'444'800;
        const std::int64_t fromBatch = marker.batchId / perSecond;
        return marker.time != 0 ? marker.time : fromBatch > year2000 && fromBatch < year2100 ? fromBatch : 0;
    }

    /// A lane for each kind of operation, from the oldest to the newest.
    void writeTimeLine(const std::vector<Report::Operation>& operations)
    {
        std::int64_t first = std::numeric_limits<std::int64_t>::max();
        std::int64_t last = 0;
        std::vector<std::string_view> lanes;
        for (const auto& [path, marker] : operations) {
            if (std::ranges::find(lanes, std::string_view(marker.operation)) == lanes.end()) {
                lanes.emplace_back(marker.operation);
            }
            if (timeOf(marker) > 0) {
                first = std::min(first, timeOf(marker));
                last = std::max(last, timeOf(marker));
            }
        }
        if (last == 0) {
            return;
        }
        constexpr double left = 80;
        constexpr double width = 700;
        constexpr double lane = 24;
        constexpr std::size_t mostDots = 2000;
        const double span = static_cast<double>(std::max<std::int64_t>(1, last - first));
        const double height = lane * static_cast<double>(lanes.size());
        m_out << "<svg viewBox=\"0 0 800 " << height + lane << "\" role=\"img\" aria-label=\"operations by time\">\n";
        for (std::size_t i = 0; i < lanes.size(); ++i) {
            const double y = lane * (static_cast<double>(i) + 0.5);
            m_out << R"(<text x="0" y=")" << y + 4 << "\">" << escaped(lanes[i]) << "</text><line x1=\"" << left
                  << "\" x2=\"" << left + width << "\" y1=\"" << y << "\" y2=\"" << y << "\"/>\n";
        }
        std::size_t dots = 0;
        for (const auto& [path, marker] : operations) {
            if (timeOf(marker) == 0 || ++dots > mostDots) {
                continue;
            }
            const auto place = std::ranges::find(lanes, std::string_view(marker.operation)) - lanes.begin();
            m_out << R"(<circle r="4" cx=")" << left + width * static_cast<double>(timeOf(marker) - first) / span
                  << "\" cy=\"" << lane * (static_cast<double>(place) + 0.5) << "\"><title>"
                  << escaped(std::string(marker.operation) + " " + path + ", " + humanTime(timeOf(marker)))
                  << "</title></circle>\n";
        }
        m_out << "<text x=\"" << left << "\" y=\"" << height + lane / 2 << "\">" << humanTime(first)
              << R"(</text><text text-anchor="end" x=")" << left + width << "\" y=\"" << height + lane / 2 << "\">"
              << humanTime(last) << "</text>\n</svg>\n";
    }

    void writeTransfers()
    {
        m_out << "<h2>Transfers</h2>\n";
        if (m_report.transfers.empty()) {
            m_out << "<p>None.</p>\n";
            return;
        }
        m_out
            << "<table>\n<tr><th>Table</th><th>Status</th><th class=\"number\">Rows</th><th class=\"number\">Size</th>"
               "</tr>\n";
        for (const Report::Transfers& row : m_report.transfers) {
            m_out << "<tr>" << cell(row.table) << cell(row.status) << numberCell(grouped(row.rows))
                  << numberCell(humanSize(row.bytes)) << "</tr>\n";
        }
        m_out << "</table>\n";
    }

    /// The map's entries, a list for each of their properties.
    static Json entries(const DriveMap& drive)
    {
        Json names = Json::array();
        Json parents = Json::array();
        Json bytes = Json::array();
        Json below = Json::array();
        for (const DriveMap::Entry& entry : drive.entries) {
            names.push_back(entry.isRest ? "" : printable(entry.name));
            parents.push_back(entry.parent);
            bytes.push_back(entry.bytes);
            below.push_back(entry.files);
        }
        return {{"name", names}, {"parent", parents}, {"bytes", bytes}, {"files", below}};
    }

    const Report& m_report;
    std::ostream& m_out;
};

} // namespace

void writePage(const Report& report, std::ostream& out)
{
    Page(report, out).write();
}

} // namespace dbservice
