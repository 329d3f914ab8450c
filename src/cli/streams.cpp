#include "cli/streams.h"

#include <array>
#include <cerrno>

#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

std::optional<QByteArray> readEverything(int descriptor)
{
    QByteArray all;
    std::array<char, 65536> piece {};
    while (true) {
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count == 0) {
            return all;
        }
        if (count > 0) {
            all.append(piece.data(), count);
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

bool writeEverything(int descriptor, const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (count >= 0) {
            done += count;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

QString harmless(const QString &text, bool keepsLines)
{
    QString shown;
    shown.reserve(text.size());
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (keepsLines && (unit == u'\n' || unit == u'\t')) {
            shown += character;
        } else if (unit < u' ' || unit == 0x7f) {
            shown += u'^';
            shown += QChar(static_cast<char16_t>(unit ^ 0x40));
        } else if (unit >= 0x80 && unit < 0xa0) {
            shown += u"\\x%1"_s.arg(unit, 2, 16);
        } else {
            shown += character;
        }
    }
    return shown;
}

bool printText(const QString &text)
{
    const QString shown = ::isatty(STDOUT_FILENO) == 1 ? harmless(text, true) : text;
    if (writeEverything(STDOUT_FILENO, shown.toUtf8())) {
        return true;
    }
    complain(u"standard output"_s, qt_error_string(errno));
    return false;
}

void complain(const QString &text)
{
    writeEverything(STDERR_FILENO, ("quorvane-cli: "_L1 + harmless(text) + u'\n').toUtf8());
}

void complain(const QString &path, const QString &reason)
{
    complain(path + ": "_L1 + reason);
}

} // namespace quorvane
