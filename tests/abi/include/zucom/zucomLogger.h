/**
 * @file
 * The logger of one port.
 */
#ifndef ZUCOM_LOGGER_H
#define ZUCOM_LOGGER_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <zucom/zuLoggerBase.h>
#include <zucom/zucomExport.h>

/** Logger "ZUCOM" with the port handle as its number; the section "[ZUCOM]" switches trace and error lines on. */
class ZUCOM_API ZucomLogger : public ZuLoggerBase
{
public:
    /** Reads outputs and conditions from the configuration. @param portHandle Handle of the port. */
    explicit ZucomLogger(int32_t portHandle);

    using ZuLoggerBase::setLogConditions;

    /**
     * Applies the keys "logtrace" (bit 0 of logConditions) and "logerror" (bit 31); the last entry of a key counts.
     *
     * @param section    Section body.
     * @param separator  Character that ends an entry.
     */
    void setLogConditions(const char* section, char separator) override;

    /** @param bytes Bytes of a frame. @param count Their number. @return Lower-case hexadecimal, a blank after each. */
    static std::string printProt(const uint8_t* bytes, std::size_t count);
};

#endif
