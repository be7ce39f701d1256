#include "extras/shared/Texts.h"

#include "platform/Bundle.h"

#include <libintl.h>

namespace extras {
namespace {

std::string domain; // each item links its own copy of this file

} // namespace

void bindTexts(const platform::Bundle& bundle) {
    domain = bundle.stringForInfoDictionaryKey("CFBundleExecutable").value_or("");
    bindtextdomain(domain.c_str(), (bundle.bundlePath() + "/Contents/Resources/locale").c_str());
    bind_textdomain_codeset(domain.c_str(), "UTF-8");
}

const char* tr(const char* text) {
    return dgettext(domain.c_str(), text);
}

std::string tr(const char* context, const char* text) {
    // The key of a text with a context in a catalogue.
    const std::string key = std::string(context) + '\4' + text;
    const char* translation = dgettext(domain.c_str(), key.c_str());
    return translation == key.c_str() ? text : translation;
}

std::string tr(const char* singular, const char* plural, long count) {
    const char* form =
        dngettext(domain.c_str(), singular, plural, static_cast<unsigned long>(count));
    return fill(form, {std::to_string(count)});
}

std::string fill(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPlaceholder = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' &&
                                   static_cast<std::size_t>(text[i + 1] - '1') < values.size();
        if (isPlaceholder)
            result += values.begin()[text[++i] - '1'];
        else
            result += text[i];
    }
    return result;
}

bool isRightToLeft() {
    // Translators into a language that is written from right to left translate this as "RTL".
    return std::string_view(tr("LTR")) == "RTL";
}

} // namespace extras
