#include "clientservices/msgthreadability.h"

#include "clientservices/messageloop.h"

#include <utility>

namespace CommonAbility {

unsigned MsgThreadAbility::BindMessage(MessageHandler handler)
{
    return m_loop->bind(std::move(handler));
}

bool MsgThreadAbility::TryPostThreadMessage(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter)
{
    return PostThreadMessageW(message, shortParameter, longParameter);
}

} // namespace CommonAbility
