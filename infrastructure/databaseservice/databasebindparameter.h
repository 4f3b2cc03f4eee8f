#pragma once

#include "databaseservice/databaseparameter.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <string>
#include <utility>

namespace DatabaseService {

/// Named values for one execution of a statement. A name is the one in the SQL text, colon included: ":Key".
///
/// Threads: confined to one. The engine binds from the cursor to the end and leaves the cursor there, so an object
/// in a list that is executed twice binds nothing the second time unless it is `Reset`.
class DATABASESERVICE_EXPORT DatabaseBindParameter
    : public DatabaseParameter<std::pair<std::wstring, std::string>, std::pair<int64, std::string>> {
public:
    /// The value comes first and the name second.
    void Bind(const std::wstring& value, const std::string& name);
    /// UTF-8, made wide; text that is not valid UTF-8 is repaired on the way.
    void Bind(const std::string& value, const std::string& name);
    ///@{
    /// As a 64-bit number.
    void Bind(const int& value, const std::string& name);
    void Bind(const int64& value, const std::string& name);
    ///@}
    /// 0 or 1.
    void Bind(const bool& value, const std::string& name);
    /// A literal, as any pointer, would silently become a `bool`.
    template <class Pointee> void Bind(const Pointee* value, const std::string& name) = delete;
    ///@{
    /// Both in one: the value first, the name second.
    void Bind(const std::pair<std::wstring, std::string>& valueAndName);
    void Bind(const std::pair<int64, std::string>& valueAndName);
    ///@}
};

} // namespace DatabaseService
