#pragma once

#include "clientservices/export.h"
#include "clientservices/msgthreadability.h"

/// What the client's modules have in common.
namespace TessixDeskClient {

/// A module of the client: a message thread, and what the client tells each of its modules.
///
/// Threads: the client calls a notification on a thread of its choice; it does not run on the module's own.
/// Ownership: the client's, who calls `StopWork` before it destroys a module and before it exits.
/// Failure: as of the bases; a notification reports nothing.
///
/// A module binds its messages and creates its thread in its constructor. Here every notification but `StopWork` does
/// nothing.
class CLIENTSERVICES_EXPORT ModuleBase : public CommonAbility::MsgThreadAbility {
public:
    ModuleBase();
    ~ModuleBase() override;

    /// Posts the quit message and waits until all that was posted before has been handled; does not wait when the
    /// module's own thread calls. May be called again, and by several threads: all of them wait.
    virtual void StopWork();

    ///@{
    /// A notification; the name tells of what. Does nothing here.
    virtual void OnInit();
    virtual void OnUserLogin();
    virtual void OnUserLogout();
    virtual void OnIntervalCheck();
    virtual void OnResetdatabase();
    ///@}
};

} // namespace TessixDeskClient
