// Colour on a terminal, plain text anywhere else.
#ifndef ZUCOM_TOOLS_TERMINAL_H
#define ZUCOM_TOOLS_TERMINAL_H

#include <string>
#include <string_view>

#include <unistd.h>

enum class Colour
{
    bold,
    dim,
    red,
    green,
    yellow,
    cyan,
};

// Whether colour may be written to a descriptor: it is a terminal, and NO_COLOR is not set.
bool colourOn(int descriptor = STDOUT_FILENO);

// The text in a colour for a descriptor; unchanged where colour is off.
std::string paint(Colour colour, std::string_view text, int descriptor = STDOUT_FILENO);

// Columns of the terminal behind a descriptor; 80 where there is none.
int terminalWidth(int descriptor = STDOUT_FILENO);

#endif
