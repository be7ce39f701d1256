#include "platform/posix/TzFile.h"

#include "platform/values/ZoneTable.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace platform::posix {
namespace {

struct Malformed {
    const char* reason;
};

/// Takes fields from the start of the contents. Throws Malformed after their end.
class Reader {
  public:
    explicit Reader(std::string_view contents) : rest_(contents) {}

    std::string_view bytes(std::size_t count) {
        if (count > rest_.size())
            throw Malformed{"truncated"};
        const std::string_view result = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return result;
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(bytes(1).front()); }
    /// Returns a signed big-endian number of 4 or 8 bytes.
    std::int64_t number(std::size_t size) {
        std::uint64_t value = 0;
        for (const char byte : bytes(size))
            value = value << 8 | static_cast<std::uint8_t>(byte);
        return size == 4 ? static_cast<std::int32_t>(value) : static_cast<std::int64_t>(value);
    }
    std::size_t count() { return static_cast<std::uint32_t>(number(4)); }
    std::string_view rest() const { return rest_; }

  private:
    std::string_view rest_;
};

struct Header {
    char version;
    std::size_t utIndicators, standardIndicators, leapSeconds, transitions, offsets, characters;
};

Header readHeader(Reader& reader) {
    constexpr std::size_t kReserved = 15;
    if (reader.rest().substr(0, 4) != "TZif")
        throw Malformed{"not a time zone"};
    reader.bytes(4);
    Header header{};
    header.version = reader.bytes(1).front();
    reader.bytes(kReserved);
    for (std::size_t* count :
         {&header.utIndicators, &header.standardIndicators, &header.leapSeconds,
          &header.transitions, &header.offsets, &header.characters})
        *count = reader.count();
    return header;
}

constexpr std::size_t kOffsetSize = 6;

std::size_t sizeOfData(const Header& header, std::size_t timeSize) {
    return header.transitions * (timeSize + 1) + header.offsets * kOffsetSize + header.characters +
           header.leapSeconds * (timeSize + 4) + header.standardIndicators + header.utIndicators;
}

std::string abbreviationAt(std::string_view characters, std::size_t index) {
    const std::size_t end = characters.find('\0', index);
    if (index >= characters.size() || end == std::string_view::npos)
        throw Malformed{"an abbreviation is outside of the list"};
    const std::string_view text = characters.substr(index, end - index);
    if (std::ranges::any_of(text, [](char c) { return c <= ' ' || c > '~'; }))
        throw Malformed{"an abbreviation is not printable"};
    return std::string(text);
}

void readOffsets(std::string_view bytes, std::string_view characters,
                 std::vector<ZoneOffset>& offsets) {
    constexpr std::int64_t kWestmost = -25 * 3600, kEastmost = 26 * 3600; // exclusive
    offsets.clear();
    for (Reader reader(bytes); !reader.rest().empty();) {
        const std::int64_t seconds = reader.number(4);
        const std::uint8_t isDaylightSaving = reader.byte();
        const std::uint8_t index = reader.byte();
        if (seconds <= kWestmost || seconds >= kEastmost || isDaylightSaving > 1)
            throw Malformed{"an offset from UTC is out of range"};
        offsets.push_back({static_cast<std::int32_t>(seconds), isDaylightSaving == 1,
                           abbreviationAt(characters, index)});
    }
    if (offsets.empty())
        throw Malformed{"there is no offset from UTC"};
}

void readLeapSeconds(std::string_view bytes, std::size_t timeSize,
                     std::vector<ZoneTable::LeapSecond>& leapSeconds) {
    constexpr std::int64_t kMostCorrection = 86'400;
    for (Reader reader(bytes); !reader.rest().empty();) {
        const std::int64_t instant = reader.number(timeSize);
        const std::int64_t correction = reader.number(4);
        if (!leapSeconds.empty() && instant <= leapSeconds.back().instant)
            throw Malformed{"leap seconds are not in order"};
        if (correction > kMostCorrection || correction < -kMostCorrection)
            throw Malformed{"a leap second is out of range"};
        leapSeconds.push_back({instant, correction});
    }
}

void readTransitions(std::string_view times, std::string_view indexes, std::size_t timeSize,
                     ZoneTable& table) {
    Reader time(times), index(indexes);
    while (!index.rest().empty()) {
        const ZoneTable::Transition transition{table.timeOf(time.number(timeSize)), index.byte()};
        if (transition.offset >= table.offsets.size())
            throw Malformed{"a transition has no offset from UTC"};
        if (!table.transitions.empty() && transition.time <= table.transitions.back().time)
            throw Malformed{"transitions are not in order"};
        table.transitions.push_back(transition);
    }
}

std::shared_ptr<ZoneTable> readData(Reader& reader, const Header& header, std::size_t timeSize) {
    if (sizeOfData(header, timeSize) > reader.rest().size())
        throw Malformed{"truncated"};
    auto table = std::make_shared<ZoneTable>();
    const std::string_view times = reader.bytes(header.transitions * timeSize);
    const std::string_view indexes = reader.bytes(header.transitions);
    const std::string_view offsets = reader.bytes(header.offsets * kOffsetSize);
    readOffsets(offsets, reader.bytes(header.characters), table->offsets);
    readLeapSeconds(reader.bytes(header.leapSeconds * (timeSize + 4)), timeSize,
                    table->leapSeconds);
    readTransitions(times, indexes, timeSize, *table);
    reader.bytes(header.standardIndicators + header.utIndicators);
    return table;
}

/// Reads the rules after the last transition: a line between two line feeds, empty if unknown.
void readFooter(Reader& reader, ZoneTable& table) {
    const std::string_view rest = reader.rest();
    const std::size_t end = rest.find('\n', 1);
    if (!rest.starts_with('\n') || end == std::string_view::npos)
        throw Malformed{"the rules at its end are missing"};
    const std::string_view rules = rest.substr(1, end - 1);
    if (rules.empty())
        return;
    table.recurring = RecurringRules::parse(rules);
    if (!table.recurring)
        throw Malformed{"the rules at its end are malformed"};
}

ZoneRules readFile(std::string_view contents) {
    constexpr std::size_t kShortTime = 4, kLongTime = 8;
    Reader reader(contents);
    Header header = readHeader(reader);
    if (header.version == '\0')
        return ZoneRules(readData(reader, header, kShortTime));
    if (header.version < '2')
        throw Malformed{"unknown version"};
    reader.bytes(sizeOfData(header, kShortTime)); // for readers of version 1
    header = readHeader(reader);
    auto table = readData(reader, header, kLongTime);
    readFooter(reader, *table);
    return ZoneRules(std::move(table));
}

} // namespace

TzFileResult parseTzFile(std::string_view contents) {
    try {
        return {readFile(contents), {}};
    } catch (const Malformed& malformed) {
        return {std::nullopt, malformed.reason};
    }
}

} // namespace platform::posix
