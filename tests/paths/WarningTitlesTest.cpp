#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

using namespace test;
using Array = platform::PropertyList::Array;

namespace {

const std::array<std::string, 4> kFolders{kUserProduct, kUser, std::string(kLocalMaker) + "/Halvex",
                                          "~/Default"};
const std::string kName = "/WarningTitles.plist";
constexpr std::size_t kLocalIndex = 2;
constexpr std::size_t kNone = 4;

enum class State { Missing, Unreadable, Good };

/// Each state has two variants: a missing file may be a folder, and an unreadable one XML.
void arrange(const SupportTree& tree, std::size_t index, State state, bool variant) {
    const std::string file = kFolders[index] + kName;
    if (state == State::Missing && variant)
        tree.make(file);
    if (state == State::Unreadable)
        tree.write(file, variant ? "<plist><dict/></plist>" : "no property list");
    if (state == State::Good)
        tree.write(file, "<plist><array><string>" + kFolders[index] + "</string></array></plist>");
}

TEST(WarningTitles, ComeFromTheFirstReadableListInEveryCombination) {
    for (std::size_t combination = 0; combination < 3 * 3 * 3 * 3; ++combination) {
        SCOPED_TRACE(combination);
        SupportTree tree({kUser, kLocal});
        std::array<State, 4> states{};
        for (std::size_t index = 0, rest = combination; index < 4; ++index, rest /= 3) {
            states[index] = static_cast<State>(rest % 3);
            arrange(tree, index, states[index], (combination + index) % 2 == 1);
        }
        const auto found =
            static_cast<std::size_t>(std::ranges::find(states, State::Good) - states.begin());
        std::vector<std::string> lines;
        if (found > kLocalIndex && states[kLocalIndex] == State::Unreadable)
            lines.emplace_back("no global custom data loaded for system  WarningTitles");
        if (found == kNone)
            lines.insert(lines.end(), {"no default data loaded for WarningTitles",
                                       "no data loaded for WarningTitles"});
        const bool hadLocalFolder = tree.exists(kFolders[kLocalIndex]);

        EXPECT_EQ(
            HalvexFilePaths::loadWarnMeTitles(WarnMeTitlesFile, tree.path("~/Default" + kName)),
            found == kNone ? Array() : Array{kFolders[found]});
        EXPECT_EQ(tree.log.take(), lines);
        EXPECT_TRUE(tree.exists(kUserProduct));
        EXPECT_EQ(tree.exists(kFolders[kLocalIndex]), hadLocalFolder || found >= kLocalIndex);
        EXPECT_EQ(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTitlesFile),
                  std::ranges::count(states.begin(), states.begin() + 3, State::Missing) < 3);
        EXPECT_FALSE(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTimesFile));
    }
}

} // namespace
