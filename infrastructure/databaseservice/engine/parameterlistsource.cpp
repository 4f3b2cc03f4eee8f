#include "databaseservice/engine/parameterlistsource.h"

#include "databaseservice/engine/parameterwriter.h"

namespace DatabaseService {

namespace {

template <class Value> bool bindNamed(DatabaseBindParameter& element, ParameterWriter& parameters)
{
    std::pair<Value, std::string> valueAndName;
    element.GetValue(valueAndName);
    return parameters.bind(parameters.index(valueAndName.second), valueAndName.first);
}

} // namespace

bool ParameterListSource::Advance()
{
    if (m_next == m_binds.end()) {
        return false;
    }
    m_current = &*m_next++;
    return true;
}

bool ParameterListSource::Bind(ParameterWriter& parameters)
{
    for (; m_current->HasNext(); m_current->Next()) {
        const bool bound = m_current->IsInt() ? bindNamed<int64>(*m_current, parameters)
                                              : bindNamed<std::wstring>(*m_current, parameters);
        if (!bound) {
            return false;
        }
    }
    return true;
}

} // namespace DatabaseService
