// Which idle connections are kept, without a server: each is known by the number of its socket.

#include <ConnectionPool.h>

#include <gtest/gtest.h>

#include <atomic>
#include <ctime>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

static std::atomic<time_t> g_later{0}; ///< seconds that the clock is ahead of the kernel's

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    time->tv_sec += clock == CLOCK_MONOTONIC ? g_later.load() : 0;
    return static_cast<int>(result);
}

namespace ovra::rest {
namespace {

constexpr curl_socket_t FIRST = 1000000; ///< of a number that no socket has

/** Takes so many at once, and gives them back in order. */
void use(ConnectionPool& pool, const std::string& key, int count)
{
    std::vector<Connection> connections;
    for (int i = 0; i < count; ++i) {
        connections.push_back(pool.take(key));
    }
    for (int i = 0; i < count; ++i) {
        connections[static_cast<size_t>(i)].socket = FIRST + i;
        pool.giveBack(std::move(connections[static_cast<size_t>(i)]));
    }
}

/** Takes all that are there. @return their numbers */
std::vector<int> takeAll(ConnectionPool& pool, const std::string& key)
{
    std::vector<int> numbers;
    for (Connection one = pool.take(key); one.socket != CURL_SOCKET_BAD; one = pool.take(key)) {
        numbers.push_back(one.socket - FIRST);
    }
    return numbers;
}

/** A child's answer to a question, where the question holds. */
template <class Question>
void expectInAChild(const Question& question)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(question() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
}

/** A quarter of the descriptors that the process may open while one lives. */
class FortyMayBeIdle
{
public:
    FortyMayBeIdle()
    {
        EXPECT_EQ(0, getrlimit(RLIMIT_NOFILE, &m_before));
        const rlimit few = {160, m_before.rlim_max};
        EXPECT_EQ(0, setrlimit(RLIMIT_NOFILE, &few));
    }
    ~FortyMayBeIdle() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FortyMayBeIdle(const FortyMayBeIdle&) = delete;
    FortyMayBeIdle& operator=(const FortyMayBeIdle&) = delete;

private:
    rlimit m_before = {};
};

TEST(IdleConnections, OfAServerAreSixtyFourAndTheLastUsedIsTheNext)
{
    ConnectionPool pool;
    use(pool, "a", 65);
    const std::vector<int> kept = takeAll(pool, "a");
    ASSERT_EQ(64U, kept.size());
    EXPECT_EQ(64, kept.front());
    EXPECT_EQ(1, kept.back()) << "the oldest has gone";
}

TEST(IdleConnections, OfAllServersAreAQuarterOfWhatMayBeOpen)
{
    const FortyMayBeIdle few;
    ConnectionPool pool;
    use(pool, "b", 25);
    use(pool, "a", 20);
    EXPECT_EQ(20U, takeAll(pool, "a").size());
    const std::vector<int> older = takeAll(pool, "b");
    ASSERT_EQ(20U, older.size());
    EXPECT_EQ(5, older.back()) << "the oldest of all have gone";
}

TEST(IdleConnections, AreClosedOfTheServerWithTheOldestWhereOthersHaveNone)
{
    const FortyMayBeIdle few;
    ConnectionPool pool;
    for (const char* const server : {"a", "c", "e"}) {
        use(pool, server, 1);
        takeAll(pool, server);
    }
    use(pool, "d", 25);
    use(pool, "b", 20);
    EXPECT_EQ(20U, takeAll(pool, "b").size());
    EXPECT_EQ(20U, takeAll(pool, "d").size());
}

TEST(IdleConnections, AreClosedWhenLibcurlWouldNotUseThemAnyMore)
{
    ConnectionPool pool;
    use(pool, "a", 2);
    g_later = 60;
    use(pool, "b", 1);
    g_later = 117;
    use(pool, "c", 1);
    EXPECT_EQ(2U, takeAll(pool, "a").size());
    use(pool, "a", 1);
    g_later = 60 + 119;
    use(pool, "c", 1);
    EXPECT_TRUE(takeAll(pool, "b").empty());
    EXPECT_EQ(1U, takeAll(pool, "a").size());
    g_later = 0;
}

TEST(IdleConnections, InUseWhenTheSettingsChangeAreNotKept)
{
    ConnectionPool pool;
    Connection used = pool.take("a");
    used.socket = FIRST;
    pool.clear();
    pool.giveBack(std::move(used));
    EXPECT_TRUE(takeAll(pool, "a").empty());
}

TEST(IdleConnections, AreNoneFromTheEndOn)
{
    ConnectionPool pool;
    use(pool, "a", 2);
    pool.end();
    EXPECT_TRUE(takeAll(pool, "a").empty());
    use(pool, "a", 2);
    EXPECT_TRUE(takeAll(pool, "a").empty());
}

TEST(IdleConnections, OfAParentAreNotTheChilds)
{
    ConnectionPool pool;
    use(pool, "a", 2);
    Connection used = pool.take("a");
    expectInAChild([&] { return takeAll(pool, "a").empty(); });
    expectInAChild([&] {
        const Connection own = pool.take("b");
        pool.giveBack(std::move(used));
        return takeAll(pool, "a").empty();
    });
    EXPECT_EQ(1U, takeAll(pool, "a").size());
}

} // namespace
} // namespace ovra::rest
