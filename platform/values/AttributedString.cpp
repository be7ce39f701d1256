#include "platform/values/AttributedString.h"

#include "platform/base/Exception.h"

#include <algorithm>
#include <utility>

namespace platform {

AttributedString::AttributedString(std::string text, TextAttributes attributes)
    : text_(std::move(text)) {
    if (!text_.empty())
        runs_.push_back({0, text_.size(), std::move(attributes)});
}

std::size_t AttributedString::splitAt(std::size_t location, std::size_t length) {
    if (location > text_.size() || length > text_.size() - location)
        throw Exception("NSRangeException", "range out of bounds of an attributed string");
    for (const std::size_t boundary : {location, location + length}) {
        const auto run = std::find_if(runs_.begin(), runs_.end(), [&](const Run& r) {
            return r.location < boundary && boundary < r.location + r.length;
        });
        if (run == runs_.end())
            continue;
        Run tail = *run;
        run->length = boundary - run->location;
        tail.location = boundary;
        tail.length -= run->length;
        runs_.insert(run + 1, std::move(tail));
    }
    const auto first = std::find_if(runs_.begin(), runs_.end(),
                                    [&](const Run& r) { return r.location >= location; });
    return static_cast<std::size_t>(first - runs_.begin());
}

const TextAttributes& AttributedString::attributesAt(std::size_t location) const {
    const auto run = std::find_if(runs_.begin(), runs_.end(), [&](const Run& r) {
        return r.location <= location && location < r.location + r.length;
    });
    if (run == runs_.end())
        throw Exception("NSRangeException", "range out of bounds of an attributed string");
    return run->attributes;
}

void AttributedString::addShadow(const Shadow& shadow, std::size_t location, std::size_t length) {
    for (auto i = splitAt(location, length);
         i < runs_.size() && runs_[i].location < location + length; ++i)
        runs_[i].attributes.shadow = shadow;
}

void AttributedString::setAttributes(const TextAttributes& attributes, std::size_t location,
                                     std::size_t length) {
    for (auto i = splitAt(location, length);
         i < runs_.size() && runs_[i].location < location + length; ++i)
        runs_[i].attributes = attributes;
}

} // namespace platform
