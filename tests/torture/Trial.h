#ifndef TORTURE_TRIAL_H
#define TORTURE_TRIAL_H

#include "Faults.h"
#include "Round.h"

#include <string>

namespace torture {

/** A process that is new, or one that has done a whole round before. */
enum class State : int
{
    COLD,
    WARM
};

/** What came of one trial: a round with a fault, and one without. */
struct Verdict
{
    bool hasFired = false;
    bool hasCrashed = false;
    bool hangs = false;
    bool isSessionKnown = true;
    bool leaks = false;
    bool isUnknown = false; ///< whether it leaks: later rounds did not come to the place
    long blocks = 0;        ///< in use in the end
    std::string told;       ///< what was wrong, by lines; where it crashed
    std::string stack;      ///< of the first call that failed
};

/** Runs trials, each in a process of its own. */
class Trials
{
public:
    explicit Trials(Target target);
    ~Trials();
    Trials(const Trials&) = delete;
    Trials& operator=(const Trials&) = delete;

    /** @param blocks what is in use in the end of a trial without a fault; 0: not known yet. */
    Verdict run(State state, const Plan& plan, long blocks);
    /** Runs one without a fault. @return the places that were counted; valid until the next one. */
    const Places& look(State state, const Plan& plan, Verdict& verdict);

private:
    Verdict run(State state, const Plan& plan, long blocks, bool isLook);
    [[noreturn]] void begin(State state, const Plan& plan, long blocks, bool isLook) const;

    const Target m_target;
    const int m_told;
    const int m_stack;
    const int m_result;
    const int m_placesFile;
    Places* const m_places;
};

/** What a cold process does. @param arguments the four of the target, the descriptor of its result, and the
 * mode. */
[[noreturn]] void runColdTrial(char** arguments);

} // namespace torture

#endif
