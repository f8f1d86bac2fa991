// zucom explain: what bytes, a log line or a whole log mean.
#include "tools/explain/explainCommand.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/failure.h"
#include "tools/common/jsonText.h"
#include "tools/common/lineInput.h"
#include "tools/common/options.h"
#include "tools/common/terminal.h"
#include "tools/explain/byteText.h"
#include "tools/explain/explain.h"

namespace
{

constexpr std::size_t unreadableShown = 10; // lines that cannot be read; of a file that is no log there may be millions

struct Settings
{
    std::vector<std::string> texts;
    bool json = false;
    bool brokenOnly = false;
};

// Prints the explanations of the lines as they come.
class Printer
{
public:
    Printer(const Settings& settings, bool numbered) : settings_(settings), numbered_(numbered) {}

    void line(std::string_view text)
    {
        const std::optional<Explanation> explanation = explainer_.explainLine(text);
        if (!explanation || (settings_.brokenOnly && isRight(*explanation)))
            return;
        if (explanation->origin.empty() && explanation->failure && ++unreadable_ > unreadableShown)
            return;
        if (settings_.json)
            std::fputs(jsonLine(explanationJson(*explanation)).c_str(), stdout);
        else
            fmt::print("{}\n", paintedVerdicts(explanationText(*explanation, numbered_)));
    }

    int finish(const LineSplitter& lines) const
    {
        if (unreadable_ > unreadableShown)
            fmt::print(stderr, "zucom explain: {} more lines cannot be read\n", unreadable_ - unreadableShown);
        if (lines.cutLines() > 0)
            fmt::print(stderr, "zucom explain: {} lines of more than 1 MiB were cut\n", lines.cutLines());
        if (numbered_ && !settings_.json)
            fmt::print("{}\n", explainer_.summary());
        else if (explainer_.rightFrames() + explainer_.brokenFrames() + explainer_.failures() == 0)
            fmt::print(stderr, "zucom explain: nothing to explain: neither a frame nor an error\n");
        const bool allRight =
            explainer_.rightFrames() > 0 && explainer_.brokenFrames() == 0 && explainer_.failures() == 0;
        return allRight ? exitDone : exitRefused;
    }

private:
    static bool isRight(const Explanation& explanation)
    {
        for (const FrameReading& frame : explanation.frames)
            if (!frame.right)
                return false;
        return !explanation.failure;
    }

    static std::string paintedVerdicts(std::string text)
    {
        for (const auto& [word, colour] : {std::pair(": BROKEN\n", Colour::red), std::pair(": right\n", Colour::green)})
        {
            const std::string_view verdict = std::string_view(word).substr(2, std::string_view(word).size() - 3);
            const std::string painted = ": " + paint(colour, verdict) + "\n";
            for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + painted.size()))
                text.replace(at, std::string_view(word).size(), painted);
        }
        return text;
    }

    const Settings& settings_;
    bool numbered_; // the input has several lines, so each one is told by its number
    Explainer explainer_;
    std::size_t unreadable_ = 0;
};

bool isInput(const std::vector<std::string>& texts) // standard input or a file rather than bytes
{
    if (texts.empty() || texts == std::vector<std::string>{"-"})
        return true;
    std::error_code none;
    return texts.size() == 1 && bytesFromText(texts[0]).bytes.empty() && std::filesystem::exists(texts[0], none);
}

int run(const Settings& settings)
{
    const bool input = isInput(settings.texts);
    Printer printer(settings, input);
    LineSplitter lines([&](std::string_view line) { printer.line(line); });
    if (input)
    {
        readLines(settings.texts.empty() ? "-" : settings.texts[0], lines);
    }
    else
    {
        std::string joined;
        for (const std::string& text : settings.texts)
            joined += (joined.empty() ? "" : " ") + text;
        lines.push(joined);
        lines.finish();
    }
    return printer.finish(lines);
}

} // namespace

Action explainCommand(Options& options)
{
    const auto settings = std::make_shared<Settings>();
    options
        .texts("text", settings->texts,
               "Hexadecimal bytes, a log line in quotes, or a file with either on each line; - or nothing is standard "
               "input")
        .flag("-b,--broken", settings->brokenOnly, "Show only what is broken or failed")
        .flag("--json", settings->json, "Print one JSON object for each line")
        .footer("Example: zucom explain 06 FF 52 00 6E 0F\n"
                "Exit code 0 when every frame is right, 1 when one is broken or nothing was found.");
    return [settings] { return run(*settings); };
}
