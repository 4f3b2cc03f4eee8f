#pragma once

#include "clientservices/globalparamwrapper.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "support/logcapture.h"
#include "support/sqlitefile.h"
#include "support/testfolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace testsupport {

/// A test with a user's database folder of its own and an eye on the log.
struct StoreTest : testing::Test {
    StoreTest() { useFolder(m_folder.path()); }
    ~StoreTest() override { GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder({}); }

    static std::wstring wide(const std::filesystem::path& path) { return platform::toWide(platform::toUtf8(path)); }

    static void useFolder(const std::filesystem::path& folder)
    {
        GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(wide(folder));
    }

    std::filesystem::path path(const std::wstring& name) const { return m_folder.path() / platform::toPath(name); }

    TestFolder m_folder;
    LogCapture m_log;
};

} // namespace testsupport
