// Frame and payload: building, checking, fields, text, masking, CRC, numbers.

#include <zucom/zuProtocol.h>

#include <algorithm>
#include <numeric>
#include <random>

#include <gtest/gtest.h>

namespace
{
using Bytes = std::vector<uint8_t>;

// Bit by bit, straight from the definition of CRC-16/MCRF4XX: reflected 0x1021, initial value 0xFFFF, no final XOR.
uint16_t bitwiseCrc(const Bytes& bytes)
{
    unsigned crc = 0xFFFF;
    for (const uint8_t byte : bytes)
    {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0x8408U : 0U);
    }
    return static_cast<uint16_t>(crc);
}

Bytes randomBytes(std::mt19937& random, std::size_t count)
{
    Bytes bytes(count);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random());
    return bytes;
}

std::string hex(const Bytes& bytes)
{
    std::string text;
    for (const uint8_t byte : bytes)
        ZuProt::appendByteToHexString(byte, text);
    return text;
}

Bytes held(const ZuProt& frame)
{
    std::size_t length = 0;
    const uint8_t* bytes = frame.protocol(&length);
    return {bytes, bytes + length};
}

uint8_t firstByte(const ZuProt& frame)
{
    std::size_t length = 0;
    return *frame.protocol(&length);
}

Bytes payloadOf(const ZuProt& frame)
{
    std::size_t length = 0;
    const uint8_t* bytes = frame.payload(&length);
    return {bytes, bytes + length};
}

Bytes held(const ZuPayl& payload)
{
    std::size_t length = 0;
    const uint8_t* bytes = payload.payload(&length);
    return {bytes, bytes + length};
}

ZuProt frameOf(const std::string& text)
{
    ZuProt frame;
    EXPECT_TRUE(frame.stringToProtocol(text)) << text;
    return frame;
}

struct Kind
{
    uint8_t generation;
    std::size_t offset, busAddress, largestPayload;
    const char* example; // payload 52 00, bus address 255, a request
};

const Kind kinds[] = {
    {0, 2, 1, 251, " 06 FF|52 00|0F 6E"},
    {2, 4, 3, 32762, " 02 00 08 FF|52 00|4A C3"},
    {3, 6, 5, 32760, " 03 00 0A 00 01 FF|52 00|5D E5"},
};

TEST(Crc, hasTheCheckValueOfItsStandard)
{
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(0x6F91, ZuProt::crc16CheckSum(digits.data(), digits.size(), false));
    EXPECT_EQ(0x916F, ZuProt::crc16CheckSum(digits.data(), digits.size(), true));
    EXPECT_EQ(0xFFFF, ZuProt::crc16CheckSum(nullptr, 0, false));
}

TEST(Crc, equalsTheBitwiseSumForEveryByteAndRandomTexts)
{
    std::mt19937 random(1);
    for (unsigned i = 0; i < 600; ++i)
    {
        const Bytes bytes = i < 256 ? Bytes{static_cast<uint8_t>(i)} : randomBytes(random, random() % 300);
        const uint16_t crc = bitwiseCrc(bytes);
        EXPECT_EQ(crc, ZuProt::crc16CheckSum(bytes.data(), bytes.size(), false)) << hex(bytes);
        EXPECT_EQ(static_cast<uint16_t>(crc << 8 | crc >> 8), ZuProt::crc16CheckSum(bytes.data(), bytes.size(), true));
    }
}

TEST(Frame, isBuiltAsTheExamples)
{
    const uint8_t payload[] = {0x52, 0x00};
    for (const Kind& kind : kinds)
    {
        ZuProt frame;
        ASSERT_TRUE(frame.setPayload(payload, sizeof payload, kind.generation, 1, 255));
        EXPECT_EQ(kind.example, frame.protocolToString());
        EXPECT_EQ(" 52 00", frame.payloadToString());
        EXPECT_EQ(0x52, frame.commandOfProtocol());
        EXPECT_EQ(0x00, frame.statusOfProtocol());
        EXPECT_EQ(held(frame).size(), frame.lengthOfProtocol());
    }
}

