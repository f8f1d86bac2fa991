// Addresses, identifiers, paths, tag fields and the hexadecimal table.

#include <zucom/zuHelper.h>

#include <array>
#include <cctype>
#include <vector>

#include <gtest/gtest.h>

namespace
{
using Mac = std::array<uint8_t, 6>;

TEST(HelperMac, printsSixUpperCasePairs)
{
    EXPECT_EQ("00:00:00:00:00:00", ZuHelper::macAddressToString(Mac{}.data()));
    EXPECT_EQ("00:1A:2B:3C:4D:FE", ZuHelper::macAddressToString(Mac{0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFE}.data()));
}

TEST(HelperMac, knowsTheVendorByExactlyThreeBytes)
{
    const std::array<uint8_t, 3> oui = {0x02, 0x49, 0x56}; // nothing behind it may be read
    EXPECT_TRUE(ZuHelper::isIvraMacAddress(oui.data()));
    for (std::size_t i = 0; i < oui.size(); ++i)
    {
        std::array<uint8_t, 3> other = oui;
        other[i] ^= 0x80;
        EXPECT_FALSE(ZuHelper::isIvraMacAddress(other.data())) << "byte " << i;
    }
}

TEST(HelperDeviceId, printsEightDigits)
{
    EXPECT_EQ("00000000", ZuHelper::deviceIdToHexString(0));
    EXPECT_EQ("000000FF", ZuHelper::deviceIdToHexString(255));
    EXPECT_EQ("FFFFFFFF", ZuHelper::deviceIdToHexString(0xFFFFFFFF));
}

TEST(HelperDeviceId, readsOneNumber)
{
    const std::pair<const char*, uint32_t> cases[] = {
        {"0x1A2B", 0x1A2B}, {"1a2b", 0x1A2B}, {"  ff", 255}, {"\t\n0XfFzz", 255},
        {"12 34", 0x12},    {"", 0},          {"xyz", 0},    {"DEADBEEF", 0xDEADBEEF},
        {"0", 0},           {"-", 0},         {"g1", 0},
    };
    for (const auto& [text, id] : cases)
        EXPECT_EQ(id, ZuHelper::deviceIdFromHexString(text)) << '"' << text << '"';
}

TEST(HelperPath, turnsBackslashesOnly)
{
    EXPECT_EQ("C:/data/logs/", ZuHelper::pathToNativeSeparators("C:\\data\\logs/"));
    EXPECT_EQ("//.././/a b/", ZuHelper::pathToNativeSeparators("\\\\../.\\/a b\\"));
    EXPECT_EQ("", ZuHelper::pathToNativeSeparators(""));
}

TEST(HelperTid, readsModelAndDesigner)
{
    struct Case
    {
        std::array<uint8_t, 4> tid;
        int32_t model, designer, plain;
        bool flag;
    };
    const Case cases[] = {
        {{0xE2, 0x80, 0x11, 0x05}, 0x105, 0x10001, 1, true}, {{0xE2, 0xFF, 0xFF, 0xFF}, 0xFFF, 0x101FF, 0x1FF, true},
        {{0xE2, 0xE0, 0x0F, 0x00}, 0xF00, 0x10000, 0, true}, // indicator bits and model belong to no designer
        {{0xE0, 0x04, 0xFF, 0xFF}, -1, 4, 4, false},         {{0xE3, 0x16, 0xFF, 0xFF}, -1, 0x16, 0x16, false},
        {{0xE1, 0x16, 0xFF, 0xFF}, -1, -1, -1, true},        {{0x00, 0x16, 0xFF, 0xFF}, -1, -1, -1, true},
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(c.model, ZuHelper::epcC1G2_TagModelNumberFromTid(c.tid.data()));
        const int32_t designer = ZuHelper::epcC1G2_MaskDesignerIDFromTid(c.tid.data());
        EXPECT_EQ(c.designer, designer);
        EXPECT_EQ(c.flag, ZuHelper::epcC1G2_MaskDesignerIDFlag(designer));
        EXPECT_EQ(c.plain, ZuHelper::epcC1G2_MaskDesignerIDValue(designer));
    }
}

TEST(HexLookup, agreesWithTheStandardLibraryForEveryCharacter)
{
    for (int c = 0; c < 256; ++c)
    {
        const char text[] = {static_cast<char>(c), '\0'};
        const unsigned long expected = std::isxdigit(c) != 0 ? std::stoul(text, nullptr, 16) : 0xFF;
        EXPECT_EQ(expected, g_hexLookup.hexValue[c]) << c;
    }
    EXPECT_EQ("0123456789ABCDEF", std::string(g_hexLookup.hexDigit, sizeof g_hexLookup.hexDigit));
}
} // namespace
