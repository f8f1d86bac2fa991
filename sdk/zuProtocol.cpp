// Frame and payload of the reader protocol.

#include <zucom/zuProtocol.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <zucom/zuHelper.h>

#include "sdk/asciiText.h"

namespace
{
enum Generation : uint8_t
{
    standard = 0,
    advanced = 2,
    enhanced = 3,
    kinds = 5 // a first byte of this or more is the length of a standard frame
};

constexpr std::size_t payloadOffsets[kinds] = {2, 0, 4, 6, 0};
constexpr const char* generationTexts[kinds] = {"Std", "", "Adv", "Enh", ""};

constexpr std::size_t crcSize = 2;
constexpr std::size_t maxStandardLength = 255;

constexpr uint8_t requestFlag = 0x01;
constexpr uint8_t responseFlag = 0x02;

// ---- CRC ----

// Table k holds the sum of a byte that k zero bytes follow, so that a block of bytes is summed by as many look-ups that
// do not wait for each other. Table 0 alone is the usual one for a byte at a time.
constexpr std::size_t crcBlock = 16;
using CrcTables = std::array<std::array<uint16_t, 256>, crcBlock>;

constexpr CrcTables makeCrcTables()
{
    constexpr uint16_t polynomial = 0x8408; // 0x1021, bits reversed
    CrcTables tables{};
    for (uint16_t byte = 0; byte < 256; ++byte)
    {
        uint16_t crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<uint16_t>((crc & 1) != 0 ? (crc >> 1) ^ polynomial : crc >> 1);
        tables[0][byte] = crc;
    }
    for (std::size_t zeros = 1; zeros < crcBlock; ++zeros)
        for (std::size_t byte = 0; byte < 256; ++byte)
        {
            const uint16_t crc = tables[zeros - 1][byte];
            tables[zeros][byte] = static_cast<uint16_t>((crc >> 8) ^ tables[0][crc & 0xFF]);
        }
    return tables;
}

constexpr CrcTables crcTables = makeCrcTables();
static_assert(crcTables[0][1] == 0x1189);

// Takes whole blocks of the given size off the data.
template <std::size_t size>
unsigned crcOfBlocks(const uint8_t*& data, std::size_t& len, unsigned crc)
{
    for (; len >= size; len -= size, data += size)
    {
        unsigned sum = crcTables[size - 1][data[0] ^ (crc & 0xFF)] ^ crcTables[size - 2][data[1] ^ (crc >> 8)];
#pragma GCC unroll 16
        for (std::size_t i = 2; i < size; ++i)
            sum ^= crcTables[size - 1 - i][data[i]];
        crc = sum;
    }
    return crc;
}

// ---- numbers at a cursor ----

template <int width>
uint32_t readBigEndian(const uint8_t** cursor)
{
    uint32_t value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | *(*cursor)++;
    return value;
}

template <int width>
uint32_t readLittleEndian(const uint8_t** cursor)
{
    uint32_t value = 0;
    for (int i = 0; i < width; ++i)
        value |= static_cast<uint32_t>(*(*cursor)++) << (8 * i);
    return value;
}

template <int width>
void writeBigEndian(uint8_t** cursor, uint32_t value)
{
    for (int i = width - 1; i >= 0; --i)
        *(*cursor)++ = static_cast<uint8_t>(value >> (8 * i));
}

template <int width>
void writeLittleEndian(uint8_t** cursor, uint32_t value)
{
    for (int i = 0; i < width; ++i)
        *(*cursor)++ = static_cast<uint8_t>(value >> (8 * i));
}

template <class Read>
auto readThrough(uint8_t** cursor, Read read)
{
    const uint8_t* position = *cursor;
    const auto value = read(&position);
    *cursor += position - *cursor;
    return value;
}

// ---- text ----

// Reads hexadecimal pairs until the text or the buffer ends. The number of bytes stored, or -1 for a bad text.
template <class Skip>
int64_t parseHexText(const std::string& text, uint8_t* buf, std::size_t capacity, Skip skip)
{
    uint8_t* cursor = buf;
    for (std::size_t i = 0; i < text.size() && cursor != buf + capacity; ++i)
    {
        if (skip(text[i]))
            continue;
        if (i + 1 == text.size() || !ZuProt::appendHexByteToBuffer(text[i], text[i + 1], &cursor))
            return -1;
        ++i;
    }
    return cursor - buf;
}

// The bytes of a payload that texts must hide.
struct SecretRange
{
    SecretRange(const uint8_t* payload, std::size_t len)
    {
        known = ZuProt::getPayloadSecurityInfo(payload, len, &first, &last);
    }

