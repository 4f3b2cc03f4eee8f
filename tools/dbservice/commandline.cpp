#include "commandline.h"

#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
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
        const auto show = [text](std::int64_t) { throw CLI::CallForVersion(text(), 0); };
        return m_app.add_flag_function(m_about.name, show, m_about.meaning)->configurable(false);
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
    if (rules.hidden) {
        option->group("");
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

/// The program and the commands that were named before something was wrong, each within the one before.
std::vector<const CLI::App*> namedSoFar(const CLI::App& app)
{
    std::vector<const CLI::App*> named{&app};
    while (!named.back()->get_subcommands().empty()) {
        named.push_back(named.back()->get_subcommands().front());
    }
    return named;
}

/// How many letters have to be added, taken away, replaced, or swapped with the next.
std::size_t distance(const std::string& left, const std::string& right)
{
    std::vector<std::vector<std::size_t>> steps(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const bool same = left[i - 1] == right[j - 1];
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + (same ? 0U : 1U)});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[left.size()][right.size()];
}

/// The name that was probably meant by what nobody knows, empty without one.
std::string nearName(const CLI::App& app)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (unknown.empty()) {
        return {};
    }
    const std::string typed = withoutPlainEnd(unknown.front().substr(0, unknown.front().find('=')));
    const std::vector<const CLI::App*> named = namedSoFar(app);
    std::vector<std::string> known;
    for (const CLI::App* const part : named.back()->get_subcommands({})) {
        known.push_back(part->get_name());
    }
    for (const CLI::App* const part : named) {
        for (const CLI::Option* const option : part->get_options()) {
            known.push_back(option->get_lnames().empty() ? "" : "--" + option->get_lnames().front());
        }
    }
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, typed.size() / 3) + 1;
    for (const std::string& name : known) {
        const std::size_t far = name.empty() ? least : distance(typed, name);
        nearest = far < least ? name : nearest;
        least = std::min(least, far);
    }
    return nearest;
}

void offerHelp(const CLI::App& app)
{
    std::cerr << "Try `";
    for (const CLI::App* const part : namedSoFar(app)) {
        std::cerr << part->get_name() << ' ';
    }
    std::cerr << "--help`." << std::endl;
}

int misused(const CLI::App& app, const char* what)
{
    const std::string near = nearName(app);
    std::cerr << "dbservice: " << printable(what) << (near.empty() ? "" : "; did you mean `" + near + "`?") << '\n';
    offerHelp(app);
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
    if (!chosen) {
        return misused(app, "no command is given");
    }
    const int code = run(*chosen);
    if (code == wrongUsage) {
        offerHelp(app);
    }
    return code;
}

} // namespace dbservice
