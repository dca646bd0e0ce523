#ifndef OVRA_LOG_LOGAPI_H
#define OVRA_LOG_LOGAPI_H

/**
 * @file
 * The log library: a run log of text lines and an interface log of one record a call.
 *
 * Nothing here fails, throws or blocks its caller for longer than one write; every function may be called
 * from any thread, in any order. Calls before LogInit and after LogFini are accepted and dropped.
 *
 * Logs are written while at least one product is started, with the configuration and the directory of the one
 * that was started first. Their layout is described in Tessel_API.ini.
 */

/** Marks what the shared object shows to the programs that link it. */
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
OVRA_LOG_API int LogInit(const char* productTag, const char* iniFile, int* reserved,
                         const char* logDirectory);

/**
 * Ends logging for a product. A product that was started several times is to be ended as often.
 * @param productTag name of the product, as it was started.
 * @return 0 on success, -1 when it was not started.
 */
OVRA_LOG_API int LogFini(const char* productTag);

/**
 * Writes one line of the run log, at level debug.
 * @param productTag name of the product.
 * @param text the line; data: no formatting is done, control bytes are escaped.
 */
OVRA_LOG_API void Log_Run_Debug(const char* productTag, const char* text);
/**
 * The same at level info.
 * @param productTag name of the product.
 * @param text the line.
 */
OVRA_LOG_API void Log_Run_Info(const char* productTag, const char* text);
/**
 * The same at level warning.
 * @param productTag name of the product.
 * @param text the line.
 */
OVRA_LOG_API void Log_Run_Warn(const char* productTag, const char* text);
/**
 * The same at level error.
 * @param productTag name of the product.
 * @param text the line.
 */
OVRA_LOG_API void Log_Run_Error(const char* productTag, const char* text);

/**
 * Writes one record of the interface log, of a call that succeeded. Texts are data, null counts as empty.
 * @param productTag name of the product.
 * @param interfaceType kind of interface, a code of the product's.
 * @param protocolType protocol by which the call came.
 * @param interfaceName name of the operation.
 * @param sourceAddress who called.
 * @param targetAddress who was called.
 * @param transactionId what ties several records together.
 * @param startTime when the call began.
 * @param endTime when it ended.
 * @param resultCode its result, 0 for success.
 * @param extension anything else.
 */
OVRA_LOG_API void Log_Interface_Info(const char* productTag, const char* interfaceType,
                                     const char* protocolType, const char* interfaceName,
                                     const char* sourceAddress, const char* targetAddress,
                                     const char* transactionId, const char* startTime, const char* endTime,
                                     const char* resultCode, const char* extension);
/** The same for a call that failed. @copydetails Log_Interface_Info */
OVRA_LOG_API void Log_Interface_Error(const char* productTag, const char* interfaceType,
                                      const char* protocolType, const char* interfaceName,
                                      const char* sourceAddress, const char* targetAddress,
                                      const char* transactionId, const char* startTime, const char* endTime,
                                      const char* resultCode, const char* extension);

/**
 * Writes one line of the audit log, Tessel_audit_DATE.log, which stands and ages with the others. A line is
 * written whole, by one write, or not at all.
 * @param record the line as it is to stand there, e.g. a JSON object; without a line break.
 * @return 0; -1 when it was not written: no product is started, there is no room, or it holds a line break.
 */
OVRA_LOG_API int Log_Audit(const char* record);

/**
 * Tells where the run log is: in the directory asked for, or in the per-user one when that cannot be written.
 * @return the directory of the line written last, after LogFini too; empty before the first LogInit, and
 * while no directory can be written. Never null. The text stays as it is until the process ends.
 */
OVRA_LOG_API const char* Log_Directory(void);

/** @return lines dropped since the process started because they could not be written. */
OVRA_LOG_API unsigned long Log_Dropped_Count(void);

#ifdef __cplusplus
}
#endif

#endif
