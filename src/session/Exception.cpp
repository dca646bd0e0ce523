#include <tessel/Exception.h>

#include <utility>

OvraAPIException::OvraAPIException(std::string msg) : m_message("Exception:" + std::move(msg)) {}

OvraAPIException::~OvraAPIException() noexcept = default;

const char* OvraAPIException::what() const noexcept
{
    return m_message.c_str();
}

OvraAPIExceptionWithErrCode::OvraAPIExceptionWithErrCode(int code, std::string msg)
    : OvraAPIException(std::move(msg)), m_code(code)
{
}

OvraAPIExceptionWithErrCode::~OvraAPIExceptionWithErrCode() noexcept = default;

int OvraAPIExceptionWithErrCode::getErrCode() const
{
    return m_code;
}
