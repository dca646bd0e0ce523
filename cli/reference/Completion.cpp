#include "reference/Reference.h"

#include "kernel/Command.h"
#include "text/Words.h"

#include <map>
#include <set>

namespace tesselctl {
namespace {

std::string spaced(const std::vector<std::string>& words)
{
    return joined(words, " ");
}

/** What can follow a path of words: further words of commands, or options. */
std::map<std::string, std::vector<std::string>> wordsAfter()
{
    std::map<std::string, std::vector<std::string>> after;
    const auto addWord = [&](const std::vector<std::string>& path) {
        after[spaced({path.begin(), path.end() - 1})].push_back(path.back());
    };
    for (const auto& group : commandGroups()) {
        addWord(group.path);
    }
    for (const auto& command : allCommands()) {
        addWord(command.path);
        auto& words = after[spaced(command.path)];
        for (const auto& argument : command.arguments) {
            words.insert(words.end(), argument.choices.begin(), argument.choices.end());
        }
        for (const auto& option : command.options) {
            words.push_back(option.name);
        }
    }
    return after;
}

template <class Visit>
void forEachOption(Visit visit)
{
    for (const auto& option : globalOptions()) {
        visit(option);
    }
    for (const auto& command : allCommands()) {
        for (const auto& option : command.options) {
            visit(option);
        }
    }
}

/** What follows an option that takes a value, as bash code; empty where nothing can be proposed. */
std::string proposals(const Option& option)
{
    if (option.isFile) {
        return "compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\")); ";
    }
    return option.choices.empty()
               ? ""
               : "COMPREPLY=($(compgen -W \"" + spaced(option.choices) + "\" -- \"$current\")); ";
}

std::string valueCases()
{
    std::map<std::string, std::set<std::string>> names;
    forEachOption([&](const Option& option) {
        if (!option.valueName.empty()) {
            names[proposals(option)].insert(option.name);
        }
    });
    std::string text;
    for (const auto& [code, options] : names) {
        const std::string alternatives = joined({options.begin(), options.end()}, " | ");
        text.append("        ").append(alternatives).append(") ").append(code).append("return ;;\n");
    }
    return text;
}

std::string valueOptions()
{
    std::set<std::string> names;
    forEachOption([&](const Option& option) {
        if (!option.valueName.empty()) {
            names.insert(option.name);
        }
    });
    return spaced({names.begin(), names.end()});
}

} // namespace

std::string bashCompletion()
{
    std::string globals;
    for (const auto& option : globalOptions()) {
        globals += option.name + " ";
    }
    std::string paths;
    std::string words;
    for (const auto& [path, following] : wordsAfter()) {
        paths += path.empty() ? "" : (paths.empty() ? "'" : " | '") + path + "'";
        words += "        '" + path + "') words='" + spaced(following) + "' ;;\n";
    }
    return "# Completion of tesselctl for bash; made by 'tesselctl reference bash'.\n\n"
           "_tesselctl()\n{\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    local path='' words='' word i\n"
           "    local takes_value=' " +
           valueOptions() +
           " '\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        word=${COMP_WORDS[i]}\n"
           "        if [[ $takes_value == *\" $word \"* ]]; then\n"
           "            ((i++))\n"
           "            continue\n"
           "        fi\n"
           "        case \"$path${path:+ }$word\" in\n"
           "            " +
           paths +
           ")\n"
           "                path+=\"${path:+ }$word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case $previous in\n" +
           valueCases() +
           "    esac\n"
           "    case $path in\n" +
           words +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words " +
           globals +
           "--help\" -- \"$current\"))\n"
           "}\n\n"
           "complete -F _tesselctl tesselctl\n";
}

} // namespace tesselctl
