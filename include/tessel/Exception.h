#ifndef TESSEL_EXCEPTION_H
#define TESSEL_EXCEPTION_H

#include <tessel/Export.h>

#include <exception>
#include <string>

/**
 * A handler operation failed: an argument was refused, the array could not be reached, or its answer could
 * not be read. Each failure is also a line of the run log at error level and a record of the interface log.
 */
class TESSEL_API OvraAPIException : public std::exception
{
public:
    /**
     * Stores "Exception:" followed by the message.
     * @param msg the message; ends with the name of the operation.
     */
    explicit OvraAPIException(std::string msg);
    /** Destroys the exception. */
    ~OvraAPIException() noexcept override;

    /** @return the message; begins with "Exception:". Valid as long as the exception. */
    const char* what() const noexcept override;

private:
    std::string m_message;
};

/** The array answered with an error. */
class TESSEL_API OvraAPIExceptionWithErrCode : public OvraAPIException
{
public:
    /**
     * Stores "Exception:" followed by the message, and the code.
     * @param code the array's error code.
     * @param msg the message, with code and description in it.
     */
    OvraAPIExceptionWithErrCode(int code, std::string msg);
    /** Destroys the exception. */
    ~OvraAPIExceptionWithErrCode() noexcept override;

    /** @return the array's own error code; never 0. One beyond an int is the largest int: what() holds its
     * digits. */
    int getErrCode() const;

private:
    int m_code;
};

#endif
