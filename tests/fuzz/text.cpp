// Text that need not be UTF-8, and wide text that need not be Unicode.
#include "platform/text.h"
#include "fuzzing.h"

#include <cstring>
#include <utf8proc.h>

void fuzzing::attempt(const std::string& input)
{
    const auto isUtf8 = [](const std::string& text) { // as others see it
        const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
        return utf8proc_decompose(bytes, static_cast<utf8proc_ssize_t>(text.size()), nullptr, 0, {}) >= 0;
    };
    const std::string repaired = control ? input : platform::repairUtf8(input);
    expect(isUtf8(repaired), "repaired text is not UTF-8");
    expect(isUtf8(input) == (repaired == input), "valid text was changed, or other text was not");
    expect(platform::isUtf8(input) == isUtf8(input), "what is UTF-8 is told wrongly");
    expect(platform::repairUtf8(repaired) == repaired, "repairing twice changes more");
    expect(platform::toUtf8(platform::toWide(input)) == repaired, "text changes on its way through wide text");

    std::wstring wide(input.size() / sizeof(wchar_t), L' ');
    std::memcpy(wide.data(), input.data(), wide.size() * sizeof(wchar_t));
    const std::string narrow = platform::toUtf8(wide);
    expect(isUtf8(narrow), "wide text becomes what is not UTF-8");
    for (wchar_t& value : wide) {
        value = value < 0 || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000) ? L'\xFFFD' : value;
    }
    expect(platform::toWide(narrow) == wide, "wide text changes on its way through UTF-8");
}
