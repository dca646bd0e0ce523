#include "reference/Reference.h"

#include "frame/Context.h"

namespace tesselctl {
namespace {

/** A line of text must not begin a macro, nor a word be taken for one. */
std::string plain(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        result += c == '\\' ? "\\e" : std::string(1, c);
    }
    return !result.empty() && (result[0] == '.' || result[0] == '\'') ? "\\&" + result : result;
}

std::string optionLine(const Option& option)
{
    std::string text = ".It Fl " + option.name.substr(1);
    if (!option.valueName.empty()) {
        text += " Ar " + option.valueName;
    }
    return text + "\n" + plain(option.help) + (option.required ? " (required)" : "") + "\n";
}

std::string optionList(const std::vector<Option>& options)
{
    std::string text = ".Bl -tag -width Ds -compact\n";
    for (const auto& option : options) {
        text += optionLine(option);
    }
    return options.empty() ? "" : text + ".El\n";
}

std::string commandEntry(const Command& command)
{
    std::string text = ".It Cm";
    for (const auto& word : command.path) {
        text += " " + word;
    }
    for (const auto& argument : command.arguments) {
        text += (argument.isOptional ? " Op Ar " : " Ar ") + argument.name;
    }
    text += "\n" + plain(command.summary) + "\n";
    if (!command.exactlyOneOf.empty()) {
        text += ".Pp\nOne of these is to be given:";
        for (size_t i = 0; i < command.exactlyOneOf.size(); ++i) {
            text += "\n.Fl " + command.exactlyOneOf[i].substr(1) +
                    (i + 1 < command.exactlyOneOf.size() ? " ," : " .");
        }
        text += "\n";
    }
    return text + optionList(command.options);
}

void reference(Context& context)
{
    context.printer().result(context.text("FORM") == "bash" ? bashCompletion() : manualCommands(),
                             Json::Value());
}

} // namespace

std::string manualCommands()
{
    std::string text =
        ".Ss Options of every command\n" + optionList(globalOptions()) + ".Ss Commands\n.Bl -tag -width Ds\n";
    for (const auto& command : allCommands()) {
        text += commandEntry(command);
    }
    return text + ".El\n";
}

Commands referenceCommands()
{
    const Argument form{
        "FORM", "bash: the completion script; mdoc: the command list of the manual page", {"bash", "mdoc"}};
    return {{{"reference"},
             "print the completion for bash, or the commands for the manual page",
             {form},
             {},
             {},
             reference}};
}

} // namespace tesselctl
