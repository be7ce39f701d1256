#include "extras/icalendar/Calendar.h"

#include "extras/icalendar/EventParser.h"

#include <algorithm>
#include <utility>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumEvents = 20'000;
constexpr std::size_t kMaximumDates = 20'000;
constexpr std::size_t kMaximumDepth = 16;

class CalendarParser {
  public:
    explicit CalendarParser(std::string_view text) : lines_(text) {}
    ParsedCalendar parse();

  private:
    /// Returns false after a syntax error.
    bool readLine(std::string_view line);
    bool begin(std::string_view component);
    bool end(std::string_view component);
    void readProperty(const Property& property);
    void finishEvent();
    void excludeReplaced();
    bool fail(const std::string& reason);

    struct Replaced {
        std::size_t identity;
        Moment moment;
    };
    struct Identity {
        std::size_t identity;
        std::size_t index; ///< of the event
    };

    ContentLines lines_;
    ParserState state_{.zones = {}, .remainingDates = kMaximumDates};
    Calendar calendar_;
    std::vector<std::string> components_; ///< that have begun and not ended
    std::optional<EventParser> event_;    ///< the one that is being read
    std::vector<Identity> identities_;
    std::vector<Replaced> replaced_;
};

ParsedCalendar CalendarParser::parse() {
    bool isValid = true;
    while (isValid) {
        const auto line = lines_.next();
        state_.line = lines_.number();
        if (!line)
            break;
        isValid = readLine(*line);
    }
    if (isValid && !components_.empty())
        fail("the file ends within " + components_.back());
    excludeReplaced();
    calendar_.zones = std::move(state_.zones);
    return {std::move(calendar_), std::move(state_.defect), std::move(state_.unsupported)};
}

bool CalendarParser::fail(const std::string& reason) {
    state_.reportDefect(reason);
    return false;
}

bool CalendarParser::readLine(std::string_view line) {
    const auto property = parseProperty(line);
    const bool begins = property && isSame(property->name, "BEGIN");
    if (components_.empty() && !(begins && isSame(property->value, "VCALENDAR")))
        return fail("not iCalendar data");
    if (!property)
        return true; // such as a description that was not folded
    if (begins)
        return begin(property->value);
    if (isSame(property->name, "END"))
        return end(property->value);
    readProperty(*property);
    return true;
}

bool CalendarParser::begin(std::string_view component) {
    if (components_.size() == kMaximumDepth)
        return fail("too many nested components");
    components_.emplace_back(component);
    if (components_.size() != 2 || !isSame(component, "VEVENT"))
        return true;
    if (calendar_.events.size() == kMaximumEvents)
        return fail("more than " + std::to_string(kMaximumEvents) + " events");
    event_.emplace(state_);
    return true;
}

bool CalendarParser::end(std::string_view component) {
    if (!isSame(component, components_.back()))
        return fail("END:" + std::string(component) + " within " + components_.back());
    components_.pop_back();
    if (event_ && components_.size() == 1)
        finishEvent();
    return true;
}

void CalendarParser::readProperty(const Property& property) {
    if (event_ && components_.size() == 2)
        event_->read(property);
    else if (components_.size() == 1 &&
             (isSame(property.name, "X-WR-CALNAME") || isSame(property.name, "NAME")))
        calendar_.name = textValue(property.value);
}

void CalendarParser::finishEvent() {
    EventParser::Result result = event_->finish();
    event_.reset();
    if (result.replaced)
        replaced_.push_back({result.identity, *result.replaced});
    if (!result.event)
        return;
    if (!result.replaced && result.identity != 0)
        identities_.push_back({result.identity, calendar_.events.size()});
    calendar_.events.push_back(std::move(*result.event));
}

void CalendarParser::excludeReplaced() {
    if (replaced_.empty())
        return;
    std::ranges::sort(identities_, {}, &Identity::identity);
    for (const auto& [identity, moment] : replaced_)
        for (auto found = std::ranges::lower_bound(identities_, identity, {}, &Identity::identity);
             found != identities_.end() && found->identity == identity; ++found) {
            if (state_.remainingDates-- == 0)
                return static_cast<void>(fail("too many dates"));
            auto& repetition = calendar_.events[found->index].repetition;
            if (!repetition)
                repetition = std::make_unique<Repetition>();
            repetition->excluded.push_back(moment);
        }
}

} // namespace

ParsedCalendar parseCalendar(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    return CalendarParser(text).parse();
}

} // namespace extras::icalendar
