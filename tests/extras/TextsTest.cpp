#include "extras/shared/Texts.h"
#include "platform/Bundle.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

using extras::tr;
using platform::Bundle;

namespace {

constexpr const char* kGerman = R"(
msgid ""
msgstr ""
"Content-Type: text/plain; charset=UTF-8\n"
"Plural-Forms: nplurals=2; plural=(n != 1);\n"
msgid "Copy"
msgstr "Kopieren"
msgctxt "short"
msgid "May"
msgstr "Mai."
msgid "May"
msgstr "Mai"
msgid "%1 day"
msgid_plural "%1 days"
msgstr[0] "%1 Tag"
msgstr[1] "%1 Tage"
)";

/// Texts in the language of a locale, as the program that loads an item selects it.
class Language {
  public:
    explicit Language(const char* locale, const char* language = "")
        : locale_("LC_ALL", locale), language_("LANGUAGE", language) {
        EXPECT_NE(std::setlocale(LC_ALL, ""), nullptr) << locale << " is not in LOCPATH";
    }
    ~Language() { std::setlocale(LC_ALL, "C"); }

  private:
    test::ScopedEnvironment locale_, language_;
};

void compile(const test::TemporaryFolder& bundle, const char* language, const char* texts) {
    const auto source = bundle.write("texts.po", texts);
    const auto catalogue = bundle.write(
        std::string("Contents/Resources/locale/") + language + "/LC_MESSAGES/Item.mo", "");
    ASSERT_EQ(std::system(("msgfmt -o '" + catalogue + "' '" + source + "'").c_str()), 0);
}

TEST(Texts, AreThoseOfTheCatalogueInTheBundle) {
    const test::TemporaryFolder folder;
    compile(folder, "de", kGerman);
    const Bundle bundle(folder.path().string(), {{{"CFBundleExecutable", "Item"}}});
    const Language german("de_DE.UTF-8");
    extras::bindTexts(bundle);
    EXPECT_STREQ(tr("Copy"), "Kopieren");
    EXPECT_STREQ(tr("Missing"), "Missing");
    EXPECT_EQ(tr("short", "May"), "Mai.");
    EXPECT_EQ(tr("long", "May"), "May"); // another context has no translation
    const std::pair<long, const char*> counts[] = {{0, "0 Tage"}, {1, "1 Tag"}, {12, "12 Tage"}};
    for (const auto& [count, text] : counts)
        EXPECT_EQ(tr("%1 day", "%1 days", count), text);
    EXPECT_EQ(tr("%1 week", "%1 weeks", 1), "1 week");
    EXPECT_EQ(tr("%1 week", "%1 weeks", 2), "2 weeks");
    EXPECT_FALSE(extras::isRightToLeft());
}

TEST(Texts, PlaceholdersAreFilledAndOtherPercentSignsStay) {
    const std::tuple<const char*, const char*> cases[] = {
        {"%1 of %2", "a% of b"},      {"%2, %1", "b, a%"}, {"%1%1", "a%a%"},
        {"%3 %0 %d %", "%3 %0 %d %"}, {"100%", "100%"},    {"", ""},
    };
    for (const auto& [text, filled] : cases)
        EXPECT_EQ(extras::fill(text, {"a%", "b"}), filled);
    EXPECT_EQ(extras::fill("%1", {"%2", "x"}), "%2"); // values are not searched
}

TEST(Texts, EveryItemShipsGermanAndThePseudoLanguages) {
    for (const char* name : {"HalvexTimeMenu", "HalvexTimeOnlyMenuExtra", "HalvexDateCalMenu",
                             "HalvexASMMenu", "hxWirelessMenu"}) {
        const Bundle bundle(std::string(HALVEX_PLUG_INS "/") + name + ".menu",
                            {{{"CFBundleExecutable", name}}});
        const struct {
            const char* language;
            const char* direction;
        } cases[] = {{"de", "LTR"}, {"en@accented", "[ĻŢŔ ~~]"}, {"en@mirrored", "RTL"}};
        for (const auto& [language, direction] : cases) {
            const Language selected("de_DE.UTF-8", language);
            extras::bindTexts(bundle);
            EXPECT_STREQ(tr("LTR"), direction) << name;
            EXPECT_EQ(extras::isRightToLeft(), std::string_view(direction) == "RTL");
            std::string catalogue = bundle.bundlePath() + "/Contents/Resources/locale/" + language +
                                    "/LC_MESSAGES/" + name + ".mo";
            EXPECT_TRUE(std::filesystem::exists(catalogue)) << catalogue;
        }
    }
}

} // namespace
