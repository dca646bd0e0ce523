#include "ovra/disk/RescanScript.h"

#include "ovra/disk/Files.h"

#include <algorithm>
#include <sys/stat.h>
#include <vector>

namespace ovra::disk {
namespace {

constexpr size_t MOST_SCRIPTS = 16; // a chain of wrappers is shorter

bool holds(const std::string& text, const char* word)
{
    return text.find(word) != std::string::npos;
}

/** The lines of a script that are no comments. */
std::vector<std::string> codeOf(const std::string& script)
{
    std::vector<std::string> lines = linesOf(script);
    const auto isNone = [](const std::string& line) {
        const size_t code = line.find_first_not_of(" \t");
        return code == std::string::npos || line[code] == '#';
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isNone), lines.end());
    return lines;
}

/** Which spellings of an answer to INQUIRY a script looks for. */
struct Reading
{
    // The qualifier and the type are read by a pattern each: "PQual=0  Device_type=0" then, "PQual=0  PDT=0"
    // now. A script that was mended has both spellings in one pattern, or a second pattern.
    bool oldQualifier = false, newQualifier = false, oldType = false, newType = false;

    explicit Reading(const std::string& script)
    {
        for (const std::string& line : codeOf(script)) {
            const bool isNew = holds(line, "PDT");
            if (holds(line, "PQual=")) {
                (isNew || !holds(line, "Device") ? newQualifier : oldQualifier) = true;
            }
            oldType = oldType || (holds(line, "Device_type=") && !isNew);
            newType = newType || isNew;
        }
    }

    bool isHarmful() const { return (oldQualifier && !newQualifier) || (oldType && !newType); }
    bool isNone() const { return !oldQualifier && !newQualifier && !oldType && !newType; }
};

/** Not one of the folders, devices and files of the kernel that a script names as well. */
bool isScript(const std::string& file)
{
    const bool isKernels = file.compare(0, 5, "/sys/") == 0 || file.compare(0, 6, "/proc/") == 0;
    struct stat status = {};
    return !isKernels && stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           contentThere(file).compare(0, 2, "#!") == 0;
}

/** The scripts that a text names with their whole paths. */
std::vector<std::string> scriptsIn(const std::string& text)
{
    constexpr const char* ENDS = " \t\"'`;|&()<>{}=,";
    std::vector<std::string> scripts;
    for (const std::string& line : codeOf(text)) {
        for (size_t at = line.find('/'); at != std::string::npos; at = line.find('/', at)) {
            const size_t end = std::min(line.find_first_of(ENDS, at), line.size());
            const std::string file = line.substr(at, end - at);
            const bool isWhole = at == 0 || std::string(ENDS).find(line[at - 1]) != std::string::npos;
            if (isWhole && isScript(file)) {
                scripts.push_back(file);
            }
            at = end;
        }
    }
    return scripts;
}

} // namespace

bool readsOnlyOldInquiry(const std::string& script)
{
    return Reading(script).isHarmful();
}

bool printsOldInquiry(const std::string& sgInq)
{
    return holds(sgInq, "Device_type=") && !holds(sgInq, "PDT=");
}

std::string harmfulRescanScript(const std::string& path)
{
    const std::vector<std::string> installed = findAllInPath(RESCAN_SCRIPT, path);
    if (installed.empty() || printsOldInquiry(contentOf(findInPath("sg_inq", path)))) {
        return std::string();
    }
    std::vector<std::string> scripts = {installed.front()};
    for (size_t i = 0; i < scripts.size() && i < MOST_SCRIPTS; ++i) {
        const std::string text = contentThere(scripts[i]);
        const Reading reading(text);
        if (reading.isHarmful()) {
            return scripts[i];
        }
        if (reading.isNone()) {
            std::vector<std::string> called = scriptsIn(text);
            called.insert(called.end(), installed.begin(), installed.end());
            for (const std::string& script : called) {
                if (std::find(scripts.begin(), scripts.end(), script) == scripts.end()) {
                    scripts.push_back(script);
                }
            }
        }
    }
    return std::string();
}

} // namespace ovra::disk
