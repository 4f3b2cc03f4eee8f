#include "databaseservice/databasebindparameter.h"

#include "platform/text.h"

namespace DatabaseService {

void DatabaseBindParameter::Bind(const std::wstring& value, const std::string& name)
{
    Insert(std::pair<std::wstring, std::string>(value, name));
}

void DatabaseBindParameter::Bind(const std::string& value, const std::string& name)
{
    Insert(std::pair<std::wstring, std::string>(platform::toWide(value), name));
}

void DatabaseBindParameter::Bind(const int& value, const std::string& name)
{
    Insert(std::pair<int64, std::string>(value, name));
}

void DatabaseBindParameter::Bind(const int64& value, const std::string& name)
{
    Insert(std::pair<int64, std::string>(value, name));
}

void DatabaseBindParameter::Bind(const bool& value, const std::string& name)
{
    Insert(std::pair<int64, std::string>(value ? 1 : 0, name));
}

void DatabaseBindParameter::Bind(const std::pair<std::wstring, std::string>& valueAndName)
{
    Insert(valueAndName);
}

void DatabaseBindParameter::Bind(const std::pair<int64, std::string>& valueAndName)
{
    Insert(valueAndName);
}

} // namespace DatabaseService
