#include "extras/icalendar/EventParser.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace extras::icalendar {
namespace {

void report(std::string& first, std::size_t line, std::string_view reason) {
    if (first.empty())
        first = "line " + std::to_string(line) + ": " + std::string(reason);
}

/// Returns whether @p text contains @p part, except for the case of ASCII letters.
bool containsText(std::string_view text, std::string_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i)
        if (isSame(text.substr(i, part.size()), part))
            return true;
    return false;
}

} // namespace

void ParserState::reportDefect(std::string_view reason) {
    report(defect, line, reason);
}

void ParserState::reportUnsupported(std::string_view reason) {
    report(unsupported, line, reason);
}

EventParser::Reader EventParser::readerOf(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, Reader>, 13> kReaders{{
        {"SUMMARY", &EventParser::readTitle},
        {"UID", &EventParser::readIdentity},
        {"DTSTART", &EventParser::readStart},
        {"DTEND", &EventParser::readEnd},
        {"DURATION", &EventParser::readDuration},
        {"RECURRENCE-ID", &EventParser::readReplaced},
        {"RRULE", &EventParser::readRule},
        {"EXRULE", &EventParser::readExcludingRule},
        {"RDATE", &EventParser::readAddedDates},
        {"EXDATE", &EventParser::readExcludedDates},
        {"STATUS", &EventParser::readStatus},
        {"CATEGORIES", &EventParser::readCategories},
        {"TRANSP", &EventParser::readTransparency},
    }};
    for (const auto& [known, reader] : kReaders)
        if (isSame(name, known))
            return reader;
    return nullptr;
}

void EventParser::read(const Property& property) {
    if (const auto reader = readerOf(property.name))
        (this->*reader)(property);
}

void EventParser::readTitle(const Property& property) {
    event_.title = textValue(property.value);
}

void EventParser::readIdentity(const Property& property) {
    result_.identity = std::hash<std::string_view>()(property.value);
}

std::optional<Moment> EventParser::readMoment(const Property& property) {
    const auto moment = parseMoment(property, state_.zones);
    if (!moment)
        state_.reportDefect(std::string(property.name) + " is malformed");
    return moment;
}

void EventParser::readStart(const Property& property) {
    start_ = readMoment(property);
}

void EventParser::readEnd(const Property& property) {
    end_ = readMoment(property);
}

void EventParser::readDuration(const Property& property) {
    const auto duration = parseDuration(property.value);
    duration_ = duration.value_or(0);
    if (!duration)
        state_.reportDefect("DURATION is malformed");
}

void EventParser::readReplaced(const Property& property) {
    result_.replaced = readMoment(property);
    if (!property.parameter("RANGE").empty())
        state_.reportUnsupported("RANGE is not supported");
}

void EventParser::readRule(const Property& property) {
    std::string reason;
    if (auto rule = RecurrenceRule::parse(property.value, reason)) {
        repetition_.rules.push_back(std::move(*rule));
        return;
    }
    hasUnsupportedRule_ = true;
    state_.reportUnsupported(reason);
}

void EventParser::readExcludingRule(const Property& /*property*/) {
    hasUnsupportedRule_ = true;
    state_.reportUnsupported("EXRULE is not supported");
}

void EventParser::readDates(const Property& property, std::vector<Moment>& dates) {
    const std::uint32_t zone = state_.zones.indexOf(property.parameter("TZID"));
    std::string_view list = property.value;
    while (!list.empty()) {
        std::string_view period = takePart(list, ',');
        const auto moment = parseMoment(takePart(period, '/'), zone);
        if (!moment || state_.remainingDates == 0)
            return state_.reportDefect(moment ? "too many dates"
                                              : std::string(property.name) + " is malformed");
        dates.push_back(*moment);
        --state_.remainingDates;
    }
}

void EventParser::readAddedDates(const Property& property) {
    readDates(property, repetition_.added);
}

void EventParser::readExcludedDates(const Property& property) {
    readDates(property, repetition_.excluded);
}

void EventParser::readStatus(const Property& property) {
    isCancelled_ = isSame(property.value, "CANCELLED");
}

void EventParser::readCategories(const Property& property) {
    hasCategories_ = true;
    event_.isHoliday = event_.isHoliday || containsText(property.value, "holiday");
}

void EventParser::readTransparency(const Property& property) {
    isTransparent_ = isSame(property.value, "TRANSPARENT");
}

EventParser::Result EventParser::finish() {
    if (!start_ && !isCancelled_)
        state_.reportDefect("an event has no usable DTSTART");
    if (!start_ || isCancelled_)
        return std::move(result_);
    event_.start = *start_;
    finishEnd();
    // Birthdays are free time too, but have a category.
    if (!hasCategories_ && isTransparent_ && !event_.start.hasTime())
        event_.isHoliday = true;
    if (!result_.replaced)
        finishRepetition();
    result_.event = std::move(event_);
    return std::move(result_);
}

void EventParser::finishEnd() {
    const Moment& start = event_.start;
    if (end_ && end_->hasTime() == start.hasTime())
        event_.end = *end_;
    else
        event_.end = later(start, duration_);
    const Moment least = start.hasTime() ? start : later(start, 24 * 60 * 60);
    const bool isComparable = event_.end.zone == start.zone;
    if (isComparable && event_.end < least)
        event_.end = least;
}

void EventParser::finishRepetition() {
    if (hasUnsupportedRule_)
        repetition_.rules.clear();
    for (RecurrenceRule& rule : repetition_.rules)
        rule.startAt(event_.start);
    for (Moment& moment : repetition_.added)
        if (moment.hasTime() != event_.start.hasTime())
            moment = {moment.day, event_.start.second, event_.start.zone};
    const bool takesPlaceOnce =
        repetition_.rules.empty() && repetition_.added.empty() && repetition_.excluded.empty();
    if (!takesPlaceOnce)
        event_.repetition = std::make_unique<Repetition>(std::move(repetition_));
}

} // namespace extras::icalendar
