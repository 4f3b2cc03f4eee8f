#pragma once

#include "clientservices/export.h"
#include "clientservices/korvthread.h"

#include <cstdint>
#include <functional>

namespace CommonAbility {

/// A message thread that calls a handler for each message.
///
/// Threads: any, for both calls. Handlers run on the message thread, one at a time, in posting order; one that blocks
/// holds up all messages behind it.
/// Ownership: the object keeps the handlers. They may live on for as long as its thread does.
/// Failure: what a handler throws, and a message that nothing is bound to, is a failure line in the log with the
/// message's id; the thread goes on with the next message.
class CLIENTSERVICES_EXPORT MsgThreadAbility : public korvThread {
public:
    /// Called with the two parameters of the message as they were posted.
    using MessageHandler = std::function<void(std::uint64_t shortParameter, std::int64_t longParameter)>;

    /// The first id that `BindMessage` hands out: WM_APP, above all messages of the system. The rest follow in steps
    /// of one.
    enum : unsigned { firstBoundMessage = 0x8000 };

    /// Gives the id of the messages that `handler` is called for: each object counts its own. There is no unbinding.
    unsigned BindMessage(MessageHandler handler);

    /// `PostThreadMessageW` by the name that modules use: true when queued.
    bool TryPostThreadMessage(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter);
};

} // namespace CommonAbility
