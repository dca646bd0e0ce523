#include "CallInForce.h"

#include <algorithm>
#include <poll.h>

namespace ovra::rest {

namespace {

thread_local const RestCall* t_call = nullptr;
thread_local const char* t_keptMember = nullptr;

bool canBeRead(const curl_waitfd& waited)
{
    pollfd polled = {waited.fd, POLLIN, 0};
    return poll(&polled, 1, 0) > 0;
}

} // namespace

RestSettings CallInForce::settings()
{
    const RestCall* call = t_call;
    while (call != nullptr && call->settings == nullptr) {
        call = call->outer;
    }
    return call != nullptr ? *call->settings : RestGetSettings();
}

const char* CallInForce::keptMember()
{
    return t_keptMember;
}

CallInForce::CallInForce()
{
    for (const RestCall* call = t_call; call != nullptr; call = call->outer) {
        m_until = std::min(m_until, call->until);
        if (call->cancelDescriptor >= 0) {
            m_descriptors.push_back({call->cancelDescriptor, CURL_WAIT_POLLIN, 0});
        }
    }
}

CURLcode CallInForce::verdict()
{
    if (std::any_of(m_descriptors.begin(), m_descriptors.end(), canBeRead)) {
        return CURLE_ABORTED_BY_CALLBACK;
    }
    const bool isOver = m_until != m_until.max() && std::chrono::steady_clock::now() >= m_until;
    return isOver ? CURLE_OPERATION_TIMEDOUT : CURLE_OK;
}

long CallInForce::within(long milliseconds) const
{
    if (m_until == m_until.max()) {
        return milliseconds;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(m_until - std::chrono::steady_clock::now());
    return std::clamp<long>(static_cast<long>(left.count()), 1, milliseconds);
}

} // namespace ovra::rest

const RestCall* RestSetCall(const RestCall* call) noexcept
{
    const RestCall* const before = ovra::rest::t_call;
    ovra::rest::t_call = call;
    return before;
}

const char* RestKeepMember(const char* member) noexcept
{
    const char* const before = ovra::rest::t_keptMember;
    ovra::rest::t_keptMember = member;
    return before;
}
