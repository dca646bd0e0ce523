#include "host/RescanCommand.h"

#include "host/FileContent.h"
#include "session/Log.h"

#include <cstdlib>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace ovra::tessel {

namespace {

const char* const RESCAN_AND_REMOVE = "rescan-scsi-bus.sh -r >/dev/null 2>&1";
const char* const RESCAN_ONLY = "rescan-scsi-bus.sh >/dev/null 2>&1";

// Where the shell looks when the environment has no PATH.
const char* const DEFAULT_PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

bool isProgram(const std::string& path)
{
    struct stat info = {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

bool holds(const std::string& text, const char* word)
{
    return text.find(word) != std::string::npos;
}

} // namespace

std::string findInPath(const std::string& name, const std::string& searchPath)
{
    for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
        end = searchPath.find(':', start);
        const std::string directory = searchPath.substr(start, end - start);
        std::string path = (directory.empty() ? "." : directory) + "/" + name;
        if (isProgram(path)) {
            return path;
        }
    }
    return std::string();
}

bool readsOnlyOldInquiry(const std::string& script)
{
    // The qualifier and the type are read by a pattern each: "PQual=0  Device_type=0" then, "PQual=0  PDT=0"
    // now. A script that was mended has both spellings in one pattern, or a second pattern.
    bool oldQualifier = false, newQualifier = false, oldType = false, newType = false;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        const size_t code = line.find_first_not_of(" \t");
        if (code == std::string::npos || line[code] == '#') {
            continue;
        }
        const bool isNew = holds(line, "PDT");
        if (holds(line, "PQual=")) {
            (isNew || !holds(line, "Device") ? newQualifier : oldQualifier) = true;
        }
        oldType = oldType || (holds(line, "Device_type=") && !isNew);
        newType = newType || isNew;
    }
    return (oldQualifier && !newQualifier) || (oldType && !newType);
}

bool printsOldInquiry(const std::string& sgInq)
{
    return holds(sgInq, "Device_type=") && !holds(sgInq, "PDT=");
}

std::string rescanCommand()
{
    const char* const environment = getenv("PATH");
    const std::string searchPath = environment != nullptr ? environment : DEFAULT_PATH;
    const std::string script = findInPath("rescan-scsi-bus.sh", searchPath);
    if (script.empty() || !readsOnlyOldInquiry(contentOf(script)) ||
        printsOldInquiry(contentOf(findInPath("sg_inq", searchPath)))) {
        return RESCAN_AND_REMOVE;
    }
    COMMLOG(
        OS_LOG_ERROR,
        "%s takes healthy disks for gone and would remove them: rescanning without -r, so that disks that "
        "are gone stay. Install sg3-utils 1.48 or later.",
        script.c_str());
    return RESCAN_ONLY;
}

} // namespace ovra::tessel
