#ifndef KERNEL_COMMAND_H
#define KERNEL_COMMAND_H

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tesselctl {

class Context;

/** One option of a command, as help, completion and the check of the command line know it. */
struct Option
{
    std::string name;      ///< with its dashes: "--size"
    std::string valueName; ///< "SIZE"; empty for an option without a value
    std::string help;
    bool required = false;
    std::vector<std::string> choices = {}; ///< the only values that are taken; empty: any
    bool isFile = false;                   ///< the value is the path of a file

    Option asRequired() const
    {
        Option copy = *this;
        copy.required = true;
        return copy;
    }
};

/** One word that stands without an option name. */
struct Argument
{
    std::string name; ///< "ID"
    std::string help;
    std::vector<std::string> choices = {};
    bool isOptional = false; ///< of the last one alone
};

/** What a command line gave, by the name of the option or argument. */
class Values
{
public:
    void set(const std::string& name, const std::string& value) { m_values[name] = value; }
    bool has(const std::string& name) const { return m_values.count(name) != 0; }
    std::string text(const std::string& name, const std::string& otherwise = "") const
    {
        const auto found = m_values.find(name);
        return found == m_values.end() ? otherwise : found->second;
    }

private:
    std::map<std::string, std::string> m_values;
};

/** One row of the table that the whole command line is made of. */
struct Command
{
    std::vector<std::string> path; ///< {"lun", "create"}
    std::string summary;
    std::vector<Argument> arguments;
    std::vector<Option> options;
    std::vector<std::string> exactlyOneOf; ///< options of which one and only one is to be given
    std::function<void(Context&)> run;
};

using Commands = std::vector<Command>;

/** A word of the command line that only groups others: {"lun"}, "LUNs of the array". */
struct CommandGroup
{
    std::vector<std::string> path;
    std::string summary;
};

/** Every group and every command, in the order of the help. */
const std::vector<CommandGroup>& commandGroups();
const Commands& allCommands();

/** The options that every command takes. */
const std::vector<Option>& globalOptions();

} // namespace tesselctl

#endif
