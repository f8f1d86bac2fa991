// Who may open a device node.
#ifndef ZUCOM_TOOLS_ACCESS_RIGHTS_H
#define ZUCOM_TOOLS_ACCESS_RIGHTS_H

#include <string>
#include <vector>

struct AccessRights
{
    std::string mode;  // as ls shows it, "crw-rw----"
    std::string owner; // names, or numbers where there is no name
    std::string group;
    bool groupMay = false;        // members of the group may read and write
    std::vector<std::string> acl; // further entries, for example "user alice rw-"
    bool userMay = false;         // this process may read and write
};

// Of a node that exists.
AccessRights accessRightsOf(const std::string& path);

struct User
{
    std::string name;
    std::vector<std::string> groups;      // of this process
    std::vector<std::string> laterGroups; // that the user has been given, but this session has not
};

User currentUser();

#endif
