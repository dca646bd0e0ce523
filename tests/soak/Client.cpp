#include "Client.h"

#include "EveryOperation.h"

#include <tessel/Access.h>
#include <tessel/Failure.h>

#include <chrono>
#include <thread>

using namespace ovra::tessel;

namespace soak {
namespace {

using Clock = std::chrono::steady_clock;

/// Else an array that is away takes most of the calls.
constexpr std::chrono::milliseconds PAUSE(20);

const std::vector<tessel_test::PublicOperation>& operations()
{
    static const std::vector<tessel_test::PublicOperation> all = tessel_test::operationsOfHandlers();
    return all;
}

} // namespace

Client::Client(const Target& target, std::string name, std::string lun, std::string initiator, unsigned seed)
    : m_target(target), m_name(std::move(name)), m_lun(std::move(lun)), m_initiator(std::move(initiator)),
      m_random(seed)
{
}

void Client::runInTrouble(unsigned calls)
{
    login();
    for (unsigned call = 0; call < calls; ++call) {
        switch (m_random() % 16) {
        case 0:
        case 1:
        case 2:
            readOwnLun();
            break;
        case 3:
            show();
            break;
        case 4:
            hide();
            break;
        case 5:
            renew();
            break;
        default:
            anyOperation();
        }
        if (lastFailure().kind == FailureKind::NOT_LOGGED_IN) {
            login();
        }
        if (lastFailure().kind == FailureKind::NOT_REACHABLE) {
            std::this_thread::sleep_for(PAUSE);
        }
    }
}

void Client::runInPeace()
{
    const auto expectNoFailure = [&](const char* what, bool isRight) {
        if (!isRight) {
            fault(std::string(what) + " does not work when all is well: " + lastFailure().message);
        }
    };
    expectNoFailure("login", login());
    expectNoFailure("getLun",
                    attempt("getLun", [&] { return m_array.luns()->getLun(m_lun).NAME == m_name; }));
    expectNoFailure("ensureVisible", attempt("ensureVisible", [&] {
                        return ensureVisible(m_array.manager(), ownLun(), ownInitiator()).isVisible;
                    }));
    expectNoFailure("ensureHidden", attempt("ensureHidden", [&] {
                        return !ensureHidden(m_array.manager(), ownLun(), ownInitiator()).isVisible;
                    }));
    expectNoFailure("logout", m_array.logout());
}

template <class Call>
bool Client::attempt(const char* name, const Call& call)
{
    const Clock::time_point start = Clock::now();
    bool isRight = false;
    try {
        isRight = call();
    } catch (const OvraAPIException& error) {
        const Failure failure = lastFailure();
        ++m_tally.failures[static_cast<int>(failure.kind)];
        if (!failure) {
            fault(std::string(name) + " keeps no reason: " + error.what());
        }
    } catch (const std::exception& error) {
        fault(std::string(name) + " throws another exception: " + error.what());
    }
    ++m_tally.calls;
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (seconds > m_tally.longestSeconds) {
        m_tally.longestSeconds = seconds;
        m_tally.longest = name;
    }
    return isRight;
}

bool Client::login()
{
    ++m_tally.logins;
    return attempt("login", [&] {
        m_array.login(m_target.ip, m_target.port, m_target.user, m_target.password);
        return true;
    });
}

void Client::anyOperation()
{
    const tessel_test::PublicOperation& operation = operations()[m_random() % operations().size()];
    attempt(operation.name, [&] {
        operation.call(m_array.manager());
        return true;
    });
}

void Client::readOwnLun()
{
    attempt("getLun", [&] {
        const LunMO lun = m_array.luns()->getLun(m_lun);
        if (!lun.ID.empty() && (lun.ID != m_lun || lun.NAME != m_name)) {
            fault("getLun of " + m_lun + " returned LUN " + lun.ID + " \"" + lun.NAME + "\"");
        }
        return true;
    });
}

void Client::show()
{
    attempt("ensureVisible", [&] {
        if (!ensureVisible(m_array.manager(), ownLun(), ownInitiator()).isVisible) {
            fault("the LUN " + m_lun + " is not shown, without an exception");
        }
        return true;
    });
}

/** Whether it is hidden nobody can tell while the array leaves out what it has. */
void Client::hide()
{
    attempt("ensureHidden", [&] {
        ensureHidden(m_array.manager(), ownLun(), ownInitiator());
        return true;
    });
}

void Client::renew()
{
    if (m_random() % 2 == 0) {
        m_array.logout();
    }
    m_array = Array(2, 1000);
    login();
}

void Client::fault(const std::string& text)
{
    m_tally.faults.push_back(m_name + ": " + text);
}

} // namespace soak
