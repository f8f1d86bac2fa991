// zucom doctor: from the device node to the reader, step by step.
#include "tools/doctor/doctorCommand.h"

#include <algorithm>
#include <charconv>
#include <memory>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <zucom/zucomErrorText.h>

#include "tools/common/codeAdvice.h"
#include "tools/common/failure.h"
#include "tools/common/jsonText.h"
#include "tools/common/options.h"
#include "tools/common/terminal.h"
#include "tools/doctor/lineChecks.h"
#include "tools/doctor/nodeChecks.h"
#include "tools/doctor/readerCheck.h"

namespace
{

struct Settings
{
    std::string device;
    std::string code;
    SystemRoots roots;
    Ping ping;
    bool wantsPing = false;
    bool modemLines = false;
    bool json = false;
};

constexpr struct
{
    const char* name;
    Colour colour;
} verdicts[] = {{"OK", Colour::green}, {"WARN", Colour::yellow}, {"FAIL", Colour::red}}; // as Verdict

// Every step but the last looks with a descriptor of its own, which is closed before the library opens the device.
Findings examine(const Settings& settings)
{
    Findings findings;
    if (!checkNode(settings.device, findings) || !checkRights(settings.device, findings))
        return findings;
    const SerialDevice device = describeDevice(settings.roots, settings.device);
    const bool alone = checkHolders(device, findings);
    const LineQuestions questions{alone, settings.ping.line.mode == "RS485", settings.modemLines};
    if (!checkLine(settings.device, questions, findings))
        return findings;
    checkLatency(device, findings);
    if (settings.wantsPing)
        checkReader(settings.device, settings.ping, findings);
    return findings;
}

void print(const Findings& findings)
{
    for (const Finding& finding : findings)
    {
        const auto& verdict = verdicts[static_cast<std::size_t>(finding.verdict)];
        fmt::print("{} {:<12} {}\n", paint(verdict.colour, fmt::format("{:<4}", verdict.name)), finding.step,
                   finding.text);
        if (!finding.remedy.empty())
            fmt::print("     {:<12} -> {}\n", "", finding.remedy);
    }
}

nlohmann::ordered_json json(const Findings& findings)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Finding& finding : findings)
        list.push_back({{"step", finding.step},
                        {"verdict", verdicts[static_cast<std::size_t>(finding.verdict)].name},
                        {"text", finding.text},
                        {"remedy", finding.remedy}});
    return list;
}

int run(const Settings& settings)
{
    const Findings findings = examine(settings);
    if (settings.json)
        fmt::print("{}", jsonText(json(findings)));
    else
        print(findings);
    const auto failed = [](const Finding& finding) { return finding.verdict == Verdict::fail; };
    return std::any_of(findings.begin(), findings.end(), failed) ? exitRefused : exitDone;
}

void print(const CodeAdvice& advice)
{
    fmt::print("{}  {}\n  {}\n  -> {}\n", paint(Colour::bold, fmt::format("{:>5}", advice.code)),
               ZucomErrorText::getErrorText(advice.code), advice.meaning, advice.remedy);
}

int explainCode(const std::string& text)
{
    if (text == "all")
    {
        for (const CodeAdvice& advice : allCodeAdvice())
            print(advice);
        return exitDone;
    }
    int code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (error != std::errc() || end != text.data() + text.size())
        throw UsageError(text + " is no code; give a number or all");
    const CodeAdvice* advice = adviceForCode(code > 0 ? -code : code);
    if (!advice)
        throw Refused(text + " is no code of the library");
    print(*advice);
    return exitDone;
}

} // namespace

Action doctorCommand(Options& options)
{
    const auto settings = std::make_shared<Settings>();
    options.text("device", settings->device, "Path of the serial device")
        .text("-c,--code", settings->code, "Explain a code of the library, with or without the minus sign, or all")
        .flag("--ping", settings->wantsPing, "Ask a reader through the library, with the options below")
        .flag("--modem-lines", settings->modemLines, "Read the modem lines too")
        .flag("--json", settings->json, "Print the findings as JSON");
    addLineOptions(options, settings->ping.line);
    addFrameOptions(options, settings->ping.frame);
    options.text("--payload", settings->ping.payload, "Payload to ask with, in hexadecimal");
    addRootOptions(options, settings->roots);
    options.footer("--mode RS485 also tries whether the driver grants RS485.\n"
                   "Example: zucom doctor /dev/ttyUSB0 --ping --baud 115200 --frame 8N1\n"
                   "Exit code 1 when a step fails.");
    return [settings]
    {
        if (settings->device.empty() == settings->code.empty())
            throw UsageError("give either a device or --code");
        return settings->code.empty() ? run(*settings) : explainCode(settings->code);
    };
}
