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
    const char* const place = "Where it lives and listens";
    app.add_option("--state-dir", options.stateDir, "Keeps objects and certificates; made if missing")
        ->capture_default_str()
        ->type_name("DIR")
        ->group(place);
    app.add_option("--listen", options.listen, "Address of the array's interface")
        ->capture_default_str()
        ->type_name("ADDRESS")
        ->group(place);
    app.add_option("--port", options.port, "Its port; 0: a free one")
        ->capture_default_str()
        ->check(CLI::Range(0, 65535))
        ->type_name("N")
        ->group(place);
    app.add_option("--port-file", options.portFile, "Is written with the port once the array listens")
        ->type_name("FILE")
        ->group(place);
    app.add_option("--control-port", options.controlPort,
                   "Serve the control interface on this port of 127.0.0.1; 0: a free one")
        ->check(CLI::Range(0, 65535))
        ->type_name("N")
        ->group(place);
    app.add_option("--control-port-file", options.controlPortFile, "Is written with the control port")
        ->type_name("FILE")
        ->group(place);
    app.add_option("--certificate", options.certificate, "Serve this certificate (PEM) instead of an own one")
        ->type_name("FILE")
        ->group(place);
    app.add_option("--key", options.key, "The key of --certificate (PEM)")->type_name("FILE")->group(place);
    app.get_option("--certificate")->needs("--key");
    app.get_option("--key")->needs("--certificate");

    const char* const sessions = "Sessions";
    app.add_option("--user", options.user, "The user who may log in")
        ->capture_default_str()
        ->type_name("NAME")
        ->group(sessions);
    app.add_option("--password-file", options.passwordFile, "The password is the first line of this file")
        ->type_name("FILE")
        ->group(sessions);
    app.add_option("--session-limit", options.sessionLimit, "Sessions that can be open at a time")
        ->capture_default_str()
        ->check(CLI::Range(1, 100000))
        ->type_name("N")
        ->group(sessions);
    app.add_option("--connection-limit", options.connectionLimit,
                   "Connections that can be open at a time; those above are ended")
        ->capture_default_str()
        ->check(CLI::Range(1, 100000))
        ->type_name("N")
        ->group(sessions);
    app.add_option("--session-timeout", options.sessionTimeout,
                   "Seconds without a request that end a session")
        ->capture_default_str()
        ->check(CLI::Range(1, 100000000))
        ->type_name("S")
        ->group(sessions);

    const char* const behaviour = "Behaviour";
    app.add_option("--settle", options.settling.reads,
                   "A new object answers its first N reads by ID with code 1077949006")
        ->capture_default_str()
        ->type_name("N")
        ->group(behaviour);
    app.add_option("--settle-lungroup", options.settling.lunGroupReads,
                   "A new LUN group answers N reads with code 1077949001 first")
        ->capture_default_str()
        ->type_name("N")
        ->group(behaviour);
    app.add_option("--answer-time", options.answerMs, "Milliseconds that every answer takes")
        ->capture_default_str()
        ->type_name("MS")
        ->group(behaviour);
    app.add_option("--busy", options.busyShare,
                   "Percent of the requests, drawn by chance, that are refused as busy")
        ->capture_default_str()
        ->check(CLI::Range(0, 100))
        ->type_name("PERCENT")
        ->group(behaviour);
    app.add_option("--busy-code", options.busyCode, "The code of these refusals")
        ->capture_default_str()
        ->type_name("N")
        ->group(behaviour);
    app.add_option("--busy-seed", options.busySeed, "The same seed refuses the same requests")
        ->capture_default_str()
        ->type_name("N")
        ->group(behaviour);
    app.add_option("--shift-codes", options.codeShift,
                   "Add N to the error codes that are this array's own, for clients that must not know them")
        ->capture_default_str()
        ->check(CLI::Range(-1000000, 1000000))
        ->type_name("N")
        ->group(behaviour);
    app.add_option("--company-id", options.companyId, "The company ID in WWNs, six hexadecimal digits")
        ->capture_default_str()
        ->check([](const std::string& id) {
            const bool good = id.size() == 6 && id.find_first_not_of("0123456789abcdef") == std::string::npos;
            return good ? std::string() : std::string("needs six lowercase hexadecimal digits");
        })
        ->type_name("HEX")
        ->group(behaviour);

    app.add_option(
           "--export-iscsi", options.exportIscsi,
           "Show what mapping views expose as real disks: through this target of the kernel, which must\n"
           "exist. Needs root; meant for a virtual machine")
        ->type_name("IQN")
        ->group(behaviour);

    const char* const others = "Other";
    app.add_option("--log", options.log, "Log of requests, without secrets; -: standard error, \"\": none")
        ->capture_default_str()
        ->type_name("FILE")
        ->group(others);
    app.add_flag("--stop-on-stdin-eof", options.stopOnStdinEof,
                 "End when the standard input ends, and so with the process that holds its other end")
        ->group(others);
    app.add_flag(
           "--run",
           "Run the command that follows beside the array, and end as it ends: on free ports, with a state\n"
           "directory that goes with it, no log, and the environment that clients need (see below)")
        ->group(others);
    app.add_flag("--error-codes", codes, "Print the error codes and what they mean, and end")->group(others);

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
