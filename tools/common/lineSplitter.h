// Cuts a stream of bytes into lines without ever holding more than one.
#ifndef ZUCOM_TOOLS_LINE_SPLITTER_H
#define ZUCOM_TOOLS_LINE_SPLITTER_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// A line ends with a line feed; a carriage return before it is dropped. Of a line longer than the limit only the
// beginning is handed on, so that any input needs the same little memory.
class LineSplitter
{
public:
    static constexpr std::size_t limit = std::size_t{1} << 20; // the dump of the longest frame needs a fifth of it

    using Handler = std::function<void(std::string_view)>;

    explicit LineSplitter(Handler onLine);

    void push(std::string_view bytes);
    void finish(); // hands on a last line without a line feed

    std::size_t cutLines() const; // lines that were longer than the limit

private:
    void hold(std::string_view bytes);
    void emit(std::string_view line);

    Handler onLine_;
    std::string held_; // the beginning of a line whose end has not come yet
    bool cutting_ = false;
    std::size_t cutLines_ = 0;
};

#endif
