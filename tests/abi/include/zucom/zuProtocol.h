/**
 * @file
 * The reader protocol: a frame with its CRC, and the payload it carries.
 *
 * | First byte | Kind     | Length field            | Bus address | Payload from |
 * |------------|----------|-------------------------|-------------|--------------|
 * | 5 to 255   | standard | byte 0                  | byte 1      | byte 2       |
 * | 2          | advanced | bytes 1, 2 (big-endian) | byte 3      | byte 4       |
 * | 3          | enhanced | bytes 1, 2 (big-endian) | byte 5      | byte 6       |
 *
 * The length counts every byte of the frame. The payload begins with the command byte, in an answer followed by the
 * status byte. The last two bytes are a CRC-16/MCRF4XX over all bytes before them, low byte first. Byte 4 of an
 * enhanced frame holds its direction.
 */
#ifndef ZU_PROTOCOL_H
#define ZU_PROTOCOL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zucom/zucomExport.h>

/**
 * One reader frame: builds it around a payload, checks it, reads its fields, turns it into and out of text.
 *
 * The buffer of 32768 bytes lies inside the object, so that nothing is allocated but the texts that are returned.
 * Fields that the held bytes are too few for read as 0. Not synchronised; different objects are independent, and the
 * static operations may run on any thread.
 */
class ZUCOM_API ZuProt
{
public:
    /** An empty frame. */
    ZuProt();

    /** @param len Receives the number of bytes held. @return The frame's bytes; valid while the object lives. */
    const uint8_t* protocol(std::size_t* len) const;
    /** @return Kind of the frame: 0 standard (or empty), 2 advanced, 3 enhanced; 1 and 4 are no valid kinds. */
    uint8_t generation() const;
    /** @return Index of the payload's first byte for this kind of frame. */
    std::size_t payloadOffset() const;
    /** @param len Receives the payload's length in bytes. @return The payload's bytes inside the frame. */
    const uint8_t* payload(std::size_t* len) const;
    /** @return The direction flags of an enhanced frame (bit 0 request, bit 1 response); 0 for other kinds. */
    uint8_t directionOfProtocol() const;
    /** @return The bus address; 255 addresses every reader. */
    uint8_t busAddrOfProtocol() const;
    /** @return The command, the payload's first byte. */
    uint8_t commandOfProtocol() const;
    /** @return The status of an answer, the payload's second byte. */
    uint8_t statusOfProtocol() const;
    /** @return The frame's own length field, which can differ from the number of bytes held. */
    std::size_t lengthOfProtocol() const;
    /** @return The frame's last two bytes, by its length field, as a big-endian number; 0 when it has none. */
    uint16_t crcOfProtocol() const;
    /** @return Whether length field, number of bytes held and CRC agree. */
    bool isValidProtocol() const;

    /**
     * Builds a frame around a payload. On failure the object is empty.
     *
     * @param payload     Bytes of the payload, the command first.
     * @param len         1 to 251 (standard), 32762 (advanced) or 32760 (enhanced) bytes.
     * @param generation  0 standard, 2 advanced, 3 enhanced.
     * @param direction   Direction flags, 1 for a request; used by enhanced frames only.
     * @param busAddr     Bus address of the reader; 255 for any.
     * @return False when the payload is empty or too long or the kind unknown.
     */
    bool setPayload(const uint8_t* payload, std::size_t len, uint8_t generation, uint8_t direction, uint8_t busAddr);

    /**
     * Puts the bus address behind the payload, where the CRC began, and two zero bytes behind it. Length field and CRC
     * are not renewed. Does nothing when the result would not fit or the frame has no payload to extend.
     */
    void copyBusAddrToEndOfPayload();

    /**
     * Takes a frame from hexadecimal text. White space and "|" between bytes are skipped; the frame is not checked.
     *
     * @param text  Pairs of hexadecimal digits of either case; what follows the 32768th byte is not read.
     * @return False, with an empty object, when there is another character or a digit without a partner.
     */
    bool stringToProtocol(const std::string& text);

    /** @return The frame in hexadecimal, payload between "|", secret bytes shown as "##". */
    std::string protocolToString() const;
    /** @return The payload in hexadecimal, a blank before each byte, secret bytes shown as "##". */
    std::string payloadToString() const;

    /**
     * Computes a CRC-16/MCRF4XX.
     *
     * @param data  Bytes to sum.
     * @param len   Their number; 0 gives 0xFFFF.
     * @param swap  Whether the two bytes of the result are exchanged, as frames carry them.
     * @return The check sum.
     */
    static uint16_t crc16CheckSum(const uint8_t* data, std::size_t len, bool swap);

    /** @param generation Kind of frame. @return "Std", "Adv", "Enh" or an empty text. */
    static std::string generationToString(uint8_t generation);
    /** @param direction Direction flags. @return "Req", "Rsp" or an empty text. */
    static std::string directionToString(uint8_t direction);
    /** Appends two upper-case hexadecimal digits. @param byte The value. @param text Text to extend. */
    static void appendByteToHexString(uint8_t byte, std::string& text);

