// Parameter text: sections, entries and maps, against the model of the grammar.

#include <zucom/zuParameter.h>

#include "fuzz/fuzz.h"
#include "fuzz/parameterModel.h"

namespace
{
using fuzz::require;

void checkEntries(const std::string& body, char separator, bool lowerCase)
{
    std::vector<parameterModel::Entry> found;
    const char* position = body.c_str();
    while (position != nullptr)
    {
        require(position >= body.c_str() && position <= body.c_str() + body.size(), "the position is inside the text");
        parameterModel::Entry entry;
        position = ZuParameter::parseSection(position, entry.tag, entry.value, separator, lowerCase);
        found.push_back(entry);
    }
    require(found == parameterModel::entries(body, separator, lowerCase), "the entries");

    std::map<std::string, std::string> map;
    ZuParameter::sectionToMap(body.c_str(), map, separator, lowerCase);
    std::map<std::string, std::string> expected;
    for (const parameterModel::Entry& entry : found)
        if (!entry.tag.empty())
            expected.emplace(entry.tag, entry.value);
    require(map == expected, "the first entry of a tag counts");

    const std::string notPlain = std::string("\" \t\n\v\f\r") + separator;
    const bool plain =
        std::all_of(map.begin(), map.end(),
                    [&](const auto& entry) { return entry.second.find_first_of(notPlain) == std::string::npos; });
    const std::string text = ZuParameter::mapToSection(map, separator, nullptr);
    ZuParameter::sectionToMap(text.c_str(), map, separator, lowerCase);
    require(!plain || map == expected, "plain values survive the way through text");
}

void checkSections(const std::string& text)
{
    std::string name;
    std::string body;
    for (const char* position = text.c_str(); position != nullptr;)
    {
        const char* next = ZuParameter::getSection(position, name, body);
        require(next == nullptr || (next > position && next <= text.c_str() + text.size()), "the walk goes on");
        require(next == nullptr || *next == '[' || *next == '\0', "up to the next section");
        require(ZuParameter::getSection(text.c_str(), name.c_str()) == parameterModel::section(text, name),
                "the first section of a name");
        position = next;
    }
}
} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t choice = input.byte();
    const std::string text = input.textUpTo('\0'); // texts end there
    checkSections(text);
    checkEntries(text, "\n;, "[choice % 4], choice >= 128);
    return 0;
}
