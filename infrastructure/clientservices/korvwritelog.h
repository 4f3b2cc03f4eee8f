#pragma once

#include "clientservices/export.h"

namespace CommonAbility {

/// The client's printf-style log. `channel` and `level` are the caller's own numbers and go through as they are;
/// `tag`, `file`, `function` and `format` are UTF-8, and null stands for an empty text. A line that cannot be
/// formatted is logged as its format. Any thread; nothing is reported to the caller.
///
/// In this default implementation the lines reach the sinks of `Logger::CloudLogger`, `channel` as the module and
/// `level` as the severity, the flag false.
CLIENTSERVICES_EXPORT void KorvWriteLog(int channel, int level, const char* tag, int line, const char* file,
                                        const char* function, const char* format, ...);

} // namespace CommonAbility
