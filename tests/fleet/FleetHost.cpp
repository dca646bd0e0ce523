// One host of a fleet, in a process of its own: waits for a session, then shows and hides LUNs, one after
// another. Usage: tessel_fleet_host IP PORT PASSWORD INITIATOR LUN-ID... Tells on standard output, a line
// each: "login SECONDS REFUSALS", "pair SECONDS", "failed REASON".

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

constexpr double SPREAD = 5; // seconds over which the fleet spreads its first logins
constexpr double FIRST_PAUSE = 1;
constexpr double LONGEST_PAUSE = 4;   // about as long as a host of this fleet keeps its session
constexpr double PATIENCE = 600;      // then the window is over
constexpr unsigned LOGOUT_TRIES = 20; // a session that stays open is one less for the others

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/** A whole line at once: hundreds of processes write into one pipe. */
void tell(std::string line)
{
    std::replace(line.begin(), line.end(), '\n', ' ');
    line = line.substr(0, 400) + "\n";
    if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        std::exit(1);
    }
}

/**
 * Logs in; where the array refuses, since it has no session left, tries again after pauses that grow and that
 * are drawn by chance, so that those who were refused together do not come back together.
 */
unsigned loginPatiently(Array& array, char** arguments)
{
    const Clock::time_point start = Clock::now();
    std::mt19937 random(std::random_device{}());
    const auto sleep = [&](double from, double to) {
        std::this_thread::sleep_for(
            std::chrono::duration<double>(std::uniform_real_distribution<double>(from, to)(random)));
    };
    sleep(0, SPREAD);
    double pause = FIRST_PAUSE;
    for (unsigned refusals = 0;; ++refusals) {
        try {
            array.login(arguments[1], static_cast<unsigned>(std::stoul(arguments[2])), "admin", arguments[3]);
            return refusals;
        } catch (const OvraAPIException&) {
            if (secondsSince(start) > PATIENCE) {
                throw;
            }
        }
        sleep(pause / 2, pause);
        pause = std::min(2 * pause, LONGEST_PAUSE);
    }
}

void logoutPatiently(Array& array)
{
    bool isOut = array.logout();
    for (unsigned tries = 1; !isOut && tries < LOGOUT_TRIES; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        isOut = array.manager().logoutDevice();
    }
    if (!isOut) {
        tell("failed the session stays open");
    }
}

void showAndHide(const Array& array, const StorageObject& lun, const HostInitiator& initiator,
                 const char* name)
{
    const Clock::time_point start = Clock::now();
    try {
        const bool wasShown = ensureVisible(array.manager(), lun, initiator).isVisible;
        const bool isLeft = ensureHidden(array.manager(), lun, initiator).isVisible;
        tell(wasShown && !isLeft ? name + std::to_string(secondsSince(start))
                                 : "failed: it is not as it was asked for");
    } catch (const std::exception& error) {
        tell(std::string("failed ") + error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 6) {
        return 2;
    }
    for (char none = 0; read(STDIN_FILENO, &none, 1) > 0;) { // until the window opens
    }
    try {
        Array array(10, 50000);
        const Clock::time_point start = Clock::now();
        const unsigned refusals = loginPatiently(array, argv);
        tell("login " + std::to_string(secondsSince(start)) + " " + std::to_string(refusals));
        for (int i = 5; i < argc; ++i) {
            showAndHide(array, StorageObject::lun(argv[i]), HostInitiator::iscsi(argv[4]),
                        i == 5 ? "first " : "pair ");
        }
        logoutPatiently(array);
    } catch (const std::exception& error) {
        tell(std::string("failed ") + error.what());
    }
}
