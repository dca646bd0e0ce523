#include "frame/Parser.h"

#include <sstream>

namespace tesselctl {
namespace {

constexpr const char* FOOTER =
    "Exit codes: 0 success, 1 failure, 2 wrong command line, 3 error answer of the array, 4 not "
    "found.\n'tesselctl COMMAND --help' tells about a command; more is in tesselctl(1).";

/** A choice is taken in any case; what the command gets is the word of the table. */
void takeChoice(CLI::Option& option, const std::vector<std::string>& choices)
{
    if (!choices.empty()) {
        option.transform(CLI::IsMember(choices, CLI::ignore_case));
    }
}

CLI::App* deepest(CLI::App* app)
{
    while (!app->get_subcommands().empty()) {
        app = app->get_subcommands().front();
    }
    return app;
}

} // namespace

Parser::Parser()
{
    m_app.footer(FOOTER);
    m_app.set_version_flag("--version", "tesselctl " TESSELCTL_VERSION);
    m_app.require_subcommand(1);
    m_groups[{}] = &m_app;
    for (const auto& group : commandGroups()) {
        CLI::App* parent = groupFor({group.path.begin(), group.path.end() - 1});
        m_groups[group.path] = parent->add_subcommand(group.path.back(), group.summary);
        m_groups[group.path]->require_subcommand(1)->fallthrough();
    }
    for (const auto& option : globalOptions()) {
        addOption(m_app, option);
        m_globals.push_back({option.name, m_app.get_option(option.name)});
    }
    for (const auto& command : allCommands()) {
        add(command);
    }
}

CLI::App* Parser::groupFor(const std::vector<std::string>& path)
{
    return m_groups.at(path);
}

void Parser::addOption(CLI::App& app, const Option& option)
{
    CLI::Option* added = option.valueName.empty() ? app.add_flag(option.name, option.help)
                                                  : app.add_option(option.name, option.help)->expected(1);
    added->required(option.required);
    takeChoice(*added, option.choices);
    added->type_name(option.valueName);
}

void Parser::add(const Command& command)
{
    CLI::App* parent = groupFor({command.path.begin(), command.path.end() - 1});
    CLI::App* app = parent->add_subcommand(command.path.back(), command.summary)->fallthrough();
    app->final_callback([this, &command] { m_chosen = &command; });
    auto& given = m_given[&command];
    for (const auto& argument : command.arguments) {
        CLI::Option* added =
            app->add_option(argument.name, argument.help)->required(!argument.isOptional)->expected(1);
        takeChoice(*added, argument.choices);
        added->type_name("");
        given.push_back({argument.name, added});
    }
    for (const auto& option : command.options) {
        addOption(*app, option);
        given.push_back({option.name, app->get_option(option.name)});
    }
}

bool Parser::answer(const CLI::ParseError& error, Printer& printer)
{
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
        return false;
    }
    std::ostringstream text;
    m_app.exit(error, text, text);
    printer.write(text.str());
    return true;
}

Values Parser::values() const
{
    Values values;
    const auto take = [&](const Given& given) {
        if (given.option->count() > 0) {
            values.set(given.name, given.option->results().back());
        }
    };
    for (const auto& given : m_globals) {
        take(given);
    }
    if (m_chosen != nullptr) {
        for (const auto& given : m_given.at(m_chosen)) {
            take(given);
        }
    }
    return values;
}

std::string Parser::unknownWord() const
{
    const CLI::App* last = deepest(const_cast<CLI::App*>(&m_app));
    const auto words = m_app.remaining(true);
    return last->get_require_subcommand_min() > 0 && !words.empty() ? words.front() : "";
}

std::string Parser::place() const
{
    std::string words;
    for (CLI::App* app = deepest(const_cast<CLI::App*>(&m_app)); app != nullptr; app = app->get_parent()) {
        words.insert(0, words.empty() ? app->get_name() : app->get_name() + " ");
    }
    return words;
}

} // namespace tesselctl
