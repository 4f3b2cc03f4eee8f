#pragma once

namespace dbservice {

// What page.css and page.js hold.
extern const char* const pageStyle;
extern const char* const pageScript;

} // namespace dbservice
