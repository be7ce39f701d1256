#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/values/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

using namespace std::string_literals;

namespace {

using platform::PropertyList;
using platform::propertyLists;
using testing::HasSubstr;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

class PropertyListXmlTest : public testing::Test {
  protected:
    void SetUp() override { platform::expat::install(); }
};

std::string inPlist(std::string_view body) {
    return "<plist version=\"1.0\">" + std::string(body) + "</plist>";
}

std::string utf16(std::string_view ascii, bool bigEndian) {
    std::string result = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char character : ascii) {
        result += bigEndian ? '\0' : character;
        result += bigEndian ? character : '\0';
    }
    return result;
}

std::string nested(std::size_t depth) {
    std::string text;
    for (const char* tag : {"<array>", "</array>"})
        for (std::size_t i = 0; i < depth; ++i)
            text += tag;
    return inPlist(text);
}

TEST_F(PropertyListXmlTest, ReadsWellFormedLists) {
    const struct {
        std::string bytes;
        PropertyList value;
    } cases[] = {
        {inPlist("<string>  a &amp; &#233;\r\n</string>"), "  a & é\n"},
        {inPlist("<string>x<!-- no -->y<![CDATA[<z>&]]></string>"), "xy<z>&"},
        {"<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"list.dtd\">\n<!-- c -->" +
             inPlist(" <true/> ") + "<!-- after -->\n<?and this?>",
         true},
        {inPlist("<false></false>"), false},
        {utf16(inPlist("<string>wide</string>"), false), "wide"},
        {utf16("<plist><string>", true) + "\xD8\x3D\xDE" +
             utf16("</string></plist>", true).replace(0, 2, std::string(1, '\0')),
         "😀"},
        {inPlist("<integer> -0x10\n</integer>"), -16},
        {inPlist("<real>+1e-3</real>"), 0.001},
        {inPlist("<real>1e-999</real>"), 0.0},
        {inPlist("<real>-0." + std::string(400, '0') + "1</real>"), -0.0},
        {inPlist("<real>-Infinity</real>"), -std::numeric_limits<double>::infinity()},
        {inPlist("<date>2024-02-29T23:59:59Z</date>"), PropertyList::Date{1'709'251'199}},
        {inPlist("<date>-0001-12-31T00:00:00Z</date>"), PropertyList::Date{-62'167'305'600}},
        {inPlist("<data>\n\tAQ ID\r\n\tBA==\n</data>"), PropertyList::Data{{1, 2, 3, 4}}},
        {inPlist("<dict><key>b</key><true/><key>a</key><array/><key>b</key><false/></dict>"),
         Dictionary{{"b", false}, {"a", Array()}}},
    };
    for (const auto& [bytes, value] : cases) {
        const auto result = propertyLists().parse(bytes);
        ASSERT_TRUE(result) << bytes << "\n" << result.error.reason;
        EXPECT_EQ(*result.value, value) << bytes;
    }
}

TEST_F(PropertyListXmlTest, RejectsInvalidListsWithTheLineOfTheError) {
    const std::string external = "<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/hostname\">]>";
    const struct {
        std::string bytes;
        int line;
        const char* reason;
    } cases[] = {
        {"<array/>", 1, "The root is <array>, not <plist>"},
        {"<plist>\n\n</plist>", 3, "No value in <plist>"},
        {inPlist("<true/>\n<true/>"), 2, "More than one value"},
        {inPlist("<array>\n<null/></array>"), 2, "Unknown element <null>"},
        {inPlist("\n<" + std::string(1000, 'n') + "/>"), 2, "nnn...>"},
        {inPlist("<string><true/></string>"), 1, "<true> in the wrong place"},
        {inPlist("<true>x</true>"), 1, "Text in the wrong place"},
        {inPlist("<dict><true/></dict>"), 1, "<true> without a <key>"},
        {inPlist("<dict><key>a</key>\n<key>b</key></dict>"), 2, "<key> in the wrong place"},
        {inPlist("<dict>\n<key>a</key>\n</dict>"), 3, "A <key> without a value"},
        {utf16(inPlist("<string>"), true) + std::string("\xD8\0\0x\0<", 6), 1, "surrogate"},
        {utf16(inPlist("<string>"), false) + std::string("x\0\0\xDC", 4), 1, "surrogate"},
        {external + inPlist("<string>&x;</string>"), 1, "Entity declarations are not supported: x"},
        {"<!DOCTYPE plist SYSTEM \"list.dtd\">" + inPlist("<string>\n&nbsp;</string>"), 2,
         "Unknown entity nbsp"},
        {"<!DOCTYPE plist [<!ATTLIST string a CDATA 'b'>]>" + inPlist("<string/>"), 1,
         "Attribute declarations are not supported: <string>"},
        {"<!DOCTYPE plist [%other;]>" + inPlist("<true/>"), 1, "entity"},
        {inPlist("<true/>\n<!-- " + std::string(3 << 20, 'c') + " -->"), 2, "more than 1048576"},
        {nested(513), 1, "Nested more than 512 deep"},
        {"bplist00\xD1\1\2", 1, "Binary property lists are not supported"},
        {"{ key = value; }", 1, "Old-style (text) property lists are not supported"},
        {"\xEF\xBB\xBF\n(a, b)", 1, "Old-style (text)"},
        {"// !$*UTF8*$!\n{}", 1, "Old-style (text)"},
        {"{\"json\": 1}", 1, "not well-formed"},
    };
    for (const auto& [bytes, line, reason] : cases) {
        const auto result = propertyLists().parse(bytes);
        EXPECT_FALSE(result) << bytes.substr(0, 200);
        EXPECT_THAT(result.error.reason, HasSubstr(reason)) << bytes.substr(0, 200);
        EXPECT_EQ(result.error.line, line) << bytes.substr(0, 200);
    }
}

TEST_F(PropertyListXmlTest, RejectsMalformedAndOutOfRangeScalars) {
    const std::pair<std::string, std::vector<const char*>> cases[] = {
        {"integer", {"", "1.5", "--1", "0x", "18446744073709551616", "-9223372036854775809"}},
        {"real", {"57,8", "+-1", "1e999", "-1e999", "1e-999x"}},
        {"date",
         {"2023-02-29T00:00:00Z", "2023-01-01T24:00:00Z", "2023-1-01T00:00:00Z",
          "2023-01-01T00:00:00", "2023-01-01"}},
        {"data", {"AQ", "AQ=A", "A===", "A*=="}},
    };
    for (const auto& [element, texts] : cases)
        for (const std::string text : texts) {
            const auto result =
                propertyLists().parse(inPlist("<" + element + ">" + text + "</" + element + ">"));
            EXPECT_FALSE(result) << text;
            EXPECT_THAT(result.error.reason, HasSubstr("out of range: <" + element)) << text;
        }
}

TEST_F(PropertyListXmlTest, WrittenValuesReadBackEqual) {
    std::mt19937_64 random(1);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Array values{true, Array{}, std::numeric_limits<std::int64_t>::min(),
                 std::numeric_limits<std::uint64_t>::max(),
                 Dictionary{{"z", Dictionary{{"", "<"}}}, {"é&", Array{1}}, {"a", 2}}};
    for (const double real : {-0.0, 5e-324, std::numeric_limits<double>::max(), -kInfinity})
        values.emplace_back(real);
    for (int i = 0; i < 1000; ++i)
        if (const auto real = std::bit_cast<double>(random()); real == real)
            values.emplace_back(real);
    for (std::int64_t seconds = -70'000'000'000; seconds < 260'000'000'000; seconds += 86'399'983)
        values.emplace_back(PropertyList::Date{seconds});
    for (std::size_t size = 0; size < 130; ++size) {
        values.emplace_back(PropertyList::Data{std::vector<std::uint8_t>(size)});
        for (auto& byte : values.back().data()->bytes)
            byte = static_cast<std::uint8_t>(random());
    }
    for (const std::string& text : {std::string(), std::string("\r\n\t ]]>\"'é東😀\u0085\uFFFD"),
                                    std::string(100'000, '&'), std::string(70'000, 'x') + "é"})
        values.emplace_back(text);
    const PropertyList deepest = *propertyLists().parse(nested(512)).value;

    for (const PropertyList& value : {PropertyList(values), deepest, PropertyList("root")}) {
        const auto bytes = propertyLists().serialize(value);
        ASSERT_TRUE(bytes);
        const auto result = propertyLists().parse(*bytes);
        ASSERT_TRUE(result) << result.error.line << ": " << result.error.reason;
        EXPECT_TRUE(*result.value == value);
    }
    EXPECT_FALSE(propertyLists().serialize(Array{deepest})) << "nested too deeply";
    EXPECT_EQ(propertyLists().serialize(values), propertyLists().serialize(PropertyList(values)));
    const auto nan = propertyLists().serialize(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(*propertyLists().parse(*nan).value->real()));
}

TEST_F(PropertyListXmlTest, WritesTheSameTextInEveryLocale) {
    const bool comma = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    const PropertyList value =
        Dictionary{{"k", Array{57.8, -3, "a<b", PropertyList::Date{-62'135'596'800}}},
                   {"d", PropertyList::Data{{0, 255}}},
                   {"e", Array{}}};
    EXPECT_EQ(propertyLists().serialize(value),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
              "\t<key>k</key>\n\t<array>\n\t\t<real>57.8</real>\n\t\t<integer>-3</integer>\n"
              "\t\t<string>a&lt;b</string>\n\t\t<date>0001-01-01T00:00:00Z</date>\n\t</array>\n"
              "\t<key>d</key>\n\t<data>\n\tAP8=\n\t</data>\n\t<key>e</key>\n\t<array>\n\t</array>\n"
              "</dict>\n</plist>\n")
        << (comma ? "decimal comma" : "decimal point");
    std::setlocale(LC_ALL, "C");
}

TEST_F(PropertyListXmlTest, DoesNotWriteWhatXmlCannotRepresent) {
    const std::string nul(1, '\0');
    for (const std::string& text : {nul, nul + "a", "a\x1F"s, "\x7F\x80"s, "\xC3"s, "\xC0\x80"s,
                                    "\xE0\x80\x80"s, "\xED\xA0\x80"s, "\xE6\x9D"s, "\uFFFE"s,
                                    "\uFFFF"s, "\xF4\x90\x80\x80"s, "\xF8\x88\x80\x80\x80"s}) {
        EXPECT_FALSE(propertyLists().serialize(Array{"fine", text})) << text;
        EXPECT_FALSE(propertyLists().serialize(Dictionary{{text, "fine"}})) << text;
    }
    using Seconds = std::numeric_limits<std::int64_t>;
    for (const std::int64_t farOff : {Seconds::min(), Seconds::max()})
        EXPECT_FALSE(propertyLists().serialize(Array{PropertyList::Date{farOff}}));
}

TEST_F(PropertyListXmlTest, DamagedListsAreRejectedOrReadAsWritableValues) {
    const PropertyList record = Array{
        "Reykjavík", 64.15, Dictionary{{"k&", PropertyList::Data{{1}}}}, PropertyList::Date{1}};
    const std::string bytes = *propertyLists().serialize(Array(300, record));
    for (std::size_t part = 0; part < 100; ++part)
        EXPECT_FALSE(propertyLists().parse(bytes.substr(0, bytes.size() * part / 100))) << part;
    std::mt19937 random(2);
    for (int i = 0; i < 300; ++i) {
        std::string damaged = bytes;
        for (int flips = 0; flips < 3; ++flips)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        const auto result = propertyLists().parse(damaged);
        EXPECT_NE(result.error.reason.empty(), !result);
        if (!result)
            continue;
        const auto again = propertyLists().serialize(*result.value);
        ASSERT_TRUE(again) << "every value that can be read can be written";
        EXPECT_TRUE(*propertyLists().parse(*again).value == *result.value);
    }
}

TEST_F(PropertyListXmlTest, AFailingSourceIsAnErrorEvenAfterACompleteList) {
    const std::string bytes = inPlist("<true/>");
    bool given = false;
    EXPECT_FALSE(propertyLists().parse([&](char* buffer, std::size_t size) {
        return std::exchange(given, true) ? std::nullopt : std::optional(bytes.copy(buffer, size));
    }));
}

} // namespace
