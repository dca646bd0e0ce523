#ifndef BENCH_ROUNDS_H
#define BENCH_ROUNDS_H

#include <functional>
#include <string>
#include <vector>

namespace bench {

/** Seconds that something took. */
struct Cost
{
    double wall = 0;
    double cpu = 0; ///< of the whole process
};

Cost costOf(const std::function<void()>& work);

/** Both sides of a row in turn, round by round, which of them first changes too: what the machine does meets
 * both. */
class Rounds
{
public:
    Rounds(unsigned rounds, const std::function<void()>& ours, const std::function<void()>& theirs);

    std::vector<double> wall() const { return m_wall; } ///< ours / theirs, a ratio for each round
    std::vector<double> cpu() const { return m_cpu; }

private:
    std::vector<double> m_wall;
    std::vector<double> m_cpu;
};

/** What is aimed at is the most, and of what is only told there is no aim. */
constexpr double NO_AIM = -1;

/** Prints a row as a line of JSON: the median of its values and their quartiles. */
void tellRow(const std::string& row, std::vector<double> values, double aim, const char* unit = "ratio");
/** Prints that a row has no value, and why. */
void tellFailure(const std::string& row, const std::string& why);
/** Prints a point of a curve, the median of its values: how `curve` grows with the number of `what`. */
void tellPoint(const std::string& curve, const std::string& what, unsigned long number,
               std::vector<double> values);

/** A group of rows, by its name on the command line. */
struct Group
{
    const char* name;
    void (*run)(bool isShort);
};

void callRows(bool isShort);
void arrayRows(bool isShort);
void threadRows(bool isShort);
void listRows(bool isShort);
void logRows(bool isShort);

/** Runs the groups that the command line names, all without names; "--short" first makes few rounds. */
int runGroups(const std::vector<Group>& groups, int count, char** arguments);

} // namespace bench

#endif
