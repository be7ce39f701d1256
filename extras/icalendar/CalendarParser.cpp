#include "extras/icalendar/Calendar.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumEvents = 20'000;
constexpr std::size_t kMaximumDates = 20'000;
constexpr std::size_t kMaximumDepth = 16;

/// Returns whether @p text contains @p part, except for the case of ASCII letters.
bool contains(std::string_view text, std::string_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        if (isSame(text.substr(i, part.size()), part))
            return true;
    return false;
}

/// An event whose lines are being read.
struct UnfinishedEvent {
    Event event;
    std::size_t line = 0;
    std::size_t identity = 0; ///< a hash of the UID
    std::optional<Moment> start;
    std::optional<Moment> end;
    std::optional<Moment> replaced; ///< RECURRENCE-ID
    std::int64_t duration = 0;
    Repetition repetition;
    bool hasCategories = false;
    bool isTransparent = false;
    bool isCancelled = false;
    bool hasUnsupportedRule = false;
};

class CalendarParser {
  public:
    explicit CalendarParser(std::string_view text) : lines_(text) {}
    ParsedCalendar parse();

  private:
    using Reader = void (CalendarParser::*)(const Property&);
    static Reader readerOf(std::string_view name);

    bool begin(std::string_view component);
    bool end(std::string_view component);
    void readName(const Property& property);
    void readProperty(const Property& property);

    void readCategories(const Property& property);
    void readDuration(const Property& property);
    void readEnd(const Property& property);
    void readExcludedDates(const Property& property);
    void readExcludingRule(const Property& property);
    void readAddedDates(const Property& property);
    void readReplaced(const Property& property);
    void readRule(const Property& property);
    void readStart(const Property& property);
    void readStatus(const Property& property);
    void readSummary(const Property& property);
    void readTransparency(const Property& property);
    void readIdentity(const Property& property);
    void readDates(const Property& property, std::vector<Moment>& dates);
    std::optional<Moment> readMoment(const Property& property);

    void finishEvent();
    void finishTimes();
    void finishRepetition();
    void excludeReplaced();
    void fail(std::string_view reason) { report(result_.defect, lines_.number(), reason); }
    static void report(std::string& first, std::size_t line, std::string_view reason);

    ContentLines lines_;
    ParsedCalendar result_;
    std::vector<std::string> components_;
    UnfinishedEvent current_;
    std::size_t dates_ = 0;
    std::vector<std::pair<std::size_t, std::size_t>> identities_; ///< and indexes of events
    std::vector<std::pair<std::size_t, Moment>> replaced_;        ///< identities and moments
};

ParsedCalendar CalendarParser::parse() {
    while (const auto line = lines_.next()) {
        const auto property = parseProperty(*line);
        if (components_.empty() && (!property || !isSame(property->name, "BEGIN") ||
                                    !isSame(property->value, "VCALENDAR"))) {
            fail("not an iCalendar file");
            break;
        }
        if (!property)
            continue; // such as an unfolded line of a description
        if (isSame(property->name, "BEGIN")
                ? !begin(property->value)
                : isSame(property->name, "END") && !end(property->value))
            break;
        readProperty(*property);
    }
    if (lines_.number() == 0)
        fail("the file is empty");
    else if (!components_.empty())
        fail("the file ends within " + components_.back());
    excludeReplaced();
    return std::move(result_);
}
