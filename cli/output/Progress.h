#ifndef OUTPUT_PROGRESS_H
#define OUTPUT_PROGRESS_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tesselctl {

/**
 * One line on the terminal that tells what long work is doing, how far it is and for how long: shown after
 * the first second, gone with this object. Nothing at all where standard error is no terminal.
 */
class Progress
{
public:
    explicit Progress(std::string work);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Whether anybody can see it. */
    bool isShown() const { return m_terminal >= 0; }

    /** How far the work is: "300 so far". What prints meanwhile has the line to itself. */
    void update(const std::string& state, const std::function<void()>& print = nullptr);

private:
    void show();
    void draw();
    void clear();
    void write(const std::string& text) const;

    std::string m_work;
    std::string m_state;
    std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_isOver = false;
    bool m_isDrawn = false;
    int m_terminal; ///< the standard error of the beginning; -1: none
    std::thread m_thread;
};

} // namespace tesselctl

#endif
