// The serial devices of a machine as its kernel describes them, without opening any.
#include "tools/common/serialDevices.h"

#include <algorithm>
#include <fstream>
#include <map>

#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

using HoldersByPath = std::map<std::string, std::vector<Holder>>;

// Directories change while they are read: whatever is gone or closed to the user counts as empty.
std::vector<fs::path> entries(const fs::path& directory)
{
    std::error_code failure;
    std::vector<fs::path> result;
    for (fs::directory_iterator entry(directory, failure); !failure && entry != fs::directory_iterator();
         entry.increment(failure))
        result.push_back(entry->path());
    std::sort(result.begin(), result.end());
    return result;
}

std::string firstLine(const fs::path& file)
{
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

std::string linkTarget(const fs::path& link)
{
    std::error_code failure;
    return fs::read_symlink(link, failure).string();
}

fs::path resolved(const fs::path& path)
{
    std::error_code failure;
    const fs::path result = fs::canonical(path, failure);
    return failure ? path : result;
}

// Which pseudo-terminal a descriptor of the multiplexer is the other end of.
std::string otherEndOf(const SystemRoots& roots, const fs::path& process, const fs::path& descriptor)
{
    constexpr std::string_view key = "tty-index:";
    std::ifstream info(process / "fdinfo" / descriptor.filename());
    for (std::string line; std::getline(info, line);)
        if (line.starts_with(key))
            return roots.dev + "/pts/" + line.substr(line.find_first_not_of(" \t", key.size()));
    return {};
}

void addHoldings(const SystemRoots& roots, const fs::path& process, HoldersByPath& holders)
{
    const int pid = std::stoi(process.filename());
    for (const fs::path& descriptor : entries(process / "fd"))
    {
        std::string target = linkTarget(descriptor);
        const bool otherEnd = target == roots.dev + "/ptmx" || target == roots.dev + "/pts/ptmx";
        if (otherEnd)
            target = otherEndOf(roots, process, descriptor);
        if (!target.starts_with(roots.dev + "/"))
            continue;
        std::vector<Holder>& list = holders[target];
        if (list.empty() || list.back().pid != pid)
            list.push_back({pid, firstLine(process / "comm"), false});
        list.back().otherEnd = list.back().otherEnd || otherEnd;
    }
}

HoldersByPath holdersByPath(const SystemRoots& roots)
{
    HoldersByPath holders;
    for (const fs::path& process : entries(roots.proc))
    {
        const std::string name = process.filename();
        if (name.find_first_not_of("0123456789") == std::string::npos && name.size() <= 9)
            addHoldings(roots, process, holders);
    }
    return holders;
}

// Looks for a file upwards from a device's directory, as far as the tree of devices goes.
fs::path directoryWith(fs::path directory, const char* file)
{
    std::error_code failure;
    for (; directory.has_relative_path() && directory.filename() != "devices"; directory = directory.parent_path())
        if (fs::exists(directory / file, failure))
            return directory;
    return {};
}

// Newer kernels put a controller and a port without a driver worth telling between the device and its driver.
std::string driverOf(const fs::path& hardware)
{
    std::string name;
    for (fs::path driven = directoryWith(hardware, "driver"); !driven.empty();
         driven = directoryWith(driven.parent_path(), "driver"))
    {
        name = resolved(driven / "driver").filename();
        if (name != "port" && name != "ctrl")
            break;
    }
    return name;
}

void describeHardware(const SystemRoots& roots, const std::string& name, SerialDevice& device)
{
    const fs::path classEntry = fs::path(roots.sys) / "class/tty" / name;
    std::error_code failure;
    if (!fs::exists(classEntry / "device", failure))
        return;
    const fs::path hardware = resolved(classEntry / "device");
    device.driver = driverOf(hardware);
    if (const fs::path usb = directoryWith(hardware, "idVendor"); !usb.empty())
    {
        device.usbVendor = firstLine(usb / "idVendor");
        device.usbProduct = firstLine(usb / "idProduct");
        device.usbSerial = firstLine(usb / "serial");
        device.usbName = firstLine(usb / "manufacturer") + " " + firstLine(usb / "product");
    }
    if (const fs::path timer = hardware / "latency_timer"; fs::exists(timer, failure))
    {
        device.latencyFile = timer;
        device.latencyTimer = firstLine(timer);
    }
}

std::vector<std::string> stableNames(const SystemRoots& roots, const fs::path& node)
{
    std::vector<std::string> names;
    for (const fs::path& link : entries(fs::path(roots.dev) / "serial/by-id"))
        if (resolved(link) == node)
            names.push_back(link);
    return names;
}

SerialDevice describe(const SystemRoots& roots, const fs::path& node, const HoldersByPath& holders)
{
    SerialDevice device;
    device.path = node;
    device.byId = stableNames(roots, node);
    describeHardware(roots, node.lexically_relative(resolved(roots.dev)), device);
    const auto found = holders.find(device.path);
    if (found != holders.end())
        device.holders = found->second;
    return device;
}

// Consoles have no hardware behind them; a port of the PC's own driver with the type 0 has found none.
bool hasHardware(const fs::path& classEntry)
{
    std::error_code failure;
    return fs::exists(classEntry / "device", failure) && firstLine(classEntry / "type") != "0";
}

// "ttyUSB2" before "ttyUSB10".
bool comesBefore(const fs::path& left, const fs::path& right)
{
    const auto key = [](const std::string& name)
    {
        const std::size_t digits = name.find_last_not_of("0123456789") + 1;
        return std::tuple(name.substr(0, digits), name.size(), name);
    };
    return key(left.filename()) < key(right.filename());
}

} // namespace

void addRootOptions(Options& options, SystemRoots& roots)
{
    options.text("--sys", roots.sys, "Root of the kernel's device tree")
        .text("--dev", roots.dev, "Folder of the device nodes")
        .text("--proc", roots.proc, "Folder of the processes");
}

std::vector<SerialDevice> serialDevices(const SystemRoots& roots, bool withoutHardware)
{
    const HoldersByPath holders = holdersByPath(roots);
    std::vector<fs::path> found = entries(fs::path(roots.sys) / "class/tty");
    std::sort(found.begin(), found.end(), comesBefore);
    std::vector<SerialDevice> devices;
    std::error_code failure;
    for (const fs::path& entry : found)
        if (hasHardware(entry) || (withoutHardware && fs::exists(entry / "device", failure)))
            devices.push_back(describe(roots, resolved(roots.dev) / entry.filename(), holders));
    return devices;
}

SerialDevice describeDevice(const SystemRoots& roots, const fs::path& node)
{
    return describe(roots, resolved(node), holdersByPath(roots));
}

bool seesAllProcesses() { return geteuid() == 0; }
