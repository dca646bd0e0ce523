#include <ovra/log/LogAPI.h>
#include <ovra/threads/NoCancellation.h>

#include "LogService.h"

#include <cerrno>

using namespace ovra::log;

namespace {

const char* text(const char* given)
{
    return given == nullptr ? "" : given;
}

/// Runs one call whole; neither an exception nor a change of errno reaches the caller.
template <class Call>
int contained(Call call)
{
    const ovra::NoCancellation whole;
    const int before = errno;
    int result = -1;
    try {
        result = call(LogService::ofProcess());
    } catch (...) {
        result = -1;
    }
    errno = before;
    return result;
}

template <class Write>
void writeLine(Write write)
{
    contained([&](LogService& service) {
        try {
            write(service);
        } catch (...) {
            service.drop();
        }
        return 0;
    });
}

void run(spdlog::level::level_enum level, const char* productTag, const char* line)
{
    writeLine([&](LogService& service) { service.run(level, text(productTag), text(line)); });
}

} // namespace

int LogInit(const char* productTag, const char* iniFile, int* reserved, const char* logDirectory)
{
    return contained([&](LogService& service) {
        const int result = service.start(text(productTag), text(iniFile), text(logDirectory));
        if (reserved != nullptr) {
            *reserved = service.levelInForce();
        }
        return result;
    });
}

int LogFini(const char* productTag)
{
    return contained([&](LogService& service) { return service.stop(text(productTag)); });
}

void Log_Run_Debug(const char* productTag, const char* line)
{
    run(spdlog::level::debug, productTag, line);
}
void Log_Run_Info(const char* productTag, const char* line)
{
    run(spdlog::level::info, productTag, line);
}
void Log_Run_Warn(const char* productTag, const char* line)
{
    run(spdlog::level::warn, productTag, line);
}
void Log_Run_Error(const char* productTag, const char* line)
{
    run(spdlog::level::err, productTag, line);
}

void Log_Interface_Info(const char* productTag, const char* interfaceType, const char* protocolType,
                        const char* interfaceName, const char* sourceAddress, const char* targetAddress,
                        const char* transactionId, const char* startTime, const char* endTime,
                        const char* resultCode, const char* extension)
{
    writeLine([&](LogService& service) {
        service.interfaceCall(spdlog::level::info,
                              {text(productTag), text(interfaceType), text(protocolType), text(interfaceName),
                               text(sourceAddress), text(targetAddress), text(transactionId), text(startTime),
                               text(endTime), text(resultCode), text(extension)});
    });
}

void Log_Interface_Error(const char* productTag, const char* interfaceType, const char* protocolType,
                         const char* interfaceName, const char* sourceAddress, const char* targetAddress,
                         const char* transactionId, const char* startTime, const char* endTime,
                         const char* resultCode, const char* extension)
{
    writeLine([&](LogService& service) {
        service.interfaceCall(spdlog::level::err,
                              {text(productTag), text(interfaceType), text(protocolType), text(interfaceName),
                               text(sourceAddress), text(targetAddress), text(transactionId), text(startTime),
                               text(endTime), text(resultCode), text(extension)});
    });
}

int Log_Audit(const char* record)
{
    return contained([&](LogService& service) { return service.audit(text(record)); });
}

const char* Log_Directory(void)
{
    const char* directory = "";
    contained([&](LogService& service) {
        directory = service.directory();
        return 0;
    });
    return directory;
}

unsigned long Log_Dropped_Count(void)
{
    unsigned long dropped = 0;
    contained([&](LogService& service) {
        dropped = service.dropped();
        return 0;
    });
    return dropped;
}
