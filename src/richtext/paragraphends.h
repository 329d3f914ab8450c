#pragma once

#include <QStringView>

namespace quorvane {

constexpr bool endsParagraph(char16_t unit)
{
    return (unit == u'\n') | (unit == u'\r') | (unit == QChar::ParagraphSeparator);
}

/// Whether any unit of the text is one. Looks at all of them, which compilers do many at a time.
template <typename Predicate> bool anyUnit(QStringView text, Predicate predicate)
{
    quint16 any = 0; // As wide as the units.
    for (const QChar c : text) {
        any = quint16(any | predicate(c.unicode()));
    }
    return any != 0;
}

/// Calls \a onText for each stretch of text and \a onEnd for each end of a paragraph: LF, CR, CRLF
/// or U+2029. These characters cannot stand inside a paragraph of a text document.
template <typename OnText, typename OnEnd>
void splitParagraphs(QStringView text, OnText onText, OnEnd onEnd)
{
    if (!text.isEmpty() && !anyUnit(text, endsParagraph)) {
        onText(text);
        return;
    }
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (!endsParagraph(unit)) {
            continue;
        }
        if (i > start) {
            onText(text.sliced(start, i - start));
        }
        onEnd();
        if (unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            ++i;
        }
        start = i + 1;
    }
    if (start < text.size()) {
        onText(text.sliced(start));
    }
}

} // namespace quorvane
