#include "tests/warnings/WarningFixture.h"

#include <fstream>
#include <sstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class WarningStore : public test::WarningFixture {
  protected:
    void write(const std::string& contents) const { std::ofstream(file()) << contents; }
    std::string contents() const {
        std::ostringstream text;
        text << std::ifstream(file()).rdbuf();
        return text.str();
    }
};

TEST_F(WarningStore, KeepsWhatItDoesNotKnowAndLogsItOnce) {
    write("<plist><dict><key>Version</key><integer>9</integer><key>Warnings</key><array>"
          "<string>text</string>"
          "<dict><key>Identifier</key><string>1</string><key>Title</key><string>Tea</string>"
          "<key>Time</key><string>every hour</string><key>Colour</key><string>red</string>"
          "<key>Since</key><date>2026-11-24T11:00:00Z</date></dict>"
          "<dict><key>Identifier</key><string>2</string><key>Since</key>"
          "<date>2026-11-24T11:00:00Z</date><key>Time</key><string>at full moon</string></dict>"
          "</array></dict></plist>");
    warnings::WarningStore store;
    const warnings::Warning tea{"1", "Tea", {}, kNoon - 3600};
    EXPECT_THAT(store.warnings(), ElementsAre(tea));
    EXPECT_TRUE(store.recordRung({{"1", kNoon}, {"2", kNoon}, {"3", kNoon}}));
    EXPECT_EQ(store.warnings().at(0).since, kNoon);
    EXPECT_TRUE(store.recordRung({{"1", kNoon - 60}}));
    EXPECT_EQ(store.warnings().at(0).since, kNoon) << "an older ringing";
    EXPECT_TRUE(store.remove({"1", "unknown"}));
    EXPECT_THAT(store.warnings(), IsEmpty());
    EXPECT_TRUE(store.add(tea));
    EXPECT_TRUE(store.add(tea));
    EXPECT_THAT(store.warnings(), ElementsAre(tea)) << "replaced";
    for (const char* kept : {"Version", "<string>text</string>", "at full moon"})
        EXPECT_THAT(contents(), HasSubstr(kept));
    EXPECT_THAT(log.take(), ElementsAre("cannot use preference Warnings in " + file() +
                                        ": it contains an unusable warning \"at full moon\""));
}

TEST_F(WarningStore, SetsABrokenFileAsideWithTheNextChange) {
    for (const char* broken : {"<plist><dict>", "<plist><array/></plist>", "text"}) {
        write(broken);
        warnings::WarningStore store;
        EXPECT_THAT(store.warnings(), IsEmpty());
        EXPECT_THAT(store.warnings(), IsEmpty());
        EXPECT_EQ(contents(), broken) << "reading changes nothing";
        EXPECT_EQ(log.take().size(), 1U) << broken;
        EXPECT_TRUE(set("Tea", "every hour"));
        EXPECT_THAT(titlesInFile(), ElementsAre("Tea"));
        EXPECT_TRUE(std::filesystem::exists(file() + ".unreadable"));
        EXPECT_EQ(log.take().size(), 1U) << broken;
    }
}

TEST_F(WarningStore, LosesNoChangeOfAnotherProgramAndReportsIt) {
    warnings::WarningStore one;
    warnings::WarningStore other;
    int changes = 0;
    const auto watch = one.onChange([&] { ++changes; });
    EXPECT_THAT(one.warnings(), IsEmpty());
    EXPECT_TRUE(other.add("Tea", *warnings::WarningTime::parse("20"), kNoon));
    EXPECT_TRUE(one.add("Meeting", *warnings::WarningTime::parse("20"), kNoon));
    EXPECT_THAT(titlesInFile(), ElementsAre("Tea", "Meeting"));
    EXPECT_NE(one.warnings().at(0).identifier, one.warnings().at(1).identifier);
    EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }, std::chrono::seconds(5)));
}

} // namespace
