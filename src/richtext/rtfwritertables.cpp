#include "richtext/rtfwritertables.h"

#include "richtext/fontnames.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QTextCharFormat>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int whiteNumber = 1; // The table always has white at this place.
constexpr int firstFreeColour = 2;
constexpr qsizetype colourDigits = 8;

QByteArray channel(int byte)
{
    return rtfWord("c", (byte * 100000 + 127) / 255);
}

} // namespace

int RtfWriterTables::fontNumber(const QTextCharFormat &format)
{
    const QString family = format.fontFamilies().toStringList().value(0);
    if (family.isEmpty()) {
        return -1;
    }
    const QString told = format.stringProperty(FontName);
    const QString name =
        !told.isEmpty() && familyOfFontName(told) == family ? told : fontNameOfFamily(family);
    const auto known = m_fontNumbers.constFind(name);
    if (known != m_fontNumbers.constEnd()) {
        return *known;
    }
    const int number = int(m_fontNames.size());
    m_fontNames.append(name);
    m_fontNumbers.insert(name, number);
    return number;
}

int RtfWriterTables::textColourNumber(const QColor &colour)
{
    if (colour == QColor(Qt::black)) {
        return 0;
    }
    return colour.rgba() == qRgb(255, 255, 255) ? whiteNumber : colourNumber(colour);
}

int RtfWriterTables::colourNumber(const QBrush &brush)
{
    return brush.style() == Qt::NoBrush ? 0 : colourNumber(brush.color());
}

int RtfWriterTables::colourNumber(const QColor &colour)
{
    const QRgb value = colour.rgba();
    const auto known = m_colourNumbers.constFind(value);
    if (known != m_colourNumbers.constEnd()) {
        return *known;
    }
    const int number = firstFreeColour + int(m_colours.size());
    m_colours.push_back(value);
    m_colourNumbers.insert(value, number);
    return number;
}

QByteArray RtfWriterTables::withNumbers(const QByteArray &carriedWords)
{
    QByteArray words = carriedWords;
    for (qsizetype at = words.indexOf('#'); at >= 0; at = words.indexOf('#', at)) {
        bool isColour = false;
        const QRgb value = words.mid(at + 1, colourDigits).toUInt(&isColour, 16);
        words.replace(at, colourDigits + 1,
                      isColour ? QByteArray::number(colourNumber(QColor::fromRgba(value))) : "0");
    }
    return words;
}

QByteArray RtfWriterTables::fontTable(RtfEscaper::Fallback fallback) const
{
    QByteArray out = "{\\fonttbl";
    for (qsizetype i = 0; i < m_fontNames.size(); ++i) {
        const QString &name = m_fontNames.at(i);
        appendWord(out, "f", i);
        out += name == "Helvetica"_L1 ? "\\fswiss" : "\\fnil";
        out += "\\fcharset0 ";
        RtfEscaper(out, fallback).name(name);
        out += ';';
    }
    return out + '}';
}

QByteArray RtfWriterTables::colourTables() const
{
    QByteArray out = "{\\colortbl;\\red255\\green255\\blue255;";
    QByteArray expanded = "}\n{\\*\\expandedcolortbl;;";
    for (const QRgb colour : m_colours) {
        out += rtfWord("red", qRed(colour)) + rtfWord("green", qGreen(colour))
            + rtfWord("blue", qBlue(colour)) + ';';
        // The plain values have no colour space; this one is sRGB.
        expanded +=
            "\\cssrgb" + channel(qRed(colour)) + channel(qGreen(colour)) + channel(qBlue(colour));
        if (qAlpha(colour) < 255) {
            expanded += channel(qAlpha(colour));
        }
        expanded += ';';
    }
    return out + expanded + '}';
}

} // namespace quorvane
