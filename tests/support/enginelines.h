#pragma once

#include "support/logcapture.h"

#include <string>

namespace testsupport {

/// The failure lines of the engine for one store.
struct EngineLines {
    explicit EngineLines(const std::string& name) : m_name(", and database name is " + name) { }

    const std::string m_name;
    const ExpectedLine open = engine("OpenDatabase", "OpenDatabasesqlite3_open_v2 failed" + m_name);
    const ExpectedLine prepare = engine("PrepareSql", "sqlite3_prepare failed" + m_name);
    const ExpectedLine beginRead = engine("Execute", "BeginReadTransaction failed" + m_name);
    const ExpectedLine beginWrite = engine("Execute", "BeginReadWriteTransaction failed" + m_name);
    const ExpectedLine step = engine("Execute", "Step failed, and error msg is *");
    const ExpectedLine finalize = engine("FinalizeStatment", "sqlite3_finalize failed" + m_name);
    const ExpectedLine commit = engine("Execute", "CommitTransaction failed" + m_name);
    const ExpectedLine errorMessage = engine("Execute", "Error message is *");

    ExpectedLine bindMessage(const std::string& text) const { return engine("BindParameter", "Error msg is " + text); }
    ExpectedLine afterFinalize(const std::string& text) const
    {
        return engine("Execute", "Finalize failed, and error msg is " + text);
    }
    ExpectedLine sql(const std::string& text) const { return engine("Execute", "SQL is " + text); }

    ExpectedLine exec(const std::string& message) const
    {
        return engine("ExecuteSql", "sqlite3_exec failed" + m_name + ",Error message is " + message);
    }
    ExpectedLine bind(const std::string& indexAndValue) const
    {
        return engine("BindParameter",
                      "BindParameter sqlite3_bind_int64 failed" + m_name + ",Index is " + indexAndValue);
    }
    ExpectedLine close(const std::string& message) const
    {
        return engine("CloseDatabase", "CloseDatabase failed" + m_name + ",Error message = " + message);
    }
};

} // namespace testsupport
