#include "Trouble.h"

#include <chrono>
#include <csignal>
#include <thread>

namespace soak {
namespace {

constexpr unsigned LONGEST_PEACE_MS = 60;
constexpr unsigned LONGEST_SILENCE_MS = 300;
constexpr unsigned MOST_STRUCK = 20; // requests by one fault

constexpr const char* FAULTS[] = {
    R"("action":"close")",
    R"("action":"close","performed":true)",
    R"("action":"reset")",
    R"("action":"reset","performed":true)",
    R"("action":"truncate")",
    R"("action":"invalidJson")",
    R"("action":"dropSession")",
    R"("action":"redirect","location":"https://127.0.0.1:1/")",
    R"("action":"answer","status":200,"body":"")",
    R"("action":"answer","status":204,"body":"")",
    R"("action":"answer","status":401,"body":"")",
    R"("action":"answer","status":503,"body":"<html>busy</html>")",
    R"("action":"answer","status":200,"body":"{\"data\":{},\"error\":{\"code\":0}}")",
    R"("action":"answer","status":200,"body":"{\"error\":{\"code\":0,\"description\":\"0\"}}")",
    R"("action":"error","code":50331651)",
    R"("action":"error","code":1077949006)",
    R"("action":"delay","delayMs":200)",
};

void sleepMs(unsigned milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

void Trouble::run(const std::atomic<bool>& isOver)
{
    while (!isOver) {
        something();
        sleepMs(upTo(LONGEST_PEACE_MS));
    }
    m_array.clearFaults();
}

void Trouble::something()
{
    switch (upTo(9)) {
    case 0:
        ++m_done["killed"];
        m_array.kill();
        sleepMs(upTo(LONGEST_SILENCE_MS));
        m_array.start();
        break;
    case 1:
        ++m_done["restarted"];
        m_array.stop();
        m_array.start();
        break;
    case 2:
        ++m_done["frozen"];
        freeze();
        break;
    case 3:
        ++m_done["sessions ended"];
        m_array.dropSessions();
        break;
    case 4:
        ++m_done["faults cleared"];
        m_array.clearFaults();
        break;
    default:
        ++m_done["faults set"];
        failRequests();
    }
}

void Trouble::failRequests()
{
    const char* const fault = FAULTS[m_random() % std::size(FAULTS)];
    const std::string count = std::to_string(1 + upTo(MOST_STRUCK - 1));
    const std::string share = std::to_string(1 + upTo(99));
    m_array.addFault(
        std::string("{").append(fault).append(",\"count\":" + count + ",\"share\":" + share + "}").c_str());
}

void Trouble::freeze()
{
    kill(m_array.pid(), SIGSTOP);
    sleepMs(upTo(LONGEST_SILENCE_MS));
    kill(m_array.pid(), SIGCONT);
}

} // namespace soak
