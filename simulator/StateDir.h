#ifndef SIMULATOR_STATEDIR_H
#define SIMULATOR_STATEDIR_H

#include <memory>
#include <string>

namespace arraysim {

/** The directory that keeps an array's objects and certificates, for one process at a time. */
class StateDir
{
public:
    /** Makes the directory where it is missing, for its owner alone. Throws std::runtime_error. */
    explicit StateDir(const std::string& path);
    /** One that is made for this process, and goes with it. */
    static std::unique_ptr<StateDir> temporary();
    ~StateDir();
    StateDir(const StateDir&) = delete;
    StateDir& operator=(const StateDir&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
    int m_lock = -1;
    bool m_temporary = false;
};

/** The first line of a file. Throws std::runtime_error. */
std::string firstLine(const std::string& file);

/** Writes a file that readers see whole or not at all. Throws std::runtime_error. */
void writeWhole(const std::string& file, const std::string& text, unsigned mode);

} // namespace arraysim

#endif
