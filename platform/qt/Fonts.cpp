#include "platform/qt/Fonts.h"

#include "platform/Log.h"
#include "platform/qt/Strings.h"

#include <QFontInfo>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace platform::qt {
namespace {

constexpr double kMaximumSize = 1024;

/// Generic names, which match any family: a substitute for one is not logged.
constexpr std::array kGenericFamilies = {"sans",      "sans-serif", "sans serif", "serif",
                                         "monospace", "mono",       "system-ui"};

/// Removes the foundry that Fontconfig may append, as in "Nimbus Sans [urw]".
QString withoutFoundry(const QString& family) {
    return family.left(family.indexOf(QLatin1String(" [")));
}

bool sameFamily(const QString& one, const QString& other) {
    return withoutFoundry(one).compare(withoutFoundry(other), Qt::CaseInsensitive) == 0;
}

bool isGenericFamily(const QString& family) {
    return std::any_of(kGenericFamilies.begin(), kGenericFamilies.end(), [&](const char* name) {
        return family.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
}

} // namespace

QFont Fonts::font(const Font& description, const QFont& fallback, FontSmoothing smoothing) {
    QFont font = fallback;
    if (!description.family.empty())
        font.setFamilies({qString(description.family)});
    if (std::isfinite(description.size) && description.size > 0)
        font.setPixelSize(
            static_cast<int>(std::lround(std::clamp(description.size, 1.0, kMaximumSize))));
    if (description.bold)
        font.setBold(true);
    // Full hinting rounds advances to whole pixels: the size of text would depend on the scale.
    if (font.hintingPreference() == QFont::PreferFullHinting ||
        font.hintingPreference() == QFont::PreferDefaultHinting)
        font.setHintingPreference(QFont::PreferVerticalHinting);
    if (smoothing == FontSmoothing::Greyscale)
        font.setStyleStrategy(
            static_cast<QFont::StyleStrategy>(font.styleStrategy() | QFont::NoSubpixelAntialias));
    if (checkedFamilies_.insert(description.family).second)
        logMissing(font, description.family);
    return font;
}

void Fonts::logMissing(const QFont& font, const std::string& family) {
    const QString found = QFontInfo(font).family();
    if (found.isEmpty()) {
        if (!hasLoggedNoFonts_)
            logLine("text is drawn as boxes: no font is installed");
        hasLoggedNoFonts_ = true;
        return;
    }
    const QString wanted = qString(family);
    if (!wanted.isEmpty() && !isGenericFamily(wanted) && !sameFamily(wanted, found))
        logLine("font %@ not found: using %@", family, found.toStdString());
}

} // namespace platform::qt
