#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

// Prints the width and height in a PNG's header.
const std::string kSizeOf = "od -A n -t u1 -j 16 -N 8 ";
const std::string kHundredAndOneByFifty = "   0   0   0 101   0   0   0  50\n";

TEST(DrawingVerbs, DrawThePanelIntoAFile) {
    Shell().run({{"halvexctl hud panel.png --size 100.5x50 --title Clock", ""},
                 {kSizeOf + "panel.png", kHundredAndOneByFifty},
                 // Files are not scaled with the desktop.
                 {"QT_SCALE_FACTOR=2 halvexctl hud again.png --size 100.5x50 --title Clock", ""},
                 {"cmp panel.png again.png", ""},
                 {"halvexctl hud body.png --size 100.5x50 --title Clock --part body", ""},
                 {"cmp -s panel.png body.png", "", 1}});
}

TEST(DrawingVerbs, DrawTextAsBoxesIfNoFontIsInstalled) {
    const Shell shell;
    shell.write("none", "<fontconfig></fontconfig>");
    shell.run({{"FONTCONFIG_FILE=\"$PWD/none\" halvexctl hud boxes.png --size 100x50 --title Clock",
                "", 0, "text is drawn as boxes: no font is installed"},
               {"ls boxes.png", "boxes.png\n"}});
}

TEST(DrawingVerbs, TintByColourAlphaAndOperation) {
    const Shell shell;
    const auto tint = [](std::string rest) { return "halvexctl tint panel.png " + rest + "; "; };
    shell.run(
        {{"halvexctl hud panel.png --size 100.5x50 --title Clock", ""},
         {tint("a.png --gray 1") + tint("b.png --color 1,1,1,.25") + "cmp a.png b.png", ""},
         {kSizeOf + "a.png", kHundredAndOneByFifty},
         {tint("c.png --color 0,1,0,.25") + tint("d.png --color 0,1,0,.25 --operation 5"), ""},
         {"cmp c.png d.png", ""},
         {tint("e.png --color 0,1,0") + tint("f.png --color 0,1,0 --operation 5"), ""},
         {"cmp -s e.png f.png", "", 1},
         // Highlight (12) draws like SourceOver (2); all other operations differ.
         {"for n in $(seq 0 13); do halvexctl tint panel.png o$n.png --color 0,1,0,.25 "
          "--operation $n; done; cmp o2.png o12.png; md5sum o*.png | cut -c 1-32 | sort -u | "
          "wc -l",
          "13\n"}});
}

TEST(DrawingVerbs, ReportErrorsAndLeaveExistingFilesUnchanged) {
    const Shell shell;
    shell.write("kept.png", "kept");
    shell.run(
        {{"halvexctl hud kept.png", "", 2, "--size is required"},
         {"halvexctl hud kept.png --size 5x-5", "", 2, "--size: invalid value \"5x-5\""},
         {"halvexctl hud kept.png --size 5x5x", "", 2, "--size"},
         {"halvexctl hud kept.png --size 5x5 --part lid", "", 2, "--part"},
         {"halvexctl hud kept.png --size 5x5 --part=1", "", 2, "--part"},
         {"halvexctl hud kept.png --size 0x5", "", 1, "halvexctl: kept.png: "},
         {"halvexctl hud missing/kept.png --size 5x5", "", 1, "halvexctl: missing/kept.png: "},
         {"env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM " HALVEX_CTL " hud show", "", 1,
          "no display"},
         {"halvexctl tint kept.png kept.png --gray 1", "", 1, "image kept.png cannot be read"},
         {"halvexctl tint kept.png kept.png", "", 2, "Exactly 1 option from"},
         {"halvexctl tint kept.png kept.png --gray 1.5", "", 2, "--gray"},
         {"halvexctl tint kept.png kept.png --color 1,1", "", 2, "--color"},
         {"halvexctl tint kept.png kept.png --gray 1 --operation 14", "", 2, "--operation"},
         {"cat kept.png", "kept"}});
}

} // namespace
