// Colour on a terminal, plain text anywhere else.
#include "tools/common/terminal.h"

#include <cstdlib>

#include <sys/ioctl.h>

namespace
{

constexpr const char* codes[] = {"\033[1m", "\033[2m", "\033[31m", "\033[32m", "\033[33m", "\033[36m"}; // as Colour

}

bool colourOn(int descriptor)
{
    const char* noColour = std::getenv("NO_COLOR");
    return (!noColour || *noColour == '\0') && isatty(descriptor) == 1;
}

std::string paint(Colour colour, std::string_view text, int descriptor)
{
    if (!colourOn(descriptor))
        return std::string(text);
    return std::string(codes[static_cast<int>(colour)]).append(text).append("\033[0m");
}

int terminalWidth(int descriptor)
{
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return 80;
    return size.ws_col;
}
