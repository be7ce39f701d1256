#include "platform/posix/Trash.h"

#include "platform/Workspace.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using platform::posix::moveToTrash;
using platform::posix::trashAtTop;
using testing::MatchesRegex;
using testing::StartsWith;
using Names = std::set<std::string>;

std::string contents(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

Names namesIn(const fs::path& path) {
    Names result;
    for (const auto& entry : fs::directory_iterator(path))
        result.insert(entry.path().filename());
    return result;
}

class Trash : public testing::Test {
  protected:
    test::TemporaryFolder folder;
    const test::ScopedEnvironment home{"HOME", folder.file("home")};
    const test::ScopedEnvironment data{"XDG_DATA_HOME", std::nullopt};
    const fs::path trash = folder.path() / "home/.local/share/Trash";
    const std::string user = std::to_string(::geteuid());
};

TEST_F(Trash, KeepsWhatIsThrownAwayWithWhereItLayAndWhen) {
    fs::create_directory(folder.file("home"));
    folder.write("50% \xc3\xa4 [x]/Clock.menu/Contents/Info.plist", "1");
    const std::string path = folder.file("50% \xc3\xa4 [x]/Clock.menu");
    EXPECT_TRUE(platform::sharedWorkspace().recycle(path));
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(contents(trash / "files/Clock.menu/Contents/Info.plist"), "1");
    EXPECT_THAT(contents(trash / "info/Clock.menu.trashinfo"),
                testing::AllOf(StartsWith("[Trash Info]\nPath=" + folder.path().string() +
                                          "/50%25%20%C3%A4%20%5Bx%5D/Clock.menu\nDeletionDate="),
                               MatchesRegex(".*=[0-9]{4}-[0-9]{2}-[0-9]{2}T"
                                            "[0-9]{2}:[0-9]{2}:[0-9]{2}\n")));
    EXPECT_EQ(fs::status(trash).permissions(), fs::perms(0700));
    EXPECT_FALSE(moveToTrash(path)) << "it is gone";
    EXPECT_EQ(namesIn(trash / "info"), Names{"Clock.menu.trashinfo"});
}

TEST_F(Trash, GivesNumbersToNamesThatItHasAlready) {
    const test::ScopedEnvironment elsewhere("XDG_DATA_HOME", folder.file("data"));
    const std::string longest(NAME_MAX - 5, 'n');
    Names files;
    Names notes;
    for (const auto& [name, first, second, third] :
         {std::array<std::string, 4>{"Clock.menu", "Clock.menu", "Clock.2.menu", "Clock.3.menu"},
          {"none", "none", "none.2", "none.3"},
          {longest + ".menu", longest.substr(10) + ".menu", longest.substr(12) + ".2.menu",
           longest.substr(12) + ".3.menu"}}) {
        for (const std::string& kept : {first, second, third}) {
            fs::create_symlink("nowhere", folder.file(name));
            EXPECT_TRUE(moveToTrash(folder.file(name))) << name;
            files.insert(kept);
            notes.insert(kept + ".trashinfo");
        }
    }
    EXPECT_EQ(namesIn(folder.file("data/Trash/files")), files);
    EXPECT_EQ(namesIn(folder.file("data/Trash/info")), notes);

    // A file without a note, or a note without a file, takes its name all the same.
    folder.write("data/Trash/files/lone", "");
    folder.write("data/Trash/info/lone.2.trashinfo", "");
    EXPECT_TRUE(moveToTrash(folder.write("lone", "1")));
    EXPECT_EQ(contents(folder.file("data/Trash/files/lone.3")), "1");
    EXPECT_FALSE(fs::exists(folder.file("data/Trash/info/lone.trashinfo")));
}

TEST_F(Trash, WhatCannotBeMovedStaysAndLeavesNoNote) {
    for (const std::string& path :
         {std::string("/"), std::string(), folder.file("none"), folder.path().string() + "/..",
          std::string("/proc/self/status")})
        EXPECT_FALSE(moveToTrash(path)) << path;
    // A folder cannot be moved into itself.
    EXPECT_FALSE(moveToTrash(folder.file("home")));
    EXPECT_EQ(namesIn(trash / "info"), Names());
}

TEST_F(Trash, AtTheTopOfAFileSystemIsTheUsersOwnAndNoLink) {
    const std::string own = folder.file(".Trash-" + user);
    const fs::path shared = folder.file(".Trash");
    const auto sticky = fs::perms(01777);
    EXPECT_EQ(trashAtTop(folder.path()), own);
    EXPECT_EQ(fs::status(own).permissions(), fs::perms(0700));
    fs::create_directory(shared);
    EXPECT_EQ(trashAtTop(folder.path()), own) << "without the sticky bit";
    fs::permissions(shared, sticky);
    EXPECT_EQ(trashAtTop(folder.path()), (shared / user).string());
    fs::remove(shared / user);
    fs::create_symlink(folder.path(), shared / user);
    EXPECT_EQ(trashAtTop(folder.path()), own);
    fs::rename(shared, folder.file("real"));
    fs::create_symlink("real", shared);
    EXPECT_EQ(trashAtTop(folder.path()), own);
    fs::remove(own);
    fs::create_symlink("real", own);
    EXPECT_EQ(trashAtTop(folder.path()), std::nullopt);
}

TEST_F(Trash, OfAnotherFileSystemTellsPathsFromItsTop) {
    struct stat here {};
    struct stat there {};
    if (::stat(folder.path().c_str(), &here) != 0 || ::stat("/dev/shm", &there) != 0 ||
        here.st_dev == there.st_dev || ::access("/dev/shm", W_OK) != 0)
        GTEST_SKIP() << "there is one file system only";
    const std::string name = "halvex-trash-test-" + std::to_string(::getpid());
    std::ofstream("/dev/shm/" + name) << "1";
    const bool isNew = !fs::exists("/dev/shm/.Trash-" + user);
    const auto top = trashAtTop("/dev/shm");
    ASSERT_TRUE(top);
    EXPECT_TRUE(moveToTrash("/dev/shm/" + name));
    EXPECT_EQ(contents(*top + "/files/" + name), "1");
    EXPECT_THAT(contents(*top + "/info/" + name + ".trashinfo"),
                StartsWith("[Trash Info]\nPath=" + name + "\n"));
    EXPECT_FALSE(fs::exists(trash / "info" / (name + ".trashinfo")));
    fs::remove(*top + "/files/" + name);
    fs::remove(*top + "/info/" + name + ".trashinfo");
    if (isNew)
        fs::remove_all("/dev/shm/.Trash-" + user);
}

} // namespace
