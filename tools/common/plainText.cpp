// Foreign text made harmless.
#include "tools/common/plainText.h"

std::string printable(std::string_view text, std::size_t atMost)
{
    std::string result(text.substr(0, atMost));
    for (char& character : result)
        if (character < 0x20 || character > 0x7E) // bytes above 0x7F count as negative on amd64, as large on arm64
            character = '?';
    return text.size() > atMost ? result + "..." : result;
}
