// The picture of a log of any content.

#include "tools/timeline/timeline.h"

#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string log = fuzz::Input(data, size).rest();
    const std::string picture = drawTimeline(log);
    fuzz::require(picture.find("</svg>") != std::string::npos, "a whole picture");
    Timeline timeline;
    std::size_t begin = 0;
    for (std::size_t end; (end = log.find('\n', begin)) != std::string::npos; begin = end + 1)
        timeline.line(std::string_view(log).substr(begin, end - begin));
    timelineJson(timeline);
    const std::string text = timelineText(timeline, 100);
    fuzz::require(std::none_of(text.begin(), text.end(), [](char c) { return c == 27 || c == 127 || c == '\r'; }),
                  "text that does not steer the terminal");
    return 0;
}
