#include "platform/safefilename.h"

#include <QByteArray>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qsizetype longestName = 180; // bytes; file systems take 255, and a number may follow

bool isUnseen(QChar c)
{
    // Direction marks among them: with these "exe.txt" can be read the other way round.
    return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
        || c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
}

/// Shortens the name and leaves its ending.
void shorten(QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    const bool hasEnding = dot > 0 && name.size() - dot <= 16;
    const QString ending = hasEnding ? name.sliced(dot) : QString();
    QString stem = hasEnding ? name.first(dot) : name;
    stem.truncate(longestName); // each character has a byte at least
    if (stem.size() == longestName && stem.back().isHighSurrogate()) {
        stem.chop(1);
    }
    while ((stem + ending).toUtf8().size() > longestName) {
        stem.chop(stem.size() > 1 && stem.back().isLowSurrogate() ? 2 : 1);
    }
    name = stem + ending;
}

} // namespace

QString safeFileName(const QString &name)
{
    QString safe = name;
    safe.remove(0, std::max(safe.lastIndexOf(u'/'), safe.lastIndexOf(u'\\')) + 1);
    std::replace_if(safe.begin(), safe.end(), isUnseen, u'_');
    safe = safe.trimmed();
    while (safe.startsWith(u'.') || safe.startsWith(u'-') || safe.startsWith(u'~')) {
        safe.remove(0, 1);
    }
    while (safe.endsWith(u'.') || safe.endsWith(u' ')) {
        safe.chop(1);
    }
    shorten(safe);
    return safe.isEmpty() ? u"Attachment"_s : safe;
}

bool mayRunAsProgram(const QString &name, const QByteArray &bytes)
{
    static const QSet<QString> endings {
        u"desktop"_s,    u"appimage"_s, u"exe"_s,     u"com"_s, u"bat"_s,  u"cmd"_s, u"msi"_s,
        u"scr"_s,        u"lnk"_s,      u"url"_s,     u"sh"_s,  u"bash"_s, u"run"_s, u"bin"_s,
        u"jar"_s,        u"jnlp"_s,     u"ps1"_s,     u"vbs"_s, u"js"_s,   u"wsf"_s, u"py"_s,
        u"pyc"_s,        u"pl"_s,       u"rb"_s,      u"php"_s, u"deb"_s,  u"rpm"_s, u"snap"_s,
        u"flatpakref"_s, u"service"_s,  u"command"_s, u"app"_s};
    constexpr std::array beginnings {"\177ELF", "#!", "MZ", "[Desktop Entry]"};
    constexpr std::array kinds {"application/x-executable"_L1, "application/x-sharedlib"_L1,
                                "application/x-desktop"_L1, "application/x-ms-dos-executable"_L1,
                                "application/x-java-archive"_L1};
    if (endings.contains(QFileInfo(name).suffix().toLower())) {
        return true;
    }
    const QByteArray start = bytes.first(std::min(bytes.size(), programBeginning)).trimmed();
    const auto beginsSo = [&start](const char *beginning) {
        return start.startsWith(beginning);
    };
    if (std::any_of(beginnings.begin(), beginnings.end(), beginsSo)) {
        return true;
    }
    const QMimeDatabase database;
    const QMimeType byName = database.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
    const QMimeType byContent = database.mimeTypeForData(start);
    return std::any_of(kinds.begin(), kinds.end(), [&](QLatin1StringView kind) {
        return byName.inherits(kind) || byContent.inherits(kind);
    });
}

} // namespace quorvane
