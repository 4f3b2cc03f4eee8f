// What each of the programs begins with.
#pragma once

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/logsinks.h"

#include <filesystem>
#include <iostream>
#include <memory>

/// Shows what the library reports as failures: the one way to hear of a lost row.
class Failures : public Logger::LogSink {
public:
    void Write(const Logger::LogEntry& entry) override
    {
        if (entry.IsFailure()) {
            std::cerr << entry.function << ": " << entry.message << '\n';
            ++m_count;
        }
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

/// Has all stores lie in `folder`, which is made if need be, and listens for failures from here on.
inline std::shared_ptr<const Failures> start(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.wstring());
    auto failures = std::make_shared<Failures>();
    Logger::CloudLogger::GetInstance()->AddSink(failures);
    return failures;
}
