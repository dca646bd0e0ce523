#include "output/Progress.h"

#include "text/Display.h"

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr const char* CLEAR_LINE = "\r\033[K";

size_t columns(int terminal)
{
    winsize size{};
    return ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
}

} // namespace

Progress::Progress(std::string work)
    : m_work(std::move(work)),
      m_terminal(isatty(STDERR_FILENO) == 0 ? -1 : fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
{
    if (m_terminal >= 0) {
        m_thread = std::thread([this] { show(); });
    }
}

Progress::~Progress()
{
    if (!isShown()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isOver = true;
    }
    m_ended.notify_all();
    m_thread.join();
    clear();
    close(m_terminal);
}

void Progress::update(const std::string& state, const std::function<void()>& print)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_state = state;
    if (print) {
        clear();
        print();
    }
}

void Progress::clear()
{
    if (m_isDrawn) {
        write(CLEAR_LINE);
    }
    m_isDrawn = false;
}

void Progress::write(const std::string& text) const
{
    [[maybe_unused]] const ssize_t written = ::write(m_terminal, text.data(), text.size());
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
    m_isDrawn = true;
    const auto elapsed = std::chrono::steady_clock::now() - m_begin;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
    const std::string text =
        m_work + (m_state.empty() ? "" : ", " + m_state) + ", " + std::to_string(seconds) + " s";
    write(std::string(CLEAR_LINE) + cutTo(printable(text), columns(m_terminal) - 1));
}

} // namespace tesselctl