    bool holds(std::size_t index) const { return known && index >= first && index <= last; }

    bool known;
    std::size_t first = 0;
    std::size_t last = 0;
};

void appendShownByte(uint8_t byte, bool secret, std::string& text)
{
    if (secret)
        text += "##";
    else
        ZuProt::appendByteToHexString(byte, text);
}
} // namespace

// ---- frame ----

ZuProt::ZuProt() // NOLINT(cppcoreguidelines-pro-type-member-init): clearing 32 KiB that length hides costs time
{
    reset();
}

const uint8_t* ZuProt::protocol(std::size_t* len) const
{
    *len = length;
    return buffer;
}

uint8_t ZuProt::generation() const { return buffer[0] < kinds ? buffer[0] : uint8_t{standard}; }

std::size_t ZuProt::payloadOffset() const { return payloadOffsets[generation()]; }

const uint8_t* ZuProt::payload(std::size_t* len) const
{
    const std::size_t frame = payloadOffset() + crcSize;
    *len = length > frame ? length - frame : 0;
    return buffer + payloadOffset();
}

uint8_t ZuProt::directionOfProtocol() const { return generation() == enhanced ? byteAt(4) : uint8_t{0}; }

uint8_t ZuProt::busAddrOfProtocol() const
{
    switch (generation())
    {
    case advanced:
        return byteAt(3);
    case enhanced:
        return byteAt(5);
    default:
        return byteAt(1);
    }
}

uint8_t ZuProt::commandOfProtocol() const { return byteAt(payloadOffset()); }

uint8_t ZuProt::statusOfProtocol() const { return byteAt(payloadOffset() + 1); }

std::size_t ZuProt::lengthOfProtocol() const
{
    if (generation() == standard)
        return byteAt(0);
    return length < 3 ? 0 : std::size_t{buffer[1]} << 8 | buffer[2];
}

uint16_t ZuProt::crcOfProtocol() const
{
    const std::size_t frameLength = lengthOfProtocol();
    if (frameLength < crcSize || frameLength > maxLength)
        return 0;
    return static_cast<uint16_t>(byteAt(frameLength - 2) << 8 | byteAt(frameLength - 1));
}

bool ZuProt::isValidProtocol() const
{
    if (length == 0 || buffer[0] == 0)
        return false;
    const std::size_t frameLength = lengthOfProtocol();
    if (frameLength != length || frameLength < payloadOffset() + crcSize)
        return false;
    return crc16CheckSum(buffer, frameLength - crcSize, true) == crcOfProtocol();
}

bool ZuProt::setPayload(const uint8_t* payload, std::size_t len, uint8_t generation, uint8_t direction, uint8_t busAddr)
{
    reset();
    if (generation != standard && generation != advanced && generation != enhanced)
        return false;
    const std::size_t frame = payloadOffsets[generation] + crcSize;
    const std::size_t longest = generation == standard ? maxStandardLength : maxLength;
    if (len == 0 || len > longest - frame)
        return false;

    // first, for it may be this frame's own payload, and the header is written over where it was
    std::memmove(buffer + payloadOffsets[generation], payload, len);
    length = len + frame;
    uint8_t* cursor = buffer;
    if (generation == standard)
    {
        *cursor++ = static_cast<uint8_t>(length);
    }
    else
    {
        *cursor++ = generation;
        setValue16(&cursor, static_cast<uint16_t>(length));
    }
    if (generation == enhanced)
    {
        *cursor++ = 0;
        *cursor++ = direction;
    }
    *cursor++ = busAddr;
    cursor += len;
    setValue16(&cursor, crc16CheckSum(buffer, length - crcSize, true));
    return true;
}

void ZuProt::copyBusAddrToEndOfPayload()
{
    if (length < payloadOffset() + crcSize || length + 1 > maxLength)
        return;
    buffer[length - 2] = busAddrOfProtocol();
    buffer[length - 1] = 0;
    buffer[length] = 0;
    ++length;
}

