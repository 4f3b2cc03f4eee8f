#pragma once

#include "clientservices/export.h"

#include <cstdint>
#include <string>

/// The client's settings that the stores ask for at the moment of use.
///
/// Threads: any, at any time; a read during a write sees the old value or the new one.
/// Ownership: the one instance belongs to the process and outlives static destruction.
/// Failure: none. A value that nobody has set is the default named at its getter.
///
/// The setters belong to this default implementation. A client with settings of its own links its own library in
/// place of this one and gives the getters only.
class CLIENTSERVICES_EXPORT GlobalParamWrapper {
public:
    /// The process has one.
    static GlobalParamWrapper* GetInstance();

    GlobalParamWrapper(const GlobalParamWrapper&) = delete;
    GlobalParamWrapper& operator=(const GlobalParamWrapper&) = delete;

    /// The signed-in user's database folder, without a separator at its end. Empty by default.
    std::wstring GetUserDataBaseFolder() const;
    /// Empty by default.
    std::wstring GetUserCachePath() const;
    /// Seconds since 1970-01-01 00:00 UTC on the server's clock. By default this machine's clock; once set, the
    /// value set.
    std::int64_t GetServerTime() const;
    /// How many days a recycled file is kept. 30 by default.
    int GetRecyFileAutoDelInterval() const;
    /// Whether lists show files whose content is lost. False by default.
    bool GetEnableShowLostDiskFile() const;

    ///@{
    /// Sets what the getter of this name gives from now on.
    void SetUserDataBaseFolder(const std::wstring& folder);
    void SetUserCachePath(const std::wstring& path);
    void SetServerTime(std::int64_t seconds);
    void SetRecyFileAutoDelInterval(int days);
    void SetEnableShowLostDiskFile(bool enabled);
    ///@}

private:
    GlobalParamWrapper() = default;
    ~GlobalParamWrapper() = default;
};
