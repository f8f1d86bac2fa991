// Foreign text made harmless.
#ifndef ZUCOM_TOOLS_PLAIN_TEXT_H
#define ZUCOM_TOOLS_PLAIN_TEXT_H

#include <string>
#include <string_view>

// The beginning of a text, of which every byte that is no printable ASCII character becomes "?": safe on a terminal.
std::string printable(std::string_view text, std::size_t atMost = 200);

#endif
