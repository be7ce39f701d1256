#pragma once

#include <grp.h>
#include <pwd.h>

namespace platform::posix {

/// Returns whether @p group is the private group of @p user: the user's primary group, with the
/// user's name and no other members. By convention, no other account has such a group as its
/// primary one.
bool isPrivateGroup(const group& group, const passwd& user);

/// Returns whether the group is the private group of the user. Returns false if either is unknown.
bool isPrivateGroup(gid_t group, uid_t user);

} // namespace platform::posix
