#include "frame/Context.h"
#include "logs/LogFiles.h"
#include "text/Display.h"

#include <chrono>
#include <fstream>
#include <thread>

namespace tesselctl {
namespace {

constexpr std::chrono::milliseconds LOOK_EVERY(200);

/** Shows what is written to the logs from now on, whichever file it goes to. */
class Follower
{
public:
    Follower(std::string directory, std::string kind, Printer& printer)
        : m_directory(std::move(directory)), m_kind(std::move(kind)), m_printer(printer)
    {
        each([this](const std::string& file) {
            std::ifstream stream(file, std::ios::binary | std::ios::ate);
            m_shown[file] = stream ? std::streamoff(stream.tellg()) : 0;
        });
    }

    [[noreturn]] void run()
    {
        for (;;) {
            each([this](const std::string& file) { show(file); });
            std::this_thread::sleep_for(LOOK_EVERY);
        }
    }

private:
    template <class Look>
    void each(const Look& look)
    {
        for (const auto& [kind, files] : logFilesIn(m_directory)) {
            for (const std::string& file :
                 m_kind.empty() || kind == m_kind ? files : std::vector<std::string>()) {
                look(file);
            }
        }
    }

    /** Whole lines alone: the rest of one comes with the next look. */
    void show(const std::string& file)
    {
        std::streamoff& shown = m_shown[file];
        std::ifstream stream(file, std::ios::binary);
        stream.seekg(shown);
        for (std::string line; std::getline(stream, line) && !stream.eof();) {
            shown += static_cast<std::streamoff>(line.size() + 1);
            m_printer.write(printable(line) + "\n");
        }
    }

    const std::string m_directory;
    const std::string m_kind;
    Printer& m_printer;
    std::map<std::string, std::streamoff> m_shown; ///< bytes of each file
};

void logs(Context& context)
{
    const std::string directory = logDirectoryInUse();
    if (context.has("--follow")) {
        Follower(directory, context.text("--log"), context.printer()).run();
    }
    Json::Value json(Json::objectValue);
    json["directory"] = validUtf8(directory);
    std::string text = "directory  " + printable(directory) + "\n";
    for (const auto& [kind, files] : logFilesIn(directory)) {
        if (!context.has("--log") || context.text("--log") == kind) {
            json["newest"][kind] = validUtf8(files.back());
            text += (kind + "           ").substr(0, 11) + printable(files.back()) + "\n";
        }
    }
    context.printer().result(text, json);
}

} // namespace

Commands logCommands()
{
    return {
        {{"logs"},
         "show where the logs are, or what is written to them",
         {},
         {{"--follow", "", "show each line that is written from now on, until Ctrl-C"},
          {"--log", "KIND", "run, interface or audit; all without it", false, {"run", "interface", "audit"}}},
         {},
         logs}};
}

} // namespace tesselctl
