// Many arrays in turn: what a call costs beside one array's, and whether any of them sees a second handshake.

#include "Rounds.h"
#include "Servers.h"

namespace {

/** Sessions with some of the servers. */
class Arrays
{
public:
    Arrays(const bench::Servers& servers, size_t first, size_t count)
    {
        for (size_t i = first; i < first + count; ++i) {
            m_all.push_back(std::make_unique<bench::Sdk>(servers[i]));
        }
    }

    void callInTurn(unsigned times)
    {
        for (unsigned i = 0; i < times; ++i) {
            m_all[m_next++ % m_all.size()]->call();
        }
    }

private:
    std::vector<std::unique_ptr<bench::Sdk>> m_all;
    size_t m_next = 0;
};

} // namespace

void bench::arrayRows(bool isShort)
{
    constexpr unsigned MANY = 256;
    Servers servers(MANY); // in one process: they have one authority
    Arrays one(servers, 0, 1);
    for (const unsigned count : {4U, 16U, 64U, MANY - 1}) {
        Arrays several(servers, 1, count);
        const unsigned calls = 2 * MANY;
        several.callInTurn(calls);
        const unsigned long before = servers.handshakes();
        const Rounds beside(
            isShort ? 4 : 20, [&] { several.callInTurn(calls); }, [&] { one.callInTurn(calls); });
        tellPoint("CPU of a call beside that with one array", "arrays", count, beside.cpu());
        if (count == MANY - 1) {
            tellRow("256 arrays in turn, CPU of a call against one", beside.cpu(), NO_AIM);
            tellRow("256 arrays in turn, handshakes after the login",
                    {static_cast<double>(servers.handshakes() - before)}, 0, "count");
        }
    }
}
