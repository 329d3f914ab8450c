#pragma once

#include "richtext/rtfescape.h"

#include <QColor>
#include <QHash>
#include <QStringList>

#include <vector>

class QBrush;
class QTextCharFormat;

namespace quorvane {

/// The fonts and colours that a text names by number, in the order in which it comes to them.
class RtfWriterTables final
{
public:
    /// -1 where the format has no font.
    int fontNumber(const QTextCharFormat &format);

    /// Of text, where black is the automatic colour.
    int textColourNumber(const QColor &colour);
    /// Of everything else; 0 where the brush paints nothing.
    int colourNumber(const QBrush &brush);
    int colourNumber(const QColor &colour);

    /// Carried words with a number in place of each "#AARRGGBB".
    QByteArray withNumbers(const QByteArray &carriedWords);

    QByteArray fontTable(RtfEscaper::Fallback fallback) const;
    QByteArray colourTables() const;

private:
    QHash<QString, int> m_fontNumbers;
    QStringList m_fontNames;
    QHash<QRgb, int> m_colourNumbers;
    std::vector<QRgb> m_colours;
};

} // namespace quorvane
