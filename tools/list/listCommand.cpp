// zucom list: the serial devices of this machine.
#include "tools/list/listCommand.h"

#include <memory>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tools/common/failure.h"
#include "tools/common/jsonText.h"
#include "tools/common/options.h"
#include "tools/common/plainText.h"
#include "tools/common/serialDevices.h"
#include "tools/common/terminal.h"

namespace
{

struct Settings
{
    SystemRoots roots;
    bool all = false;
    bool json = false;
};

nlohmann::ordered_json deviceJson(const SerialDevice& device)
{
    nlohmann::ordered_json holders = nlohmann::ordered_json::array();
    for (const Holder& holder : device.holders)
        holders.push_back({{"pid", holder.pid}, {"name", holder.name}, {"otherEnd", holder.otherEnd}});
    nlohmann::ordered_json usb;
    if (!device.usbVendor.empty())
        usb = {{"vendor", device.usbVendor},
               {"product", device.usbProduct},
               {"serial", device.usbSerial},
               {"name", device.usbName}};
    return {{"path", device.path},
            {"byId", device.byId},
            {"driver", device.driver},
            {"usb", std::move(usb)},
            {"holders", std::move(holders)}};
}

std::string deviceText(const SerialDevice& device)
{
    std::string text = fmt::format("{}  {}\n", paint(Colour::bold, printable(device.path)),
                                   device.driver.empty() ? "no driver" : printable(device.driver));
    for (const std::string& name : device.byId)
        text += fmt::format("  stable name  {}\n", printable(name));
    if (!device.usbVendor.empty())
        text += fmt::format("  USB          {}:{} {}{}\n", printable(device.usbVendor), printable(device.usbProduct),
                            printable(device.usbName),
                            device.usbSerial.empty() ? std::string() : ", serial " + printable(device.usbSerial));
    for (const Holder& holder : device.holders)
        text += fmt::format("  held by      {} (pid {})\n", printable(holder.name), holder.pid);
    return text;
}

int run(const Settings& settings)
{
    const std::vector<SerialDevice> devices = serialDevices(settings.roots, settings.all);
    if (settings.json)
    {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const SerialDevice& device : devices)
            list.push_back(deviceJson(device));
        fmt::print("{}", jsonText(list));
        return exitDone;
    }
    for (const SerialDevice& device : devices)
        fmt::print("{}", deviceText(device));
    if (devices.empty())
        fmt::print("No serial device. Is the adapter plugged in? See: dmesg | tail\n");
    else if (!seesAllProcesses())
        fmt::print(stderr, "Processes of other users are not seen; with sudo they are.\n");
    return exitDone;
}

} // namespace

Action listCommand(Options& options)
{
    const auto settings = std::make_shared<Settings>();
    options.flag("-a,--all", settings->all, "Also ports of the PC's own driver that found no hardware")
        .flag("--json", settings->json, "Print the list as JSON");
    addRootOptions(options, settings->roots);
    return [settings] { return run(*settings); };
}
