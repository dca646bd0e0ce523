#include "Cli.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/** tesselctl on a terminal of its own. */
class Terminal
{
public:
    explicit Terminal(const tessel_test::ArraySim& array, const std::string& command,
                      unsigned short columns = 80)
    {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = columns;
        const std::string place = array.ip() + ":" + std::to_string(array.port());
        m_child = forkpty(&m_master, nullptr, nullptr, &size);
        if (m_child < 0) {
            throw std::system_error(errno, std::generic_category(), "no terminal of its own");
        }
        if (m_child == 0) {
            // Whoever runs the tests in the background ignores these, and the shell could not undo that.
            signal(SIGINT, SIG_DFL);
            signal(SIGQUIT, SIG_DFL);
            setenv("LC_ALL", "C.UTF-8", 1);
            // A shell keeps the terminal open behind tesselctl, so that its modes can be looked at.
            const std::string line = std::string(TESSELCTL) + " " + command + " --array " + place +
                                     " --user " + array.user() + " --ca-file " + array.caFile() +
                                     "; echo ended $?; read end";
            execl("/bin/sh", "sh", "-c", ("trap : INT; " + line).c_str(), nullptr);
            _exit(127);
        }
    }
    ~Terminal()
    {
        close(m_master);
        waitpid(m_child, nullptr, 0);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /** Reads until the text has been shown; the test fails when the terminal ends before. */
    void await(const std::string& text)
    {
        while (m_shown.find(text) == std::string::npos) {
            const std::string more = readSome();
            ASSERT_NE(more, "") << "waiting for " << text << " in " << m_shown;
            m_shown += more;
            // After its line about the end the shell waits: nothing more comes.
            const size_t end = m_shown.find("ended ");
            const bool isOver = end != std::string::npos && m_shown.find('\n', end) != std::string::npos;
            ASSERT_TRUE(m_shown.find(text) != std::string::npos || !isOver)
                << "waiting for " << text << " in " << m_shown;
        }
    }
    /** Ctrl-C, again where one came before the process waited for it, until it shows something: one more
       would take away what the shell says of the end. */
    void interrupt()
    {
        pollfd shown{m_master, POLLIN, 0};
        do {
            type("\x03");
        } while (poll(&shown, 1, 500) == 0);
    }
    void type(const std::string& text)
    {
        EXPECT_EQ(write(m_master, text.data(), text.size()), ssize_t(text.size()));
    }
    bool echoes() const
    {
        termios modes{};
        tcgetattr(m_master, &modes);
        return (modes.c_lflag & ECHO) != 0;
    }
    const std::string& shown() const { return m_shown; }

private:
    std::string readSome() const
    {
        std::array<char, 512> buffer{};
        const ssize_t got = read(m_master, buffer.data(), buffer.size());
        return got > 0 ? std::string(buffer.data(), static_cast<size_t>(got)) : "";
    }

    int m_master = -1;
    pid_t m_child = -1;
    std::string m_shown;
};

TEST_F(CliTest, ThePasswordIsAskedForWithoutEcho)
{
    Terminal terminal(array, "ping");
    terminal.await("Password of admin");
    EXPECT_FALSE(terminal.echoes());
    terminal.type(array.password() + "\n");
    terminal.await("ended 0");
    EXPECT_TRUE(terminal.echoes());
    EXPECT_THAT(terminal.shown(), Not(HasSubstr(array.password())));
}

TEST_F(CliTest, LongWorkTellsOnATerminalWhatItDoesAndForHowLong)
{
    const Folder folder;
    const std::string password = folder.write("password", array.password());
    array.addFault(R"({"method":"GET","path":"/FC_PORT","action":"delay","delayMs":2500})");
    Terminal terminal(array, "port fc list --password-file " + password);
    terminal.await("reading FC ports, ");
    terminal.await("ended 0");
    EXPECT_THAT(terminal.shown(), HasSubstr("LOCATION"));
}

TEST_F(MappingTest, ANarrowTerminalCutsTheNameAndNeverTheWwn)
{
    const std::string name = "a-name-of-a-lun-that-is-much-too-long";
    const std::string id = make({"lun", "create", "--name", name, "--pool", "0", "--size", "1GiB"});
    expect(0, {"lungroup", "add", lunGroup, "--lun", id});
    const std::string wwn = cli.json({"lun", "show", id}).json()["WWN"].asString();
    const Folder folder;
    const std::string list =
        "lun list --group " + lunGroup + " --password-file " + folder.write("password", array.password());
    Terminal narrow(array, list, 75);
    narrow.await("ended 0");
    EXPECT_THAT(narrow.shown(), HasSubstr(" " + wwn + "\r\n"));
    EXPECT_THAT(narrow.shown(), HasSubstr("a-name"));
    EXPECT_THAT(narrow.shown(), Not(HasSubstr(name)));
    Terminal wide(array, list, 160);
    wide.await("ended 0");
    EXPECT_THAT(wide.shown(), HasSubstr(name));
    EXPECT_THAT(expect(0, {"lun", "list", "--group", lunGroup}).out, HasSubstr(name)) << "no terminal";
}

TEST_F(CliTest, CtrlCEndsTheSessionOnTheArray)
{
    const Folder folder;
    const std::string password = folder.write("password", array.password());
    array.addFault(R"({"method":"GET","path":"/FC_PORT","action":"delay","delayMs":10000})");
    Terminal terminal(array, "port fc list --password-file " + password);
    terminal.await("reading FC ports, "); // the request is under way
    EXPECT_EQ(array.counters()["sessions"].asInt(), 1);
    terminal.type("\x03");
    terminal.await("ended 130");
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
}

TEST_F(CliTest, AnInterruptedQuestionGivesTheTerminalItsEchoBack)
{
    Terminal terminal(array, "ping");
    terminal.await(": ");
    terminal.type("half");
    terminal.interrupt();
    terminal.await("ended 130");
    EXPECT_TRUE(terminal.echoes());
}

} // namespace
