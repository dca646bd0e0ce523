#include "ArraySim.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace tessel_test {
namespace {

std::string readFile(const std::string& name)
{
    std::ifstream stream(name);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string temporaryDirectory()
{
    const char* base = std::getenv("TMPDIR");
    std::string name = std::string(base != nullptr ? base : "/tmp") + "/arraysim-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary directory");
    }
    return name;
}

} // namespace

ArraySim::ArraySim(ArraySimOptions options) : m_options(std::move(options)), m_stateDir(temporaryDirectory())
{
    start();
}

ArraySim::~ArraySim()
{
    const int status = stop();
    if (status != 0) {
        // A crash of the simulator, or what a sanitizer found in it, must fail the test.
        std::cerr << "tessel-arraysim ended with status " << status << output() << "\n";
        std::abort();
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_stateDir, ignored);
}

std::vector<std::string> ArraySim::commandLine() const
{
    std::vector<std::string> line{TESSEL_ARRAYSIM,
                                  "--state-dir",
                                  m_stateDir,
                                  "--listen",
                                  m_options.listen,
                                  "--user",
                                  m_options.user,
                                  "--password-file",
                                  m_stateDir + "/login",
                                  "--port",
                                  std::to_string(m_port),
                                  "--port-file",
                                  m_stateDir + "/port",
                                  "--control-port",
                                  std::to_string(m_controlPort),
                                  "--control-port-file",
                                  m_stateDir + "/control-port",
                                  "--log",
                                  m_stateDir + "/requests.log",
                                  "--stop-on-stdin-eof"};
    line.insert(line.end(), m_options.arguments.begin(), m_options.arguments.end());
    return line;
}

void ArraySim::start()
{
    if (running()) {
        return;
    }
    std::ofstream(m_stateDir + "/login") << m_options.password << "\n";
    std::filesystem::remove(m_stateDir + "/port");
    const std::vector<std::string> line = commandLine();
    std::vector<char*> arguments;
    arguments.reserve(line.size() + 1);
    for (const auto& argument : line) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    int lifeline[2];
    const int output =
        ::open((m_stateDir + "/output").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (output < 0 || ::pipe2(lifeline, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot prepare the start of " + line[0]);
    }
    m_pid = ::fork();
    if (m_pid == 0) {
        ::dup2(lifeline[0], STDIN_FILENO);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(lifeline[0]);
    ::close(output);
    m_lifeline = lifeline[1];
    awaitPorts();
    m_facts = control("GET", "/");
}

void ArraySim::awaitPorts()
{
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    while (!std::filesystem::exists(m_stateDir + "/port")) {
        int status = 0;
        const bool ended = ::waitpid(m_pid, &status, WNOHANG) == m_pid;
        if (ended || std::chrono::steady_clock::now() > deadline) {
            m_pid = ended ? -1 : m_pid;
            kill();
            throw std::runtime_error("tessel-arraysim did not start" + output());
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    m_port = static_cast<unsigned>(std::stoul(readFile(m_stateDir + "/port")));
    m_controlPort = static_cast<unsigned>(std::stoul(readFile(m_stateDir + "/control-port")));
}

/** What it said of itself, to stand behind what went wrong. */
std::string ArraySim::output() const
{
    return "; the simulator wrote:\n" + readFile(m_stateDir + "/output");
}

int ArraySim::reap()
{
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    ::close(m_lifeline);
    m_lifeline = -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

int ArraySim::stop()
{
    if (!running()) {
        return 0;
    }
    ::kill(m_pid, SIGTERM);
    return reap();
}

void ArraySim::kill()
{
    if (running()) {
        ::kill(m_pid, SIGKILL);
        reap();
    }
}

std::string ArraySim::log() const
{
    return readFile(m_stateDir + "/requests.log");
}

} // namespace tessel_test
