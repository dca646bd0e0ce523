#ifndef KERNEL_FAILURE_H
#define KERNEL_FAILURE_H

#include <cerrno>
#include <stdexcept>
#include <string>

namespace tesselctl {

/** How tesselctl ends; documented in its man page. */
enum class ExitCode : int
{
    SUCCESS = 0,
    FAILURE = 1,
    USAGE = 2,
    ARRAY_ERROR = 3,
    NOT_FOUND = 4,
    INTERRUPTED = 130 ///< as shells tell of an end by SIGINT
};

/** Ends a command: one line that tells the administrator what to do, and how the process exits. */
class Failure : public std::runtime_error
{
public:
    /** @param arrayCode the array's error code; 0 where it gave none. */
    explicit Failure(const std::string& message, ExitCode code = ExitCode::FAILURE, int arrayCode = 0)
        : std::runtime_error(message), m_code(code), m_arrayCode(arrayCode)
    {
    }
    ExitCode code() const { return m_code; }
    int arrayCode() const { return m_arrayCode; }

private:
    ExitCode m_code;
    int m_arrayCode;
};

class UsageError : public Failure
{
public:
    explicit UsageError(const std::string& message) : Failure(message, ExitCode::USAGE) {}
};

class NotFound : public Failure
{
public:
    explicit NotFound(const std::string& message, int arrayCode = 0)
        : Failure(message, ExitCode::NOT_FOUND, arrayCode)
    {
    }
};

/** Standard output takes no more. */
class OutputLost : public Failure
{
public:
    /** @param error the errno of the write; EPIPE: nobody reads any more, which is no mistake. */
    explicit OutputLost(int error)
        : Failure("the result could not be written to standard output"), m_isUnread(error == EPIPE)
    {
    }
    bool isUnread() const { return m_isUnread; }

private:
    bool m_isUnread;
};

} // namespace tesselctl

#endif
