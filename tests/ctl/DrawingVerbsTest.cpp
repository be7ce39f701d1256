#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// Width and height as a PNG's header has them.
std::string sizeOf(const std::string& png) {
    const auto number = [&](std::size_t at) {
        unsigned value = 0;
        for (std::size_t i = at; i < at + 4 && i < png.size(); ++i)
            value = value << 8 | static_cast<unsigned char>(png[i]);
        return std::to_string(value);
    };
    return number(16) + 'x' + number(20);
}

TEST(DrawingVerbs, WritePicturesOfThePanelAndTintThem) {
    const Ctl ctl;
    EXPECT_EQ(ctl.run("halvexctl hud panel.png --size 100.5x50 --title Clock").status, 0);
    EXPECT_EQ(sizeOf(ctl.read("panel.png")), "101x50");
    // Scaling the desktop scales no files.
    EXPECT_EQ(
        ctl.run("QT_SCALE_FACTOR=2 halvexctl hud again.png --size 100.5x50 --title Clock").status,
        0);
    EXPECT_EQ(ctl.read("again.png"), ctl.read("panel.png"));
    EXPECT_EQ(ctl.run("halvexctl hud body.png --size 100x50 --part body").status, 0);
    EXPECT_NE(ctl.read("body.png"), ctl.read("panel.png"));

    const std::string tint = "halvexctl tint panel.png ";
    for (const auto& [one, other, same] :
         {std::tuple("--gray 1", "--color 1,1,1,.25", true),
          std::tuple("--device 0,1,0", "--color 0,1,0", true),
          std::tuple("--color 0,1,0,.25", "--color 0,1,0,.25 --operation 5", true),
          std::tuple("--color 0,1,0", "--color 0,1,0 --operation 5", false)}) {
        EXPECT_EQ(ctl.run(tint + "one.png " + one).status, 0) << one;
        EXPECT_EQ(ctl.run(tint + "other.png " + other).status, 0) << other;
        EXPECT_EQ(ctl.read("one.png") == ctl.read("other.png"), same) << one << " " << other;
        EXPECT_EQ(sizeOf(ctl.read("one.png")), "101x50");
    }
}

TEST(DrawingVerbs, SayWhatIsWrongAndLeaveWhatThereIs) {
    const Ctl ctl;
    ctl.write("kept.png", "kept");
    const struct {
        const char* command;
        int status;
        const char* complaint;
    } cases[] = {
        {"halvexctl hud kept.png", 2, "--size is required"},
        {"halvexctl hud --size 5x5", 2, "FILE.png is required"},
        {"halvexctl hud kept.png --size 5", 2, "--size"},
        {"halvexctl hud kept.png --size 5x-5", 2, "--size"},
        {"halvexctl hud kept.png --size 5x5x", 2, "--size"},
        {"halvexctl hud kept.png --size nanx5", 2, "--size"},
        {"halvexctl hud kept.png --size 5x5 --part lid", 2, "--part"},
        {"halvexctl hud kept.png --size 0x5", 1, "halvexctl: kept.png: "},
        {"halvexctl hud missing/kept.png --size 5x5", 1, "halvexctl: missing/kept.png: "},
        {"env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " HALVEX_CTL " hud show", 1,
         "no display"},
        {"halvexctl tint kept.png kept.png --gray 1", 1, "image kept.png cannot be read"},
        {"halvexctl tint missing.png kept.png --gray 1", 1, "image missing.png cannot be read"},
        {"halvexctl tint kept.png kept.png", 2, "Exactly 1 option from"},
        {"halvexctl tint kept.png kept.png --gray 1 --color 1,1,1", 2, "Exactly 1 option from"},
        {"halvexctl tint kept.png kept.png --gray 1.5", 2, "--gray"},
        {"halvexctl tint kept.png kept.png --color 1,1", 2, "--color"},
        {"halvexctl tint kept.png kept.png --color 1,1,1,1,1", 2, "--color"},
        {"halvexctl tint kept.png kept.png --gray 1 --operation 14", 2, "--operation"},
    };
    for (const auto& each : cases) {
        const auto outcome = ctl.run(each.command);
        EXPECT_EQ(outcome.status, each.status) << each.command << '\n' << outcome.log;
        EXPECT_THAT(outcome.log, HasSubstr(each.complaint)) << each.command;
        EXPECT_EQ(ctl.read("kept.png"), "kept") << each.command;
    }
    EXPECT_THAT(ctl.run("halvexctl tint --help").output, StartsWith("Tint an image"));
}

} // namespace
