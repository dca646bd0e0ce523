#ifndef OVRA_LOG_LOGAPI_H
#define OVRA_LOG_LOGAPI_H

/**
 * The log library: a run log of text lines and an interface log of one record a call.
 *
 * Nothing here fails, throws or blocks its caller for longer than one write; every function may be called from any
 * thread, in any order. Calls before LogInit and after LogFini are accepted and dropped.
 */

#define OVRA_LOG_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts logging for a product.
 * @param productTag name of the product, first field of every line.
 * @param iniFile path of the configuration file; one that is missing leaves the defaults.
 * @param reserved pointer to an integer, or null; receives the number of the run-log level in force.
 * @param logDirectory directory of the log files, unless the configuration file names another.
 * @return 0 on success; -1 when neither that directory nor the per-user one can be written: lines are then
 *         dropped and counted.
 */
OVRA_LOG_API int LogInit(const char* productTag, const char* iniFile, int* reserved, const char* logDirectory);

/** Ends logging for a product; 0 on success, -1 when it was not started. */
OVRA_LOG_API int LogFini(const char* productTag);

/** One line of the run log. The text is data: no formatting is done, control bytes are escaped. */
OVRA_LOG_API void Log_Run_Debug(const char* productTag, const char* text);
OVRA_LOG_API void Log_Run_Info(const char* productTag, const char* text);
OVRA_LOG_API void Log_Run_Warn(const char* productTag, const char* text);
OVRA_LOG_API void Log_Run_Error(const char* productTag, const char* text);

/** One record of the interface log, of a call that succeeded (Info) or failed (Error). */
OVRA_LOG_API void Log_Interface_Info(const char* productTag, const char* interfaceType, const char* protocolType,
                                     const char* interfaceName, const char* sourceAddress,
                                     const char* targetAddress, const char* transactionId, const char* startTime,
                                     const char* endTime, const char* resultCode, const char* extension);
OVRA_LOG_API void Log_Interface_Error(const char* productTag, const char* interfaceType, const char* protocolType,
                                      const char* interfaceName, const char* sourceAddress,
                                      const char* targetAddress, const char* transactionId, const char* startTime,
                                      const char* endTime, const char* resultCode, const char* extension);

/** Lines dropped since the process started because they could not be written. */
OVRA_LOG_API unsigned long Log_Dropped_Count(void);

#ifdef __cplusplus
}
#endif

#endif
