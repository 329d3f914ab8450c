#pragma once

#include <QByteArray>
#include <QStringView>

namespace quorvane {

/// "\word" and its number.
void appendWord(QByteArray &out, const char *word, qint64 number);
QByteArray rtfWord(const char *word, qint64 number);

/// Two hexadecimal digits for each byte, in lines.
void appendHexLines(QByteArray &out, QByteArrayView bytes);

/// Writes text as 7-bit RTF: bytes of Windows-1252 as \'hh, all else as \u.
class RtfEscaper final
{
public:
    enum class Fallback {
        None, ///< "\uc0" before a run of "\uN ", as the platform writes.
        QuestionMark, ///< "\uN?", for readers that know no \u.
    };

    explicit RtfEscaper(QByteArray &out, Fallback fallback = Fallback::None)
        : m_out(out)
        , m_fallback(fallback)
    { }

    void text(QStringView text);
    void unit(char16_t unit);
    /// A name, where only letters and \u are sure to be understood; what ends an entry of a table
    /// is written as a byte.
    void name(QStringView name);

private:
    void unicode(char16_t unit);
    void plain(const char *text);

    QByteArray &m_out;
    Fallback m_fallback;
    bool m_isInUnicode = false;
};

} // namespace quorvane
