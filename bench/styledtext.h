#pragma once

#include <QByteArray>

#include <array>

namespace quorvane {

/// Makes RTF of some size as people write it: paragraphs of about 300 characters in four to six
/// styles each, letters beyond ASCII, links, nested lists, and now and then a table.
class StyledText final
{
public:
    /// Not less than \a size bytes, and the same ones at each call.
    QByteArray rtf(qsizetype size)
    {
        m_out = "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709\n{\\fonttbl\\f0\\fswiss\\fcharset0 "
                "Helvetica;\\f1\\fswiss\\fcharset0 Helvetica-Bold;\\f2\\froman\\fcharset0 "
                "TimesNewRomanPSMT;}\n{\\colortbl;\\red255\\green255\\blue255;\\red200\\green0"
                "\\blue0;\\red0\\green90\\blue180;\\red255\\green240\\blue120;}\n"
                "{\\*\\listtable";
        appendList(1, "\\levelnfc23", "\\'01\\u8226 ;}{\\levelnumbers;}");
        appendList(2, "\\levelnfc0", "\\'02\\'01.;}{\\levelnumbers\\'01;}");
        m_out += "}{\\*\\listoverridetable{\\listoverride\\listid1\\listoverridecount0\\ls1}"
                 "{\\listoverride\\listid2\\listoverridecount0\\ls2}}\n";
        for (int section = 0; m_out.size() < size; ++section) {
            appendParagraphs();
            appendItems();
            if (section % 8 == 0) {
                appendTable();
            }
        }
        return m_out + '}';
    }

private:
    quint32 random(quint32 below)
    {
        m_seed = m_seed * 1664525 + 1013904223;
        return (m_seed >> 8) % below;
    }

    void appendList(int id, const char *kind, const char *text)
    {
        m_out += "{\\list\\listtemplateid" + QByteArray::number(id);
        for (int level = 0; level < 2; ++level) {
            m_out += QByteArray("{\\listlevel") + kind + "\\leveljc0\\levelstartat1{\\leveltext"
                + text + "\\fi-360\\li" + QByteArray::number(720 * (level + 1)) + '}';
        }
        m_out += "\\listid" + QByteArray::number(id) + '}';
    }

    void appendWords(int count)
    {
        static constexpr std::array words {"the",
                                           "secret",
                                           "of",
                                           "a",
                                           "good",
                                           "garden",
                                           "is",
                                           "water",
                                           "early",
                                           "morning",
                                           "letter",
                                           "account",
                                           "for",
                                           "which",
                                           "never",
                                           "between",
                                           "\\'e9t\\'e9",
                                           "gr\\'fc\\'dfe",
                                           "\\uc0\\u8220 so\\u8221 ",
                                           "\\{x\\}",
                                           "\\uc0\\u945 \\u946 "};
        for (int i = 0; i < count; ++i) {
            m_out += words[random(words.size())];
            m_out += ' ';
        }
    }

    void appendParagraphs()
    {
        static constexpr std::array styles {
            "\\f1\\b ",    "\\f0\\b0 ",   "\\i \\cf2 ", "\\i0 \\cf0 ",  "\\fs28 ",
            "\\fs24 ",     "\\ul ",       "\\ulnone ",  "\\cb4 ",       "\\cb1 ",
            "\\f2\\fs26 ", "\\f0\\fs24 ", "\\super ",   "\\nosupersub "};
        m_out +=
            "\\pard\\tx560\\tx1120\\pardirnatural\\partightenfactor0\n\\f0\\b0\\i0\\fs24 \\cf0 ";
        for (int paragraph = 0; paragraph < 6; ++paragraph) {
            const quint32 runs = 4 + random(3);
            for (quint32 run = 0; run < runs; ++run) {
                m_out += '\n';
                m_out += styles[random(styles.size())];
                appendWords(10);
            }
            m_out += "\\\n";
        }
        m_out += "{\\field{\\*\\fldinst{HYPERLINK \"https://example.org/";
        m_out += QByteArray::number(random(1000)) + "\"}}{\\fldrslt a place}} ";
        appendWords(20);
        m_out += "\\\n";
    }

    void appendItems()
    {
        for (int item = 0; item < 6; ++item) {
            const bool isInner = item % 3 == 2;
            m_out += isInner ? "\\pard\\li1440\\fi-1440\n\\ls2\\ilvl1 {\\listtext\t1.\t}"
                             : "\\pard\\li720\\fi-720\n\\ls1\\ilvl0 {\\listtext\t\\'95\t}";
            appendWords(12);
            m_out += "\\\n";
        }
        m_out += "\\pard\n";
    }

    void appendTable()
    {
        for (int row = 0; row < 4; ++row) {
            m_out += "\\itap1\\trowd\\trgaph108\\trleft-108";
            for (int column = 1; column <= 3; ++column) {
                m_out += "\\clbrdrt\\brdrs\\brdrw10\\clcbpat4\\cellx"
                    + QByteArray::number(column * 2880);
            }
            m_out += "\n\\pard\\intbl\\itap1 ";
            for (int column = 0; column < 3; ++column) {
                appendWords(5);
                m_out += "\\cell ";
            }
            m_out += row == 3 ? "\\lastrow\\row\n" : "\\row\n";
        }
        m_out += "\\pard\n";
    }

    QByteArray m_out;
    quint32 m_seed = 1;
};

} // namespace quorvane
