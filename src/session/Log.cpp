#include "session/Log.h"

#include <ovra/bounds/bounds.h>
#include <ovra/log/LogAPI.h>

#include <cstdarg>
#include <cstring>
#include <string>

using namespace ovra::tessel;

namespace {

constexpr const char* LOG_LIBRARY = "libOvraLogAPI.so";
constexpr unsigned int PATH_SIZE = 1024;
constexpr unsigned int LINE_SIZE = 513; // 512 characters and the terminator

using RunLog = void (*)(const char*, const char*);
constexpr RunLog RUN_LOGS[] = {Log_Run_Debug, Log_Run_Info, Log_Run_Warn, Log_Run_Error};

} // namespace

int ovra::tessel::findModuleDirectory(std::FILE* maps, const char* moduleName, char* dir,
                                      unsigned int dirSize)
{
    char line[PATH_SIZE];
    while (std::fgets(line, sizeof(line), maps) != nullptr) {
        char* const path = std::strchr(line, '/');
        if (path == nullptr || std::strstr(line, "r-xp") == nullptr ||
            std::strstr(line, moduleName) == nullptr) {
            continue;
        }
        char* const end = std::strrchr(path, '/');
        const auto length = static_cast<size_t>(end - path);
        if (length == 0 || length >= dirSize) {
            return -1;
        }
        return strncpy_s(dir, dirSize, path, length) == 0 ? 0 : -1;
    }
    return -1;
}

int GetModuleFilePath(const char* moduleName, char* dir, unsigned int dirSize)
{
    std::FILE* const maps = std::fopen("/proc/self/maps", "re");
    if (maps == nullptr) {
        return -1;
    }
    const int result = findModuleDirectory(maps, moduleName, dir, dirSize);
    std::fclose(maps);
    return result;
}

void getCurrentPath(char* dir, unsigned int dirSize)
{
    char found[PATH_SIZE] = {};
    if (GetModuleFilePath(LOG_LIBRARY, found, sizeof(found)) == 0) {
        strcpy_s(dir, dirSize, found);
    }
}

int LOG_INIT()
{
    char dir[LINE_SIZE] = {};
    getCurrentPath(dir, sizeof(dir));
    const std::string iniFile = std::string(dir) + "/Tessel_API.ini";
    const std::string logDirectory = std::string(dir) + "/logs/";
    int level = -1;
    return LogInit(PRODUCT_TAG, iniFile.c_str(), &level, logDirectory.c_str()) == 0 ? 0 : -1;
}

int LOG_EXIT()
{
    return LogFini(PRODUCT_TAG);
}

void COMMLOG(OS_LOGLEVEL level, const char* format, ...)
{
    char line[LINE_SIZE] = {};
    va_list args;
    va_start(args, format);
    const int written = vsnprintf_s(line, sizeof(line), sizeof(line) - 1, format, args);
    va_end(args);
    if (written < 0) {
        // A text that was cut is written a second time: docs/oddities.md#cut-at-512
        Log_Run_Info(PRODUCT_TAG, line);
    }
    if (level >= OS_LOG_DEBUG && level <= OS_LOG_ERROR) {
        RUN_LOGS[level](PRODUCT_TAG, line);
    }
}
