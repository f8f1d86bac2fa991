// What the library's codes mean for somebody whose reader does not answer, and what to do.
#ifndef ZUCOM_TOOLS_CODE_ADVICE_H
#define ZUCOM_TOOLS_CODE_ADVICE_H

#include <span>
#include <string_view>

struct CodeAdvice
{
    int code;
    const char* meaning;
    const char* remedy;
};

std::span<const CodeAdvice> allCodeAdvice();

// Null for a value that is no code of the library.
const CodeAdvice* adviceForCode(int code);

// The code whose text begins a message of the log; null when there is none.
const CodeAdvice* adviceForText(std::string_view message);

#endif
