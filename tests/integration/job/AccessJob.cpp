// One ensureVisible or ensureHidden in a process of its own, which may be killed at one of its requests.
// Usage: access_job show|hide LUN-ID INITIATOR [before|after N]      (N: the N-th request of the job, from 1)

#include <ovra/rest/RestRequest.h>
#include <tessel/Access.h>
#include <tessel/Array.h>

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <iostream>
#include <string>

namespace {

unsigned long g_killAt = 0;
bool g_killsAfter = false;
unsigned long g_requests = 0;

void killAt(unsigned long request, bool isAfter)
{
    if (request == g_killAt && isAfter == g_killsAfter) {
        raise(SIGKILL);
    }
}

const char* setting(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

// The program's own definition stands before the library's: every request of a handler passes here.
int RestRequest::SendRequest(const unsigned int& sessionKey, const std::string& url,
                             const REST_REQUEST_MODE_E& mode, RestResponse& response,
                             std::vector<std::string>& headers, bool flag)
{
    using Send = int (*)(RestRequest*, const unsigned int&, const std::string&, const REST_REQUEST_MODE_E&,
                         RestResponse&, std::vector<std::string>&, bool);
    static const Send send = reinterpret_cast<Send>(dlsym(
        RTLD_NEXT, "_ZN11RestRequest11SendRequestERKjRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
                   "RK19REST_REQUEST_MODE_ER12RestResponseRSt6vectorIS7_SaIS7_EEb"));
    killAt(++g_requests, false);
    const int result = send(this, sessionKey, url, mode, response, headers, flag);
    killAt(g_requests, true);
    return result;
}

int main(int argc, char** argv)
{
    using namespace ovra::tessel;
    if (argc != 4 && argc != 6) {
        return 2;
    }
    if (argc == 6) {
        g_killsAfter = std::string(argv[4]) == "after";
        g_killAt = std::stoul(argv[5]);
    }
    try {
        Array array(10, 20000);
        array.login(setting("ARRAY_IP"), static_cast<unsigned>(std::stoul(setting("ARRAY_PORT"))), "admin",
                    setting("ARRAY_PASSWORD"));
        const bool isShown = std::string(argv[1]) == "show";
        AccessOptions options;
        options.tries = static_cast<unsigned>(std::stoul(setting("JOB_TRIES")));
        options.pauseMilliseconds = static_cast<unsigned>(std::stoul(setting("JOB_PAUSE")));
        const AccessResult result = (isShown ? ensureVisible : ensureHidden)(
            array.manager(), StorageObject::lun(argv[2]), HostInitiator::iscsi(argv[3]), options);
        std::cout << g_requests << "\n";
        return result.isVisible == isShown ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
