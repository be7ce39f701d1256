#include "platform/posix/PrivateGroup.h"

#include <array>
#include <string_view>

namespace platform::posix {

bool isPrivateGroup(const group& group, const passwd& user) {
    const std::string_view name = user.pw_name;
    if (group.gr_gid != user.pw_gid || group.gr_name != name)
        return false;
    for (char** member = group.gr_mem; *member; ++member)
        if (*member != name)
            return false;
    return true;
}

bool isPrivateGroup(gid_t groupNumber, uid_t userNumber) {
    // A group that does not fit has many members.
    std::array<char, 16384> userText{};
    std::array<char, 16384> groupText{};
    passwd user{};
    group group{};
    passwd* foundUser = nullptr;
    struct group* foundGroup = nullptr;
    ::getpwuid_r(userNumber, &user, userText.data(), userText.size(), &foundUser);
    ::getgrgid_r(groupNumber, &group, groupText.data(), groupText.size(), &foundGroup);
    return foundUser && foundGroup && isPrivateGroup(group, user);
}

} // namespace platform::posix
