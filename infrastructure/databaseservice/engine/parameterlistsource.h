#pragma once

#include "databaseservice/databasebindparameter.h"
#include "databaseservice/engine/elementsource.h"

#include <list>

namespace DatabaseService {

/// Parameter objects on their way into a statement, from their cursors on; binding moves the cursors.
class ParameterListSource final : public ElementSource {
public:
    explicit ParameterListSource(std::list<DatabaseBindParameter>& binds) : m_binds(binds), m_next(binds.begin()) { }

    bool Advance() override;
    bool Bind(ParameterWriter& parameters) override;

private:
    std::list<DatabaseBindParameter>& m_binds;
    std::list<DatabaseBindParameter>::iterator m_next;
    DatabaseBindParameter* m_current = nullptr;
};

} // namespace DatabaseService