    /**
     * Stores the byte that two hexadecimal digits of either case form, and moves the cursor behind it.
     *
     * @param high    First digit.
     * @param low     Second digit.
     * @param cursor  Where to store.
     * @return False, with nothing stored, when either character is no digit.
     */
    static bool appendHexByteToBuffer(char high, char low, uint8_t** cursor);

    /**
     * Takes bytes from hexadecimal text. White space between bytes is skipped.
     *
     * @param text  Pairs of hexadecimal digits of either case; what follows the last byte that fits is not read.
     * @param buf   Receives the bytes.
     * @param len   Size of @p buf; on success it becomes the number of bytes stored.
     * @return False when there is another character or a digit without a partner.
     */
    static bool stringToPayload(const std::string& text, uint8_t* buf, std::size_t* len);

    /**
     * Tells which bytes of a payload must not be shown, by its command.
     *
     * @param payload  Bytes of the payload.
     * @param len      Their number.
     * @param first    Receives the index of the first secret byte; beyond @p last when none is there.
     * @param last     Receives the index of the payload's last byte.
     * @return False, with nothing stored, when the payload holds no secret.
     */
    static bool getPayloadSecurityInfo(const uint8_t* payload, std::size_t len, std::size_t* first, std::size_t* last);

    /**
     * @name Numbers read at a cursor: 16, 24 or 32 bits wide, big-endian or, with "le", little-endian.
     * @{
     */
    /** Reads a number. @param cursor Where to read; moves behind the number. @return The number. */
    static uint16_t value16(const uint8_t** cursor);
    static uint16_t value16(uint8_t** cursor);
    static uint16_t value16le(const uint8_t** cursor);
    static uint16_t value16le(uint8_t** cursor);
    static uint32_t value24(const uint8_t** cursor);
    static uint32_t value24(uint8_t** cursor);
    static uint32_t value24le(const uint8_t** cursor);
    static uint32_t value24le(uint8_t** cursor);
    static uint32_t value32(const uint8_t** cursor);
    static uint32_t value32(uint8_t** cursor);
    static uint32_t value32le(const uint8_t** cursor);
    static uint32_t value32le(uint8_t** cursor);
    /** @} */

    /**
     * @name Numbers written at a cursor, in the same forms.
     * @{
     */
    /** Writes a number. @param cursor Where to write; moves behind the number. @param value Its low bits count. */
    static void setValue16(uint8_t** cursor, uint16_t value);
    static void setValue16le(uint8_t** cursor, uint16_t value);
    static void setValue24(uint8_t** cursor, uint32_t value);
    static void setValue24le(uint8_t** cursor, uint32_t value);
    static void setValue32(uint8_t** cursor, uint32_t value);
    static void setValue32le(uint8_t** cursor, uint32_t value);
    /** @} */

private:
    static constexpr std::size_t maxLength = 32768;

    ZUCOM_LOCAL uint8_t byteAt(std::size_t index) const;
    ZUCOM_LOCAL void reset();

    std::size_t length;
    uint8_t buffer[maxLength];
};

/**
 * The payload of one reader frame, without header and CRC.
 *
 * The buffer of 32760 bytes, the most that an enhanced frame carries, lies inside the object. Not synchronised; one
 * thread uses an object at a time.
 */
class ZUCOM_API ZuPayl
{
public:
    /** An empty payload. */
    ZuPayl();
    /** A payload of @p len bytes, as setPayload() takes them. @param bytes The bytes. @param len Their number. */
    ZuPayl(const uint8_t* bytes, std::size_t len);

    /** Copies bytes in. @param bytes The bytes. @param len Their number; above 32760 the object stays unchanged. */
    void setPayload(const uint8_t* bytes, std::size_t len);
    /** @param len Receives the number of bytes. @return The bytes; valid while the object lives. */
    const uint8_t* payload(std::size_t* len) const;
    /** Becomes the two bytes of a standard answer. @param command First byte. @param status Second byte. */
    void setStandardResponse(uint8_t command, uint8_t status);
    /** Copies a vector in. @param bytes At most 32760. @return False, with the object unchanged, for more. */
    bool fromVector(const std::vector<uint8_t>& bytes);
    /** Copies the bytes out. @param bytes Receives them in place of what it held. */
    void toVector(std::vector<uint8_t>& bytes) const;

    /**
     * Takes the payload from hexadecimal text, as ZuProt::stringToPayload() reads it.
     *
     * @param text  Pairs of hexadecimal digits.
     * @return False, with an empty object, when the text holds anything else.
     */
    bool fromString(const std::string& text);

    /**
     * Writes the payload in upper-case hexadecimal; secret bytes are shown as "##".
     *
     * @param text       Receives the text.
     * @param separator  Character before every byte, the first included; the zero character for none.
     */
    void toString(std::string& text, char separator) const;

private:
    static constexpr std::size_t maxLength = 32760;

    ZUCOM_LOCAL void reset();

    std::size_t length;
    uint8_t data[maxLength];
    std::size_t cursor; // write position for building operations, as an index so that copies stay independent
};

#endif
