#include "support/drivetest.h"

#include <algorithm>

namespace testsupport {

using DatabaseService::DriveDataTable;

std::vector<std::string> DriveTest::row(const std::string& id)
{
    return m_file.query("SELECT " + joined(driveColumns()) + " FROM DriveDataTable WHERE fileId = '" + id + '\'').at(0);
}

std::string DriveTest::statement(const std::string& begin)
{
    const std::vector<std::string> trace = m_drive.trace.take();
    EXPECT_EQ(trace.size(), 3U);
    EXPECT_TRUE(trace.front().ends_with(':' + begin));
    EXPECT_TRUE(trace.back().ends_with(":COMMIT;"));
    return trace.at(1).substr(trace.at(1).find(':') + 1);
}

std::ptrdiff_t DriveTest::failedOpens()
{
    const std::vector<std::string> log = m_log.take();
    return std::ranges::count_if(log, [](const std::string& line) { return line.ends_with("datdoes not exist."); });
}

void DriveTest::expectExactly(const DriveUpdate& update)
{
    SCOPED_TRACE(update.name);
    m_file.exec("DELETE FROM DriveDataTable");
    m_drive.InsertDriveDataBatch({filledRecord("id", 1), filledRecord("other", 2)});
    m_file.exec("UPDATE DriveDataTable SET subFileAndDirectory = 5, operateType = 6, device = 'd'");
    m_drive.trace.take();
    const bool byHelpData = update.tail.find(":helpData") != std::string::npos;
    DriveDataTable record = filledRecord(byHelpData ? "new" : "id", 3);
    record.SetHelpData(byHelpData ? "id" : "new");
    EXPECT_TRUE(update.call(m_drive, record));

    std::vector<std::string> settings;
    DriveDataTable expected = filledRecord("id", 1);
    for (const std::string& word : split(update.columns)) {
        const std::string column = word.substr(0, word.find('='));
        const std::string parameter = word.substr(word.find('=') + 1);
        const auto field = std::ranges::find(driveFields(), column, &DriveField::column);
        ASSERT_TRUE(field != driveFields().end()) << column;
        field->set(expected, parameter == "helpData" ? record.GetHelpData() : field->get(record));
        settings.push_back(column + " = :" + parameter);
    }
    EXPECT_EQ(statement(), "UPDATE DriveDataTable SET " + joined(settings) + ' ' + update.tail);
    EXPECT_EQ(row(expected.GetFileid()), cellsOf(expected));
    EXPECT_EQ(row("other"), cellsOf(filledRecord("other", 2)));
    EXPECT_EQ(m_file.value("SELECT count(*) FROM DriveDataTable WHERE subFileAndDirectory = 5 AND operateType = 6 "
                           "AND device = 'd'"),
              "2");

    const std::string there = ids();
    EXPECT_TRUE(update.call(m_drive, filledRecord("unknown", 4)));
    EXPECT_EQ(ids(), there) << "an update inserts nothing";
}

} // namespace testsupport
