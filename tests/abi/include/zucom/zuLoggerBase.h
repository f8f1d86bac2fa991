/**
 * @file
 * The base of all loggers: one line format, and the outputs that the configuration asks for.
 */
#ifndef ZU_LOGGER_BASE_H
#define ZU_LOGGER_BASE_H

#include <cstdint>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include <zucom/zuLoggerGlobal.h>
#include <zucom/zuSocket.h>
#include <zucom/zucomExport.h>

/**
 * A named logger with a number.
 *
 * Reads the section "[OUTPUTTER]" of the configuration when it is constructed. A derived logger calls
 * setLogConditions() in its constructor to read the section of its own name. Lines go to the console, the shared file,
 * the logger's own file, the datagram socket and the callback, in this order, each only when configured; a failing
 * output loses its line silently.
 *
 * Any number of threads may write lines at the same time; a line stays whole in every output.
 */
class ZUCOM_API ZuLoggerBase
{
public:
    /**
     * @param name  Name of the logger in any letter case; its upper-case form names the configuration section.
     * @param id    Number of the logger, part of the name of its own file.
     */
    ZuLoggerBase(const std::string& name, int32_t id);
    ZuLoggerBase(const ZuLoggerBase&) = delete;
    ZuLoggerBase& operator=(const ZuLoggerBase&) = delete;
    /** Closes the datagram socket. */
    virtual ~ZuLoggerBase();

    /**
     * Composes a line and writes it with writeLogLine().
     *
     * @param time      Time text, see currentLogTime().
     * @param location  Where the line comes from; begins with a blank by convention.
     * @param message   What happened.
     * @throw std::system_error  A lock cannot be taken.
     */
    virtual void writeLogMessage(const std::string& time, const std::string& location, const std::string& message);

    /**
     * Writes a line to every configured output.
     *
     * @param line  The line, without a line end.
     * @throw std::system_error  A lock cannot be taken.
     */
    virtual void writeLogLine(const std::string& line);

    /**
     * Sets logConditions from the entries of the logger's own section.
     *
     * @param section    Section body.
     * @param separator  Character that ends an entry.
     */
    virtual void setLogConditions(const char* section, char separator) = 0;

    /** Reads the section of the logger's name from the configuration and hands it to the virtual setLogConditions(). */
    void setLogConditions();

    /** Takes the outputs from the section "[OUTPUTTER]"; a datagram socket of an earlier call is closed. */
    void setOutPutterParameter();

    /**
     * @return The time as configured: local time as "2026.11.16-18.39.36.123456", or seconds and microseconds since the
     *         library was loaded as "0012.000345". The date is converted once per second and thread, so a change of
     *         the time zone within a running second shows in the next.
     */
    std::string currentLogTime() const;

    /** @param seconds Seconds since the Unix epoch. @return Local time, for example "2026.11.16-18.39.36". */
    static std::string dateTimeString(int64_t seconds);
    /** @param signature Signature of a function. @return "Class::function"; empty when there is no "(". */
    static std::string classFunction(const std::stringstream& signature);
    /** @param text Any text. @return The text with a to z in upper case. */
    static std::string toUpperString(const std::string& text);
    /** @param bytes Any bytes. @return Upper-case hexadecimal pairs divided by blanks. */
    static std::string byteArrayLogString(const std::vector<uint8_t>& bytes);

    /** @param name Logger. @param time Time text. @param location Origin. @param message Text. @return The log line. */
    static std::string toLineString(const std::string& name, const std::string& time, const std::string& location,
                                    const std::string& message);
    /** @param time Time text. @param location Origin. @param message Text. @return The log line of this logger. */
    std::string toLineString(const std::string& time, const std::string& location, const std::string& message) const;

    /** Appends a line to a file with one write, opening and closing it. @param path The file. @param line The line. */
    void writeLineToFile_OpenClose(const std::string& path, const std::string& line);
    /** Sends a line and a line feed as one datagram, never waiting. @param line The line. */
    void writeLineToUdpServer(const std::string& line);
    /** Does nothing on this platform. @param line The line. */
    void writeLineToAndroidLogCat(const std::string& line);

protected:
    ZuLoggerGlobal* loggerGlobal; /**< configuration, callback and shared locks; not owned */
    std::string loggerName;       /**< name in upper case */
    int32_t loggerId;             /**< number of the logger */
    uint32_t logConditions;       /**< bit mask of the conditions that are on */
    std::string logFileName;      /**< path of the log file; empty without file output */
    std::mutex logFileMutex;      /**< guards the logger's own file and logFileHeaderPending */
    bool logFileHeaderPending;    /**< the header is still to be written to the logger's own file */
    bool logRelTime;              /**< times count from the load of the library */
    bool logConsole;              /**< lines go to standard output */
    bool logFileShared;           /**< lines go to the file that all loggers of this name share */
    bool logFilePerReader;        /**< lines go to the logger's own file */
    bool androidLogCat;           /**< recorded only; there is no such output on this platform */
    ZuSocket udpSocket;           /**< datagram destination; its descriptor is negative while that output is off */

private:
    friend class ZuCall;

    struct OutputTexts // what the configuration says in words rather than switches
    {
        std::string path = ".";
        std::string stem;
        std::string address;
        std::string port;
    };

    ZUCOM_LOCAL void applyOutputEntries(OutputTexts& texts);
    ZUCOM_LOCAL void openDatagramOutput(const std::string& address, int32_t port);
    ZUCOM_LOCAL void closeDatagramOutput();
};

#endif