bool ZuProt::stringToProtocol(const std::string& text)
{
    reset();
    const int64_t count =
        parseHexText(text, buffer, maxLength, [](char c) { return c == '|' || asciiText::isSpace(c); });
    if (count <= 0)
    {
        reset();
        return count == 0;
    }
    length = static_cast<std::size_t>(count);
    return true;
}

std::string ZuProt::protocolToString() const
{
    std::size_t payloadLength = 0;
    const uint8_t* payloadBytes = payload(&payloadLength);
    const SecretRange secret(payloadBytes, payloadLength);
    const std::size_t offset = payloadOffset();

    std::string text;
    text.reserve(3 * length);
    for (std::size_t i = 0; i < length; ++i)
    {
        text += i == offset || i + crcSize == length ? '|' : ' ';
        appendShownByte(buffer[i], i >= offset && secret.holds(i - offset), text);
    }
    return text;
}

std::string ZuProt::payloadToString() const
{
    std::size_t payloadLength = 0;
    const uint8_t* bytes = payload(&payloadLength);
    const SecretRange secret(bytes, payloadLength);

    std::string text;
    text.reserve(3 * payloadLength);
    for (std::size_t i = 0; i < payloadLength; ++i)
    {
        text += ' ';
        appendShownByte(bytes[i], secret.holds(i), text);
    }
    return text;
}

uint16_t ZuProt::crc16CheckSum(const uint8_t* data, std::size_t len, bool swap)
{
    unsigned crc = crcOfBlocks<crcBlock>(data, len, 0xFFFF);
    crc = crcOfBlocks<8>(data, len, crc);
    crc = crcOfBlocks<4>(data, len, crc);
    for (; len > 0; --len, ++data)
        crc = crc >> 8 ^ crcTables[0][(crc ^ *data) & 0xFF];
    return static_cast<uint16_t>(swap ? crc << 8 | crc >> 8 : crc);
}

std::string ZuProt::generationToString(uint8_t generation)
{
    return generation < kinds ? generationTexts[generation] : "";
}

std::string ZuProt::directionToString(uint8_t direction)
{
    if ((direction & requestFlag) != 0)
        return "Req";
    return (direction & responseFlag) != 0 ? "Rsp" : "";
}

void ZuProt::appendByteToHexString(uint8_t byte, std::string& text)
{
    text += g_hexLookup.hexDigit[byte >> 4];
    text += g_hexLookup.hexDigit[byte & 0x0F];
}

bool ZuProt::appendHexByteToBuffer(char high, char low, uint8_t** cursor)
{
    const uint8_t highValue = g_hexLookup.hexValue[static_cast<uint8_t>(high)];
    const uint8_t lowValue = g_hexLookup.hexValue[static_cast<uint8_t>(low)];
    if (highValue > 15 || lowValue > 15)
        return false;
    *(*cursor)++ = static_cast<uint8_t>(highValue << 4 | lowValue);
    return true;
}

bool ZuProt::stringToPayload(const std::string& text, uint8_t* buf, std::size_t* len)
{
    const int64_t count = parseHexText(text, buf, *len, asciiText::isSpace);
    if (count < 0)
        return false;
    *len = static_cast<std::size_t>(count);
    return true;
}

bool ZuProt::getPayloadSecurityInfo(const uint8_t* payload, std::size_t len, std::size_t* first, std::size_t* last)
{
    struct Secret
    {
        uint8_t command;
        std::size_t first;
    };
    constexpr Secret secrets[] = {{0xA0, 1}, {0xA1, 2}, {0xA2, 3}, {0xA4, 3}, {0xAD, 4}, {0xA3, 5}, {0xB2, 5}};

    if (len == 0)
        return false;
    const auto* secret =
        std::find_if(std::begin(secrets), std::end(secrets), [&](const Secret& s) { return s.command == payload[0]; });
    if (secret == std::end(secrets))
        return false;
    // this command carries a secret in two of its forms only
    if (secret->command == 0xB2 && !(len > 1 && payload[1] == 0xB0) && !(len > 2 && (payload[2] & 0x08) != 0))
        return false;
    *first = secret->first;
    *last = len - 1;
    return true;
}

