// Who may open a device node.
#include "tools/doctor/accessRights.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

std::string userName(uid_t id)
{
    const passwd* entry = getpwuid(id);
    return entry ? entry->pw_name : std::to_string(id);
}

std::string groupName(gid_t id)
{
    const group* entry = getgrgid(id);
    return entry ? entry->gr_name : std::to_string(id);
}

std::string permissionText(unsigned bits)
{
    std::string text = "rwx";
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((bits >> (2 - i) & 1) == 0)
            text[i] = '-';
    return text;
}

// The named entries of the node's access control list. The kernel hands the list out as a version and then entries of
// tag, permission and identifier, all little-endian; the other entries only repeat the mode bits.
std::vector<std::string> aclEntries(const std::string& path)
{
    constexpr std::size_t versionSize = 4;
    constexpr std::size_t entrySize = 8;
    constexpr unsigned namedUser = 0x02;
    constexpr unsigned namedGroup = 0x08;
    std::array<unsigned char, versionSize + 64 * entrySize> list{};
    const ssize_t size = getxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size());
    std::vector<std::string> entries;
    for (std::size_t at = versionSize; static_cast<ssize_t>(at + entrySize) <= size; at += entrySize)
    {
        const unsigned tag = list[at] | static_cast<unsigned>(list[at + 1]) << 8;
        const std::uint32_t id = list[at + 4] | static_cast<std::uint32_t>(list[at + 5]) << 8 |
                                 static_cast<std::uint32_t>(list[at + 6]) << 16 |
                                 static_cast<std::uint32_t>(list[at + 7]) << 24;
        if (tag == namedUser)
            entries.push_back("user " + userName(id) + " " + permissionText(list[at + 2]));
        else if (tag == namedGroup)
            entries.push_back("group " + groupName(id) + " " + permissionText(list[at + 2]));
    }
    return entries;
}

std::vector<std::string> names(const std::vector<gid_t>& groups)
{
    std::vector<std::string> result;
    std::transform(groups.begin(), groups.end(), std::back_inserter(result), groupName);
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

std::vector<gid_t> groupsOfProcess()
{
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    groups.resize(static_cast<std::size_t>(std::max(0, getgroups(static_cast<int>(groups.size()), groups.data()))));
    groups.push_back(getegid());
    return groups;
}

std::vector<gid_t> groupsOfUser() // as the next session will have them
{
    const passwd* entry = getpwuid(geteuid());
    if (!entry)
        return {};
    std::vector<gid_t> groups(256);
    int count = static_cast<int>(groups.size());
    if (getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count) < 0)
        return {};
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

} // namespace

AccessRights accessRightsOf(const std::string& path)
{
    struct stat status
    {
    };
    AccessRights rights;
    if (stat(path.c_str(), &status) != 0)
        return rights;
    const char type = S_ISCHR(status.st_mode) ? 'c' : S_ISDIR(status.st_mode) ? 'd' : '-';
    rights.mode = type + permissionText(status.st_mode >> 6) + permissionText(status.st_mode >> 3) +
                  permissionText(status.st_mode);
    rights.owner = userName(status.st_uid);
    rights.group = groupName(status.st_gid);
    rights.groupMay = (status.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP);
    rights.acl = aclEntries(path);
    rights.userMay = eaccess(path.c_str(), R_OK | W_OK) == 0;
    return rights;
}

User currentUser()
{
    User user{userName(geteuid()), names(groupsOfProcess()), {}};
    for (const std::string& group : names(groupsOfUser()))
        if (!std::binary_search(user.groups.begin(), user.groups.end(), group))
            user.laterGroups.push_back(group);
    return user;
}
