#include "platform/PropertyList.h"
#include "platform/expat/ExpatPropertyLists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <limits>
#include <random>

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

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<array>";
    for (int i = 0; i < depth; ++i)
        text += "</array>";
    return inPlist(text);
}

TEST_F(PropertyListXmlTest, ReadsWhatIsWellFormed) {
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const struct {
        std::string bytes;
        PropertyList value;
    } cases[] = {
        {inPlist("<string>a &amp; &lt;b&gt; &#233;</string>"), "a & <b> é"},
        {inPlist("<string>  two\r\nlines\r</string>"), "  two\nlines\n"},
        {inPlist("<string>x<!-- no -->y<![CDATA[<z>&]]></string>"), "xy<z>&"},
        {inPlist("<string/>"), ""},
        {"<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"list.dtd\">\n<!-- c -->" +
             inPlist(" <true/> ") + "<!-- after -->\n<?and this?>",
         true},
        {"\xEF\xBB\xBF" + inPlist("<false></false>"), false},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + inPlist("<string>\xE9</string>"), "é"},
        {utf16(inPlist("<string>wide</string>"), false), "wide"},
        {utf16(inPlist("<string>wide</string>"), true), "wide"},
        {utf16("<plist><string>", true) + "\xD8\x3D\xDE" +
             utf16("</string></plist>", true).replace(0, 2, std::string(1, '\0')),
         "😀"},
        {inPlist("<integer> -9223372036854775808\n</integer>"), kLeast},
        {inPlist("<integer>18446744073709551615</integer>"), kMost},
        {inPlist("<integer>+0xFFffFFffFFffFFff</integer>"), kMost},
        {inPlist("<integer>-0x10</integer>"), -16},
        {inPlist("<real>57.8</real>"), 57.8},
        {inPlist("<real>+1e-3</real>"), 0.001},
        {inPlist("<real>-Infinity</real>"), -kInfinity},
        {inPlist("<date>1970-01-01T00:00:00Z</date>"), PropertyList::Date{0}},
        {inPlist("<date>2024-02-29T23:59:59Z</date>"), PropertyList::Date{1'709'251'199}},
        {inPlist("<date>0001-01-01T00:00:00Z</date>"), PropertyList::Date{-62'135'596'800}},
        {inPlist("<date>9999-12-31T23:59:59Z</date>"), PropertyList::Date{253'402'300'799}},
        {inPlist("<date>-0001-12-31T00:00:00Z</date>"), PropertyList::Date{-62'167'305'600}},
        {inPlist("<data>\n\tAQ ID\r\n\tBA==\n</data>"), PropertyList::Data{{1, 2, 3, 4}}},
        {inPlist("<data></data>"), PropertyList::Data{}},
        {inPlist("<array><array/><string>a</string></array>"), Array{Array{}, "a"}},
        {inPlist("<dict><key>b</key><true/><key>a</key><dict/><key>b</key><false/></dict>"),
         Dictionary{{"b", false}, {"a", Dictionary()}}},
    };
    for (const auto& [bytes, value] : cases) {
        const auto result = propertyLists().parse(bytes);
        ASSERT_TRUE(result) << bytes << "\n" << result.error.reason;
        EXPECT_EQ(*result.value, value) << bytes;
    }
}

TEST_F(PropertyListXmlTest, RefusesWhatIsNoPropertyListAndSaysWhere) {
    const std::string bomb = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">\n"
                             "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">]>" +
                             inPlist("<string>&b;</string>");
    const struct {
        std::string bytes;
        int line;
        const char* reason;
    } cases[] = {
        {"", 1, "no element found"},
        {"just text", 1, "syntax error"},
        {"bplist00\1\2", 1, "not well-formed"},
        {"<array/>", 1, "The root is <array>, not <plist>"},
        {"<plist>\n\n</plist>", 3, "No value in <plist>"},
        {inPlist("<true/>\n<true/>"), 2, "More than one value"},
        {inPlist("<true/>") + "\n<plist/>", 2, "junk after document element"},
        {inPlist("<true/>") + "x", 1, "junk after document element"},
        {inPlist("<array>\n<null/></array>"), 2, "Unknown element <null>"},
        {inPlist("\n<" + std::string(1000, 'n') + "/>"), 2, "nnn...>"},
        {inPlist("<string><true/></string>"), 1, "<true> in the wrong place"},
        {inPlist("<plist/>"), 1, "<plist> in the wrong place"},
        {inPlist("<array>x</array>"), 1, "Text in the wrong place"},
        {inPlist("<true>x</true>"), 1, "Text in the wrong place"},
        {inPlist("<key>k</key>"), 1, "<key> in the wrong place"},
        {inPlist("<dict><true/></dict>"), 1, "<true> without a <key>"},
        {inPlist("<dict><key>a</key>\n<key>b</key></dict>"), 2, "<key> in the wrong place"},
        {inPlist("<dict>\n<key>a</key>\n</dict>"), 3, "A <key> without a value"},
        {"<plist><array></plist>", 1, "mismatched tag"},
        {"<plist><array>", 1, "no element found"},
        {inPlist("<string>a\x01</string>"), 1, "invalid token"},
        {inPlist("<string>&#1;</string>"), 1, "invalid character"},
        {inPlist("<string>&#xD800;</string>"), 1, "invalid character"},
        {inPlist("<string>\n\xC3(</string>"), 2, "invalid token"},
        {inPlist("<string>\xED\xA0\x80</string>"), 1, "invalid token"},
        {inPlist("<string>\xC0\x80</string>"), 1, "invalid token"},
        {"<?xml version=\"1.0\" encoding=\"EBCDIC\"?>" + inPlist("<true/>"), 1, "unknown encoding"},
        {utf16(inPlist("<string>"), true) + std::string("\xD8\0\0x\0<", 6), 1, "surrogate"},
        {utf16(inPlist("<string>"), false) + std::string("x\0\0\xDC", 4), 1, "surrogate"},
        {bomb, 1, "Entity declarations are not taken: a"},
        {"<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/hostname\">]>" +
             inPlist("<string>&x;</string>"),
         1, "Entity declarations are not taken: x"},
        {"<!DOCTYPE plist SYSTEM \"list.dtd\">" + inPlist("<string>\n&nbsp;</string>"), 2,
         "Unknown entity nbsp"},
        {"<!DOCTYPE plist [<!ATTLIST string a CDATA 'b'>]>" + inPlist("<string/>"), 1,
         "Attribute declarations are not taken: <string>"},
        {"<!DOCTYPE plist [%other;]>" + inPlist("<true/>"), 1, "entity"},
        {inPlist("<string>&nbsp;</string>"), 1, "undefined entity"},
        {inPlist("<integer></integer>"), 1, "out of range: <integer>"},
        {inPlist("<integer>1.5</integer>"), 1, "out of range: <integer>"},
        {inPlist("<integer>--1</integer>"), 1, "out of range: <integer>"},
        {inPlist("<integer>0x</integer>"), 1, "out of range: <integer>"},
        {inPlist("<integer>18446744073709551616</integer>"), 1, "out of range: <integer>"},
        {inPlist("<integer>-9223372036854775809</integer>"), 1, "out of range: <integer>"},
        {inPlist("<real>57,8</real>"), 1, "out of range: <real>"},
        {inPlist("<real>+-1</real>"), 1, "out of range: <real>"},
        {inPlist("<real>1e999</real>"), 1, "out of range: <real>"},
        {inPlist("<date>2023-02-29T00:00:00Z</date>"), 1, "out of range: <date>"},
        {inPlist("<date>2023-01-01T24:00:00Z</date>"), 1, "out of range: <date>"},
        {inPlist("<date>2023-1-01T00:00:00Z</date>"), 1, "out of range: <date>"},
        {inPlist("<date>2023-01-01T00:00:00</date>"), 1, "out of range: <date>"},
        {inPlist("<date>2023-01-01</date>"), 1, "out of range: <date>"},
        {inPlist("<data>AQ</data>"), 1, "out of range: <data>"},
        {inPlist("<data>AQ=A</data>"), 1, "out of range: <data>"},
        {inPlist("<data>A===</data>"), 1, "out of range: <data>"},
        {inPlist("<data>A*==</data>"), 1, "out of range: <data>"},
        {inPlist("<true/><!-- " + std::string(3 << 20, '-') + " -->"), 1, ""},
        {inPlist("<true/>\n<!-- " + std::string(3 << 20, 'c') + " -->"), 2, "more than 1048576"},
        {inPlist("<string a='" + std::string(3 << 20, 'a') + "'/>"), 1, "more than 1048576"},
        {nested(513), 1, "Nested more than 512 deep"},
        {nested(100'000), 1, "Nested more than 512 deep"},
    };
    for (const auto& [bytes, line, reason] : cases) {
        const auto result = propertyLists().parse(bytes);
        EXPECT_FALSE(result) << bytes.substr(0, 200);
        EXPECT_THAT(result.error.reason, HasSubstr(reason)) << bytes.substr(0, 200);
        EXPECT_EQ(result.error.line, line) << bytes.substr(0, 200);
    }
    EXPECT_EQ(propertyLists().parse("<plist>\n  <null/></plist>").error.column, 3);
}

TEST_F(PropertyListXmlTest, WhatIsWrittenReadsBackEqual) {
    std::mt19937_64 random(1);
    Array reals{0.0,
                -0.0,
                0.1,
                5e-324,
                std::numeric_limits<double>::max(),
                std::numeric_limits<double>::infinity(),
                -std::numeric_limits<double>::infinity()};
    for (int i = 0; i < 1000; ++i)
        if (const auto real = std::bit_cast<double>(random()); real == real)
            reals.emplace_back(real);
    Array dates;
    for (std::int64_t seconds = -70'000'000'000; seconds < 260'000'000'000; seconds += 86'399'983)
        dates.emplace_back(PropertyList::Date{seconds});
    Array datas;
    for (std::size_t size = 0; size < 130; ++size) {
        datas.emplace_back(PropertyList::Data{std::vector<std::uint8_t>(size)});
        for (auto& byte : datas.back().data()->bytes)
            byte = static_cast<std::uint8_t>(random());
    }
    Array strings{"",
                  " ",
                  "\r\n\t",
                  "]]>",
                  "<&>\"'",
                  "é東😀\u0085\uFFFD",
                  std::string(100'000, '&'),
                  std::string(70'000, 'x') + "é"};
    PropertyList deepest = Array{};
    for (int i = 1; i < platform::PropertyListService::kMaximumDepth; ++i)
        deepest = Array{std::move(deepest)};

    const Array values{reals,
                       dates,
                       datas,
                       strings,
                       true,
                       false,
                       Array{},
                       std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::uint64_t>::max(),
                       Dictionary{{"z", Dictionary{{"", "<"}}}, {"é&", Array{1}}, {"a", 2}}};
    for (const PropertyList& value : {PropertyList(values), deepest, PropertyList("root")}) {
        const auto bytes = propertyLists().serialize(value);
        ASSERT_TRUE(bytes);
        const auto result = propertyLists().parse(*bytes);
        ASSERT_TRUE(result) << result.error.line << ": " << result.error.reason;
        EXPECT_TRUE(*result.value == value);
        EXPECT_EQ(propertyLists().serialize(*result.value), bytes);
    }
    EXPECT_EQ(propertyLists().serialize(values), propertyLists().serialize(PropertyList(values)));

    const auto nan = propertyLists().serialize(std::numeric_limits<double>::quiet_NaN());
    const double read = *propertyLists().parse(*nan).value->real();
    EXPECT_NE(read, read);
}

TEST_F(PropertyListXmlTest, TheTextIsTheUsualOneInEveryLocale) {
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

TEST_F(PropertyListXmlTest, WhatXmlCannotHoldIsNotWritten) {
    const std::string bad[] = {std::string("\0", 1),
                               "a\x1F",
                               "\x7F\x80",
                               "\xC3",
                               "\xC0\x80",
                               "\xE0\x80\x80",
                               "\xED\xA0\x80",
                               "\xF4\x90\x80\x80",
                               "\xF8\x88\x80\x80\x80",
                               "\uFFFE",
                               "\uFFFF",
                               "\xE6\x9D"};
    for (const std::string& text : bad) {
        EXPECT_FALSE(propertyLists().serialize(Array{"fine", text})) << text;
        EXPECT_FALSE(propertyLists().serialize(Dictionary{{text, "fine"}})) << text;
    }
    PropertyList deep = "leaf";
    for (int i = 0; i < platform::PropertyListService::kMaximumDepth; ++i)
        deep = i % 2 ? PropertyList(Array{std::move(deep)})
                     : PropertyList(Dictionary{{"k", std::move(deep)}});
    EXPECT_FALSE(propertyLists().serialize(deep));
    const PropertyList::Date farOff{std::numeric_limits<std::int64_t>::max()};
    EXPECT_FALSE(propertyLists().serialize(Array{farOff}));
    EXPECT_FALSE(propertyLists().serialize(
        Array{PropertyList::Date{std::numeric_limits<std::int64_t>::min()}}));
}

TEST_F(PropertyListXmlTest, TruncatedAndDamagedListsNeverDoHarm) {
    Array records;
    for (int i = 0; i < 300; ++i)
        records.push_back(Array{"Reykjavík", i, 64.15, Dictionary{{"k&", PropertyList::Data{{1}}}},
                                PropertyList::Date{i}, true});
    const std::string bytes = *propertyLists().serialize(records);
    for (std::size_t part = 0; part < 100; ++part) {
        const auto result = propertyLists().parse(bytes.substr(0, bytes.size() * part / 100));
        EXPECT_FALSE(result) << part;
        EXPECT_GE(result.error.line, 1);
    }
    std::mt19937 random(2);
    for (int i = 0; i < 300; ++i) {
        std::string damaged = bytes;
        for (int flips = 0; flips < 3; ++flips)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        const auto result = propertyLists().parse(damaged);
        if (!result) {
            EXPECT_NE(result.error.reason, "");
            continue;
        }
        const auto again = propertyLists().serialize(*result.value);
        ASSERT_TRUE(again) << "what can be read can be written";
        EXPECT_TRUE(*propertyLists().parse(*again).value == *result.value);
    }
}

TEST_F(PropertyListXmlTest, ASourceThatFailsIsAFaultEvenAfterAWholeList) {
    std::string bytes = inPlist("<true/>");
    const auto source = [&](char* buffer, std::size_t size) -> std::optional<std::size_t> {
        if (bytes.empty())
            return std::nullopt;
        const std::size_t count = bytes.copy(buffer, std::min<std::size_t>(size, 3));
        bytes.erase(0, count);
        return count;
    };
    EXPECT_FALSE(propertyLists().parse(source));
}

} // namespace
