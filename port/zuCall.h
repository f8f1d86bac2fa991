// One call of a port operation: where its log lines come from and where its failures are kept.
//
// A log point is one readable line: a tag and the pieces of its message. While its condition is off it costs one load
// and one bit test; no time is taken and no text is built.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include <zucom/zucomPort.h>

#include "logger/zuLogCondition.h"
#include "logger/zuLogPiece.h"

// A result code that is shown as its text.
struct ZuErrorText
{
    int code;
};

void appendText(std::string& out, ZuErrorText value);
std::size_t textRoom(ZuErrorText value);

// The signature of an operation, reduced to "Class::function" while compiling.
class ZuSignature
{
public:
    consteval ZuSignature(const char* signature) // NOLINT(google-explicit-constructor): written as a plain text
    {
        const std::string_view text = signature;
        const std::string_view head = text.substr(0, text.find('('));
        function_ = head.substr(head.rfind(' ') + 1);
    }

    std::string_view function() const { return function_; }

private:
    std::string_view function_;
};

class ZuCall
{
public:
    ZuCall(ZucomPort& port, ZuSignature signature) : port_(port), signature_(signature) {}
    ZuCall(const ZuCall&) = delete;
    ZuCall& operator=(const ZuCall&) = delete;

    template <class... Pieces>
    void trace(int tag, const Pieces&... message) const
    {
        line(ZuLogCondition::trace, "", tag, message...);
    }

    // A line that belongs to the errors but is none.
    template <class... Pieces>
    void note(int tag, const Pieces&... message) const
    {
        line(ZuLogCondition::error, "", tag, message...);
    }

    template <class... Pieces>
    void error(int tag, const Pieces&... message) const
    {
        line(ZuLogCondition::error, " ERROR", tag, message...);
    }

    // Keeps the code as the port's last error, writes the error line that begins with its text, and gives the code
    // back.
    template <class... Pieces>
    int fail(int tag, int code, const Pieces&... more) const
    {
        port_.lastError = code;
        error(tag, ZuErrorText{code}, more...);
        return code;
    }

    // The same with a message of its own instead of the code's text.
    template <class... Pieces>
    int failWith(int tag, int code, const Pieces&... message) const
    {
        port_.lastError = code;
        error(tag, message...);
        return code;
    }

    // Keeps the code without a line.
    int failSilently(int code) const
    {
        port_.lastError = code;
        return code;
    }

private:
    template <class... Pieces>
    void line(uint32_t condition, std::string_view mark, int tag, const Pieces&... message) const
    {
        if ((port_.logger->logConditions & condition) != 0) [[unlikely]]
            compose(mark, tag, message...);
    }

    // Out of line, so that a log point that is off leaves nothing behind but its test.
    template <class... Pieces>
    [[gnu::cold, gnu::noinline]] void compose(std::string_view mark, int tag, const Pieces&... message) const
    {
        write(mark, tag, {ZuLogPiece(message)...});
    }

    void write(std::string_view mark, int tag, std::initializer_list<ZuLogPiece> message) const;
    std::string location(std::string_view mark, int tag) const;

    ZucomPort& port_;
    ZuSignature signature_;
};
