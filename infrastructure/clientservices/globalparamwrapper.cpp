#include "clientservices/globalparamwrapper.h"

#include "platform/neverdestroyed.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace {

struct Settings {
    std::mutex mutex;
    std::wstring userDataBaseFolder;
    std::wstring userCachePath;
    std::optional<std::int64_t> serverTime;
    int recyFileAutoDelInterval = 30;
    bool enableShowLostDiskFile = false;
};

Settings& settings()
{
    static auto& instance = platform::neverDestroyed(new Settings);
    return instance;
}

template <class T> auto get(T Settings::*member)
{
    Settings& all = settings();
    const std::lock_guard lock(all.mutex);
    return all.*member;
}

template <class T, class V> void set(T Settings::*member, const V& value)
{
    Settings& all = settings();
    const std::lock_guard lock(all.mutex);
    all.*member = value;
}

} // namespace

GlobalParamWrapper* GlobalParamWrapper::GetInstance()
{
    static auto& instance = platform::neverDestroyed(new GlobalParamWrapper);
    return &instance;
}

std::wstring GlobalParamWrapper::GetUserDataBaseFolder() const
{
    return get(&Settings::userDataBaseFolder);
}

std::wstring GlobalParamWrapper::GetUserCachePath() const
{
    return get(&Settings::userCachePath);
}

std::int64_t GlobalParamWrapper::GetServerTime() const
{
    using namespace std::chrono;
    const std::optional<std::int64_t> time = get(&Settings::serverTime);
    return time ? *time : duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
}

int GlobalParamWrapper::GetRecyFileAutoDelInterval() const
{
    return get(&Settings::recyFileAutoDelInterval);
}

bool GlobalParamWrapper::GetEnableShowLostDiskFile() const
{
    return get(&Settings::enableShowLostDiskFile);
}

void GlobalParamWrapper::SetUserDataBaseFolder(const std::wstring& folder)
{
    set(&Settings::userDataBaseFolder, folder);
}

void GlobalParamWrapper::SetUserCachePath(const std::wstring& path)
{
    set(&Settings::userCachePath, path);
}

void GlobalParamWrapper::SetServerTime(std::int64_t seconds)
{
    set(&Settings::serverTime, seconds);
}

void GlobalParamWrapper::SetRecyFileAutoDelInterval(int days)
{
    set(&Settings::recyFileAutoDelInterval, days);
}

void GlobalParamWrapper::SetEnableShowLostDiskFile(bool enabled)
{
    set(&Settings::enableShowLostDiskFile, enabled);
}
