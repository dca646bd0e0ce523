#include "Cli.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

Json::Value parsed(const std::string& text)
{
    Json::Value value;
    std::string errors;
    std::istringstream stream(text);
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << errors << text;
    return value;
}

/** Reads both pipes to their ends, whichever has something. */
void readBoth(int out, int err, Outcome& outcome)
{
    std::array<pollfd, 2> pipes = {{{out, POLLIN, 0}, {err, POLLIN, 0}}};
    std::array<std::string*, 2> texts = {&outcome.out, &outcome.err};
    std::array<char, 4096> buffer{};
    for (int open = 2; open > 0;) {
        poll(pipes.data(), pipes.size(), -1);
        for (size_t i = 0; i < pipes.size(); ++i) {
            if (pipes[i].fd < 0 || pipes[i].revents == 0) {
                continue;
            }
            const ssize_t got = read(pipes[i].fd, buffer.data(), buffer.size());
            if (got <= 0) {
                close(pipes[i].fd);
                pipes[i].fd = -1;
                --open;
            } else {
                texts[i]->append(buffer.data(), static_cast<size_t>(got));
            }
        }
    }
}

} // namespace

Json::Value Outcome::json() const
{
    return parsed(out);
}

Json::Value Outcome::errorJson() const
{
    const size_t lineEnd = err.find_last_not_of('\n');
    const size_t before = err.rfind('\n', lineEnd);
    return parsed(before == std::string::npos ? err : err.substr(before + 1));
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
{
    return stream << "exit code " << outcome.exitCode << "\n" << outcome.out << outcome.err;
}

Outcome Cli::run(const Words& words) const
{
    return execute(TESSELCTL, words);
}

Outcome Cli::shell(const std::string& line) const
{
    return execute("/bin/bash", {"-c", "tesselctl() { " TESSELCTL " \"$@\"; }; " + line});
}

Outcome Cli::execute(const char* program, const Words& words) const
{
    std::map<std::string, std::string> all = {{"PATH", std::getenv("PATH")}, {"LC_ALL", "C.UTF-8"}};
    for (const auto& [name, value] : environment) {
        all[name] = value;
    }
    for (const char* const name : {"MUTANT", "MUTANTS_REACHED"}) { // scripts/mutate
        if (const char* const value = std::getenv(name)) {
            all[name] = value;
        }
    }
    std::vector<std::string> variables;
    for (const auto& [name, value] : all) {
        variables.push_back(name + "=" + value);
    }
    std::vector<char*> arguments = {const_cast<char*>("tesselctl")};
    for (const auto& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    std::vector<char*> inherited;
    for (const auto& variable : variables) {
        inherited.push_back(const_cast<char*>(variable.c_str()));
    }
    arguments.push_back(nullptr);
    inherited.push_back(nullptr);

    std::array<int, 2> out{};
    std::array<int, 2> err{};
    EXPECT_EQ(pipe2(out.data(), O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(err.data(), O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        setsid(); // no terminal to ask on
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        if (prepare) {
            prepare();
        }
        for (const int signal : {SIGINT, SIGQUIT, SIGPIPE}) {
            std::signal(signal, SIG_DFL); // whatever those who run the tests ignore
        }
        execve(program, arguments.data(), inherited.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    Outcome outcome;
    readBoth(out[0], err[0], outcome);
    int status = 0;
    rusage used{};
    wait4(child, &status, 0, &used);
    outcome.peakKib = used.ru_maxrss;
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

Outcome Cli::json(Words words) const
{
    words.insert(words.end(), {"--output", "json"});
    return run(words);
}

void Cli::pointAt(const tessel_test::ArraySim& array)
{
    environment["TESSEL_ARRAY"] = array.ip() + ":" + std::to_string(array.port());
    environment["TESSEL_USER"] = array.user();
    environment["TESSEL_PASSWORD"] = array.password();
    environment["OVRA_REST_CA_FILE"] = array.caFile();
}

std::string CliTest::make(const Words& words) const
{
    const Outcome outcome = cli.json(words);
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    return outcome.json()["ID"].asString();
}

Outcome CliTest::expect(int exitCode, const Words& words) const
{
    const Outcome outcome = cli.run(words);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome;
    return outcome;
}

MappingTest::MappingTest(tessel_test::ArraySimOptions options) : CliTest(std::move(options))
{
    lun = make({"lun", "create", "--name", "db01", "--pool", "0", "--size", "1MiB"});
    host = make({"host", "create", "--name", "web1", "--os", "0"});
    make({"initiator", "iscsi", "create", iqn, "--host", host});
    lunGroup = make({"lungroup", "create", "--name", "luns"});
    hostGroup = make({"hostgroup", "create", "--name", "hosts"});
    view = make({"view", "create", "--name", "view"});
}

void MappingTest::bindAll() const
{
    expect(0, {"lungroup", "add", lunGroup, "--lun", lun});
    expect(0, {"hostgroup", "add", hostGroup, "--host", host});
    expect(0, {"view", "add", view, "--lungroup", lunGroup});
    expect(0, {"view", "add", view, "--hostgroup", hostGroup});
}
