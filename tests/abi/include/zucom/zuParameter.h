/**
 * @file
 * Parameter text: named sections of tag=value entries, the format of the logger's configuration.
 */
#ifndef ZU_PARAMETER_H
#define ZU_PARAMETER_H

#include <map>
#include <string>

#include <zucom/zucomExport.h>

/**
 * Reads and writes parameter text.
 *
 * A section begins with "[name]" and ends before the next "[". Its entries are divided by a separator, as a rule the
 * line feed; an entry is a tag, "=" and a value. White space is dropped everywhere outside double quotes; between
 * double quotes in a value every character counts. There is no comment syntax.
 *
 * All operations are static, share no state and may run on any thread. A null text is taken as an empty one.
 */
class ZUCOM_API ZuParameter
{
public:
    /**
     * Finds a section by name.
     *
     * @param text  Parameter text.
     * @param name  Name of the section, matched byte for byte.
     * @return Everything from behind the marker up to the next "[", or an empty text.
     */
    static std::string getSection(const char* text, const char* name);

    /**
     * Reads the next section, for a walk through all of them.
     *
     * @param position  Parameter text, or the result of the call before.
     * @param name      Receives the section's name.
     * @param body      Receives everything from behind the marker up to the next "[".
     * @return Where the next call continues; null when no section was read.
     */
    static const char* getSection(const char* position, std::string& name, std::string& body);

    /**
     * @param name  Name of the section.
     * @param body  Its entries.
     * @return The section as text: marker, line feed, body, line feed.
     */
    static std::string buildSectionBody(const char* name, const char* body);

    /**
     * Reads one entry of a section.
     *
     * @param position   Section body, or the result of the call before.
     * @param tag        Receives the tag; empty for an empty entry.
     * @param value      Receives the value.
     * @param separator  Character that ends an entry.
     * @param lowerCase  Whether the letters A to Z of the tag are folded to lower case.
     * @return Where the next entry begins; null when the text ended, and with it the entry that was delivered last.
     */
    static const char* parseSection(const char* position, std::string& tag, std::string& value, char separator,
                                    bool lowerCase);

    /**
     * Reads a whole section; of entries with the same tag the first one counts, entries without a tag are dropped.
     *
     * @param text       Section body.
     * @param map        Receives the entries in place of what it held.
     * @param separator  Character that ends an entry.
     * @param lowerCase  Whether tags are folded to lower case.
     */
    static void sectionToMap(const char* text, std::map<std::string, std::string>& map, char separator, bool lowerCase);

    /**
     * Writes a section body: for every entry the prefix, the tag, "=", the value as it is, and the separator.
     *
     * @param map        The entries.
     * @param separator  Character that ends an entry.
     * @param prefix     Text before each tag, or null.
     * @return The text.
     */
    static std::string mapToSection(const std::map<std::string, std::string>& map, char separator, const char* prefix);

    /**
     * @param map    The entries.
     * @param tag    Tag to look up, matched byte for byte.
     * @param value  Receives the value; unchanged when there is no such tag.
     * @return Whether there is such a tag.
     */
    static bool valueOfTag(const std::map<std::string, std::string>& map, const std::string& tag, std::string& value);

    /**
     * @param path     Path of a file.
     * @param content  Receives the whole file, byte for byte; unchanged when it cannot be read.
     * @return Whether the file could be opened and read; false for a directory.
     */
    static bool readFromFile(const std::string& path, std::string& content);

    /**
     * @param path     Path of a file, created or emptied first.
     * @param content  Bytes to write.
     * @return Whether the file could be opened; short writes are not detected.
     */
    static bool writeToFile(const std::string& path, const std::string& content);
};

#endif
