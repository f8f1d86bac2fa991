// Static helpers and the hexadecimal table.

#include <zucom/zuHelper.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

constinit const ZuHexLookup g_hexLookup;

namespace
{
constexpr uint8_t ivraOui[] = {0x02, 0x49, 0x56};

constexpr uint8_t classEpcGlobal = 0xE2;
constexpr uint8_t classIso7816[] = {0xE0, 0xE3};

constexpr int32_t epcGlobalFlag = 0x10000;

void appendHexByte(std::string& text, uint8_t byte)
{
    text += g_hexLookup.hexDigit[byte >> 4];
    text += g_hexLookup.hexDigit[byte & 0x0F];
}
} // namespace

bool ZuHelper::isIvraMacAddress(const uint8_t* mac) { return std::equal(std::begin(ivraOui), std::end(ivraOui), mac); }

std::string ZuHelper::macAddressToString(const uint8_t* mac)
{
    std::string text;
    for (int i = 0; i < 6; ++i)
    {
        if (i > 0)
            text += ':';
        appendHexByte(text, mac[i]);
    }
    return text;
}

std::string ZuHelper::deviceIdToHexString(uint32_t id)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        appendHexByte(text, static_cast<uint8_t>(id >> shift));
    return text;
}

uint32_t ZuHelper::deviceIdFromHexString(const char* text)
{
    unsigned int id = 0;
    return std::sscanf(text, "%x", &id) == 1 ? id : 0; // NOLINT(cert-err34-c): no number reads as 0
}

std::string ZuHelper::pathToNativeSeparators(const char* path)
{
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

int32_t ZuHelper::epcC1G2_TagModelNumberFromTid(const uint8_t* tid)
{
    if (tid[0] != classEpcGlobal)
        return -1;
    return ((tid[2] & 0x0F) << 8) | tid[3];
}

int32_t ZuHelper::epcC1G2_MaskDesignerIDFromTid(const uint8_t* tid)
{
    if (tid[0] == classEpcGlobal)
        return epcGlobalFlag | ((tid[1] & 0x1F) << 4) | (tid[2] >> 4);
    if (std::find(std::begin(classIso7816), std::end(classIso7816), tid[0]) != std::end(classIso7816))
        return tid[1];
    return -1;
}

bool ZuHelper::epcC1G2_MaskDesignerIDFlag(int32_t value) { return (value & epcGlobalFlag) != 0; }

int32_t ZuHelper::epcC1G2_MaskDesignerIDValue(int32_t value) { return value < 0 ? value : value & 0xFFFF; }
