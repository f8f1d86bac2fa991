// Parameter text: sections, entries, maps, files.

#include <zucom/zuParameter.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

namespace
{
using Map = std::map<std::string, std::string>;
using Entries = std::vector<std::pair<std::string, std::string>>;

Entries entriesOf(const std::string& body, char separator = '\n', bool lowerCase = true)
{
    Entries entries;
    std::string tag;
    std::string value;
    for (const char* position = body.c_str(); position != nullptr;)
    {
        position = ZuParameter::parseSection(position, tag, value, separator, lowerCase);
        entries.emplace_back(tag, value);
    }
    return entries;
}

Entries sectionsOf(const std::string& text)
{
    Entries sections;
    std::string name;
    std::string body;
    const char* position = text.c_str();
    while ((position = ZuParameter::getSection(position, name, body)) != nullptr)
        sections.emplace_back(name, body);
    return sections;
}

TEST(ParameterSection, isFoundByExactName)
{
    struct Case
    {
        const char *text, *name, *body;
    };
    const Case cases[] = {
        {"[A]\nx=1\n[B]\ny=2", "A", "\nx=1\n"},
        {"[A]\nx=1\n[B]\ny=2", "B", "\ny=2"},
        {"[A]\nx=1\n[B]\ny=2", "a", ""},
        {"[A]\nx=1\n[B]\ny=2", "C", ""},
        {"[A][B]b", "A", ""},
        {"[B]b[A]", "A", ""},
        {"[A]\np=[x]\nq=1", "A", "\np="}, // "[" ends a body wherever it stands
        {"[A]\np=[x]\nq=1", "x", "\nq=1"},
        {"[S]1[S]2", "S", "1"},
        {"x [[S]y", "S", "y"},
        {"[A \n[AB]c", "A", ""}, // no closing bracket
        {"[]e", "", "e"},
        {"", "A", ""},
        {nullptr, "A", ""},
        {"[A]x", nullptr, ""},
        {"[A]\r\nx=1\r\n", "A", "\r\nx=1\r\n"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.body, ZuParameter::getSection(c.text, c.name)) << (c.text ? c.text : "null");
}

TEST(ParameterSection, walkVisitsEachInTurn)
{
    const std::pair<const char*, Entries> cases[] = {
        {"junk[A]\nx=1\n[B]y]z[]", {{"A", "\nx=1\n"}, {"B", "y]z"}, {"", ""}}},
        {"[A]1[A]2", {{"A", "1"}, {"A", "2"}}},
        {"[A[B]c", {{"A[B", "c"}}}, // a name may hold the bracket that would end a body
        {"no section", {}},
        {"", {}},
    };
    for (const auto& [text, sections] : cases)
        EXPECT_EQ(sections, sectionsOf(text)) << text;
}

TEST(ParameterSection, walkEndsWithNullAndKeepsWhatItRead)
{
    std::string name = "old";
    std::string body = "old";
    EXPECT_EQ(nullptr, ZuParameter::getSection("x[open", name, body));
    EXPECT_EQ("open", name);
    EXPECT_EQ("", body);
    const char* text = "[A]b";
    const char* end = ZuParameter::getSection(text, name, body);
    EXPECT_EQ(text + 4, end);
    EXPECT_EQ(nullptr, ZuParameter::getSection(end, name, body));
    EXPECT_EQ(nullptr, ZuParameter::getSection(nullptr, name, body));
    EXPECT_EQ("", name);
}

TEST(ParameterEntry, followsTheGrammar)
{
    const std::pair<std::string, Entries> cases[] = {
        {"Log File = \"my file.log\"", {{"logfile", "my file.log"}}},
        {"logpath = /var/log/my dir", {{"logpath", "/var/log/mydir"}}},
        {"text = \"a\" b \"c d\"", {{"text", "abc d"}}},
        {"a=b=c", {{"a", "b=c"}}},
        {"flag", {{"flag", ""}}},
        {"abc\nrest", {{"abc", ""}, {"rest", ""}}},
        {"a=\"x\ny\"\nb=2", {{"a", "x\ny"}, {"b", "2"}}}, // a quoted separator is text
        {"a=\"x\"\nb", {{"a", "x"}, {"b", ""}}},          // right behind the quote it ends the entry
        {"a=\"never closed\nb=2", {{"a", "never closed\nb=2"}}},
        {"\"T\"=\"\"V\"\"", {{"\"t\"", "V"}}}, // in a tag quotes are characters
        {"\n\na=1\n", {{"", ""}, {"", ""}, {"a", "1"}, {"", ""}}},
        {"a=1\r\nb=2\r\n", {{"a", "1"}, {"b", "2"}, {"", ""}}},
        {"a=", {{"a", ""}}},
        {"=v\n=\n", {{"", "v"}, {"", ""}, {"", ""}}},
        {" \t\v\f\r ", {{"", ""}}},
        {"a = \v1\f2\t3\n# = c", {{"a", "123"}, {"#", "c"}}},
        {"\x01\x7f=\xff\x80", {{"\x01\x7f", "\xff\x80"}}}, // control characters and bytes above 127 are ordinary
        {"", {{"", ""}}},
    };
    for (const auto& [body, entries] : cases)
        EXPECT_EQ(entries, entriesOf(body)) << body;
}

TEST(ParameterEntry, takesAnySeparatorAndFoldsTagsOnRequestOnly)
{
    EXPECT_EQ((Entries{{"A", "X;"}, {"b", "1"}}), entriesOf("A=X\";\";b=\n1", ';', false));
    EXPECT_EQ((Entries{{"a", "X;"}, {"b", "1"}}), entriesOf("A=X\";\";b=\n1", ';', true));
    EXPECT_EQ((Entries{{"a", ""}, {"1", ""}}), entriesOf("a=1", '=')); // the separator is looked at first
    EXPECT_EQ((Entries{{"\xC4", ""}}), entriesOf("\xC4")) << "only A to Z are folded";
}

TEST(ParameterEntry, ofAnyLengthIsReadWhole)
{
    const std::string longTag(1 << 20, 'T');
    const std::string longValue(1 << 20, 'v');
    EXPECT_EQ((Entries{{longTag, longValue}, {"b", "1"}}), entriesOf(longTag + "=" + longValue + "\nb=1", '\n', false));
}

TEST(ParameterEntry, nullTextIsAnEmptyOne)
{
    std::string tag = "old";
    std::string value = "old";
    EXPECT_EQ(nullptr, ZuParameter::parseSection(nullptr, tag, value, '\n', true));
    EXPECT_EQ("", tag + value);
}

TEST(ParameterMap, firstOccurrenceWinsAndNothingOldStays)
{
    const std::pair<const char*, Map> cases[] = {
        {"\nb=2\na=1\nb=3", {{"a", "1"}, {"b", "2"}}},
        {"B=1\nb=2", {{"b", "1"}}},
        {"=lost\n\nlast", {{"last", ""}}},
        {"", {}},
        {nullptr, {}},
    };
    for (const auto& [text, expected] : cases)
    {
        Map map = {{"old", "old"}};
        ZuParameter::sectionToMap(text, map, '\n', true);
        EXPECT_EQ(expected, map);
    }
}

TEST(ParameterMap, becomesText)
{
    const Map map = {{"b", "x y"}, {"a", "1"}};
    EXPECT_EQ("a=1\nb=x y\n", ZuParameter::mapToSection(map, '\n', nullptr));
    EXPECT_EQ("  a=1;  b=x y;", ZuParameter::mapToSection(map, ';', "  "));
    EXPECT_EQ("", ZuParameter::mapToSection({}, '\n', "  "));
    EXPECT_EQ("[S]\na=1\n", ZuParameter::buildSectionBody("S", "a=1"));
    EXPECT_EQ("[]\n\n", ZuParameter::buildSectionBody(nullptr, nullptr));
}

TEST(ParameterMap, looksUpByExactTag)
{
    std::string value = "old";
    EXPECT_FALSE(ZuParameter::valueOfTag({{"a", "1"}}, "A", value));
    EXPECT_EQ("old", value);
    EXPECT_TRUE(ZuParameter::valueOfTag({{"a", ""}}, "a", value));
    EXPECT_EQ("", value);
}

TEST(ParameterMap, ofPlainValuesSurvivesTheWayThroughText)
{
    std::mt19937 random(1);
    const auto word = [&](std::size_t least)
    {
        std::string text(least + random() % 6, '\0');
        for (char& c : text)
            c = "abcXYZ019#;]'\\/.\x80\xff"[random() % 18];
        return text;
    };
    for (int round = 0; round < 300; ++round)
    {
        Map map;
        for (std::size_t i = random() % 8; i > 0; --i)
            map[word(1)] = word(0) + (random() % 4 == 0 ? "=" : "");
        const std::string text = ZuParameter::buildSectionBody("N", ZuParameter::mapToSection(map, '\n', " ").c_str());
        Map read;
        ZuParameter::sectionToMap(ZuParameter::getSection(text.c_str(), "N").c_str(), read, '\n', false);
        EXPECT_EQ(map, read) << text;
    }
}

class ParameterFile : public testing::Test
{
protected:
    void TearDown() override { std::filesystem::remove(path_); }

    const std::string path_ = testing::TempDir() + "parameter-" + std::to_string(::getpid());
};

TEST_F(ParameterFile, keepsEveryByte)
{
    std::string all;
    for (int i = 0; i < 70000; ++i)
        all += static_cast<char>(i * 7);
    for (const std::string& content : {all, std::string("\r\n\0\n", 4), std::string()})
    {
        std::string read = "old";
        EXPECT_TRUE(ZuParameter::writeToFile(path_, content)); // each shorter than the one before: the rest must go
        EXPECT_TRUE(ZuParameter::readFromFile(path_, read));
        EXPECT_EQ(content, read);
    }
}

TEST_F(ParameterFile, thatCannotBeOpenedLeavesTheContentAlone)
{
    for (const std::string& path : {path_, path_ + "/below", testing::TempDir(), std::string()})
    {
        std::string content = "old";
        EXPECT_FALSE(ZuParameter::readFromFile(path, content)) << path;
        EXPECT_EQ("old", content);
    }
    EXPECT_FALSE(ZuParameter::writeToFile(path_ + "/below", "x"));
    EXPECT_FALSE(ZuParameter::writeToFile(testing::TempDir(), "x"));
}
} // namespace
