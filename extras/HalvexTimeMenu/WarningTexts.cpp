#include "extras/HalvexTimeMenu/WarningTexts.h"

#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"
#include "platform/Clock.h"
#include "platform/FileManager.h"
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <utility>

using platform::UserNotification;
using warnings::MissedWarning;
using warnings::Warning;
using warnings::WarningTime;

namespace extras {
namespace {

constexpr const char* kSoundKey = "WarningSound";
constexpr const char* kDefaultSound = "alarm-clock-elapsed";
constexpr const char* kIcon = "alarm-symbolic";
constexpr int kMinutesPerHour = 60;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kNear = std::int64_t{12} * 60 * 60; // seconds
constexpr std::size_t kMaximumLines = 10;

std::string clockTime(int minutes) {
    std::tm moment{};
    moment.tm_mday = 1;
    moment.tm_hour = minutes / kMinutesPerHour;
    moment.tm_min = minutes % kMinutesPerHour;
    return clock_format::text(clock_format::time(), moment);
}

std::string delayText(int minutes) {
    if (minutes % kMinutesPerHour == 0)
        return tr("In %1 hour", "In %1 hours", minutes / kMinutesPerHour);
    return tr("In %1 minute", "In %1 minutes", minutes);
}

std::string missedLine(const MissedWarning& missed, std::int64_t now) {
    const std::string name = shownWarningName(missed.warning);
    const std::string first = shownInstant(missed.first, now);
    if (missed.count == 1)
        return fill(tr("%1: %2"), {name, first});
    return fill(tr("%1: %2, since %3"), {name, tr("%1 time", "%1 times", missed.count), first});
}

bool isSound(const std::string& sound) {
    if (sound.starts_with('/'))
        return platform::fileManager().isFile(sound);
    return std::ranges::all_of(sound, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '-' || c == '_' || c == '.';
    });
}

} // namespace

std::string shownWarningTitle(const std::string& title) {
    // The titles in pane/WarningTitles.plist.
    const std::array<std::pair<std::string_view, const char*>, 8> shipped{{
        {"Tea is ready", tr("Tea is ready")},
        {"Take a break", tr("Take a break")},
        {"Stretch", tr("Stretch")},
        {"Drink some water", tr("Drink some water")},
        {"Meeting", tr("Meeting")},
        {"Phone call", tr("Phone call")},
        {"Lunch", tr("Lunch")},
        {"Time to go home", tr("Time to go home")},
    }};
    const auto* found = std::ranges::find(shipped, title, &decltype(shipped)::value_type::first);
    return found == shipped.end() ? title : found->second;
}

std::string shownWarningTime(const WarningTime& time) {
    switch (time.kind) {
    case WarningTime::Kind::EveryHour:
        return tr("Every hour");
    case WarningTime::Kind::EveryDay:
        return fill(tr("Every day at %1"), {clockTime(time.minutes)});
    case WarningTime::Kind::Once:
        return fill(tr("At %1"), {clockTime(time.minutes)});
    case WarningTime::Kind::Delay:
        break;
    }
    return delayText(time.minutes);
}

std::string shownWarningName(const Warning& warning) {
    const std::string title = shownWarningTitle(warning.title);
    return title.empty() ? shownWarningTime(warning.time) : title;
}

std::string shownInstant(std::int64_t instant, std::int64_t now) {
    const std::tm moment = platform::systemClock().localTime(instant);
    const std::tm today = platform::systemClock().localTime(now);
    const bool isToday = moment.tm_yday == today.tm_yday && moment.tm_year == today.tm_year;
    const bool isNear = isToday || std::abs(instant - now) < kNear;
    return clock_format::text(isNear ? clock_format::time() : clock_format::shortDefault(), moment);
}

std::string shownTimeLeft(std::int64_t instant, std::int64_t now) {
    const std::int64_t seconds = std::max<std::int64_t>(instant - now, 0);
    if (seconds < kSecondsPerMinute)
        return fill(tr("%1 s"), {std::to_string(seconds)});
    const std::int64_t minutes = (seconds + kSecondsPerMinute - 1) / kSecondsPerMinute;
    const std::string hours = std::to_string(minutes / kMinutesPerHour);
    const std::string rest = std::to_string(minutes % kMinutesPerHour);
    if (minutes < kMinutesPerHour)
        return fill(tr("%1 min"), {rest});
    return rest == "0" ? fill(tr("%1 h"), {hours}) : fill(tr("%1 h %2 min"), {hours, rest});
}

WarningTexts::WarningTexts(platform::Preferences clockSettings)
    : settings_(std::move(clockSettings)) {}

UserNotification WarningTexts::ringing(const Warning& warning) const {
    const std::int64_t now = platform::systemClock().now();
    const std::string time = shownInstant(now, now);
    const bool isDelay = warning.time.kind == WarningTime::Kind::Delay;
    std::string title = shownWarningTitle(warning.title);
    std::string body = time;
    if (title.empty()) {
        title = isDelay ? tr("Time is up") : fill(tr("It is %1"), {time});
        body = isDelay ? tr("%1 minute has passed", "%1 minutes have passed", warning.time.minutes)
                       : "";
    }
    return {.title = std::move(title),
            .body = std::move(body),
            .icon = kIcon,
            .actions = {{warnings::kAgainAction,
                         tr("Again in %1 minute", "Again in %1 minutes", warnings::kAgainMinutes)}},
            .sound = sound(),
            .staysVisible = warning.time.kind != WarningTime::Kind::EveryHour};
}

UserNotification WarningTexts::missed(const std::vector<MissedWarning>& missed) const {
    const std::int64_t now = platform::systemClock().now();
    std::string body;
    for (std::size_t i = 0; i < std::min(missed.size(), kMaximumLines); ++i)
        body += (i == 0 ? "" : "\n") + missedLine(missed[i], now);
    if (missed.size() > kMaximumLines)
        body += '\n' + tr("%1 more", "%1 more", static_cast<long>(missed.size() - kMaximumLines));
    return {.title =
                tr("%1 missed warning", "%1 missed warnings", static_cast<long>(missed.size())),
            .body = std::move(body),
            .icon = kIcon,
            .sound = sound(),
            .staysVisible = true};
}

std::string WarningTexts::sound() const {
    std::string sound = settings_.string(kSoundKey, kDefaultSound);
    if (isSound(sound)) {
        loggedSound_.clear();
        return sound;
    }
    if (std::exchange(loggedSound_, sound) != sound)
        platform::logLine("cannot use the sound \"%@\" in %@: it is neither a name of a sound nor "
                          "the path of a file",
                          sound, settings_.file());
    return kDefaultSound;
}

} // namespace extras
