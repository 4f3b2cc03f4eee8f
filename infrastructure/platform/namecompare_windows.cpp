#include "platform/namecompare.h"

#include "platform/text.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <array>
#include <string>

namespace platform {

namespace {

/// A name made wide, with a NUL at its end. What a file system allows fits on the stack.
class WideName {
public:
    explicit WideName(std::string_view name) noexcept
    {
        if (name.size() > m_small.size() - 1) {
            try {
                m_large = toWide(name);
                m_text = m_large.c_str();
                return;
            } catch (...) { // without memory the front part decides
            }
        }
        const int size = static_cast<int>(std::min(name.size(), m_small.size() - 1));
        int length = 0;
        if (size != 0) {
            length = MultiByteToWideChar(CP_UTF8, 0, name.data(), size, m_small.data(), size);
        }
        m_small[static_cast<std::size_t>(length)] = L'\0';
    }

    WideName(const WideName&) = delete;
    WideName& operator=(const WideName&) = delete;

    const wchar_t* text() const { return m_text; }

private:
    std::array<wchar_t, 3 * 260 + 1> m_small; // no character of UTF-16 takes more than three bytes of UTF-8
    std::wstring m_large;
    const wchar_t* m_text = m_small.data();
};

} // namespace

int compareNames(std::string_view left, std::string_view right) noexcept
{
    const WideName wideLeft(left);
    const WideName wideRight(right);
    return StrCmpLogicalW(wideLeft.text(), wideRight.text());
}

const char* nameOrderVersion() noexcept
{
    return "StrCmpLogicalW";
}

} // namespace platform
