#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

/// How a command describes itself: data, from which the command line is read and its help is made. A command's file
/// ends with its description, and the options that it takes are the members of a struct of its own:
///
///     Command lsCommand()
///     {
///         return {
///             .name = "ls",
///             .summary = "List a folder of the drive tree, page by page",
///             .arguments = {argument<&LsOptions::path>("PATH", "Such as /Photos/2024")},
///             .example = "dbservice ls /Photos/2024",
///             .run = ls, // int ls(Session&, const LsOptions&)
///         };
///     }
namespace dbservice {

class Session;

/// A value that is chosen by a word.
struct Choice {
    std::vector<std::string> words;
    std::string chosen; ///< without the command line, empty for none
    std::function<void(const std::string& word)> choose;
};

/// Where an argument's value goes, which tells how it is read as well: a bool is a flag, a vector takes several values,
/// a function is called for a text to show in place of all else.
using Place = std::variant<bool*, int*, unsigned*, std::int64_t*, double*, std::string*, std::vector<std::string>*,
                           Choice, std::string (*)()>;

struct Range {
    double least;
    double most;
};

/// Says why a value is refused, empty where it is not.
using Check = std::string (*)(const std::string& value);

/// What holds for an argument beside its type.
struct Rules {
    bool required = false;
    bool showsDefault = false;  ///< in the help
    const char* type = nullptr; ///< in the help, in place of the type's own name
    std::optional<Range> range = {};
    bool positive = false;
    std::vector<Check> checks = {};
    const char* excludes = nullptr; ///< the name of an argument that may not come along
    bool hidden = false;            ///< in no help
    const char* oneOf = nullptr;    ///< the title of a group of arguments, of which exactly one is given
};

/// What people are told of an argument: an option such as `--sort`, or one that is known by its place, such as `PATH`.
struct About {
    const char* name;
    const char* meaning;
    Rules rules = {};
};

/// An argument and where its value goes.
struct Argument {
    About about;
    const std::type_info* owner; ///< the type of the options
    std::function<Place(void* options)> place;
};

/// The arguments of a command, in the order of the help. A list of them may stand where one may.
class Arguments {
public:
    Arguments() = default;
    Arguments(Argument argument);
    Arguments(std::initializer_list<Arguments> parts);

    auto begin() const { return m_all.begin(); }
    auto end() const { return m_all.end(); }

private:
    std::vector<Argument> m_all;
};

/// What a command does, and the options for it, which the command line fills.
class Action {
public:
    /// Of a command that is nothing without one of its parts.
    Action() = default;
    Action(int (*run)(Session&)) : m_run(run) { }
    template <class Options>
    Action(int (*run)(Session&, Options)) : m_type(&typeid(Options)) // which does not look at const and reference
    {
        const auto options = std::make_shared<std::remove_cvref_t<Options>>();
        m_options = options;
        m_run = [run, options](Session& session) { return run(session, *options); };
    }
    /// Fills options that are kept elsewhere, and does nothing.
    template <class Options> static Action fills(Options& options)
    {
        Action action;
        action.m_type = &typeid(Options);
        action.m_options = {&options, [](void*) {}};
        return action;
    }

    explicit operator bool() const { return static_cast<bool>(m_run); }
    int operator()(Session& session) const { return m_run(session); }
    Place place(const Argument& argument) const;

private:
    std::function<int(Session&)> m_run;
    std::shared_ptr<void> m_options;
    const std::type_info* m_type = nullptr;
};

/// A command, or the whole program with its commands as parts.
struct Command {
    const char* name = "";
    const char* group = ""; ///< the heading in the program's help, one of those below
    const char* summary = "";
    Arguments arguments = {};
    const char* details = ""; ///< lines without an end; where there are none, the program's
    const char* example = ""; ///< a line as it is typed
    std::vector<Command> parts = {};
    Action run = {}; ///< gives the exit code, or throws a `Failure`

    int operator()(Session& session) const { return run(session); }
};

namespace group {
inline constexpr const char* stores = "Stores";
inline constexpr const char* showDrive = "Show the drive";
inline constexpr const char* changeDrive = "Change the drive";
inline constexpr const char* otherStores = "Other stores";
} // namespace group

template <class Owner, class Value> std::type_identity<Owner> ownerOf(Value Owner::*);
/// The struct that has the member.
template <auto Member> using Owner = typename decltype(ownerOf(Member))::type;

/// An argument that fills a member of the options.
template <auto Member> Argument argument(About about)
{
    return {std::move(about), &typeid(Owner<Member>),
            [](void* options) -> Place { return &(static_cast<Owner<Member>*>(options)->*Member); }};
}
template <auto Member> Argument argument(const char* name, const char* meaning, Rules rules = {})
{
    return argument<Member>(About{name, meaning, std::move(rules)});
}

/// An argument that is all the options there are.
template <class Value> Argument argument(About about)
{
    return {std::move(about), &typeid(Value), [](void* options) -> Place { return static_cast<Value*>(options); }};
}
template <class Value> Argument argument(const char* name, const char* meaning, Rules rules = {})
{
    return argument<Value>(About{name, meaning, std::move(rules)});
}

/// Refuses what is not UTF-8, for texts that go into a record: it would hold something else.
std::string refuseInvalid(const std::string& text);

/// A text that goes into a record.
template <auto Member> Argument text(const char* name, const char* meaning, Rules rules = {})
{
    rules.checks.push_back(refuseInvalid);
    return argument<Member>(About{name, meaning, std::move(rules)});
}

/// An argument whose words stand for values.
template <auto Member, class Value>
Argument choice(const char* name, std::map<std::string, Value> values, const char* meaning, Rules rules = {})
{
    return {{name, meaning, std::move(rules)},
            &typeid(Owner<Member>),
            [values = std::move(values)](void* options) -> Place {
                auto& member = static_cast<Owner<Member>*>(options)->*Member;
                Choice choice;
                for (const auto& [word, value] : values) {
                    choice.words.push_back(word);
                    if (value == member) {
                        choice.chosen = word;
                    }
                }
                choice.choose = [&member, values](const std::string& word) { member = values.at(word); };
                return choice;
            }};
}

/// A flag that shows a text in place of all else; `Options` are those of its command.
template <class Options> Argument shows(const char* name, std::string (*text)(), const char* meaning, Rules rules = {})
{
    return {{name, meaning, std::move(rules)}, &typeid(Options), [text](void*) -> Place { return text; }};
}

/// The arguments, for options of which theirs are a part.
Arguments moved(const Arguments& arguments, const std::type_info& owner, void* (*part)(void* options));

/// Arguments that fill a part of the options, for instance those that several commands share.
template <auto Member> Arguments within(const Arguments& arguments)
{
    return moved(arguments, typeid(Owner<Member>),
                 [](void* options) -> void* { return &(static_cast<Owner<Member>*>(options)->*Member); });
}

} // namespace dbservice
