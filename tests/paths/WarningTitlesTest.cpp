#include "menuextras/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

using namespace test;
using Array = platform::PropertyList::Array;

namespace {

const std::array kPlaces{
    std::string(kUserProduct) + "/WarningTitles.plist", std::string(kUser) + "/WarningTitles.plist",
    std::string(kLocalMaker) + "/Halvex/WarningTitles.plist", std::string("~/Default.plist")};
constexpr std::size_t kLocalPlace = 2;
constexpr std::size_t kDefaultPlace = 3;

enum class State { Missing, Unreadable, Good };

/// Missing and unreadable files are of two kinds each: nothing and a folder, no property list and
/// one that is no array.
void put(const SupportTree& tree, std::size_t place, State state, bool otherKind = false) {
    const std::string& file = kPlaces[place];
    if (state == State::Missing && otherKind)
        tree.make(file);
    if (state == State::Unreadable)
        tree.write(file, otherKind ? "<plist><dict/></plist>" : "no property list");
    if (state == State::Good)
        tree.write(file, "<plist><array><integer>" + std::to_string(place) +
                             "</integer></array></plist>");
}

TEST(WarningTitles, ComeFromTheFirstReadableListInEveryCombination) {
    for (std::size_t combination = 0; combination < 3 * 3 * 3 * 3; ++combination) {
        std::array<State, 4> states{};
        for (std::size_t place = 0, rest = combination; place < 4; ++place, rest /= 3)
            states[place] = static_cast<State>(rest % 3);
        SCOPED_TRACE(combination);
        SupportTree tree({kUser, kLocal});
        for (std::size_t place = 0; place < 4; ++place)
            put(tree, place, states[place], (combination + place) % 2 == 1);

        Array titles;
        std::vector<std::string> lines;
        bool custom = false;
        for (std::size_t place = 0; place < 4 && titles.empty(); ++place) {
            if (states[place] == State::Good)
                titles.emplace_back(place);
            else if (place == kLocalPlace && states[place] == State::Unreadable)
                lines.emplace_back("no global custom data loaded for system  WarningTitles");
        }
        if (titles.empty())
            lines.insert(lines.end(), {"no default data loaded for WarningTitles",
                                       "no data loaded for WarningTitles"});
        for (std::size_t place = 0; place < kDefaultPlace; ++place)
            custom |= states[place] != State::Missing;

        const std::string last = tree.path(kPlaces[kDefaultPlace]);
        EXPECT_EQ(HalvexFilePaths::loadWarnMeTitles(WarnMeTitlesFile, last), titles);
        EXPECT_EQ(tree.log.take(), lines);
        EXPECT_EQ(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTitlesFile), custom);
        EXPECT_FALSE(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTimesFile));
    }
}

TEST(WarningTitles, CreateTheProductFoldersOnTheWayAsFarAsTheyLook) {
    SupportTree tree({kUser, kLocal});
    put(tree, 1, State::Good);
    HalvexFilePaths::loadWarnMeTitles(WarnMeTitlesFile, "");
    EXPECT_TRUE(tree.exists(kUserProduct));
    EXPECT_FALSE(tree.exists(kLocalMaker));
    EXPECT_FALSE(HalvexFilePaths::hasCustomWarnMeFile(""));
    EXPECT_TRUE(tree.exists(std::string(kLocalMaker) + "/Halvex"));
}

} // namespace
