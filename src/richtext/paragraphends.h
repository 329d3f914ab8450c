#pragma once

#include <QStringView>

namespace quorvane {

constexpr bool endsParagraph(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || unit == QChar::ParagraphSeparator;
}

/// Calls \a onText for each stretch of text and \a onEnd for each end of a paragraph: LF, CR, CRLF
/// or U+2029. These characters cannot stand inside a paragraph of a text document.
template <typename OnText, typename OnEnd>
void splitParagraphs(QStringView text, OnText onText, OnEnd onEnd)
{
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
