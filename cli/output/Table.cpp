#include "output/Table.h"

#include "text/Display.h"

#include <algorithm>
#include <numeric>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr size_t GAP = 2;
constexpr size_t NARROWEST = 6;

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/**
 * Takes from the widest column until everything fits; a table that cannot fit is left whole, to be wrapped.
 */
void shrink(std::vector<size_t>& widths, size_t width)
{
    const size_t gaps = GAP * (widths.size() - 1);
    const std::vector<size_t> whole = widths;
    while (std::accumulate(widths.begin(), widths.end(), gaps) > width) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= NARROWEST) {
            widths = whole;
            return;
        }
        --*widest;
    }
}

std::string padded(const std::string& text, size_t width, bool right)
{
    const std::string blanks(width - std::min(width, displayWidth(text)), ' ');
    return right ? blanks + text : text + blanks;
}

} // namespace

std::string layOut(const std::vector<TableLine>& lines, size_t width)
{
    if (lines.empty()) {
        return "";
    }
    std::vector<size_t> widths(lines[0].size(), 0);
    std::vector<bool> right(lines[0].size(), lines.size() > 1);
    for (size_t line = 0; line < lines.size(); ++line) {
        for (size_t column = 0; column < widths.size(); ++column) {
            const std::string& text = lines[line][column];
            widths[column] = std::max(widths[column], displayWidth(text));
            right[column] = right[column] && (line == 0 || isNumber(text) || text == "-");
        }
    }
    if (width != 0) {
        shrink(widths, width);
    }
    std::string result;
    for (const auto& line : lines) {
        std::string text;
        for (size_t column = 0; column < widths.size(); ++column) {
            text += padded(cutTo(line[column], widths[column]), widths[column], right[column]);
            text += std::string(GAP, ' ');
        }
        text.erase(text.find_last_not_of(' ') + 1);
        result += text + "\n";
    }
    return result;
}

size_t terminalWidth()
{
    winsize size{};
    if (isatty(STDOUT_FILENO) == 0 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) {
        return 0;
    }
    return size.ws_col;
}

} // namespace tesselctl
