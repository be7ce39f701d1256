#include "apps/support/Texts.h"

#include <QCoreApplication>

#include <libintl.h>

namespace apps {
namespace {

constexpr const char* kDomain = "halvex-menubar";

void bindCatalogue() {
    const QByteArray folder =
        (QCoreApplication::applicationDirPath() + "/../share/locale").toUtf8();
    bindtextdomain(kDomain, folder.constData());
    bind_textdomain_codeset(kDomain, "UTF-8");
}

} // namespace

const char* localized(const char* text) {
    [[maybe_unused]] static const bool isBound = [] {
        bindCatalogue();
        return true;
    }();
    return dgettext(kDomain, text);
}

std::string fill(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '%' && next >= '1' && static_cast<std::size_t>(next - '1') < values.size()) {
            result += values.begin()[next - '1'];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace apps
