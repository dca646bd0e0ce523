#ifndef TESSEL_DEVICEMANAGER_H
#define TESSEL_DEVICEMANAGER_H

/** @file
 * The session with one array. */

#include <tessel/Export.h>
#include <tessel/Handler.h>

#include <string>

/** Scope of a login, handed to the array as it is; the array's documentation says which values it knows. */
enum USERTYPE : int
{
    USERTYPE_LOCAL = 0, ///< a user kept on the array itself
    USERTYPE_DOMAIN = 1 ///< a user of the directory service that the array is joined to
};

/**
 * One storage array: the session with its management interface, and the handlers of its objects.
 *
 * Instances may be created and released from any thread; one instance and its handlers are used by one thread
 * at a time. The session operations never throw; they return false, write the reason to the run log, and
 * leave it to lastFailure() (tessel/Failure.h).
 *
 * No call is a cancellation point: a thread that is cancelled (pthread_cancel) inside one ends behind it, at
 * the program's next cancellation point.
 */
class TESSEL_API CDeviceManager
{
public:
    /** Deletes the handlers; use releaseInstance. */
    virtual ~CDeviceManager();

    /**
     * Makes a device manager. The first live instance of the process starts logging and sets the retry
     * values; later values are ignored until every instance has been released. Thread-safe.
     * @param retryTimes how many times a create reads its new object again while the array says that it is
     *        not yet readable; 0: it reads once.
     * @param retrySleepMicroSeconds pause before each of these reads, in microseconds.
     * @return the device manager, never null; release it with releaseInstance.
     */
    static CDeviceManager* getInstance(unsigned int retryTimes, unsigned int retrySleepMicroSeconds);

    /**
     * Deletes a device manager and its handlers. Does not log out: call logoutDevice before. The last release
     * of the process stops logging. Thread-safe.
     * @param p the device manager; null is accepted.
     */
    static void releaseInstance(CDeviceManager* p);

    /**
     * Opens a session. One that this instance had already is forgotten, and not ended on the array.
     * @param ip IPv4 or IPv6 address of the management interface, without brackets; no host name.
     * @param port TCP port of the management interface, 1 to 65535.
     * @param userName not empty.
     * @param password not empty; never logged.
     * @param scope where the array looks for the user.
     * @return true when the session is open.
     */
    virtual bool loginDevice(const std::string& ip, const unsigned int& port, const std::string& userName,
                             const std::string& password, const USERTYPE& scope) = 0;

    /**
     * Ends the session on the array.
     * @return false when the array could not be reached or refused: the session then ends by its idle
     * time-out.
     */
    virtual bool logoutDevice() = 0;

    /**
     * Tells the array that the session is in use, so that its idle time-out starts again. Every other request
     * does that too.
     * @return false when the session has ended or the array could not be reached: log in again.
     */
    virtual bool keepAlive() = 0;

    /**
     * The handler of a type, made at the first call and the same object ever after; owned by this instance.
     * @param type which one; HANDLERTYPE names the interface to cast the result to.
     * @return the handler; null when type is none of HANDLERTYPE's values.
     */
    virtual CHandler* getHandler(HANDLERTYPE type) = 0;

    /**
     * Adopts a session that was opened elsewhere. No request is sent: a session that has ended shows itself
     * at the first operation.
     * @param ip IPv4 or IPv6 address of the management interface, without brackets.
     * @param port TCP port of the management interface; not checked.
     * @param deviceId the array's ID, as the login answer gave it; not empty.
     * @param token the session's token; not empty.
     * @param cookie value for the Cookie header, as the login answer gave it; not empty.
     * @return false when a text is empty, cannot be sent in a header, or ip is not an address.
     */
    virtual bool useConnection(const std::string& ip, const unsigned int& port, const std::string& deviceId,
                               const std::string& token, const std::string& cookie) = 0;
};

#endif
