#include "terminal/recordfields.h"

#include "terminal/displaytext.h"

#include <cmath>

namespace dbservice {

std::string readable(const std::string& value, Shown /*shown*/)
{
    return value;
}

std::string readable(std::int64_t value, Shown shown)
{
    if (value == 0) {
        return {};
    }
    switch (shown) {
    case Shown::Bytes:
        return grouped(value) + (value == 1 ? " byte" : " bytes");
    case Shown::Time:
        return humanTime(value) + " UTC (" + std::to_string(value) + ")";
    case Shown::Plain:
        break;
    }
    return std::to_string(value);
}

double toMilliseconds(double seconds)
{
    return std::round(seconds * 1000) / 1000;
}

} // namespace dbservice
