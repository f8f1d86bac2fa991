// What can be said about a device node without opening it.
#include "tools/doctor/nodeChecks.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>

#include "tools/common/plainText.h"
#include "tools/doctor/accessRights.h"

namespace
{

constexpr std::size_t holdersShown = 4;
constexpr int slowLatency = 2; // ms; more than this is felt in every exchange

bool contains(const std::vector<std::string>& list, const std::string& text)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

std::string rightsRemedy(const AccessRights& rights, const User& user)
{
    if (rights.groupMay && contains(user.laterGroups, rights.group))
        return fmt::format("newgrp {}    # or log out and in again: you are in the group, this session is not",
                           rights.group);
    if (rights.groupMay && !contains(user.groups, rights.group))
        return fmt::format("sudo usermod -aG {} {}    # then log out and in again", rights.group, user.name);
    return "look for the udev rule that made the node so: neither owner, group nor list lets you in";
}

} // namespace

bool checkNode(const std::string& path, Findings& findings)
{
    struct stat status
    {
    };
    const auto fail = [&](const std::string& text, const std::string& remedy)
    {
        findings.push_back({"node", Verdict::fail, text, remedy});
        return false;
    };
    if (lstat(path.c_str(), &status) != 0)
        return fail(std::strerror(errno), "zucom list    # shows the devices that are there");
    const bool link = S_ISLNK(status.st_mode);
    std::error_code failure;
    const std::string target = link ? std::filesystem::canonical(path, failure).string() : path;
    if (stat(path.c_str(), &status) != 0)
        return fail("the link leads nowhere: the device is unplugged", "plug it in, then: dmesg | tail");
    if (!S_ISCHR(status.st_mode))
        return fail("is no character device", "zucom list    # shows the devices that are there");
    findings.push_back({"node", Verdict::ok, link ? "exists, leads to " + target : "exists", ""});
    return true;
}

bool checkRights(const std::string& path, Findings& findings)
{
    const AccessRights rights = accessRightsOf(path);
    const User user = currentUser();
    std::string text = fmt::format("{} {}:{}", rights.mode, rights.owner, rights.group);
    for (const std::string& entry : rights.acl)
        text += ", " + entry;
    text += fmt::format("; you are {} in {}", user.name, fmt::join(user.groups, ", "));
    findings.push_back({"rights", rights.userMay ? Verdict::ok : Verdict::fail, text,
                        rights.userMay ? std::string() : rightsRemedy(rights, user)});
    return rights.userMay;
}

bool checkHolders(const SerialDevice& device, Findings& findings)
{
    std::vector<std::string> users;
    std::string simulator;
    for (const Holder& holder : device.holders)
    {
        const std::string text = fmt::format("{} (pid {})", printable(holder.name), holder.pid);
        if (holder.otherEnd)
            simulator = "; simulated by " + text;
        else
            users.push_back(text);
    }
    if (!users.empty())
    {
        const std::size_t more = users.size() - std::min(users.size(), holdersShown);
        users.resize(users.size() - more);
        findings.push_back({"holder", Verdict::warn,
                            fmt::format("in use by {}{}; two programs steal each other's bytes", fmt::join(users, ", "),
                                        more > 0 ? fmt::format(" and {} more", more) : ""),
                            "stop the other program, or the service it belongs to; sudo fuser -v " + device.path});
    }
    else
    {
        findings.push_back({"holder", Verdict::ok,
                            (seesAllProcesses() ? "nobody has it open"
                                                : "none of your own processes has it open, others are not seen") +
                                simulator,
                            ""});
    }
    return users.empty();
}

void checkLatency(const SerialDevice& device, Findings& findings)
{
    int latency = 0;
    const std::string& text = device.latencyTimer;
    if (std::from_chars(text.data(), text.data() + text.size(), latency).ec != std::errc())
        return; // only some USB adapters have one
    const bool slow = latency > slowLatency;
    findings.push_back({"latency", slow ? Verdict::warn : Verdict::ok,
                        fmt::format("the adapter holds bytes back for up to {} ms", latency),
                        slow ? fmt::format("echo 1 | sudo tee {}", device.latencyFile.string()) : std::string()});
}
