#include "apps/shared/ItemList.h"

#include "platform/expat/ExpatPropertyLists.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <thread>

using namespace apps;

namespace {

class ItemListTest : public testing::Test {
  protected:
    ItemListTest() {
        platform::expat::install();
        std::filesystem::create_directory(folder.file("in"));
    }

    std::string file() const { return folder.file("in/list"); }
    static ItemRecord item(const std::string& name, std::int32_t position = 5) {
        return {name, "/" + name, position, ""};
    }
    static ItemList::Change insertion(const ItemRecord& record) {
        return [record](ItemList& into) { return into.insert(record); };
    }
    static std::string names(const ItemList& of) {
        std::string all;
        for (const ItemRecord& record : of.items())
            all += record.identifier + ' ';
        return all;
    }
    std::string stored() const {
        ItemList copy(file(), "");
        EXPECT_TRUE(copy.read());
        return names(copy);
    }

    test::TemporaryFolder folder;
    test::RecordingLog log;
    ItemList list{file(), ""};
    ItemList other{file(), ""};
};

TEST_F(ItemListTest, KeepsItemsInOrderOfTheirPositionsThenOfTheirInsertion) {
    using Change = bool (*)(ItemList&);
    const std::pair<Change, const char*> steps[] = {
        {[](ItemList& l) { return l.insert(item("a")) && l.insert(item("b", 3)); }, "b a "},
        {[](ItemList& l) { return l.insert(item("c")); }, "b a c "},
        {[](ItemList& l) { return l.insert(item("a", 9)); }, "b a c "},
        {[](ItemList& l) {
             l.insertOrReplace(item("a"));
             return true;
         },
         "b c a "},
        {[](ItemList& l) {
             l.insertOrReplace(item("c", -1));
             return true;
         },
         "c b a "},
        {[](ItemList& l) { return l.removeItem("b"); }, "c a "},
        {[](ItemList& l) { return l.removeItem("b"); }, "c a "},
    };
    for (const auto& [step, expected] : steps) {
        EXPECT_TRUE(list.change(step));
        EXPECT_EQ(names(list), expected);
        EXPECT_EQ(stored(), expected);
    }
}

TEST_F(ItemListTest, AppliesEachChangeToTheContentsOfTheFile) {
    EXPECT_TRUE(list.change(insertion(item("a"))));
    EXPECT_TRUE(other.change(insertion(item("b"))));
    EXPECT_TRUE(list.change(insertion(item("c"))));
    EXPECT_EQ(stored(), "a b c ");
    EXPECT_TRUE(other.change([](ItemList& l) { return l.removeItem("c"); }));
    list.changeLater(insertion(item("d")));
    EXPECT_EQ(names(list), "a b c d ");
    EXPECT_EQ(stored(), "a b ");
    EXPECT_TRUE(list.flush());
    EXPECT_EQ(stored(), "a b d ");
    std::filesystem::create_hard_link(file(), folder.file("in/link"));
    EXPECT_TRUE(list.change([](ItemList& l) { return l.removeItem("x") || l.enable("/x"); }));
    EXPECT_EQ(std::filesystem::hard_link_count(file()), 2) << "nothing was to be written";
    std::filesystem::remove(file());
    list.changeLater(insertion(item("e")));
    EXPECT_TRUE(list.flush());
    EXPECT_EQ(stored(), "a b d e ");
}

TEST_F(ItemListTest, LosesNoChangeOfBarsThatWriteAtTheSameTime) {
    constexpr int kCount = 40;
    const auto insertAll = [&](ItemList& into, const std::string& prefix) {
        for (int i = 0; i < kCount; ++i)
            into.change(insertion(item(prefix + std::to_string(i))));
    };
    std::thread second([&] { insertAll(other, "b"); });
    insertAll(list, "a");
    second.join();
    EXPECT_TRUE(list.read());
    EXPECT_EQ(list.items().size(), 2U * kCount);
}

TEST_F(ItemListTest, WritesAFailedChangeWithTheNextOne) {
    list.insert(item("a"));
    std::filesystem::remove(folder.file("in"));
    EXPECT_FALSE(list.change(insertion(item("b"))));
    EXPECT_TRUE(log.contains("cannot write the menu bar's items to " + file()));
    std::filesystem::create_directory(folder.file("in"));
    EXPECT_TRUE(other.change(insertion(item("c"))));
    EXPECT_TRUE(list.change(insertion(item("d"))));
    EXPECT_EQ(stored(), "c b d ");
    std::filesystem::remove_all(folder.file("in"));
    for (int i = 0; i <= 100; ++i)
        EXPECT_FALSE(list.change(insertion(item("e", i))));
    std::filesystem::create_directory(folder.file("in"));
    EXPECT_TRUE(other.change(insertion(item("f"))));
    EXPECT_TRUE(list.flush());
    ASSERT_TRUE(list.findItem("e"));
    EXPECT_EQ(list.findItem("e")->position, 1) << "the oldest change was dropped";
}

TEST_F(ItemListTest, NeitherReadsNorWritesAFileThatIsTooLarge) {
    EXPECT_TRUE(list.change(insertion(item("a"))));
    EXPECT_FALSE(list.change(insertion(item(std::string(ItemList::kMaximumBytes, 'x')))));
    EXPECT_TRUE(log.contains("they need more than 1048576 bytes"));
    EXPECT_EQ(stored(), "a ");
    folder.write("in/list", test::contents(file()) + std::string(ItemList::kMaximumBytes, ' '));
    EXPECT_FALSE(other.read());
    EXPECT_TRUE(log.contains("The file is larger than 1048576 bytes."));
    EXPECT_TRUE(std::filesystem::exists(file() + ".unreadable"));
    folder.write("in/list", "not a list either");
    EXPECT_FALSE(other.read());
    EXPECT_EQ(test::contents(file() + ".unreadable"), "not a list either");
}

/// If an operation took time in proportion to the length, this would run for minutes.
TEST_F(ItemListTest, CanBeLong) {
    constexpr int kCount = 30'000;
    for (int i = 0; i < kCount; ++i) {
        const std::string name = std::to_string(i);
        list.insert(item(name, i % 7));
        list.disable({name, "/" + name, "1", "click"});
    }
    EXPECT_EQ(list.items().size(), std::size_t{kCount});
    for (int i = 0; i < kCount; ++i) {
        const std::string name = std::to_string(i);
        EXPECT_TRUE(list.findItem(name) && list.findDisabled("/" + name));
        EXPECT_TRUE(list.removeItem(name) && list.enable("/" + name));
    }
    EXPECT_EQ(names(list), "");
}

} // namespace
