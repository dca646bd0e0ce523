#ifndef SIMULATOR_PROGRAM_H
#define SIMULATOR_PROGRAM_H

#include <array>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/** A program of a test's own, with what it writes, standard error too. It is ended with the object. */
class Program
{
public:
    /** prepare runs in the new process before the program does. */
    explicit Program(
        const std::vector<std::string>& words, const std::function<void()>& prepare = [] {})
    {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const auto& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            ::abort();
        }
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::dup2(ends[1], STDERR_FILENO);
            prepare();
            ::execvp(arguments[0], arguments.data());
            ::_exit(127);
        }
        ::close(ends[1]);
        m_output = ends[0];
    }
    ~Program()
    {
        if (!m_ended) {
            ::kill(m_pid, SIGKILL);
            wait();
        }
        ::close(m_output);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t pid() const { return m_pid; }
    /** What it writes up to a text, or all of it. */
    std::string read(const std::string& until = "")
    {
        std::string text;
        char byte = 0;
        while ((until.empty() || text.find(until) == std::string::npos) && ::read(m_output, &byte, 1) == 1) {
            text += byte;
        }
        return text;
    }
    /** @return its exit status, or 128 + the signal that ended it */
    int wait()
    {
        int status = 0;
        ::waitpid(m_pid, &status, 0);
        m_ended = true;
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

private:
    pid_t m_pid = -1;
    int m_output = -1;
    bool m_ended = false;
};

#endif
