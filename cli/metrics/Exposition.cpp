#include "metrics/Exposition.h"

#include "kernel/Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr mode_t FOR_THE_COLLECTOR = 0644;

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? "\\n" : c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return result;
}

std::string numberText(double number)
{
    char text[64] = {};
    snprintf(text, sizeof(text), "%.15g", number);
    return text;
}

} // namespace

void Exposition::begin(const std::string& name, const std::string& type, const std::string& help)
{
    m_name = name;
    m_text += "# HELP " + name + " " + help + "\n# TYPE " + name + " " + type + "\n";
}

void Exposition::gauge(const std::string& name, const std::string& help)
{
    begin(name, "gauge", help);
}

void Exposition::summary(const std::string& name, const std::string& help)
{
    begin(name, "summary", help);
}

void Exposition::value(const Labels& labels, double value)
{
    sample("", labels, value);
}

void Exposition::total(const Labels& labels, const Total& total)
{
    sample("_sum", labels, total.seconds);
    sample("_count", labels, static_cast<double>(total.count));
}

void Exposition::sample(const std::string& suffix, const Labels& labels, double value)
{
    std::string list;
    for (const auto& [name, text] : labels) {
        list += (list.empty() ? "" : ",") + name + "=\"" + escaped(text) + "\"";
    }
    m_text += m_name + suffix + (list.empty() ? "" : "{" + list + "}") + " " + numberText(value) + "\n";
}

void replaceFile(const std::string& path, const std::string& text)
{
    const auto fail = [&] { throw Failure(path + " cannot be written: " + std::strerror(errno)); };
    const std::string temporary = path + ".XXXXXX";
    std::string name = temporary; // its ending keeps collectors from reading it
    const int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) {
        fail();
    }
    const ssize_t written = write(file, text.data(), text.size());
    bool isWhole = written == static_cast<ssize_t>(text.size()) && fchmod(file, FOR_THE_COLLECTOR) == 0;
    isWhole = close(file) == 0 && isWhole;
    if (!isWhole || rename(name.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(name.c_str());
        errno = error;
        fail();
    }
}

} // namespace tesselctl
