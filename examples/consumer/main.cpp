// Pages through a folder of the drive, in a store that is made on the way: consumer STORE-FOLDER

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/logsinks.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/version.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProvider;

namespace {

/// Counts what the library reports as failures: the one way to hear of a lost row.
class FailureCount : public Logger::LogSink {
public:
    void Write(const Logger::LogEntry& entry) override { m_count += entry.IsFailure() ? 1 : 0; }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

std::vector<DriveDataTable> photos(int count)
{
    std::vector<DriveDataTable> records;
    for (int number = 1; number <= count; ++number) {
        DriveDataTable& record = records.emplace_back();
        record.SetFileid("id-" + std::to_string(number));
        record.SetName("photo " + std::to_string(number) + ".jpg");
        record.SetMimeType("image/jpeg");
        record.SetParentId("album");
    }
    return records;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: consumer STORE-FOLDER\n";
        return 2;
    }
    std::cout << "DatabaseService " << DatabaseService::LibraryVersion() << ", SQLite "
              << DatabaseService::SqliteVersion() << '\n';

    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.wstring());
    const auto failures = std::make_shared<FailureCount>();
    Logger::CloudLogger::GetInstance()->AddSink(failures);

    constexpr int total = 25;
    DriverDBProvider drive;
    drive.InitDatabase();
    drive.ReplaceDriveAllData(photos(total)); // replaces, so that a second run finds the same

    constexpr unsigned pageSize = 10;
    std::size_t seen = 0;
    for (unsigned start = 0;; start += pageSize) {
        std::vector<std::string> files;
        std::vector<std::string> folders;
        drive.GetFolderSubFile("album", files, folders, pageSize, start);
        if (files.empty() && folders.empty()) {
            break;
        }
        std::cout << "page of " << files.size() << ", from " << files.front() << " to " << files.back() << '\n';
        seen += files.size();
    }
    return seen == total && failures->count() == 0 ? 0 : 1;
}