TEST(Frame, ofEveryLengthReadsBackAndIsValidUntilAnyBitChanges)
{
    std::mt19937 random(2);
    for (const Kind& kind : kinds)
        for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{250}, kind.largestPayload})
        {
            const Bytes payload = randomBytes(random, size);
            const auto busAddress = static_cast<uint8_t>(random());
            const auto direction = static_cast<uint8_t>(random());
            ZuProt frame;
            ASSERT_TRUE(frame.setPayload(payload.data(), size, kind.generation, direction, busAddress));
            EXPECT_TRUE(frame.isValidProtocol());
            EXPECT_EQ(payload, payloadOf(frame));
            EXPECT_EQ(kind.generation, frame.generation());
            EXPECT_EQ(kind.offset, frame.payloadOffset());
            EXPECT_EQ(busAddress, frame.busAddrOfProtocol());
            EXPECT_EQ(kind.generation == 3 ? direction : 0, frame.directionOfProtocol());

            const Bytes bytes = held(frame);
            EXPECT_EQ(busAddress, bytes[kind.busAddress]);
            const std::size_t crcAt = bytes.size() - 2;
            EXPECT_EQ(bitwiseCrc({bytes.begin(), bytes.end() - 2}), bytes[crcAt] | bytes[crcAt + 1] << 8);
            EXPECT_EQ(bytes[crcAt] << 8 | bytes[crcAt + 1], frame.crcOfProtocol());
            EXPECT_EQ(bytes, held(frameOf(hex(bytes)))) << "read back from text";
            for (int change = 0; change < 40; ++change)
            {
                Bytes wrong = bytes;
                wrong[random() % (size < 10 ? wrong.size() : 8)] ^= static_cast<uint8_t>(1U << random() % 8);
                EXPECT_FALSE(frameOf(hex(wrong)).isValidProtocol()) << hex(wrong).substr(0, 40);
            }
        }
}

TEST(Frame, refusesWhatNoFrameCanHoldAndIsEmptyThen)
{
    const Bytes payload(32763);
    struct Case
    {
        std::size_t length;
        uint8_t generation;
    };
    const Case cases[] = {
        {0, 0},
        {0, 2},
        {0, 3},
        {1, 1},
        {1, 4},
        {1, 5},
        {1, 255},
        {252, 0},
        {32763, 2},
        {32761, 3},
        {SIZE_MAX, 0},
        {SIZE_MAX - 5, 2},
        {SIZE_MAX - 7, 3},
        {SIZE_MAX, 3},
    };
    for (const Case& c : cases)
    {
        ZuProt frame = frameOf("06 FF 52 00 0F 6E");
        EXPECT_FALSE(frame.setPayload(payload.data(), c.length, c.generation, 1, 255)) << c.length;
        EXPECT_TRUE(held(frame).empty());
        EXPECT_EQ(0, firstByte(frame));
    }
}

TEST(Frame, answersForEveryFirstByteAndEveryShortFrame)
{
    for (int first = 0; first < 256; ++first)
        for (std::size_t size = 1; size <= 8; ++size)
        {
            Bytes bytes(size, 0xFF);
            bytes[0] = static_cast<uint8_t>(first);
            const ZuProt frame = frameOf(hex(bytes));
            const std::size_t offset = first == 2 ? 4 : first == 3 ? 6 : first == 1 || first == 4 ? 0 : 2;
            EXPECT_EQ(first < 5 ? first : 0, frame.generation());
            EXPECT_EQ(offset, frame.payloadOffset());
            EXPECT_EQ(size > offset + 2 ? size - offset - 2 : 0, payloadOf(frame).size()) << first << ' ' << size;
            const std::size_t busAddress = first == 2 ? 3 : first == 3 ? 5 : 1;
            EXPECT_EQ(busAddress < size ? 0xFF : 0, frame.busAddrOfProtocol());
            EXPECT_FALSE(frame.isValidProtocol()) << hex(bytes);
        }
}

TEST(Frame, withoutBytesIsInvalidAndReadsAsZero)
{
    ZuProt frame;
    EXPECT_FALSE(frame.isValidProtocol());
    EXPECT_EQ(0, frame.generation());
    EXPECT_EQ(0U, frame.lengthOfProtocol());
    EXPECT_EQ(0, frame.crcOfProtocol());
    EXPECT_TRUE(payloadOf(frame).empty());
    EXPECT_EQ("", frame.protocolToString());
    frame.copyBusAddrToEndOfPayload();
    EXPECT_TRUE(held(frame).empty());
}

