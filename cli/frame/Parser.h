#ifndef FRAME_PARSER_H
#define FRAME_PARSER_H

#include "kernel/Command.h"
#include "output/Printer.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tesselctl {

/** The command table as a parser. */
class Parser
{
public:
    Parser();

    /** Throws CLI::ParseError, which covers the calls for help and version. */
    void parse(int argc, char** argv) { m_app.parse(argc, argv); }

    /** Prints help or version for a CLI::ParseError that asks for it; false when it is a mistake. */
    bool answer(const CLI::ParseError& error, Printer& printer);

    /** The command that the line names, and what it gives; null when a group stands alone. */
    const Command* command() const { return m_chosen; }
    Values values() const;

    /** The words up to where the line went wrong: "tesselctl lun create". */
    std::string place() const;

    /** The word that stands where a command is expected; empty when none does. */
    std::string unknownWord() const;

private:
    CLI::App* groupFor(const std::vector<std::string>& path);
    void add(const Command& command);
    void addOption(CLI::App& app, const Option& option);

    struct Given
    {
        std::string name;
        CLI::Option* option;
    };

    CLI::App m_app{"Manages the LUNs of an array and the disks of this host", "tesselctl"};
    std::map<std::vector<std::string>, CLI::App*> m_groups;
    std::vector<Given> m_globals;
    std::map<const Command*, std::vector<Given>> m_given;
    const Command* m_chosen = nullptr;
};

} // namespace tesselctl

#endif
