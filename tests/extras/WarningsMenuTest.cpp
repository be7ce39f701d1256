#include "extras/HalvexTimeMenu/WarningsMenu.h"
#include "platform/PropertyListService.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/widgets/Button.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/TextField.h"
#include "testing/ManualPreferences.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingPanels.h"
#include "tests/support/FailingCalls.h"
#include "tests/warnings/WarningFixture.h"
#include "ui/HUDWindow.h"

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;
using warnings::WarningTime;

namespace {

struct Target final : MenuTarget {};

class WarningsMenuTest : public test::WarningFixture {
  protected:
    void SetUp() override {
        WarningFixture::SetUp();
        writeList("WarnMeTimes", {"in 5 minutes", "at full moon", "every day at 17:30"});
        writeList("WarningTitles", {"Tea is ready"});
    }
    void writeList(const std::string& name, const std::vector<std::string>& texts) const {
        std::ofstream out(productFolder() + '/' + name + ".plist");
        out << "<plist><array>";
        for (const auto& text : texts)
            out << "<string>" << text << "</string>";
        out << "</array></plist>";
    }
    /// Opens the menu. Returns its entries as "title|subtitle|text on the right".
    std::vector<std::string> open() {
        menu->menuWillOpen();
        return rows();
    }
    std::vector<std::string> rows() const {
        std::vector<std::string> result;
        for (const auto& item : menu->item()->submenu()->items()) {
            std::string text = item->title();
            if (!item->subtitle().empty())
                text += '|' + item->subtitle();
            if (!item->trailingText().empty())
                text += '|' + item->trailingText();
            result.push_back(item->isSeparatorItem() ? "-" : text);
        }
        return result;
    }
    bool choose(const std::string& title, const std::string& inSubmenu = {}) {
        menu->menuWillOpen();
        for (const auto& item : std::vector(menu->item()->submenu()->items())) {
            if (item->title() != title)
                continue;
            if (inSubmenu.empty())
                return item->perform();
            for (const auto& entry : std::vector(item->submenu()->items()))
                if (entry->title() == inSubmenu)
                    return entry->perform();
        }
        return false;
    }

