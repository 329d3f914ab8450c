#include "platform/spelling.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

std::optional<QString> offeredLanguage(const QStringList &languages, const QLocale &locale)
{
    // A system without a language speaks English.
    const QString full = locale.language() == QLocale::C ? u"en_US"_s : locale.name(); // "de_AT"
    const QString bare = full.section(u'_', 0, 0);
    if (languages.contains(full)) {
        return full;
    }
    if (languages.contains(bare)) {
        return bare;
    }
    const auto relative = std::find_if(languages.begin(), languages.end(), [&](const QString &tag) {
        return tag.startsWith(bare + u'_');
    });
    return relative == languages.end() ? std::nullopt : std::optional(*relative);
}

} // namespace quorvane