TEST(Frame, isRejectedWhateverItsLengthFieldClaims)
{
    for (const char* text : {"00", "02 00 00", "02 00 01", "02 00 02 00", "03 80 01", "03 FF FF 00 00 00", "05",
                             "FF 00", "01 00 04 00", "04 00 06 00 00 00"})
    {
        ZuProt frame = frameOf(text);
        EXPECT_FALSE(frame.isValidProtocol()) << text;
        frame.crcOfProtocol(); // nothing outside the buffer may be read
        frame.protocolToString();
        frame.payloadToString();
        frame.copyBusAddrToEndOfPayload();
    }
    EXPECT_EQ(0, frameOf("03 80 01 00 00 01").crcOfProtocol()) << "longer than any frame";
}

TEST(Frame, takesItsBusAddressBehindThePayload)
{
    for (const Kind& kind : kinds)
    {
        const Bytes payload = {0x52, 0x01, 0x02};
        ZuProt frame;
        ASSERT_TRUE(frame.setPayload(payload.data(), payload.size(), kind.generation, 2, 0x17));
        frame.copyBusAddrToEndOfPayload();
        EXPECT_EQ((Bytes{0x52, 0x01, 0x02, 0x17}), payloadOf(frame));
        const Bytes bytes = held(frame);
        EXPECT_EQ((Bytes{0x17, 0x00, 0x00}), Bytes(bytes.end() - 3, bytes.end()));
        EXPECT_FALSE(frame.isValidProtocol());
    }
    const Bytes most(32762);
    ZuProt full;
    ASSERT_TRUE(full.setPayload(most.data(), most.size(), 2, 0, 1));
    full.copyBusAddrToEndOfPayload();
    EXPECT_EQ(32768U, held(full).size()) << "no room for another byte";
}

TEST(FrameText, readsPairsBetweenBlanksAndBars)
{
    struct Case
    {
        const char* text;
        bool frame, payload; // accepted by stringToProtocol, by stringToPayload
        Bytes bytes;
    };
    const Case cases[] = {
        {" 06 FF|52 00|0F 6E", true, false, {0x06, 0xFF, 0x52, 0x00, 0x0F, 0x6E}},
        {"06ff5200\r\n\t\v\f 0f6E", true, true, {0x06, 0xFF, 0x52, 0x00, 0x0F, 0x6E}},
        {"|||", true, false, {}},
        {"", true, true, {}},
        {"  ", true, true, {}},
        {"06 F", false, false, {}},
        {"0 6", false, false, {}},
        {"0|6", false, false, {}},
        {"0G", false, false, {}},
        {"G0", false, false, {}},
        {"06 ##", false, false, {}},
        {"52:00", false, false, {}},
        {"06\x80", false, false, {}},
    };
    for (const Case& c : cases)
    {
        ZuProt frame;
        EXPECT_EQ(c.frame, frame.stringToProtocol(c.text)) << c.text;
        EXPECT_EQ(c.frame ? c.bytes : Bytes{}, held(frame)) << c.text;
        uint8_t buffer[16];
        std::size_t length = sizeof buffer;
        EXPECT_EQ(c.payload, ZuProt::stringToPayload(c.text, buffer, &length)) << c.text;
        EXPECT_EQ(c.payload ? c.bytes.size() : sizeof buffer, length) << c.text;
        EXPECT_TRUE(!c.payload || c.bytes == Bytes(buffer, buffer + length)) << c.text;
    }
    EXPECT_FALSE(frameOf("06 FF").stringToProtocol(std::string("06\0FF", 5))) << "a zero byte is no blank";
}

TEST(FrameText, isReadUpToTheCapacity)
{
    std::string tooLong;
    for (int i = 0; i < 32768; ++i)
        tooLong += "5A ";
    ZuProt frame;
    EXPECT_TRUE(frame.stringToProtocol(tooLong + "no hex at all"));
    EXPECT_EQ(Bytes(32768, 0x5A), held(frame));
    EXPECT_FALSE(frame.isValidProtocol());

    for (std::size_t capacity : {std::size_t{0}, std::size_t{1}, std::size_t{3}})
    {
        Bytes buffer(capacity + 1, 0xEE);
        std::size_t length = capacity;
        EXPECT_TRUE(ZuProt::stringToPayload("010203 04", buffer.data(), &length)) << capacity;
        EXPECT_EQ(capacity, length);
        EXPECT_EQ(0xEE, buffer[capacity]);
    }
}

struct Secret
{
    Bytes payload;
    std::size_t first; // 0 where nothing is hidden
};

