#include "manual.h"

#include <string_view>
#include <type_traits>
#include <vector>

namespace dbservice {

namespace {

/// Text for troff, whose lines begin commands with a dot or a quote.
std::string plain(std::string_view text)
{
    std::string result;
    for (const char letter : text) {
        const bool startsLine = result.empty() || result.back() == '\n';
        result += startsLine && (letter == '.' || letter == '\'') ? "\\&" : "";
        switch (letter) {
        case '\\':
            result += "\\e";
            break;
        case '-':
            result += "\\-";
            break;
        case '~':
            result += "\\(ti";
            break;
        case '`':
            result += "\\(ga";
            break;
        case '^':
            result += "\\(ha";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

/// Lines that stay lines.
std::string lines(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        result += plain(text.substr(0, end)) + "\n" + (end == std::string_view::npos ? "" : ".br\n");
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return result;
}

bool isOption(const About& about)
{
    return std::string_view(about.name).starts_with('-');
}

/// What stands behind an option, such as " FILE".
std::string valueOf(const Argument& argument, const Place& place)
{
    if (std::holds_alternative<bool*>(place) || std::holds_alternative<std::string (*)()>(place)) {
        return {};
    }
    if (argument.about.rules.type != nullptr) {
        return std::string(" ") + argument.about.rules.type;
    }
    if (const auto* const choice = std::get_if<Choice>(&place)) {
        std::string words;
        for (const std::string& word : choice->words) {
            words += (words.empty() ? " " : "|") + word;
        }
        return words;
    }
    return std::holds_alternative<std::string*>(place) || std::holds_alternative<std::vector<std::string>*>(place)
        ? " TEXT"
        : " NUMBER";
}

std::string synopsis(const std::string& names, const Command& command)
{
    std::string text = ".B " + plain(names) + "\n";
    for (const Argument& argument : command.arguments) {
        if (argument.about.rules.hidden) {
            continue;
        }
        const bool required = argument.about.rules.required;
        const std::string value = isOption(argument.about) ? valueOf(argument, command.run.place(argument)) : "";
        text += plain((required ? "" : "[") + std::string(argument.about.name) + value + (required ? "" : "]")) + "\n";
    }
    return text;
}

std::string options(const Command& command)
{
    std::string text;
    for (const Argument& argument : command.arguments) {
        if (!argument.about.rules.hidden) {
            const std::string value = isOption(argument.about) ? valueOf(argument, command.run.place(argument)) : "";
            text += ".TP\n.B " + plain(argument.about.name + value) + "\n" + plain(argument.about.meaning) + "\n";
        }
    }
    return text;
}

std::string section(const std::string& before, const Command& command)
{
    const std::string names = before + " " + command.name;
    std::string text = ".SS " + plain(names) + "\n" + plain(command.summary) + ".\n";
    if (!command.parts.empty()) {
        for (const Command& part : command.parts) {
            text += section(names, part);
        }
        return text;
    }
    text += ".PP\n" + synopsis(names, command) + options(command);
    text += *command.details == '\0' ? "" : ".PP\n" + lines(command.details);
    return text + ".PP\nExample:\n.PP\n.RS\n.B " + plain(command.example) + "\n.RE\n";
}

} // namespace

std::string manualPage(const Command& program, const std::string& version)
{
    std::string text = R"(.TH DBSERVICE 1 "" ")" + plain(version) + "\"\n.SH NAME\n" + plain(program.name) + " \\- " +
        plain(program.summary) + "\n.SH SYNOPSIS\n.B " + plain(program.name) +
        "\n[\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...\n.SH DESCRIPTION\n" + lines(program.details) +
        ".SH OPTIONS\nThese go with every command.\n" + options(program) + ".SH COMMANDS\n";
    for (const Command& command : program.parts) {
        text += section(program.name, command);
    }
    text.resize(text.find_last_not_of('\n') + 1);
    return text;
}

} // namespace dbservice
