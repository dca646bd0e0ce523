#ifndef SIMULATOR_WATCH_FAULTS_H
#define SIMULATOR_WATCH_FAULTS_H

#include <json/json.h>

#include <list>
#include <mutex>
#include <optional>
#include <random>
#include <string>

namespace arraysim {

/** What goes wrong instead of, or besides, an ordinary answer. */
enum class FaultAction
{
    DELAY,
    ERROR,
    CLOSE,
    TRUNCATE,
    INVALID_JSON,
    ANSWER,
    DROP_SESSION,
    RESET,
    SLOW,
    ENDLESS,
    REDIRECT
};

struct Fault
{
    unsigned id = 0;
    std::string method = "*"; ///< glob
    std::string path = "*";   ///< glob on the path behind the device ID; * matches slashes too
    std::string query = "*";  ///< glob on the raw query
    unsigned session = 0;     ///< the number of a session whose requests alone match; 0: any
    unsigned share = 100;     ///< percent of the requests that match, drawn by chance
    unsigned seed = 0;        ///< of the drawing: the same seed draws the same requests
    unsigned skip = 0;        ///< requests that match and pass untouched first
    unsigned count = 1;       ///< how often it strikes; 0: always
    unsigned hits = 0;
    FaultAction action = FaultAction::ERROR;
    bool performed = false; ///< whether the array carries the request out all the same
    unsigned delayMs = 0;   ///< before the answer, with every action
    int code = 1;
    std::string description = "injected fault";
    int status = 200;
    std::string body;       ///< of the action answer
    std::string location;   ///< of the action redirect
    unsigned pieceMs = 100; ///< of the action slow: between one byte and the next
};

/** What a fault is matched against. */
struct Struck
{
    std::string method;
    std::string target;   ///< raw, behind the device ID
    unsigned session = 0; ///< the number of the request's session, 0 for none
};

/** The faults that tests have set. A request meets the first one that matches and is not spent. */
class Faults
{
public:
    /** Throws ArrayError where the description of the fault is not understood. */
    unsigned add(const Json::Value& description);
    Json::Value list();
    bool remove(unsigned id);
    void clear();
    std::optional<Fault> strike(const Struck& request);

private:
    struct Set
    {
        Fault fault;
        std::minstd_rand chance;
    };

    std::mutex m_mutex;
    std::list<Set> m_faults;
    unsigned m_lastId = 0;
};

} // namespace arraysim

#endif