// The table of what must not be shown, with answers and near misses.
const Secret secrets[] = {
    {{0xA0, 1, 2, 3, 4, 5, 6}, 1},
    {{0xA1, 1, 2, 3, 4, 5, 6}, 2},
    {{0xA2, 1, 2, 3, 4, 5, 6}, 3},
    {{0xA4, 1, 2, 3, 4, 5, 6}, 3},
    {{0xAD, 1, 2, 3, 4, 5, 6}, 4},
    {{0xA3, 1, 2, 3, 4, 5, 6}, 5},
    {{0xB2, 0xB0, 0, 3, 4, 5, 6}, 5},
    {{0xB2, 1, 0x08, 3, 4, 5, 6}, 5},
    {{0xB2, 1, 0xFF, 3, 4, 5, 6}, 5},
    {{0xB2, 1, 0xF7, 3, 4, 5, 6}, 0},
    {{0xB2, 0xB0}, 5}, // too short to hold the secret
    {{0xB2, 1}, 0},
    {{0xB2}, 0},
    {{0xA3, 1}, 5},
    {{0xA0}, 1},
    {{0x52, 0xA0, 0xA0}, 0},
    {{0xA5, 1, 2, 3, 4, 5, 6}, 0},
};

TEST(Masking, hidesTheSecretAndNothingElse)
{
    for (const Secret& secret : secrets)
    {
        const std::size_t size = secret.payload.size();
        std::string shown;
        for (std::size_t i = 0; i < size; ++i)
            shown += " " + (secret.first != 0 && i >= secret.first ? "##" : hex({secret.payload[i]}));
        std::size_t first = 99;
        std::size_t last = 99;
        EXPECT_EQ(secret.first != 0, ZuProt::getPayloadSecurityInfo(secret.payload.data(), size, &first, &last));
        EXPECT_EQ(secret.first != 0 ? secret.first : 99, first) << shown;
        EXPECT_EQ(secret.first != 0 ? size - 1 : 99, last) << shown;

        std::string text;
        ZuPayl(secret.payload.data(), size).toString(text, ' ');
        EXPECT_EQ(shown, text);
        for (const Kind& kind : kinds)
        {
            ZuProt frame;
            ASSERT_TRUE(frame.setPayload(secret.payload.data(), size, kind.generation, 1, 7));
            EXPECT_EQ(shown, frame.payloadToString());
            const std::string whole = frame.protocolToString();
            const std::string masked = "|" + shown.substr(1) + "|";
            EXPECT_EQ(whole.size() - masked.size() - 5, whole.find(masked)) << whole;
        }
    }
    std::size_t untouched = 99;
    EXPECT_FALSE(ZuProt::getPayloadSecurityInfo(nullptr, 0, &untouched, &untouched));
    EXPECT_EQ(99U, untouched);
}

TEST(FrameNames, areTheFixedTexts)
{
    const char* generations[] = {"Std", "", "Adv", "Enh", ""};
    for (uint8_t i = 0; i < 5; ++i)
        EXPECT_EQ(generations[i], ZuProt::generationToString(i));
    EXPECT_EQ("", ZuProt::generationToString(255));
    const std::pair<uint8_t, const char*> directions[] = {{0, ""}, {1, "Req"}, {2, "Rsp"}, {3, "Req"}, {0xFC, ""}};
    for (const auto& [direction, text] : directions)
        EXPECT_EQ(text, ZuProt::directionToString(direction));
}

TEST(HexPair, isStoredOnlyWhenBothAreDigits)
{
    uint8_t buffer[] = {0xEE, 0xEE};
    uint8_t* cursor = buffer;
    for (const char* pair : {"G0", "0G", "  ", "0x", "\xff\xff"})
        EXPECT_FALSE(ZuProt::appendHexByteToBuffer(pair[0], pair[1], &cursor)) << pair;
    EXPECT_EQ(buffer, cursor);
    EXPECT_TRUE(ZuProt::appendHexByteToBuffer('a', 'F', &cursor));
    EXPECT_EQ(buffer + 1, cursor);
    EXPECT_EQ(0xAF, buffer[0]);
    EXPECT_EQ(0xEE, buffer[1]);
}

