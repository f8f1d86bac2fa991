// Composing the log lines of port operations.

#include "port/zuCall.h"

#include <charconv>
#include <new>
#include <string>

#include <pthread.h>

#include <zucom/zucom.h>
#include <zucom/zucomErrorText.h>

namespace
{
void appendUnsigned(std::string& text, uint64_t number, int base)
{
    char digits[20];
    text.append(digits, std::to_chars(std::begin(digits), std::end(digits), number, base).ptr);
}
} // namespace

void appendText(std::string& out, ZuErrorText value) { out += ZucomErrorText::getErrorText(value.code); }

std::size_t textRoom(ZuErrorText) { return ZUCOM_ERROR_TEXT_SIZE; }

// Logging never changes the result of an operation: a line that memory does not suffice for is lost.
void ZuCall::write(std::string_view mark, int tag, std::initializer_list<ZuLogPiece> message) const
try
{
    const std::string time = port_.logger->currentLogTime();
    const std::string where = location(mark, tag);
    std::size_t room = 0;
    for (const ZuLogPiece& piece : message)
        room += piece.room();
    std::string text;
    text.reserve(room);
    for (const ZuLogPiece& piece : message)
        piece.appendTo(text);
    port_.logger->writeLogMessage(time, where, text);
}
catch (const std::bad_alloc&)
{
}

std::string ZuCall::location(std::string_view mark, int tag) const
{
    std::string text;
    text.reserve(96);
    text += " PH=0x";
    appendUnsigned(text, static_cast<uint32_t>(port_.portHandle), 16);
    text += " TID=";
    appendUnsigned(text, ::pthread_self(), 10);
    text += ' ';
    text += signature_.function();
    text += ':';
    appendUnsigned(text, static_cast<unsigned>(tag), 10);
    text += mark;
    return text;
}
