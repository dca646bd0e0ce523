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
    /** Stores "Exception:" followed by msg. */
    explicit OvraAPIException(std::string msg);
    ~OvraAPIException() noexcept override;

    /** The message; begins with "Exception:". */
    const char* what() const noexcept override;

private:
    std::string m_message;
};

/** The array answered with an error. */
class TESSEL_API OvraAPIExceptionWithErrCode : public OvraAPIException
{
public:
    OvraAPIExceptionWithErrCode(int code, std::string msg);
    ~OvraAPIExceptionWithErrCode() noexcept override;

    /** The array's own error code. */
    int getErrCode() const;

private:
    int m_code;
};

#endif