template <class Value>
void expectNumber(Value (*read)(const uint8_t**), Value (*readMutable)(uint8_t**), void (*write)(uint8_t**, Value),
                  Value value, Value readBack, const Bytes& bytes)
{
    Bytes buffer(bytes.size() + 1, 0xEE);
    uint8_t* cursor = buffer.data();
    write(&cursor, value);
    EXPECT_EQ(buffer.data() + bytes.size(), cursor);
    EXPECT_EQ(bytes, Bytes(buffer.begin(), buffer.end() - 1));
    EXPECT_EQ(0xEE, buffer.back());
    const uint8_t* position = buffer.data();
    EXPECT_EQ(readBack, read(&position));
    EXPECT_EQ(cursor, position);
    cursor = buffer.data();
    EXPECT_EQ(readBack, readMutable(&cursor));
    EXPECT_EQ(position, cursor);
}

TEST(Numbers, areWrittenAndReadInTheirByteOrder)
{
    const uint32_t value = 0x89ABCDEF;
    using P = ZuProt;
    expectNumber<uint16_t>(P::value16, P::value16, P::setValue16, 0xCDEF, 0xCDEF, {0xCD, 0xEF});
    expectNumber<uint16_t>(P::value16le, P::value16le, P::setValue16le, 0xCDEF, 0xCDEF, {0xEF, 0xCD});
    expectNumber<uint32_t>(P::value24, P::value24, P::setValue24, value, 0xABCDEF, {0xAB, 0xCD, 0xEF});
    expectNumber<uint32_t>(P::value24le, P::value24le, P::setValue24le, value, 0xABCDEF, {0xEF, 0xCD, 0xAB});
    expectNumber<uint32_t>(P::value32, P::value32, P::setValue32, value, value, {0x89, 0xAB, 0xCD, 0xEF});
    expectNumber<uint32_t>(P::value32le, P::value32le, P::setValue32le, value, value, {0xEF, 0xCD, 0xAB, 0x89});
}

TEST(Payload, takesBytesVectorsAndTexts)
{
    const Bytes bytes = {0x52, 0x00, 0xFF};
    const ZuPayl fromBytes(bytes.data(), bytes.size());
    EXPECT_EQ(bytes, held(fromBytes));
    ZuPayl payload;
    EXPECT_TRUE(held(payload).empty());
    payload.setStandardResponse(0x52, 0x07);
    EXPECT_EQ((Bytes{0x52, 0x07}), held(payload));
    EXPECT_TRUE(payload.fromVector(bytes));
    EXPECT_EQ(bytes, held(payload));
    Bytes out(7, 0xEE);
    payload.toVector(out);
    EXPECT_EQ(bytes, out);
    EXPECT_TRUE(payload.fromVector({}));
    payload.toVector(out);
    EXPECT_TRUE(out.empty());

    const std::pair<char, const char*> texts[] = {{' ', " 52 00 FF"}, {',', ",52,00,FF"}, {'\0', "5200FF"}};
    for (const auto& [separator, expected] : texts)
    {
        std::string text = "old";
        fromBytes.toString(text, separator);
        EXPECT_EQ(expected, text);
        EXPECT_EQ(separator != ',', payload.fromString(text)) << text;
        EXPECT_EQ(separator != ',' ? bytes : Bytes{}, held(payload));
    }
    std::string text = "old";
    ZuPayl().toString(text, ' ');
    EXPECT_EQ("", text);
    EXPECT_TRUE(payload.fromString("52 00\n"));
    EXPECT_EQ((Bytes{0x52, 0x00}), held(payload));
}

TEST(Payload, holdsAsMuchAsAnEnhancedFrameAndStaysUnchangedForMore)
{
    const Bytes tooLong(32761, 0xA5);
    const Bytes most(32760, 0xA5);
    ZuPayl payload(most.data(), most.size());
    EXPECT_EQ(most, held(payload));
    payload.setStandardResponse(1, 2);
    EXPECT_FALSE(payload.fromVector(tooLong));
    payload.setPayload(tooLong.data(), tooLong.size());
    payload.setPayload(tooLong.data(), SIZE_MAX);
    EXPECT_EQ((Bytes{1, 2}), held(payload));
    EXPECT_TRUE(payload.fromVector(most));
    EXPECT_EQ(most, held(payload));
    EXPECT_TRUE(payload.fromString(hex(most) + "rest is not read"));
    EXPECT_EQ(most, held(payload));
    EXPECT_TRUE(held(ZuPayl(tooLong.data(), tooLong.size())).empty());
}
} // namespace
