#include "databaseservice/databasequeryresult.h"

#include "platform/leadinginteger.h"
#include "platform/text.h"

namespace DatabaseService {

std::wstring DatabaseQueryResult::GetWstring()
{
    std::wstring text;
    if (int64 number = 0; GetValue(number)) {
        text = std::to_wstring(number);
    } else {
        GetValue(text);
    }
    Next();
    return text;
}

std::string DatabaseQueryResult::GetString()
{
    return platform::toUtf8(GetWstring());
}

int64 DatabaseQueryResult::GetInt()
{
    int64 number = 0;
    if (std::wstring text; GetValue(text)) {
        number = platform::leadingInteger(std::wstring_view(text));
    } else {
        GetValue(number);
    }
    Next();
    return number;
}

bool DatabaseQueryResult::GetBoolean()
{
    return GetInt() != 0;
}

} // namespace DatabaseService
