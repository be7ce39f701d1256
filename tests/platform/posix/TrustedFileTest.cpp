#include "platform/TrustedFile.h"

#include "platform/DynamicLoader.h"
#include "platform/posix/PrivateGroup.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "tests/platform/posix/FileManagerFixture.h"
#include "tests/support/ScopedEnvironment.h"

#include <dlfcn.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;
using platform::dynamicLoader;
using platform::TrustedFile;

namespace {

using TrustedFiles = test::FileManagerFixture;

constexpr uid_t kOtherUser = 12345;
constexpr gid_t kOtherGroup = 12345;
const std::string kFile = "outer/inner/file";

/// Sets a list that lets the group kOtherGroup write.
bool setAccessControlList(const std::string& path) {
    const std::uint32_t none = 0xFFFFFFFF;
    std::string list("\2\0\0\0", 4);
    const auto add = [&](std::uint16_t tag, std::uint16_t rights, std::uint32_t id) {
        list.append(reinterpret_cast<const char*>(&tag), 2);
        list.append(reinterpret_cast<const char*>(&rights), 2);
        list.append(reinterpret_cast<const char*>(&id), 4);
    };
    for (const auto& [tag, rights, id] : {std::tuple(1, 7, none),
                                          {4, 5, none},
                                          {8, 7, kOtherGroup},
                                          {0x10, 7, none},
                                          {0x20, 5, none}})
        add(static_cast<std::uint16_t>(tag), static_cast<std::uint16_t>(rights), id);
    return setxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) == 0;
}

TEST_F(TrustedFiles, AreOpenedOnlyIfNoOtherUserCanReplaceThem) {
    const std::string path = file(kFile), outer = file("outer"), inner = file("outer/inner");
    using Change = std::function<bool()>;
    const auto mode = [](const std::string& of, mode_t bits) -> Change {
        return [=] { return chmod(of.c_str(), bits) == 0; };
    };
    const auto owner = [](const std::string& of, uid_t user, gid_t group, mode_t bits) -> Change {
        return [=] { return chown(of.c_str(), user, group) == 0 && chmod(of.c_str(), bits) == 0; };
    };
    const auto replaceByLink = [&](const std::string& of) -> Change {
        return [=, this] {
            fs::rename(of, file("moved"));
            return symlink(file("moved").c_str(), of.c_str()) == 0;
        };
    };
    const auto replace = [&](const Change& make) -> Change {
        return [=] { return fs::remove(path) && make(); };
    };
    const uid_t self = geteuid();
    const gid_t group = getegid();
    const std::string probe = folder.write("probe", "");
    const bool canChangeOwners = chown(probe.c_str(), kOtherUser, kOtherGroup) == 0;
    struct Case {
        Change change;
        std::string reason; ///< empty: the file is opened
        bool changesOwner = false;
    };
    const Case cases[] = {
        {[] { return true; }, ""},
        {mode(inner, 0711), ""},
        {mode(path, 0646), path + " is writable by other users"},
        {mode(inner, 0757), inner + " is writable by other users"},
        {mode(outer, 0757), outer + " is writable by other users"},
        {mode(path, 01646), path + " is writable by other users"},
        {mode(inner, 01777), self == 0 ? "" : inner + " is writable by other users"},
        {replaceByLink(path), path + " is a symbolic link"},
        {replaceByLink(inner), inner + " is a symbolic link"},
        {replace([] { return true; }), path + " is missing"},
        {replace([=] { return mkfifo(path.c_str(), 0600) == 0; }), path + " is not a regular file"},
        {replace([=] { return mkdir(path.c_str(), 0700) == 0; }), path + " is not a regular file"},
        {owner(path, kOtherUser, group, 0644), path + " belongs to another user", true},
        {owner(outer, kOtherUser, group, 0755), outer + " belongs to another user", true},
        {owner(inner, kOtherUser, group, 01777), inner + " belongs to another user", true},
        {owner(inner, self, kOtherGroup, 0755), "", true},
        {owner(inner, self, kOtherGroup, 0775), inner + " is writable by other users", true},
        {owner(inner, self, 0, 0775), "", true}, // root's private group
        {[=] { return setAccessControlList(inner); }, inner + " is writable by other users", true},
    };
    for (const auto& [change, expected, changesOwner] : cases) {
        if (changesOwner && !canChangeOwners)
            continue;
        folder.write(kFile, "text");
        fs::permissions(inner, fs::perms(0755));
        fs::permissions(outer, fs::perms(0755));
        ASSERT_TRUE(change()) << expected << ": " << std::strerror(errno);
        std::string reason;
        const auto opened = TrustedFile::open(path, reason);
        EXPECT_EQ(opened != nullptr, expected.empty()) << reason;
        EXPECT_EQ(reason, expected);
        fs::remove_all(outer);
        fs::remove_all(file("moved"));
    }
}

