#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

// The width and height in a PNG's header.
const std::string kSizeOf = "od -A n -t u1 -j 16 -N 8 ";
const std::string kHundredAndOneByFifty = "   0   0   0 101   0   0   0  50\n";

TEST(DrawingVerbs, WritePicturesOfThePanelAndTintThem) {
    const Ctl ctl;
    const auto tints = [](const std::string& one, const std::string& other) {
        return "for t in '" + one + "' '" + other +
               "'; do halvexctl tint panel.png \"t$t.png\" $t; done; cmp -s 't" + one + ".png' 't" +
               other + ".png'";
    };
    ctl.follow({
        {"halvexctl hud panel.png --size 100.5x50 --title Clock; " + kSizeOf + "panel.png",
         kHundredAndOneByFifty},
        // Scaling the desktop scales no files.
        {"QT_SCALE_FACTOR=2 halvexctl hud again.png --size 100.5x50 --title Clock; "
         "cmp panel.png again.png",
         ""},
        {"echo '<fontconfig></fontconfig>' >none; FONTCONFIG_FILE=\"$PWD/none\" halvexctl hud "
         "boxes.png --size 100x50 --title Clock 2>&1 | grep -c 'no font is installed, text is "
         "drawn "
         "as boxes'; test -e boxes.png",
         "1\n"},
        {"halvexctl hud body.png --size 100x50 --part body; cmp -s panel.png body.png", "", 1},
        {tints("--gray 1", "--color 1,1,1,.25"), ""},
        {tints("--color 0,1,0,.25", "--color 0,1,0,.25 --operation 5"), ""},
        {tints("--color 0,1,0", "--color 0,1,0 --operation 5"), "", 1},
        {kSizeOf + "'t--gray 1.png'", kHundredAndOneByFifty},
    });
}

TEST(DrawingVerbs, SayWhatIsWrongAndLeaveWhatThereIs) {
    const Ctl ctl;
    ctl.write("kept.png", "kept");
    ctl.follow({
        {"halvexctl hud kept.png", "", 2, "--size is required"},
        {"halvexctl hud kept.png --size 5x-5", "", 2, "--size"},
        {"halvexctl hud kept.png --size 5x5x", "", 2, "--size"},
        {"halvexctl hud kept.png --size 5x5 --part lid", "", 2, "--part"},
        {"halvexctl hud kept.png --size 0x5", "", 1, "halvexctl: kept.png: "},
        {"halvexctl hud missing/kept.png --size 5x5", "", 1, "halvexctl: missing/kept.png: "},
        {"env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " HALVEX_CTL " hud show", "", 1,
         "no display"},
        {"halvexctl tint kept.png kept.png --gray 1", "", 1, "image kept.png cannot be read"},
        {"halvexctl tint kept.png kept.png", "", 2, "Exactly 1 option from"},
        {"halvexctl tint kept.png kept.png --gray 1.5", "", 2, "--gray"},
        {"halvexctl tint kept.png kept.png --color 1,1", "", 2, "--color"},
        {"halvexctl tint kept.png kept.png --gray 1 --operation 14", "", 2, "--operation"},
        {"cat kept.png", "kept"},
    });
}

} // namespace
