#include "bashcompletion.h"

#include <string_view>

namespace dbservice {

namespace {

/// Collects the cases of the script.
class Cases {
public:
    void add(const Command& command, const std::string& path, const std::string& common)
    {
        std::string words = common;
        for (const Argument& argument : command.arguments) {
            const About& about = argument.about;
            const bool isOption = std::string_view(about.name).starts_with('-');
            const Place place = command.run.place(argument);
            const auto* const choice = std::get_if<Choice>(&place);
            const bool isFlag =
                std::holds_alternative<bool*>(place) || std::holds_alternative<std::string (*)()>(place);
            const std::string chosen = choice == nullptr ? "" : joined(*choice);
            if (isOption && !isFlag) {
                values += "    '" + path + ":" + about.name + "') words='" + chosen + "' ;;\n";
            }
            words += about.rules.hidden ? "" : isOption ? std::string(" ") + about.name : " " + chosen;
        }
        for (const Command& part : command.parts) {
            words += std::string(" ") + part.name;
            steps += "      '" + path + ":" + part.name + "') path='" + path + " " + part.name + "' ;;\n";
        }
        places += "    '" + path + "') words='" + words + "' ;;\n";
        for (const Command& part : command.parts) {
            add(part, path + " " + part.name, common);
        }
    }

    std::string steps;  ///< from a command to its part
    std::string values; ///< of options
    std::string places; ///< what may come within a command

private:
    static std::string joined(const Choice& choice)
    {
        std::string words;
        for (const std::string& word : choice.words) {
            words += (words.empty() ? "" : " ") + word;
        }
        return words;
    }
};

} // namespace

std::string bashCompletion(const Command& program)
{
    std::string common = "--help";
    for (const Argument& argument : program.arguments) {
        common += argument.about.rules.hidden ? "" : std::string(" ") + argument.about.name;
    }
    Cases cases;
    for (const Command& part : program.parts) {
        cases.steps += std::string("      ':") + part.name + "') path=' " + part.name + "' ;;\n";
        cases.add(part, std::string(" ") + part.name, common);
    }
    std::string commands = common;
    for (const Command& part : program.parts) {
        commands += std::string(" ") + part.name;
    }
    for (const Argument& argument : program.arguments) {
        const Place place = program.run.place(argument);
        if (!std::holds_alternative<bool*>(place) && !std::holds_alternative<std::string (*)()>(place)) {
            cases.values += std::string("    *':") + argument.about.name + "') words='' ;;\n";
        }
    }
    return "_" + std::string(program.name) +
        "()\n{\n"
        "  local word path='' words='' i\n"
        "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
        "    word=${COMP_WORDS[i]}\n"
        "    case \"$path:$word\" in\n" +
        cases.steps +
        "    esac\n"
        "  done\n"
        "  case \"$path:${COMP_WORDS[COMP_CWORD-1]}\" in\n" +
        cases.values + "    *) case \"$path\" in\n    '') words='" + commands + "' ;;\n" + cases.places +
        "    esac ;;\n"
        "  esac\n"
        "  COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
        "}\n"
        "complete -o default -F _" +
        program.name + " " + program.name;
}

} // namespace dbservice
