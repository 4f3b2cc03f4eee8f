#include "support/drivetest.h"

#include <algorithm>

namespace testsupport {

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

} // namespace testsupport