TEST(PrivateGroup, HasTheUsersNameAndNoOtherMember) {
    std::string ann = "ann", bob = "bob";
    char* none[] = {nullptr};
    char* own[] = {ann.data(), nullptr};
    char* both[] = {ann.data(), bob.data(), nullptr};
    passwd user{};
    user.pw_name = ann.data();
    user.pw_gid = 1000;
    for (const auto& [name, number, members, isPrivate] : {std::tuple(&ann, 1000, none, true),
                                                           {&ann, 1000, own, true},
                                                           {&ann, 1000, both, false},
                                                           {&bob, 1000, none, false},
                                                           {&ann, 1001, none, false}}) {
        group group{};
        group.gr_name = name->data();
        group.gr_gid = static_cast<gid_t>(number);
        group.gr_mem = members;
        EXPECT_EQ(platform::posix::isPrivateGroup(group, user), isPrivate)
            << *name << ' ' << number << ' ' << (*members ? *members : "");
    }
    EXPECT_FALSE(platform::posix::isPrivateGroup(kOtherGroup, kOtherUser));
}

std::shared_ptr<const TrustedFile> openCopy(const std::string& code, const std::string& path) {
    fs::copy_file(code, path, fs::copy_options::overwrite_existing);
    std::string reason;
    auto opened = TrustedFile::open(path, reason);
    EXPECT_TRUE(opened) << reason;
    return opened;
}

std::string pathOf(std::uintptr_t address) {
    return dynamicLoader().fileOfAddress(reinterpret_cast<const void*>(address)); // NOLINT
}

/// PreflightGood creates a file when its code runs.
TEST_F(TrustedFiles, AreLoadedWhateverIsAtTheirPathsThen) {
    const test::ScopedEnvironment environment("HALVEX_PREFLIGHT_TRACE", file("trace"));
    const std::string path = file("code");
    const auto opened = openCopy(HALVEX_SHARED_OBJECT, path);
    fs::copy_file(HALVEX_PREFLIGHT_GOOD, file("other"));
    fs::rename(file("other"), path);
    std::string reason;
    const auto code = dynamicLoader().load(opened, reason);
    ASSERT_TRUE(code) << reason;
    EXPECT_FALSE(fs::exists(file("trace")));
    EXPECT_NE(code->symbol(platform::kMenuExtraEntryPoint), nullptr);
    fs::remove(path);
    EXPECT_EQ(pathOf(code->addresses().begin), path);
}

TEST_F(TrustedFiles, AreNotMistakenForOthersWhoseCodeStaysLoaded) {
    std::string reason;
    const std::string first = file("first"), second = file("second");
    auto code = dynamicLoader().load(openCopy(HALVEX_SHARED_OBJECT, first), reason);
    ASSERT_TRUE(code) << reason;
    const auto addresses = code->addresses();
    void* reference = dlopen(first.c_str(), RTLD_NOW);
    code.reset();
    const auto other = dynamicLoader().load(openCopy(HALVEX_SHARED_OBJECT, second), reason);
    ASSERT_TRUE(other) << reason;
    EXPECT_EQ(pathOf(other->addresses().begin), second);
    EXPECT_EQ(pathOf(addresses.begin), first);
    dlclose(reference);
}

/// The folders of these libraries are not checked.
TEST_F(TrustedFiles, AreNotLoadedIfTheyNameFoldersOrPathsOfLibraries) {
    std::string byPath = test::contents(HALVEX_SHARED_OBJECT);
    byPath.replace(byPath.find("libstdc++.so.6"), 3, "./l");
    for (const auto& [path, named] :
         {std::pair<std::string, std::string>(HALVEX_PREFLIGHT_UNLOCATED, "$ORIGIN/../lib"),
          {folder.write("code", byPath), "./lstdc++.so.6"}}) {
        std::string reason;
        EXPECT_EQ(dynamicLoader().load(TrustedFile::open(path, reason), reason), nullptr);
        EXPECT_EQ(reason,
                  "libraries outside of the system's folders (" + named + ") needed by " + path);
    }
}

} // namespace
