#ifndef TESSEL_TESTS_PROGRAMRUN_H
#define TESSEL_TESTS_PROGRAMRUN_H

#include <MisbehavingServer.h>

#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tessel_test {

/** An array as far as these programs need one, whose new LUN cannot be read yet, so that creating one reads
 * and waits, again and again. */
inline Behaviour asArray(const ReceivedRequest& request)
{
    const std::string target = request.target();
    if (request.method() == "POST") {
        return Behaviour::success(R"({"ID":"9","deviceid":"device","iBaseToken":"token"})",
                                  "Set-Cookie: a=1;\r\n");
    }
    const bool isNew = target.find("/lun/9") != std::string::npos;
    return isNew ? Behaviour::error(1077949006, "not yet") : Behaviour::success(R"({"ID":"1"})");
}

/** What waitpid tells of a run of the program, which trusts the test authority; -1 when it cannot be started.
 */
inline int statusOf(std::vector<std::string> commandLine)
{
    setenv("OVRA_REST_CA_FILE", TestCertificates::instance().caFile().c_str(), 1);
    std::vector<char*> arguments;
    for (std::string& argument : commandLine) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t child = -1;
    int status = -1;
    if (posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0) {
        waitpid(child, &status, 0);
    }
    return status;
}

} // namespace tessel_test

#endif
