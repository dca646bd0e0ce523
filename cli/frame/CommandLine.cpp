#include "frame/CommandLine.h"

#include "frame/Context.h"
#include "frame/Outcome.h"
#include "frame/Parser.h"
#include "session/Reach.h"
#include "text/Words.h"

#include <algorithm>
#include <clocale>

namespace tesselctl {
namespace {

/** A command line that cannot be read may still say which form its errors are to have. */
bool asksForJson(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string word = lowered(argv[i]);
        if (word == "--output=json" ||
            (word == "--output" && i + 1 < argc && lowered(argv[i + 1]) == "json")) {
            return true;
        }
    }
    return false;
}

std::string oneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

void checkOneOf(const Command& command, const Values& values)
{
    const auto& names = command.exactlyOneOf;
    const auto count =
        std::count_if(names.begin(), names.end(), [&](const auto& name) { return values.has(name); });
    if (names.empty() || count == 1) {
        return;
    }
    std::string list;
    for (const auto& name : names) {
        list += (list.empty() ? "" : name == names.back() ? " or " : ", ") + name;
    }
    throw UsageError((names.size() == 1 ? "give " : "give one of ") + list);
}

/** The SDK tells no more than that it failed; a look at the array may tell why. */
void tellUnreached(const ArrayAddress& array)
{
    const Reach reach = tryReach(array);
    if (!reach.reached) {
        throw Failure(reach.advice);
    }
}

ExitCode runCommand(const Parser& parser, Printer& printer)
{
    const Values values = parser.values();
    checkOneOf(*parser.command(), values);
    applyTransportOptions(values);
    Context context(values, printer);
    try {
        parser.command()->run(context);
    } catch (const OvraAPIException& error) {
        if (isTransportFailure(error)) {
            tellUnreached(context.session().address());
        }
        throw;
    }
    return context.exitCode();
}

} // namespace

int run(int argc, char** argv)
{
    std::setlocale(LC_CTYPE, "");
    Parser parser;
    Printer printer(asksForJson(argc, argv));
    try {
        parser.parse(argc, argv);
        return static_cast<int>(runCommand(parser, printer));
    } catch (const CLI::ParseError& error) {
        if (parser.answer(error)) {
            return 0;
        }
        const std::string word = parser.unknownWord();
        const std::string what = word.empty() ? oneLine(error.what()) : "there is no command '" + word + "'";
        return tell(printer, UsageError(what + "; see '" + parser.place() + " --help'"));
    } catch (const UsageError& error) {
        return tell(printer, UsageError(std::string(error.what()) + "; see '" + parser.place() + " --help'"));
    } catch (const std::exception& error) {
        return tell(printer, error);
    }
}

} // namespace tesselctl
