#ifndef SOAK_CLIENT_H
#define SOAK_CLIENT_H

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace soak {

/** The array, and how to log in to it. */
struct Target
{
    std::string ip;
    unsigned port;
    std::string user;
    std::string password;
};

/** What a client met. */
struct Tally
{
    unsigned long calls = 0;
    std::map<int, unsigned long> failures; ///< by FailureKind, as they should come
    unsigned logins = 0;
    double longestSeconds = 0;       ///< of a call
    std::string longest;             ///< that call
    std::vector<std::string> faults; ///< what must not be
};

/** One thread of an application, with a device manager of its own and a LUN that nobody else touches. */
class Client
{
public:
    /**
     * @param name of its LUN.
     * @param initiator that the array knows, and nobody else uses.
     */
    Client(const Target& target, std::string name, std::string lun, std::string initiator, unsigned seed);

    /** That many calls drawn by chance; any of them may fail. */
    void runInTrouble(unsigned calls);
    /** Everything of its own works. */
    void runInPeace();

    const Tally& tally() const { return m_tally; }

private:
    ovra::tessel::StorageObject ownLun() const { return ovra::tessel::StorageObject::lun(m_lun); }
    ovra::tessel::HostInitiator ownInitiator() const
    {
        return ovra::tessel::HostInitiator::iscsi(m_initiator);
    }
    bool login();
    void anyOperation();
    void readOwnLun();
    void show();
    void hide();
    void renew();
    template <class Call>
    bool attempt(const char* name, const Call& call);
    void fault(const std::string& text);

    Target m_target;
    std::string m_name;
    std::string m_lun;
    std::string m_initiator;
    std::mt19937 m_random;
    ovra::tessel::Array m_array = ovra::tessel::Array(2, 1000);
    Tally m_tally;
};

} // namespace soak

#endif
