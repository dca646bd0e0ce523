#ifndef SOAK_TROUBLE_H
#define SOAK_TROUBLE_H

#include <ArraySim.h>

#include <atomic>
#include <map>
#include <random>
#include <string>

namespace soak {

/** Does harm to an array, a piece after another. */
class Trouble
{
public:
    Trouble(tessel_test::ArraySim& array, unsigned seed) : m_array(array), m_random(seed) {}

    /** Until it is told to end; then the array is well again. */
    void run(const std::atomic<bool>& isOver);

    /** How often each kind was done. */
    const std::map<std::string, unsigned>& done() const { return m_done; }

private:
    void something();
    void failRequests();
    void freeze();
    unsigned upTo(unsigned most) { return static_cast<unsigned>(m_random() % (most + 1)); }

    tessel_test::ArraySim& m_array;
    std::mt19937 m_random;
    std::map<std::string, unsigned> m_done;
};

} // namespace soak

#endif
