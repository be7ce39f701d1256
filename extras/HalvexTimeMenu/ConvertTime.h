#pragma once

#include <optional>
#include <string>
#include <string_view>

/// A time of day as a user types it.
struct TimeOfDay {
    int hour = 0; ///< 0 to 23
    int minute = 0;
    friend bool operator==(const TimeOfDay&, const TimeOfDay&) = default;
};

/// Reads a time of day: "14:30", "14.30", "14h30", "1430", "9", "9 h", "2:30 pm", "2p". Seconds are
/// ignored. @p morning and @p afternoon are the locale's words for am and pm, which may be empty;
/// the English ones are always understood. Returns std::nullopt for any other text.
std::optional<TimeOfDay> readTimeOfDay(std::string_view text, std::string_view morning = {},
                                       std::string_view afternoon = {});