uint16_t ZuProt::value16(const uint8_t** cursor) { return static_cast<uint16_t>(readBigEndian<2>(cursor)); }

uint16_t ZuProt::value16(uint8_t** cursor) { return static_cast<uint16_t>(readThrough(cursor, readBigEndian<2>)); }

void ZuProt::setValue16(uint8_t** cursor, uint16_t value) { writeBigEndian<2>(cursor, value); }

uint16_t ZuProt::value16le(const uint8_t** cursor) { return static_cast<uint16_t>(readLittleEndian<2>(cursor)); }

uint16_t ZuProt::value16le(uint8_t** cursor) { return static_cast<uint16_t>(readThrough(cursor, readLittleEndian<2>)); }

void ZuProt::setValue16le(uint8_t** cursor, uint16_t value) { writeLittleEndian<2>(cursor, value); }

uint32_t ZuProt::value24(const uint8_t** cursor) { return readBigEndian<3>(cursor); }

uint32_t ZuProt::value24(uint8_t** cursor) { return readThrough(cursor, readBigEndian<3>); }

void ZuProt::setValue24(uint8_t** cursor, uint32_t value) { writeBigEndian<3>(cursor, value); }

uint32_t ZuProt::value24le(const uint8_t** cursor) { return readLittleEndian<3>(cursor); }

uint32_t ZuProt::value24le(uint8_t** cursor) { return readThrough(cursor, readLittleEndian<3>); }

void ZuProt::setValue24le(uint8_t** cursor, uint32_t value) { writeLittleEndian<3>(cursor, value); }

uint32_t ZuProt::value32(const uint8_t** cursor) { return readBigEndian<4>(cursor); }

uint32_t ZuProt::value32(uint8_t** cursor) { return readThrough(cursor, readBigEndian<4>); }

void ZuProt::setValue32(uint8_t** cursor, uint32_t value) { writeBigEndian<4>(cursor, value); }

uint32_t ZuProt::value32le(const uint8_t** cursor) { return readLittleEndian<4>(cursor); }

uint32_t ZuProt::value32le(uint8_t** cursor) { return readThrough(cursor, readLittleEndian<4>); }

void ZuProt::setValue32le(uint8_t** cursor, uint32_t value) { writeLittleEndian<4>(cursor, value); }

uint8_t ZuProt::byteAt(std::size_t index) const { return index < length ? buffer[index] : uint8_t{0}; }

void ZuProt::reset()
{
    length = 0;
    buffer[0] = 0;
}

// ---- payload ----

ZuPayl::ZuPayl() // NOLINT(cppcoreguidelines-pro-type-member-init): clearing 32 KiB that length hides costs time
{
    reset();
}

ZuPayl::ZuPayl(const uint8_t* bytes, std::size_t len) : ZuPayl() { setPayload(bytes, len); }

void ZuPayl::setPayload(const uint8_t* bytes, std::size_t len)
{
    if (len > maxLength)
        return;
    if (len > 0)
        std::memmove(data, bytes, len);
    length = len;
}

const uint8_t* ZuPayl::payload(std::size_t* len) const
{
    *len = length;
    return data;
}

void ZuPayl::setStandardResponse(uint8_t command, uint8_t status)
{
    data[0] = command;
    data[1] = status;
    length = 2;
    cursor = 2;
}

bool ZuPayl::fromVector(const std::vector<uint8_t>& bytes)
{
    if (bytes.size() > maxLength)
        return false;
    setPayload(bytes.data(), bytes.size());
    return true;
}

void ZuPayl::toVector(std::vector<uint8_t>& bytes) const { bytes.assign(data, data + length); }

bool ZuPayl::fromString(const std::string& text)
{
    std::size_t count = maxLength;
    if (!ZuProt::stringToPayload(text, data, &count))
    {
        reset();
        return false;
    }
    length = count;
    return true;
}

void ZuPayl::toString(std::string& text, char separator) const
{
    const SecretRange secret(data, length);
    text.clear();
    text.reserve(3 * length);
    for (std::size_t i = 0; i < length; ++i)
    {
        if (separator != '\0')
            text += separator;
        appendShownByte(data[i], secret.holds(i), text);
    }
}

void ZuPayl::reset()
{
    length = 0;
    data[0] = 0;
    cursor = 0;
}
