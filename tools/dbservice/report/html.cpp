#include "report/html.h"

#include "terminal/displaytext.h"

namespace dbservice {

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char letter : printable(text)) {
        switch (letter) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

std::string inScript(std::string json)
{
    for (std::size_t at = json.find('<'); at != std::string::npos; at = json.find('<', at)) {
        json.replace(at, 1, "\\u003c");
    }
    return json;
}

} // namespace dbservice
