// Bytes as hexadecimal text and back.
#ifndef ZUCOM_TOOLS_HEX_TEXT_H
#define ZUCOM_TOOLS_HEX_TEXT_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Upper-case digits with a blank between bytes, for example "06 FF 52".
std::string hexText(std::span<const std::uint8_t> bytes);

// Takes pairs of digits with white space anywhere between them; nothing when the text holds anything else.
std::optional<std::vector<std::uint8_t>> bytesFromHex(const std::string& text);

#endif
