// A line on the terminal that shows how far a long task is and how long it will still take.
#ifndef ZUCOM_TOOLS_PROGRESS_BAR_H
#define ZUCOM_TOOLS_PROGRESS_BAR_H

#include <chrono>
#include <string>

// Drawn on standard error, and only when that is a terminal: output that goes elsewhere stays clean.
class ProgressBar
{
public:
    explicit ProgressBar(std::size_t total);
    ~ProgressBar() { clear(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(std::size_t done, const std::string& label);
    void clear(); // so that something else can be printed

    // The line for a width in columns.
    static std::string lineOf(std::size_t done, std::size_t total, std::chrono::duration<double> elapsed,
                              const std::string& label, int width);

private:
    using Clock = std::chrono::steady_clock;

    std::size_t total_;
    bool isOn_;
    bool isDrawn_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point lastDrawn_;
};

#endif
