#pragma once

#include "extras/icalendar/Calendar.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace extras::icalendar {

/// What the parsers of a file's events share.
struct ParserState {
    Zones zones;
    std::size_t remainingDates; ///< how many more dates of EXDATE and RDATE are read
    std::size_t line = 0;       ///< the number of the line that is being read
    std::string defect{};       ///< see ParsedCalendar
    std::string unsupported{};

    /// Records a defect, or a rule that is not supported, unless there has been one already.
    void reportDefect(std::string_view reason);
    void reportUnsupported(std::string_view reason);
};

/// Reads the properties of one event. Those it does not know are ignored.
class EventParser {
  public:
    /// Keeps a reference to @p state.
    explicit EventParser(ParserState& state) : state_(state) {}

    void read(const Property& property);

    struct Result {
        std::optional<Event> event;     ///< std::nullopt if it is cancelled or cannot be shown
        std::size_t identity = 0;       ///< a hash of its UID
        std::optional<Moment> replaced; ///< which repetition of the event with the same UID
    };
    /// Returns the event after its last property. Call it once.
    Result finish();

  private:
    using Reader = void (EventParser::*)(const Property&);
    static Reader readerOf(std::string_view name);

    void readTitle(const Property& property);
    void readIdentity(const Property& property);
    void readStart(const Property& property);
    void readEnd(const Property& property);
    void readDuration(const Property& property);
    void readReplaced(const Property& property);
    void readRule(const Property& property);
    void readExcludingRule(const Property& property);
    void readAddedDates(const Property& property);
    void readExcludedDates(const Property& property);
    void readStatus(const Property& property);
    void readCategories(const Property& property);
    void readTransparency(const Property& property);

    std::optional<Moment> readMoment(const Property& property);
    void readDates(const Property& property, std::vector<Moment>& dates);
    void finishEnd();
    void finishRepetition();

    ParserState& state_;
    Result result_;
    Event event_;
    Repetition repetition_;
    std::optional<Moment> start_;
    std::optional<Moment> end_;
    std::int64_t duration_ = 0; ///< seconds
    bool isCancelled_ = false;
    bool hasCategories_ = false;
    bool isTransparent_ = false;
    bool hasUnsupportedRule_ = false;
};

} // namespace extras::icalendar
