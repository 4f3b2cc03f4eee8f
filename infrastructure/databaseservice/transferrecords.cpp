#include "databaseservice/transferrecords.h"

#include "platform/text.h"

namespace DatabaseService::TransmissionDB {

DownloadTaskProperty::~DownloadTaskProperty() = default;

std::string DownloadTaskProperty::GetFileNameU8() const
{
    return platform::toUtf8(fileName);
}

void DownloadTaskProperty::SetFileNameU8(std::string value)
{
    fileName = platform::toWide(value);
}

std::string DownloadTaskProperty::GetLocalPathU8() const
{
    return platform::toUtf8(localPath);
}

void DownloadTaskProperty::SetLocalPathU8(std::string value)
{
    localPath = platform::toWide(value);
}

std::string DownloadTaskProperty::GetRelativePathU8() const
{
    return platform::toUtf8(relativePath);
}

void DownloadTaskProperty::SetRelativePathU8(std::string value)
{
    relativePath = platform::toWide(value);
}

CompletedTaskProperty::~CompletedTaskProperty() = default;

std::string CompletedTaskProperty::GetFileNameU8() const
{
    return platform::toUtf8(fileName);
}

void CompletedTaskProperty::SetFileNameU8(std::string value)
{
    fileName = platform::toWide(value);
}

std::string CompletedTaskProperty::GetLocalPathU8() const
{
    return platform::toUtf8(localPath);
}

void CompletedTaskProperty::SetLocalPathU8(std::string value)
{
    localPath = platform::toWide(value);
}

} // namespace DatabaseService::TransmissionDB
