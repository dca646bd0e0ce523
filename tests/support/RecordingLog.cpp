// The interface of the log library, implemented by the recorder.

#include "support/RecordingPlatform.h"

#include <ovra/log/LogAPI.h>

namespace {

void runLine(const char* level, const char* productTag, const char* text)
{
    RecordingPlatform::get().tag(productTag);
    RecordingPlatform::get().note(std::string(level) + ": " + text);
}

} // namespace

int LogInit(const char* productTag, const char* iniFile, int* level, const char* logDirectory)
{
    RecordingPlatform::get().tag(productTag);
    RecordingPlatform::get().note(std::string("LogInit ") + iniFile + " " + std::to_string(*level) + " " +
                                  logDirectory);
    return RecordingPlatform::get().logInitResult;
}

int LogFini(const char* productTag)
{
    RecordingPlatform::get().tag(productTag);
    RecordingPlatform::get().note("LogFini");
    return RecordingPlatform::get().logFiniResult;
}

void Log_Run_Debug(const char* productTag, const char* text)
{
    runLine("debug", productTag, text);
}
void Log_Run_Info(const char* productTag, const char* text)
{
    runLine("info", productTag, text);
}
void Log_Run_Warn(const char* productTag, const char* text)
{
    runLine("warn", productTag, text);
}
void Log_Run_Error(const char* productTag, const char* text)
{
    runLine("error", productTag, text);
}

void Log_Interface_Info(const char* a, const char* b, const char* c, const char* d, const char* e,
                        const char* f, const char* g, const char* h, const char* i, const char* j,
                        const char* k)
{
    RecordingPlatform::get().record(false, {a, b, c, d, e, f, g, h, i, j, k});
}

void Log_Interface_Error(const char* a, const char* b, const char* c, const char* d, const char* e,
                         const char* f, const char* g, const char* h, const char* i, const char* j,
                         const char* k)
{
    RecordingPlatform::get().record(true, {a, b, c, d, e, f, g, h, i, j, k});
}
