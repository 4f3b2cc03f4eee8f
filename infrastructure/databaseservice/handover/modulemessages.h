#pragma once

#include "clientservices/msgthreadability.h"
#include "databaseservice/handover/addresses.h"

#include <cstdint>
#include <initializer_list>
#include <memory>

/// How a module's members become handlers, and how heap objects come to them.
namespace DatabaseService {

/// A message's id, which binding fills, and the member function that handles it.
template <class Module> struct ModuleMessage {
    unsigned& id;
    void (Module::*handler)(uint64 shortParameter, int64 longParameter);
};

/// The ids count up in the order of the list.
template <class Module> void bindMessages(Module& module, std::initializer_list<ModuleMessage<Module>> messages)
{
    for (const ModuleMessage<Module>& message : messages) {
        message.id =
            module.BindMessage([&module, handler = message.handler](uint64 shortParameter, int64 longParameter) {
                (module.*handler)(shortParameter, longParameter);
            });
    }
}

/// Posts the address of a heap object, which is the handler's from there on. When that fails, it stays in `payload`.
template <class Payload>
bool postPayload(CommonAbility::MsgThreadAbility& module, unsigned message, uint64 shortParameter,
                 std::unique_ptr<Payload>& payload)
{
    if (!module.TryPostThreadMessage(message, shortParameter, addressOf(payload.get()))) {
        return false;
    }
    static_cast<void>(payload.release());
    return true;
}

/// The handler's end of `postPayload`. Null for the address 0.
template <class Payload> std::unique_ptr<Payload> takeOver(int64 payload)
{
    return std::unique_ptr<Payload>(reinterpret_cast<Payload*>(static_cast<std::intptr_t>(payload)));
}

} // namespace DatabaseService
