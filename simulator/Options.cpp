#include "Options.h"

#include "StateDir.h"
#include "base/Codes.h"
#include "wire/Sessions.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace arraysim {
namespace {

constexpr const char* ABOUT =
    "A block-storage array on this machine, to develop and test clients against: its management\n"
    "interface over HTTPS with JSON, sessions, objects that are kept across restarts, and the rules and\n"
    "error codes of a strict array. See docs/simulator.md for the interfaces and the codes.";

constexpr const char* FOOTER =
    "The password is taken from --password-file, else from the environment variable\n"
    "TESSEL_ARRAYSIM_PASSWORD, else it is made at the first start and kept in the file \"password\" of the\n"
    "state directory. Clients trust the file ca.pem of the state directory.\n\n"
    "Example: TESSEL_ARRAYSIM_PASSWORD=... tessel-arraysim --state-dir /tmp/array --control-port 0\n\n"
    "A command of --run finds the array in TESSEL_ARRAY, TESSEL_USER, TESSEL_PASSWORD and "
    "OVRA_REST_CA_FILE,\n"
    "and in TESSEL_ARRAYSIM_ADDRESS, _PORT, _CONTROL (an URL), _PINNED_KEY and _STATE (a directory).\n\n"
    "Example: tessel-arraysim --run tesselctl lun list\n\n"
    "SIGTERM and SIGINT end the array after the requests in progress, with status 0.";

void printCodes()
{
    for (const auto& entry : codeTable()) {
        std::cout << wireCode(entry.code) << "  " << entry.name << "  " << entry.meaning << "\n";
    }
}

/** Adds options to one group of the help; each shows its default. */
struct Group
{
    CLI::App& app;
    const char* const name;

    template <class Value>
    CLI::Option* operator()(const char* option, Value& value, const char* type, const char* about) const
    {
        return app.add_option(option, value, about)->capture_default_str()->type_name(type)->group(name);
    }
    void operator()(const char* flag, bool& value, const char* about) const
    {
        app.add_flag(flag, value, about)->group(name);
    }
};

void addPlace(const Group& option, Options& options)
{
    const CLI::Range port(0, 65535);
    option("--state-dir", options.stateDir, "DIR", "Keeps objects and certificates; made if missing");
    option("--listen", options.listen, "ADDRESS", "Address of the array's interface");
    option("--port", options.port, "N", "Its port; 0: a free one")->check(port);
    option("--port-file", options.portFile, "FILE", "Is written with the port once the array listens");
    option("--control-port", options.controlPort, "N",
           "Serve the control interface on this port of 127.0.0.1; 0: a free one")
        ->check(port)
        ->default_str("");
    option("--control-port-file", options.controlPortFile, "FILE", "Is written with the control port");
    CLI::Option* const certificate = option("--certificate", options.certificate, "FILE",
                                            "Serve this certificate (PEM) instead of an own one");
    CLI::Option* const key = option("--key", options.key, "FILE", "The key of --certificate (PEM)");
    certificate->needs(key);
    key->needs(certificate);
}

void addSessions(const Group& option, Options& options)
{
    option("--user", options.user, "NAME", "The user who may log in");
    option("--password-file", options.passwordFile, "FILE", "The password is the first line of this file");
    option("--session-limit", options.sessionLimit, "N", "Sessions that can be open at a time")
        ->check(CLI::Range(1, 100000));
    option("--connection-limit", options.connectionLimit, "N",
           "Connections that can be open at a time; those above are ended")
        ->check(CLI::Range(1, 100000));
    option("--session-timeout", options.sessionTimeout, "S", "Seconds without a request that end a session")
        ->check(CLI::Range(1, 100000000));
}

void addBehaviour(const Group& option, Options& options)
{
    option("--settle", options.settling.reads, "N",
           "A new object answers its first N reads by ID with code 1077949006");
    option("--settle-lungroup", options.settling.lunGroupReads, "N",
           "A new LUN group answers N reads with code 1077949001 first");
    option("--answer-time", options.answerMs, "MS", "Milliseconds that every answer takes");
    option("--busy", options.busyShare, "PERCENT",
           "Percent of the requests, drawn by chance, that are refused as busy")
        ->check(CLI::Range(0, 100));
    option("--busy-code", options.busyCode, "N", "The code of these refusals");
    option("--busy-seed", options.busySeed, "N", "The same seed refuses the same requests");
    option("--shift-codes", options.codeShift, "N",
           "Add N to the error codes that are this array's own, for clients that must not know them")
        ->check(CLI::Range(-1000000, 1000000));
    option("--company-id", options.companyId, "HEX", "The company ID in WWNs, six hexadecimal digits")
        ->check([](const std::string& id) {
            const bool good = id.size() == 6 && id.find_first_not_of("0123456789abcdef") == std::string::npos;
            return good ? std::string() : std::string("needs six lowercase hexadecimal digits");
        });
    option("--export-iscsi", options.exportIscsi, "IQN",
           "Show what mapping views expose as real disks: through this target of the kernel, which must\n"
           "exist. Needs root; meant for a virtual machine");
}

} // namespace

bool readOptions(int argc, char** argv, Options& options, int& status)
{
    // What follows --run is another program's, options too.
    char** const run =
        std::find_if(argv, argv + argc, [](const char* word) { return std::string(word) == "--run"; });
    const bool runs = run != argv + argc;
    if (runs) {
        options.command.assign(run + 1, argv + argc);
        options.port = 0;
        options.controlPort = 0;
        options.log = "";
    }
    CLI::App app(ABOUT, "tessel-arraysim");
    bool codes = false;
    app.footer(FOOTER);
    app.set_version_flag("--version", ARRAYSIM_VERSION);
    addPlace({app, "Where it lives and listens"}, options);
    addSessions({app, "Sessions"}, options);
    addBehaviour({app, "Behaviour"}, options);
    const Group other{app, "Other"};
    other("--log", options.log, "FILE", "Log of requests, without secrets; -: standard error, \"\": none");
    other("--stop-on-stdin-eof", options.stopOnStdinEof,
          "End when the standard input ends, and so with the process that holds its other end");
    app.add_flag(
           "--run",
           "Run the command that follows beside the array, and end as it ends: on free ports, with a state\n"
           "directory that goes with it, no log, and the environment that clients need (see below)")
        ->group(other.name);
    other("--error-codes", codes, "Print the error codes and what they mean, and end");

    status = 0;
    try {
        app.parse(static_cast<int>(run - argv), argv);
        if (runs && (options.command.empty() || options.stopOnStdinEof)) {
            throw CLI::ValidationError("--run", options.command.empty()
                                                    ? "needs a command"
                                                    : "leaves the standard input to the command");
        }
    } catch (const CLI::ParseError& end) {
        status = app.exit(end);
        return false;
    }
    options.temporary = runs && app.count("--state-dir") == 0;
    shiftOwnCodes(options.codeShift);
    if (codes) {
        printCodes();
        return false;
    }
    return true;
}

std::string loginPassword(const Options& options, const std::string& keptIn)
{
    if (!options.passwordFile.empty()) {
        return firstLine(options.passwordFile);
    }
    const char* given = std::getenv("TESSEL_ARRAYSIM_PASSWORD");
    if (given != nullptr && *given != '\0') {
        return given;
    }
    if (::access(keptIn.c_str(), F_OK) != 0) {
        writeWhole(keptIn, randomHex(12) + "\n", 0600);
    }
    return firstLine(keptIn);
}

} // namespace arraysim
