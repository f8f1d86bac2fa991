// The private upper-case copy in which keys and command names are matched.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include <zucom/zucom.h>
#include <zucom/zucomPort.h>

inline bool fitsKey(const char* text) { return ::strnlen(text, ZUCOM_KEY_LIMIT) < ZUCOM_KEY_LIMIT; }

class ZuKeyText
{
public:
    // The text must fit, see fitsKey().
    explicit ZuKeyText(const char* text)
    {
        std::memcpy(upper_, text, std::strlen(text) + 1);
        strtoup(upper_);
    }

    std::string_view upper() const { return upper_; }

private:
    char upper_[ZUCOM_KEY_LIMIT];
};
