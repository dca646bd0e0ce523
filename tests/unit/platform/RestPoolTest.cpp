// Which idle connections are kept, without a server: each is known by the number of its socket.

#include <ConnectionPool.h>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

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
    rlimit before = {};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    const rlimit few = {160, before.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &few));
    ConnectionPool pool;
    use(pool, "b", 25);
    use(pool, "a", 20);
    EXPECT_EQ(20U, takeAll(pool, "a").size());
    const std::vector<int> older = takeAll(pool, "b");
    ASSERT_EQ(20U, older.size());
    EXPECT_EQ(5, older.back()) << "the oldest of all have gone";
    setrlimit(RLIMIT_NOFILE, &before);
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
