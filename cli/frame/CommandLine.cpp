#include "frame/CommandLine.h"

#include "frame/Context.h"
#include "frame/Outcome.h"
#include "frame/Parser.h"
#include "session/Advice.h"
#include "text/Words.h"

#include <algorithm>
#include <clocale>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

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

void requireOutput()
{
    const bool isClosed = fcntl(STDOUT_FILENO, F_GETFD) < 0;
    // The place of a closed one would go to the next file or connection, and what is printed with it.
    int descriptor = 0;
    while ((descriptor = open("/dev/null", O_RDWR)) >= 0 && descriptor <= STDERR_FILENO) {
    }
    close(descriptor);
    if (isClosed) {
        throw Failure("standard output is closed");
    }
}

/** As a process ends that does not look after SIGPIPE. */
int endUnread()
{
    if (std::signal(SIGPIPE, SIG_DFL) != SIG_IGN) {
        std::raise(SIGPIPE);
    }
    return 128 + SIGPIPE;
}

/** No code is known that every array gives for a request whose session is over; its keep-alive tells. */
void tellSessionOver(Session& session, const OvraAPIExceptionWithErrCode& error)
{
    const std::string message = outcomeOf(error).message; // the keep-alive has a failure of its own
    if (!session.keepAlive()) {
        throw Failure(message + "; the keep-alive fails too: if the session is over, log in again",
                      ExitCode::ARRAY_ERROR, error.getErrCode());
    }
}

/** False where the line asks for help or the version, which is printed then. */
bool parse(Parser& parser, int argc, char** argv, Printer& printer)
{
    try {
        parser.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& error) {
        if (parser.answer(error, printer)) {
            return false;
        }
        const std::string word = parser.unknownWord();
        throw UsageError(word.empty() ? oneLine(error.what()) : "there is no command '" + word + "'");
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
    } catch (const OvraAPIExceptionWithErrCode& error) {
        tellSessionOver(context.session(), error);
        throw;
    } catch (const OvraAPIException& error) {
        const std::string advice =
            transportAdvice(ovra::tessel::failureOf(error), context.session().address().text());
        if (!advice.empty()) {
            throw Failure(advice);
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
        requireOutput();
        return static_cast<int>(parse(parser, argc, argv, printer) ? runCommand(parser, printer)
                                                                   : ExitCode::SUCCESS);
    } catch (const OutputLost& lost) {
        return lost.isUnread() ? endUnread() : tell(printer, lost);
    } catch (const UsageError& error) {
        return tell(printer, UsageError(std::string(error.what()) + "; see '" + parser.place() + " --help'"));
    } catch (const std::exception& error) {
        return tell(printer, error);
    }
}

} // namespace tesselctl
