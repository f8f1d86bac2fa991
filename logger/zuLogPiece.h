// What the message of a log line is made of: a borrowed value and the way to print it. Building pieces costs nothing
// that matters, so a log point may name its values even while it is off.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Bytes that are shown in hexadecimal.
struct ZuDump
{
    const uint8_t* bytes;
    std::size_t count;
};

// An errno value that is shown as the system's text for it.
struct ZuErrno
{
    int value;
};

// Each kind of value has these two: its text, and the room to reserve for it, so that a message is allocated once.
void appendText(std::string& out, std::string_view value);
void appendText(std::string& out, int64_t value);
void appendText(std::string& out, ZuDump value);
void appendText(std::string& out, ZuErrno value);

std::size_t textRoom(std::string_view value);
std::size_t textRoom(int64_t value);
std::size_t textRoom(ZuDump value);
std::size_t textRoom(ZuErrno value);

// A value that takes work comes as a function without arguments, which is called when the line is composed.
template <std::invocable Function>
void appendText(std::string& out, const Function& value)
{
    appendText(out, value());
}

template <std::invocable Function>
std::size_t textRoom(const Function& value)
{
    return textRoom(value());
}

class ZuLogPiece
{
public:
    template <class Value>
    explicit ZuLogPiece(const Value& value)
        : value_(&value),
          append_([](std::string& out, const void* v) { appendText(out, *static_cast<const Value*>(v)); }),
          room_([](const void* v) { return textRoom(*static_cast<const Value*>(v)); })
    {
    }

    void appendTo(std::string& out) const { append_(out, value_); }
    std::size_t room() const { return room_(value_); }

private:
    const void* value_;
    void (*append_)(std::string&, const void*);
    std::size_t (*room_)(const void*);
};
