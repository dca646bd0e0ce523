#ifndef FAULTS_FAULTS_H
#define FAULTS_FAULTS_H

#include "support/MisbehavingServer.h"

#include <functional>
#include <string>
#include <vector>

/** One way in which a request can fail, or be answered oddly; and what the operation makes of it. */
struct Fault
{
    /** How an operation ends upon it. */
    enum Ending
    {
        NO_ANSWER,    ///< as if none had come
        ERROR_ANSWER, ///< the array's error
        SUCCESS,
        SUCCESS_UNLESS_READ, ///< what reads the data finds no answer in it
        EITHER               ///< it is the operation's own matter
    };

    std::string name;
    std::function<tessel_test::Behaviour(const std::string& data)>
        behaviour; ///< data: those of a good answer
    Ending ending;
    int code = 0;                 ///< of the record
    std::string description = ""; ///< of an error answer

    // Of those that come from the network.
    bool isRetried = false;          ///< what reads is sent once more
    bool isSlow = false;             ///< the time limit ends it
    bool isHeavy = false;            ///< takes long; one operation of each method is enough
    bool isClosedAfterwards = false; ///< what is sent before that is noticed is lost, by HTTP's own rules
    unsigned short port = 0;         ///< not 0: what is there in place of the array

    bool isNoticedByRest() const { return ending == NO_ANSWER; } ///< its library writes a line of its own
};

/** Those that any request may meet. */
const std::vector<Fault>& faults();

/** What is in place of the array, for those faults that are. */
class WrongServers
{
public:
    static WrongServers& get();
    unsigned short nobody() const { return m_nobody; }
    const tessel_test::MisbehavingServer otherCertificate;
    const tessel_test::MisbehavingServer expired;
    const tessel_test::MisbehavingServer plain;

private:
    WrongServers();
    unsigned short m_nobody;
};

#endif
