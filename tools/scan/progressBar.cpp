// A line on the terminal that shows how far a long task is and how long it will still take.
#include "tools/scan/progressBar.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

#include "tools/common/terminal.h"

namespace
{

constexpr std::chrono::milliseconds redrawTime{50};
constexpr std::size_t longestBar = 40;

std::string minutesText(double seconds)
{
    const long whole = std::lround(std::ceil(seconds));
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

ProgressBar::ProgressBar(std::size_t total) : total_(total), isOn_(isatty(STDERR_FILENO) == 1) {}

void ProgressBar::show(std::size_t done, const std::string& label)
{
    const Clock::time_point now = Clock::now();
    if (!isOn_ || now - lastDrawn_ < redrawTime)
        return;
    lastDrawn_ = now;
    isDrawn_ = true;
    const std::string line = lineOf(done, total_, now - start_, label, terminalWidth(STDERR_FILENO) - 1);
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
}

void ProgressBar::clear()
{
    if (isDrawn_)
        std::fputs("\r\033[K", stderr);
    isDrawn_ = false;
}

std::string ProgressBar::lineOf(std::size_t done, std::size_t total, std::chrono::duration<double> elapsed,
                                const std::string& label, int width)
{
    const double part = total == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(total);
    std::string text = fmt::format(" {:3.0f} %", part * 100.0);
    if (done > 0)
        text += fmt::format("  {} left", minutesText(elapsed.count() * (1.0 - part) / part));
    text += "  " + label;
    const auto columns = static_cast<std::size_t>(std::max(width, 0));
    text.resize(std::min(text.size(), columns));
    const std::size_t room = columns - text.size();
    if (room < 12) // no bar worth the name
        return text;
    const std::size_t length = std::min(longestBar, room - 2);
    const auto filled = static_cast<std::size_t>(part * static_cast<double>(length));
    return "[" + std::string(filled, '#') + std::string(length - filled, '.') + "]" + text;
}
