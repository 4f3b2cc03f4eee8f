#pragma once

#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace dbservice {

/// Adds an option or an argument for a text that goes into a record. What is not UTF-8 is refused, since the record
/// would hold something else.
CLI::Option* addText(CLI::App& command, const std::string& name, std::string& text, const std::string& description);

/// Adds --gallery for the name of the gallery's file, which the client chooses.
CLI::Option* addGalleryName(CLI::App& command, std::string& name);

} // namespace dbservice
