#include "output/Progress.h"

#include "text/Display.h"

#include <csignal>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr const char* CLEAR_LINE = "\r\033[K";

size_t columns()
{
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

} // namespace

Progress::Progress(std::string work) : m_work(std::move(work))
{
    if (isatty(STDERR_FILENO) != 0) {
        m_thread = std::thread([this] { show(); });
    }
}

Progress::~Progress()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOver = true;
    }
    m_ended.notify_all();
    m_thread.join();
    if (m_isShown) {
        std::cerr << CLEAR_LINE << std::flush;
    }
}

void Progress::update(const std::string& state)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_state = state;
}

void Progress::show()
{
    // Signals are for the thread that works.
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_ended.wait_for(lock, std::chrono::seconds(1), [this] { return m_isOver; })) {
        draw();
    }
}

void Progress::draw()
{
    m_isShown = true;
    const auto elapsed = std::chrono::steady_clock::now() - m_begin;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
    const std::string text =
        m_work + (m_state.empty() ? "" : ", " + m_state) + ", " + std::to_string(seconds) + " s";
    std::cerr << CLEAR_LINE << cutTo(printable(text), columns() - 1) << std::flush;
}

} // namespace tesselctl
