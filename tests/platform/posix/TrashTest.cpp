#include "platform/posix/Trash.h"

#include "platform/Workspace.h"
#include "tests/platform/posix/FileManagerFixture.h"
#include "tests/support/ScopedEnvironment.h"

#include <limits.h>

namespace {

using namespace test;
using platform::posix::moveToTrash;
using platform::posix::trashAtTop;
using testing::StartsWith;

class Trash : public test::FileManagerFixture {
  protected:
    const test::ScopedEnvironment home{"HOME", file("home")};
    const test::ScopedEnvironment data{"XDG_DATA_HOME", std::nullopt};
    const fs::path trash = folder.path() / "home/.local/share/Trash";
    const std::string user = std::to_string(::geteuid());
};

TEST_F(Trash, RecordsTheOriginalPathAndTheDeletionDate) {
    fs::create_directory(file("home"));
    folder.write("50% \xc3\xa4 [x]/Clock.menu/Contents/Info.plist", "1");
    const std::string path = file("50% \xc3\xa4 [x]/Clock.menu");
    EXPECT_TRUE(platform::sharedWorkspace().recycle(path));
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(contents(trash / "files/Clock.menu/Contents/Info.plist"), "1");
    const std::string information = contents(trash / "info/Clock.menu.trashinfo");
    EXPECT_THAT(information, StartsWith("[Trash Info]\nPath=" + folder.path().string() +
                                        "/50%25%20%C3%A4%20%5Bx%5D/Clock.menu\nDeletionDate="));
    EXPECT_THAT(information, testing::MatchesRegex(".*=[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\n"));
    EXPECT_EQ(fs::status(trash).permissions(), fs::perms(0700));
}

TEST_F(Trash, NumbersItemsWhoseNamesAreTaken) {
    const test::ScopedEnvironment elsewhere("XDG_DATA_HOME", file("data"));
    const std::string longest(NAME_MAX - 5, 'n');
    // An item without information, and information without an item, also occupy their names.
    folder.write("data/Trash/files/none", "");
    folder.write("data/Trash/info/none.2.trashinfo", "");
    Names files{"none"};
    Names information{"none.2.trashinfo"};
    const std::pair<std::string, Names> cases[] = {
        {"Clock.menu", {"Clock.menu", "Clock.2.menu", "Clock.3.menu"}},
        {"none", {"none.3", "none.4"}},
        {longest + ".menu", {longest.substr(10) + ".menu", longest.substr(12) + ".2.menu"}},
    };
    for (const auto& [name, keptAs] : cases) {
        for (const std::string& kept : keptAs) {
            fs::create_symlink("nowhere", file(name));
            EXPECT_TRUE(moveToTrash(file(name))) << name;
            files.insert(kept);
            information.insert(kept + ".trashinfo");
        }
    }
    EXPECT_EQ(namesIn(file("data/Trash/files")), files);
    EXPECT_EQ(namesIn(file("data/Trash/info")), information);
}

TEST_F(Trash, KeepsNoInformationAboutItemsThatCannotBeMoved) {
    // The home folder cannot be moved, because the Trash is in it.
    for (const std::string& path :
         {std::string("/"), std::string(), file("none"), folder.path().string() + "/..",
          std::string("/proc/self/status"), file("home")})
        EXPECT_FALSE(moveToTrash(path)) << path;
    EXPECT_EQ(namesIn(trash / "info"), Names());
}

TEST_F(Trash, AtTheTopOfAFileSystemBelongsToTheUserAndIsNotALink) {
    const std::string own = file(".Trash-" + user);
    const fs::path shared = file(".Trash");
    EXPECT_EQ(trashAtTop(folder.path()), own);
    EXPECT_EQ(fs::status(own).permissions(), fs::perms(0700));
    fs::create_directory(shared);
    EXPECT_EQ(trashAtTop(folder.path()), own) << "without the sticky bit";
    fs::permissions(shared, fs::perms(01777));
    EXPECT_EQ(trashAtTop(folder.path()), (shared / user).string());
    fs::remove(shared / user);
    fs::create_symlink(folder.path(), shared / user);
    EXPECT_EQ(trashAtTop(folder.path()), own);
    fs::rename(shared, file("real"));
    fs::create_symlink("real", shared);
    EXPECT_EQ(trashAtTop(folder.path()), own);
    fs::remove(own);
    fs::create_symlink("real", own);
    EXPECT_EQ(trashAtTop(folder.path()), std::nullopt);
}

TEST_F(Trash, OnAnotherFileSystemStoresPathsRelativeToItsTop) {
    if (::access("/dev/shm", W_OK) != 0 ||
        test::statusOf("/dev/shm").st_dev == test::statusOf(folder.path()).st_dev)
        GTEST_SKIP() << "needs another file system at /dev/shm";
    const std::string name = "halvex-trash-test-" + std::to_string(::getpid());
    std::ofstream("/dev/shm/" + name) << "1";
    const bool isNew = !fs::exists("/dev/shm/.Trash-" + user);
    const auto top = trashAtTop("/dev/shm");
    ASSERT_TRUE(top);
    EXPECT_TRUE(moveToTrash("/dev/shm/" + name));
    EXPECT_EQ(contents(*top + "/files/" + name), "1");
    EXPECT_THAT(contents(*top + "/info/" + name + ".trashinfo"),
                StartsWith("[Trash Info]\nPath=" + name + "\n"));
    fs::remove(*top + "/files/" + name);
    fs::remove(*top + "/info/" + name + ".trashinfo");
    if (isNew)
        fs::remove_all("/dev/shm/.Trash-" + user);
}

} // namespace
