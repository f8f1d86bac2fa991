/**
 * @file
 * Small static helpers: texts for MAC addresses and device identifiers, tag identification fields, hexadecimal digits.
 */
#ifndef ZU_HELPER_H
#define ZU_HELPER_H

#include <cstdint>
#include <string>

#include <zucom/zucomExport.h>

/**
 * Converts between bytes and hexadecimal digit characters.
 *
 * Filled at compile time and read-only: usable from any thread and during static initialisation.
 */
struct ZUCOM_API ZuHexLookup
{
    uint8_t hexValue[256]; /**< value of each character as a digit, either case; 0xFF for every other character */
    char hexDigit[16];     /**< "0123456789ABCDEF" */

    /** Fills both tables. */
    constexpr ZuHexLookup() : hexValue(), hexDigit()
    {
        for (uint8_t& value : hexValue)
            value = 0xFF;
        for (uint8_t digit = 0; digit < 16; ++digit)
        {
            hexDigit[digit] = static_cast<char>(digit < 10 ? '0' + digit : 'A' + digit - 10);
            hexValue[static_cast<uint8_t>(hexDigit[digit])] = digit;
            if (digit >= 10)
                hexValue['a' + digit - 10] = digit;
        }
    }
};

/** The one table of the process. */
extern ZUCOM_API const ZuHexLookup g_hexLookup;

/** Static helper functions without shared state; all may run on any thread. Pointers must not be null. */
class ZUCOM_API ZuHelper
{
public:
    /**
     * @param mac  MAC address, 6 bytes, of which the first three are read.
     * @return Whether the address begins with IVRA's OUI, 02:49:56.
     */
    static bool isIvraMacAddress(const uint8_t* mac);

    /**
     * @param mac  MAC address, 6 bytes.
     * @return The address in upper-case hexadecimal, for example "00:1A:2B:3C:4D:5E".
     */
    static std::string macAddressToString(const uint8_t* mac);

    /**
     * @param id  Device identifier.
     * @return Eight upper-case hexadecimal digits, for example "000000FF".
     */
    static std::string deviceIdToHexString(uint32_t id);

    /**
     * @param text  Hexadecimal number; leading white space and a prefix "0x" are allowed, the rest is not read.
     * @return The device identifier, or 0 when there is no number.
     */
    static uint32_t deviceIdFromHexString(const char* text);

    /**
     * @param path  A path with separators of either kind.
     * @return A copy in which every backslash is "/"; nothing else is normalised.
     */
    static std::string pathToNativeSeparators(const char* path);

    /**
     * Reads the tag model number of an EPC Class-1 Generation-2 tag.
     *
     * @param tid  First 4 bytes of the tag's TID memory.
     * @return The 12-bit model number, or -1 when the allocation class is not E2h.
     */
    static int32_t epcC1G2_TagModelNumberFromTid(const uint8_t* tid);

    /**
     * Reads who designed an EPC Class-1 Generation-2 tag.
     *
     * @param tid  First 3 bytes of the tag's TID memory.
     * @return 0x10000 with the 9-bit mask-designer identifier for class E2h, the 8-bit ISO/IEC 7816-6 manufacturer
     *         code for the classes E0h and E3h, or -1 for any other class.
     */
    static int32_t epcC1G2_MaskDesignerIDFromTid(const uint8_t* tid);

    /**
     * @param value  Result of epcC1G2_MaskDesignerIDFromTid(); test for -1 first, for which this is true as well.
     * @return Whether the value is an EPCglobal mask-designer identifier (bit 16 is set).
     */
    static bool epcC1G2_MaskDesignerIDFlag(int32_t value);

    /**
     * @param value  Result of epcC1G2_MaskDesignerIDFromTid().
     * @return The plain identifier or manufacturer code; a negative value unchanged.
     */
    static int32_t epcC1G2_MaskDesignerIDValue(int32_t value);
};

#endif
