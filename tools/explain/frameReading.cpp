// What the bytes of one frame mean, and what is wrong with them.
#include "tools/explain/frameReading.h"

#include <algorithm>
#include <bit>

#include <fmt/format.h>
#include <zucom/zuProtocol.h>

#include "tools/explain/crcRepair.h"

namespace
{

constexpr std::size_t repairsShown = 4;
constexpr std::size_t bytesSearched = std::size_t{1} << 22; // check sum work that looking for frames in noise may cost

std::string plural(std::size_t count, const char* thing)
{
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string crcBytes(unsigned crc) { return fmt::format("{:02X} {:02X}", crc & 0xFF, crc >> 8); } // low byte first

// Builds a reading from left to right.
class Reader
{
public:
    Reader(ByteView bytes, Direction direction) : bytes_(bytes), secretTo_(bytes.size())
    {
        reading_.length = bytes.size();
        reading_.direction = direction;
    }

    FrameReading read()
    {
        layout_ = layoutOf(bytes_);
        if (!layout_)
        {
            readUnknown();
            return std::move(reading_);
        }
        reading_.kind = layout_->name;
        reading_.right = isWholeFrame(bytes_);
        findSecret();
        readHeader();
        readPayload();
        readCrc();
        if (!reading_.right)
            findFaults();
        return std::move(reading_);
    }

private:
    bool has(std::size_t offset, std::size_t count = 1) const { return bytes_.size() >= offset + count; }

    std::size_t crcAt() const // where the check sum begins, at the earliest behind the header
    {
        return std::max(layout_->payloadAt, bytes_.size() - std::min(bytes_.size(), crcSize));
    }

    // In a broken frame nobody can tell where the secret ends, so all bytes behind its beginning are hidden.
    void findSecret()
    {
        if (!has(layout_->payloadAt))
            return;
        const ByteView payload = bytes_.subspan(layout_->payloadAt);
        std::size_t first = 0;
        std::size_t last = 0;
        if (!ZuProt::getPayloadSecurityInfo(payload.data(), payload.size(), &first, &last))
            return;
        secretFrom_ = std::min(bytes_.size(), layout_->payloadAt + first);
        secretTo_ = reading_.right ? std::max(secretFrom_, crcAt()) : bytes_.size();
    }

    bool isSecret(std::size_t offset) const { return offset >= secretFrom_ && offset < secretTo_; }

    std::string byteText(std::uint8_t byte, std::size_t offset) const
    {
        return isSecret(offset) || (!reading_.right && offset >= secretFrom_) ? "##" : fmt::format("{:02X}", byte);
    }

    void field(const char* name, std::size_t offset, std::size_t length, std::string meaning)
    {
        if (!has(offset) || length == 0)
            return;
        length = std::min(length, bytes_.size() - offset);
        std::string text;
        text.reserve(length * 3);
        for (std::size_t i = offset; i < offset + length; ++i)
        {
            if (i > offset)
                text += ' ';
            text += byteText(bytes_[i], i);
        }
        reading_.fields.push_back({name, offset, length, std::move(text), std::move(meaning)});
    }

    void readUnknown()
    {
        field("bytes", 0, bytes_.size(), "belong to no frame");
        if (bytes_.empty())
            return;
        reading_.faults.push_back(
            fmt::format("no frame begins with {:02X}: 02 is advanced, 03 enhanced, 05 to FF the length of a standard "
                        "one",
                        bytes_[0]));
        proposeRepairs();
    }

    void readHeader()
    {
        if (has(layout_->lengthAt, layout_->lengthSize))
            reading_.statedLength = statedLength(bytes_, *layout_);
        const std::string length = reading_.statedLength ? plural(*reading_.statedLength, "byte") : "cut off";
        if (layout_->generation == 0)
        {
            field("length", 0, 1, "standard frame, " + length);
        }
        else
        {
            field("kind", 0, 1, fmt::format("{} frame", layout_->name));
            field("length", layout_->lengthAt, layout_->lengthSize, length);
        }
        if (layout_->generation == 3)
        {
            field("reserved", 3, 1, has(3) && bytes_[3] != 0 ? "should be 0" : "");
            if (has(4))
                readDirection(bytes_[4]);
        }
        if (has(layout_->addressAt))
        {
            reading_.address = bytes_[layout_->addressAt];
            field("address", layout_->addressAt, 1,
                  *reading_.address == 255 ? "255, every reader" : std::to_string(*reading_.address));
        }
    }

    void readDirection(std::uint8_t flags)
    {
        const std::string text = ZuProt::directionToString(flags);
        field("direction", 4, 1, text == "Req" ? "request" : text == "Rsp" ? "answer" : "neither request nor answer");
        if (reading_.direction == Direction::unknown && !text.empty())
            reading_.direction = text == "Req" ? Direction::request : Direction::answer;
    }

    void readPayload()
    {
        const std::size_t begin = layout_->payloadAt;
        const std::size_t end = std::min(crcAt(), bytes_.size());
        if (begin >= end)
            return;
        reading_.command = bytes_[begin];
        field("command", begin, 1, fmt::format("0x{:02X}", *reading_.command));
        std::size_t rest = begin + 1;
        if (reading_.direction != Direction::request && rest < end && !isSecret(rest))
        {
            reading_.status = bytes_[rest];
            const bool surely = reading_.direction == Direction::answer;
            field("status", rest, 1,
                  fmt::format("0x{:02X}{}", *reading_.status, surely ? "" : " if this is an answer, else data"));
            ++rest;
        }
        const std::size_t hidden = std::min(end, secretTo_) - std::min(end, std::max(rest, secretFrom_));
        field("data", rest, end - rest,
              plural(end - rest, "byte") + (hidden > 0 ? fmt::format(", {} secret", hidden) : std::string()));
    }

    void readCrc()
    {
        if (crcAt() + crcSize > bytes_.size())
        {
            field("rest", std::min(crcAt(), bytes_.size()), crcSize, "cut off");
            return;
        }
        const ByteView crc = bytes_.subspan(crcAt());
        reading_.crcFound = crc[0] | crc[1] << 8;
        reading_.crcExpected = ZuProt::crc16CheckSum(bytes_.data(), crcAt(), false);
        const bool fits = reading_.crcFound == reading_.crcExpected;
        field("CRC", crcAt(), crcSize,
              fits ? "fits"
                   : fmt::format("does not fit: {} expected", crcBytes(static_cast<unsigned>(*reading_.crcExpected))));
        if (byteText(0, crcAt()) == "##")
            reading_.crcFound.reset(); // it may be the secret's end
    }

    void findFaults()
    {
        if (!reading_.statedLength)
            reading_.faults.emplace_back("the frame ends before its length field does");
        else if (*reading_.statedLength != bytes_.size())
            reading_.faults.push_back(fmt::format("the length field says {}, here are {}",
                                                  plural(*reading_.statedLength, "byte"), bytes_.size()));
        if (bytes_.size() < layout_->payloadAt + 1 + crcSize)
            reading_.faults.push_back(
                fmt::format("{} are too few for {} {} frame with a command", plural(bytes_.size(), "byte"),
                            layout_->generation == 2 || layout_->generation == 3 ? "an" : "a", layout_->name));
        if (bytes_.size() > longestFrame)
            reading_.faults.push_back(fmt::format("no frame is longer than {} bytes", longestFrame));
        if (reading_.crcExpected && !(has(crcAt(), crcSize) && crcFits(bytes_)))
            reading_.faults.emplace_back("the check sum does not fit");
        proposeCrcOrder();
        proposeLength();
        proposeRepairs();
        proposeMissingEnd();
        proposeCrc();
    }

    static bool crcFits(ByteView bytes) { return ZuProt::crc16CheckSum(bytes.data(), bytes.size(), false) == 0; }

    bool lengthFits() const { return reading_.statedLength == bytes_.size(); }

    bool isInLength(std::size_t offset) const // where proposeLength() has said it already
    {
        return layout_ && offset >= layout_->lengthAt && offset < layout_->lengthAt + layout_->lengthSize;
    }

    void proposeCrcOrder()
    {
        if (!has(layout_->payloadAt, crcSize))
            return;
        Bytes swapped(bytes_.begin(), bytes_.end());
        std::swap(swapped[swapped.size() - 2], swapped[swapped.size() - 1]);
        if (swapped[swapped.size() - 2] != swapped.back() && isWholeFrame(swapped))
            reading_.remedies.push_back(fmt::format("the two CRC bytes are swapped: the low byte comes first, {}",
                                                    crcBytes(static_cast<unsigned>(*reading_.crcExpected))));
    }

    void proposeLength()
    {
        if (lengthFits() || !has(layout_->payloadAt, 1 + crcSize))
            return;
        const Bytes changed = withLength(bytes_, *layout_, bytes_.size());
        const ByteView field = ByteView(changed).subspan(layout_->lengthAt, layout_->lengthSize);
        std::string length;
        for (const std::uint8_t byte : field)
            length += fmt::format("{}{:02X}", length.empty() ? "" : " ", byte);
        if (isWholeFrame(changed))
            reading_.remedies.push_back(fmt::format("the length field is wrong: with {} everything fits", length));
        else if (crcFits(bytes_) && isWholeFrame(withCrc(changed)))
            reading_.remedies.push_back(
                fmt::format("the sender wrote a wrong length (its CRC fits, so nothing was lost on the line): "
                            "the length field must be {}, the CRC then {:02X} {:02X}",
                            length, withCrc(changed)[changed.size() - 2], withCrc(changed).back()));
    }

    void proposeRepairs()
    {
        for (const Repair& repair : findRepairs(bytes_, repairsShown))
            if (repair.kind != Repair::change || !isInLength(repair.offset) || lengthFits())
                reading_.remedies.push_back(repairText(repair));
    }

    std::string repairText(const Repair& repair) const
    {
        const std::string value = byteText(repair.value, repair.offset);
        if (repair.kind == Repair::insert)
            return fmt::format("a byte is missing: {} at offset {}", value, repair.offset);
        if (repair.kind == Repair::drop)
            return fmt::format("a byte is too many: {} at offset {}", value, repair.offset);
        const unsigned flipped = repair.value ^ bytes_[repair.offset];
        return fmt::format("{}: the byte at offset {} must be {}",
                           std::has_single_bit(flipped) && value != "##"
                               ? fmt::format("bit {} is flipped", std::countr_zero(flipped))
                               : "a byte is wrong",
                           repair.offset, value);
    }

    void proposeMissingEnd()
    {
        if (!reading_.statedLength || *reading_.statedLength <= bytes_.size() || *reading_.statedLength > longestFrame)
            return;
        const std::size_t missing = *reading_.statedLength - bytes_.size();
        Bytes completed(bytes_.begin(), bytes_.end());
        completed.resize(completed.size() + crcSize);
        completed = withCrc(completed);
        if (missing == crcSize && isWholeFrame(completed) && secretFrom_ == noSecret)
            reading_.remedies.push_back(fmt::format("the CRC may be missing: {:02X} {:02X} at the end",
                                                    completed[completed.size() - 2], completed.back()));
        else if (reading_.remedies.empty())
            reading_.remedies.push_back(plural(missing, "byte") + " more must come: the frame was cut, or bytes were "
                                                                  "lost on the line");
    }

    void proposeCrc()
    {
        if (lengthFits() && reading_.crcExpected && bytes_.size() >= layout_->payloadAt + 1 + crcSize)
            reading_.remedies.push_back(fmt::format("when all other bytes are right, the CRC must be {}",
                                                    crcBytes(static_cast<unsigned>(*reading_.crcExpected))));
    }

    ByteView bytes_;
    FrameReading reading_;
    const FrameLayout* layout_ = nullptr;
    static constexpr std::size_t noSecret = SIZE_MAX;
    std::size_t secretFrom_ = noSecret; // offsets of the first secret byte and of the byte behind the last
    std::size_t secretTo_;
};

// Length of the right frame with which the bytes begin, or 0. What its check sum costs comes off the budget.
std::size_t frameAtBegin(ByteView bytes, std::size_t& budget)
{
    const FrameLayout* layout = layoutOf(bytes);
    const std::size_t length = layout ? statedLength(bytes, *layout) : 0;
    if (length == 0 || length > bytes.size() || length > budget)
        return 0;
    budget -= length;
    return isWholeFrame(bytes.first(length)) ? length : 0;
}

} // namespace

FrameReading readFrame(ByteView bytes, Direction direction) { return Reader(bytes, direction).read(); }

std::vector<ByteView> splitFrames(ByteView bytes)
{
    std::vector<ByteView> pieces;
    std::size_t budget = bytesSearched;
    std::size_t begin = 0; // of the piece that is no right frame
    for (std::size_t i = 0; i < bytes.size();)
    {
        const std::size_t length = frameAtBegin(bytes.subspan(i), budget);
        if (length == 0)
        {
            ++i;
            continue;
        }
        if (i > begin)
            pieces.push_back(bytes.subspan(begin, i - begin));
        pieces.push_back(bytes.subspan(i, length));
        i += length;
        begin = i;
    }
    if (begin < bytes.size())
        pieces.push_back(bytes.subspan(begin));
    return pieces;
}
