#include "commandline.h"

#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace dbservice {

namespace {

// CLI11 reads "[a,b]" and "{}" as lists where several values may come, and has no switch for it. A last byte that no
// argument can hold hides their ends.
constexpr char plainEnd = '\0';

std::vector<std::string> withPlainEnds(const std::vector<std::string>& arguments)
{
    std::vector<std::string> marked = arguments;
    for (std::string& argument : marked) {
        if (argument.starts_with('[') || argument.starts_with('{')) {
            argument += plainEnd;
        }
    }
    return marked;
}

std::string withoutPlainEnd(std::string argument)
{
    if (argument.ends_with(plainEnd)) {
        argument.pop_back();
    }
    return argument;
}

/// Makes the option for an argument, by the type of the place that its value goes to.
class OptionMaker {
public:
    OptionMaker(CLI::App& app, const About& about) : m_app(app), m_about(about) { }

    CLI::Option* operator()(bool* flag) const { return m_app.add_flag(m_about.name, *flag, m_about.meaning); }
    CLI::Option* operator()(int* number) const { return addNumber(*number); }
    CLI::Option* operator()(unsigned* number) const { return addNumber(*number); }
    CLI::Option* operator()(std::int64_t* number) const { return addNumber(*number); }
    CLI::Option* operator()(double* number) const { return addNumber(*number); }
    CLI::Option* operator()(std::string* text) const { return addValue(*text); }
    CLI::Option* operator()(std::vector<std::string>* texts) const
    {
        return m_app.add_option(m_about.name, *texts, m_about.meaning);
    }
    CLI::Option* operator()(const Choice& choice) const
    {
        CLI::Option* const option =
            m_app.add_option_function<std::string>(m_about.name, choice.choose, m_about.meaning)
                ->check(CLI::IsMember(choice.words));
        return m_about.rules.showsDefault ? option->default_str(choice.chosen) : option;
    }
    CLI::Option* operator()(std::string (*text)()) const
    {
        return m_app.set_version_flag(m_about.name, text, m_about.meaning);
    }

private:
    template <class Value> CLI::Option* addValue(Value& value) const
    {
        CLI::Option* const option = m_app.add_option(m_about.name, value, m_about.meaning);
        return m_about.rules.showsDefault ? option->capture_default_str() : option;
    }
    template <class Number> CLI::Option* addNumber(Number& number) const
    {
        CLI::Option* const option = addValue(number);
        if (m_about.rules.positive) {
            option->check(CLI::PositiveNumber);
        }
        if (const auto& range = m_about.rules.range) {
            option->check(CLI::Range(static_cast<Number>(range->least), static_cast<Number>(range->most)));
        }
        return option;
    }

    CLI::App& m_app;
    const About& m_about;
};

/// The group of options of which exactly one is given.
CLI::App& groupOf(CLI::App& app, const std::string& title)
{
    for (CLI::App* const group : app.get_subcommands({})) {
        if (group->get_name().empty() && group->get_group() == title) {
            return *group;
        }
    }
    return *app.add_option_group(title)->require_option(1);
}

void addArgument(CLI::App& app, const About& about, const Place& place)
{
    const Rules& rules = about.rules;
    CLI::Option* const option = std::visit(OptionMaker(rules.oneOf ? groupOf(app, rules.oneOf) : app, about), place);
    option->transform(withoutPlainEnd);
    for (const Check check : rules.checks) {
        option->check(check);
    }
    if (rules.required) {
        option->required();
    }
    if (rules.type) {
        option->type_name(rules.type);
    }
    if (rules.excludes) {
        option->excludes(app.get_option(rules.excludes));
    }
}

void addArguments(CLI::App& app, const Command& command)
{
    for (const Argument& argument : command.arguments) {
        addArgument(app, argument.about, command.run.place(argument));
    }
}

void addCommand(CLI::App& parent, const Command& command, const Command& program, const Command*& chosen)
{
    CLI::App& app = *parent.add_subcommand(command.name, command.summary);
    app.group(*command.group != '\0' ? command.group : "Subcommands");
    app.footer(std::string(*command.details != '\0' ? command.details : program.details) + "\n\nExample:\n  " +
               command.example);
    addArguments(app, command);
    if (command.run) {
        app.callback([&chosen, &command] { chosen = &command; });
    }
    if (!command.parts.empty()) {
        app.require_subcommand(1);
    }
    for (const Command& part : command.parts) {
        addCommand(app, part, program, chosen);
    }
}

/// The program and the commands that were named before something was wrong.
std::string namedSoFar(const CLI::App& app)
{
    std::string names = app.get_name();
    for (const CLI::App* const part : app.get_subcommands()) {
        names += ' ' + namedSoFar(*part);
    }
    return names;
}

int misused(const CLI::App& app, const char* what)
{
    std::cerr << "dbservice: " << printable(what) << "\nTry `" << namedSoFar(app) << " --help`." << std::endl;
    return wrongUsage;
}

} // namespace

int runCommandLine(const Command& program, const std::vector<std::string>& arguments,
                   const std::function<int(const Command&)>& run)
{
    CLI::App app(program.summary, program.name);
    app.fallthrough();
    app.allow_windows_style_options(false); // "/Photos" is a path
    app.require_subcommand(0, 1);           // none is told apart below, with a better text
    app.get_formatter()->column_width(28);
    app.footer(program.details);
    addArguments(app, program);
    const Command* chosen = nullptr;
    for (const Command& command : program.parts) {
        addCommand(app, command, program, chosen);
    }
    try {
        const std::vector<std::string> marked = withPlainEnds(arguments);
        app.parse(std::vector<std::string>(marked.rbegin(), marked.rend()));
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        return misused(app, error.what());
    }
    return chosen ? run(*chosen) : misused(app, "no command is given");
}

} // namespace dbservice
