#include "menuextras/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>

#include <array>

using namespace test;
using Array = platform::PropertyList::Array;

namespace {

const std::array<std::string, 4> kFolders{kUserProduct, kUser, std::string(kLocalMaker) + "/Halvex",
                                          "~/Default"};
const std::string kName = "/WarningTitles.plist";
constexpr std::size_t kLocalPlace = 2;

/// A missing file is nothing or a folder, an unreadable one no property list or one without array.
enum class State { Missing, Unreadable, Good };

void put(const SupportTree& tree, std::size_t place, State state, bool otherKind) {
    const std::string file = kFolders[place] + kName;
    if (state == State::Missing && otherKind)
        tree.make(file);
    if (state == State::Unreadable)
        tree.write(file, otherKind ? "<plist><dict/></plist>" : "no property list");
    if (state == State::Good)
        tree.write(file, "<plist><array><string>" + kFolders[place] + "</string></array></plist>");
}

TEST(WarningTitles, ComeFromTheFirstReadableListInEveryCombination) {
    for (std::size_t combination = 0; combination < 3 * 3 * 3 * 3; ++combination) {
        SCOPED_TRACE(combination);
        SupportTree tree({kUser, kLocal});
        Array titles;
        std::vector<std::string> lines;
        bool custom = false;
        for (std::size_t place = 0, rest = combination; place < 4; ++place, rest /= 3) {
            const auto state = static_cast<State>(rest % 3);
            put(tree, place, state, (combination + place) % 2 == 1);
            custom |= place < 3 && state != State::Missing;
            if (!titles.empty())
                continue;
            if (state == State::Good)
                titles.emplace_back(kFolders[place]);
            else if (place == kLocalPlace && state == State::Unreadable)
                lines.emplace_back("no global custom data loaded for system  WarningTitles");
        }
        if (titles.empty())
            lines.insert(lines.end(), {"no default data loaded for WarningTitles",
                                       "no data loaded for WarningTitles"});

        const std::string last = tree.path(kFolders[3] + kName);
        EXPECT_EQ(HalvexFilePaths::loadWarnMeTitles(WarnMeTitlesFile, last), titles);
        EXPECT_EQ(tree.log.take(), lines);
        EXPECT_EQ(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTitlesFile), custom);
        EXPECT_FALSE(HalvexFilePaths::hasCustomWarnMeFile(WarnMeTimesFile));
    }
}

} // namespace
