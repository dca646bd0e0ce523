#ifndef SIMULATOR_OPTIONS_H
#define SIMULATOR_OPTIONS_H

#include "model/World.h"

#include <string>
#include <vector>

namespace arraysim {

/** What the command line asks for. */
struct Options
{
    std::string stateDir = "tessel-arraysim.state";
    std::string listen = "127.0.0.1";
    int port = 8088;
    std::string portFile;
    int controlPort = -1; ///< -1: no control interface
    std::string controlPortFile;
    std::string user = "admin";
    std::string passwordFile;
    std::size_t sessionLimit = 100;
    std::size_t connectionLimit = 1000;
    unsigned sessionTimeout = 1200;
    Settling settling;
    unsigned answerMs = 0;  ///< before every answer
    unsigned busyShare = 0; ///< percent of the requests
    int busyCode = 1077949001;
    unsigned busySeed = 1;
    int codeShift = 0; ///< of the codes that are this array's own
    std::string companyId = "001405";
    std::string exportIscsi; ///< target of the kernel that shows what is exposed; empty: none
    std::string certificate;
    std::string key;
    std::string log = "-";
    bool stopOnStdinEof = false;
    std::vector<std::string> command; ///< runs beside the array, which ends with it; empty: none
    bool temporary = false;           ///< the state directory is to be made, and goes in the end
};

/** Reads the command line. @return false when the program has nothing more to do and ends with status. */
bool readOptions(int argc, char** argv, Options& options, int& status);

/**
 * The password that logins must give: of the file, of TESSEL_ARRAYSIM_PASSWORD, or one that is made at
 * the first start and kept in the state directory. Throws std::runtime_error.
 */
std::string loginPassword(const Options& options, const std::string& keptIn);

} // namespace arraysim

#endif
