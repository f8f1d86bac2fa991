// Parameter text: sections, entries, and the files they are kept in.

#include <zucom/zuParameter.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

#include "sdk/asciiText.h"

namespace
{
const char* orEmpty(const char* text) { return text != nullptr ? text : ""; }

// The next "[" or the terminating NUL.
const char* nextMarker(const char* position) { return position + std::strcspn(position, "["); }

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Takes the value that begins at position; see parseSection() for the result.
const char* parseValue(const char* position, std::string& value, char separator)
{
    bool quoted = false;
    for (; *position != '\0'; ++position)
    {
        if (!quoted && *position == separator)
            return position + 1;
        if (*position == '"')
            quoted = !quoted;
        else if (quoted || !asciiText::isSpace(*position))
            value += *position;
    }
    return nullptr;
}
} // namespace

std::string ZuParameter::getSection(const char* text, const char* name)
{
    const std::string marker = std::string("[").append(orEmpty(name)).append("]");
    const char* found = std::strstr(orEmpty(text), marker.c_str());
    if (found == nullptr)
        return {};
    const char* body = found + marker.size();
    return {body, nextMarker(body)};
}

const char* ZuParameter::getSection(const char* position, std::string& name, std::string& body)
{
    name.clear();
    body.clear();
    const char* marker = nextMarker(orEmpty(position));
    if (*marker == '\0')
        return nullptr;
    const char* nameBegin = marker + 1;
    const char* nameEnd = nameBegin + std::strcspn(nameBegin, "]");
    name.assign(nameBegin, nameEnd);
    if (*nameEnd == '\0')
        return nullptr;
    const char* bodyEnd = nextMarker(nameEnd + 1);
    body.assign(nameEnd + 1, bodyEnd);
    return bodyEnd;
}

std::string ZuParameter::buildSectionBody(const char* name, const char* body)
{
    return std::string("[").append(orEmpty(name)).append("]\n").append(orEmpty(body)).append("\n");
}

const char* ZuParameter::parseSection(const char* position, std::string& tag, std::string& value, char separator,
                                      bool lowerCase)
{
    tag.clear();
    value.clear();
    for (position = orEmpty(position); *position != '\0'; ++position)
    {
        if (*position == separator)
            return position + 1;
        if (*position == '=')
            return parseValue(position + 1, value, separator);
        if (!asciiText::isSpace(*position))
            tag += lowerCase ? asciiText::toLower(*position) : *position;
    }
    return nullptr;
}

void ZuParameter::sectionToMap(const char* text, std::map<std::string, std::string>& map, char separator,
                               bool lowerCase)
{
    map.clear();
    std::string tag;
    std::string value;
    for (const char* position = orEmpty(text); position != nullptr;)
    {
        position = parseSection(position, tag, value, separator, lowerCase);
        if (!tag.empty())
            map.try_emplace(tag, value);
    }
}

std::string ZuParameter::mapToSection(const std::map<std::string, std::string>& map, char separator, const char* prefix)
{
    std::string text;
    for (const auto& [tag, value] : map)
    {
        text += orEmpty(prefix);
        text += tag;
        text += '=';
        text += value;
        text += separator;
    }
    return text;
}

bool ZuParameter::valueOfTag(const std::map<std::string, std::string>& map, const std::string& tag, std::string& value)
{
    const auto entry = map.find(tag);
    if (entry == map.end())
        return false;
    value = entry->second;
    return true;
}

bool ZuParameter::readFromFile(const std::string& path, std::string& content)
{
    const File file(std::fopen(path.c_str(), "rbe"));
    if (!file)
        return false;
    std::string whole;
    std::array<char, 4096> piece; // filled by fread before it is read
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get()))
        whole.append(piece.data(), count);
    if (std::ferror(file.get()) != 0)
        return false;
    content = std::move(whole);
    return true;
}

bool ZuParameter::writeToFile(const std::string& path, const std::string& content)
{
    const File file(std::fopen(path.c_str(), "w+e"));
    if (!file)
        return false;
    std::fwrite(content.data(), 1, content.size(), file.get());
    return true;
}