    test::ScopedEnvironment language{"LC_ALL", "C"};
    halvextest::ManualPreferences preferences;
    std::shared_ptr<Target> target = std::make_shared<Target>();
    int starts = 0;
    std::optional<WarningsMenu> menu{std::in_place, preferences["clock"], target,
                                     [this] { ++starts; }};
};

const std::vector<std::string> kNew{"New Warning", "In 5 minutes", "Every day at 17:30", "Other…"};

std::vector<std::string> withNew(std::vector<std::string> rows) {
    rows.push_back("-");
    rows.insert(rows.end(), kNew.begin(), kNew.end());
    return rows;
}

TEST_F(WarningsMenuTest, SetsShowsClearsAndRestoresWarnings) {
    EXPECT_EQ(open(), kNew);
    EXPECT_TRUE(choose("In 5 minutes", "Tea is ready"));
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(choose("Every day at 17:30", "Tea is ready"));
    EXPECT_TRUE(choose("Every day at 17:30", "Without a title"));
    const std::vector<std::string> set{"Tea is ready|5 min",
                                       "Tea is ready|Every day at 17:30|17:30",
                                       "Every day at 17:30|17:30", "Clear All"};
    EXPECT_EQ(open(), withNew(set));
    EXPECT_EQ(menu->item()->trailingText(), "5 min");
    menu->update(kNoon + 1800 + 241);
    EXPECT_EQ(rows().at(0), "Tea is ready|59 s");

    EXPECT_TRUE(choose("Tea is ready"));
    EXPECT_EQ(open(), withNew({set[1], set[2], set[3], "Restore “Tea is ready”"}));
    EXPECT_TRUE(choose("Restore “Tea is ready”"));
    EXPECT_EQ(open(), withNew(set)) << "the next one first, although it was set last";
    EXPECT_TRUE(choose("Clear All"));
    EXPECT_EQ(menu->item()->trailingText(), "5 min") << "until the menu opens again";
    EXPECT_EQ(open(), withNew({"Restore All"}));
    EXPECT_EQ(menu->item()->trailingText(), "");
    moveTo(40);
    EXPECT_TRUE(choose("Restore All"));
    EXPECT_EQ(open(), withNew({set[1], set[2], set[3]})) << "without the one that would have rung";
    EXPECT_TRUE(std::ranges::all_of(menu->item()->submenu()->items(), [](const auto& item) {
        return item->isSeparatorItem() || item->isEnabled() || item->isSectionHeader();
    }));
}

TEST_F(WarningsMenuTest, FollowsTheUsersListsAndOtherPrograms) {
    open();
    EXPECT_TRUE(log.contains("skipped \"at full moon\" in WarnMeTimes: "));
    writeList("WarnMeTimes", {"every hour"});
    EXPECT_TRUE(
        loop.runUntil([&] { return open().at(1) == "Every hour"; }, std::chrono::seconds(5)));
    set("Meeting", "in 90 minutes");
    menu->update(clock.seconds);
    EXPECT_EQ(rows().at(0), "Meeting|1 h 30 min") << "while the menu is open";
    menu->update(clock.seconds + 1741);
    EXPECT_EQ(rows().at(0), "Meeting|1 h 1 min");
    menu->update(clock.seconds + 1800);
    EXPECT_EQ(rows().at(0), "Meeting|1 h");
}

TEST_F(WarningsMenuTest, StartsKeepingAfterTheFirstFrameIfWarningsAreSet) {
    timers.advance({});
    EXPECT_EQ(starts, 0);
    EXPECT_THAT(timers.running(), IsEmpty());
    set("Tea is ready", "in 5 minutes");
    menu.emplace(preferences["clock"], target, [this] { ++starts; });
    EXPECT_EQ(starts, 0) << "not before the first frame";
    timers.advance({});
    EXPECT_EQ(starts, 1);
    moveTo(35);
    EXPECT_THAT(shown(), ElementsAre("Tea is ready"));
}

TEST_F(WarningsMenuTest, SaysThatAWarningCannotBeSaved) {
    test::FailingCalls calls(1, ENOSPC, test::FailingCalls::Times::ForGood);
    posix::PosixFileManager full({}, calls);
    {
        const ScopedService<FileManager> service(full);
        open();
        EXPECT_TRUE(choose("In 5 minutes", "Tea is ready"));
        EXPECT_EQ(log.beeps(), 1);
        EXPECT_EQ(open(), withNew({"Warnings cannot be saved"}));
    }
    EXPECT_TRUE(choose("In 5 minutes", "Tea is ready"));
    EXPECT_EQ(open().at(0), "Tea is ready|5 min");
}

TEST_F(WarningsMenuTest, SetsOtherWarningsInAPanel) {
    const halvextest::RecordingGraphics graphics;
    const halvextest::RecordingPanels panels;
    std::vector<std::pair<std::string, std::string>> set;
    bool saves = false;
    WarningPanel panel([&](const std::string& title, const WarningTime& time) {
        set.emplace_back(title, time.text());
        return saves;
    });
    panel.show("at 17:30");
    auto& content = panel.window()->contentView();
    const auto field = [&](std::size_t index) {
        return std::dynamic_pointer_cast<TextField>(content.controls().at(index));
    };
    const auto hint = [&] {
        return std::dynamic_pointer_cast<Label>(content.controls().at(4))->text();
    };
    const auto everyDay = content.buttons().at(0);
    const auto once = content.defaultButton();
    EXPECT_EQ(hint(), "Rings at 17:30");
    EXPECT_TRUE(everyDay->isEnabled());
    field(1)->userDidEdit("  Tea ");
    once->performClick();
    EXPECT_EQ(hint(), "Warnings cannot be saved");
    saves = true;
    everyDay->performClick();
    field(3)->userDidEdit("never");
    EXPECT_FALSE(once->isEnabled() || everyDay->isEnabled());
    field(3)->userDidEdit("45 min");
    EXPECT_EQ(hint(), "Rings at 13:15");
    EXPECT_TRUE(once->isEnabled() && !everyDay->isEnabled());
    once->performClick();
    EXPECT_THAT(set, ElementsAre(testing::Pair("Tea", "at 17:30"),
                                 testing::Pair("Tea", "every day at 17:30"),
                                 testing::Pair("Tea", "in 45 minutes")));
}

/// The texts of notifications.
class WarningTextsTest : public WarningsMenuTest {
  protected:
    UserNotification ringing(const std::string& title, const std::string& time) const {
        return texts.ringing({"1", title, *WarningTime::parse(time), 0});
    }
    extras::WarningTexts texts{preferences["clock"]};
};

TEST_F(WarningTextsTest, SayWhatItIsTimeFor) {
    struct Row {
        std::string title, time, shown, body;
        bool stays;
    };
    for (const auto& [title, time, shown, body, stays] :
         std::vector<Row>{{"Tea", "in 5 minutes", "Tea", "12:30", true},
                          {"Tea", "every hour", "Tea", "12:30", false},
                          {"", "at 12:30", "It is 12:30", "", true},
                          {"", "every hour", "It is 12:30", "", false},
                          {"", "in 1 minute", "Time is up", "1 minute has passed", true},
                          {"", "in 2 hours", "Time is up", "120 minutes have passed", true}}) {
        const auto notification = ringing(title, time);
        EXPECT_EQ(notification.title, shown);
        EXPECT_EQ(notification.body, body);
        EXPECT_EQ(notification.staysVisible, stays);
        EXPECT_EQ(notification.actions.at(0).label, "Again in 5 minutes");
    }
    std::vector<warnings::MissedWarning> missed{
        {{"1", "Tea", *WarningTime::parse("20"), 0}, kNoon - 86400, 1},
        {{"2", "", *WarningTime::parse("every hour"), 0}, kNoon, 3}};
    EXPECT_EQ(texts.missed(missed).title, "2 missed warnings");
    EXPECT_EQ(texts.missed(missed).body, "Tea: Mon 12:00\nEvery hour: 3 times, since 12:00");
    EXPECT_EQ(extras::shownInstant(kNoon + 43200, kNoon + 1), "00:00") << "soon enough";
    EXPECT_EQ(extras::shownInstant(kNoon + 43200, kNoon), "Wed 00:00");
    missed.resize(12, missed.front());
    EXPECT_TRUE(texts.missed(missed).body.ends_with("\nTea: Mon 12:00\n2 more"));
}

TEST_F(WarningTextsTest, HaveTheSoundOfTheUsersChoice) {
    const std::string file = folder.write("bell.oga", "");
    for (const auto& [value, sound] :
         std::vector<std::pair<PropertyList, std::string>>{{"complete", "complete"},
                                                           {"", ""},
                                                           {file, file},
                                                           {"/missing.oga", "alarm-clock-elapsed"},
                                                           {"two words", "alarm-clock-elapsed"},
                                                           {5, "alarm-clock-elapsed"}}) {
        log.take();
        preferences["clock"].set("WarningSound", value);
        EXPECT_EQ(ringing("Tea", "20").sound, sound);
        EXPECT_EQ(ringing("Tea", "20").sound, sound);
        EXPECT_EQ(log.take().size(), sound == "alarm-clock-elapsed" ? 1U : 0U) << sound;
    }
}

std::string sourceFile(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(std::string(HALVEX_SOURCE_FOLDER) + '/' + path).rdbuf();
    return text.str();
}

TEST_F(WarningTextsTest, CanBeTranslatedForTheShippedListsWhoseTimesCanBeUsed) {
    const auto titles = *propertyLists().parse(sourceFile("pane/WarningTitles.plist")).value;
    const auto times = *propertyLists().parse(sourceFile("pane/WarnMeTimes.plist")).value;
    const std::string code = sourceFile("extras/HalvexTimeMenu/WarningTexts.cpp");
    for (const auto& title : *titles.array())
        EXPECT_NE(code.find("tr(\"" + std::string(*title.string()) + "\")"), std::string::npos);
    for (const auto& time : *times.array())
        EXPECT_TRUE(WarningTime::parse(*time.string())) << *time.string();
    EXPECT_GE(titles.array()->size() * times.array()->size(), 40U);
}

} // namespace
