#include "richtext/richtextexport.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QXmlStreamReader>

#include <functional>
#include <optional>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

const QString program = u"soffice"_s;
constexpr int patience = 120'000; // milliseconds: its first start is slow

using Properties = QHash<QString, QString>;

/// What LibreOffice has understood, from the XML that it writes.
class Understood
{
public:
    Understood() = default;

    explicit Understood(const QByteArray &fodt)
    {
        QXmlStreamReader xml(fodt);
        while (!xml.atEnd()) {
            const auto token = xml.readNext();
            if (token == QXmlStreamReader::StartElement) {
                begin(xml);
            } else if (token == QXmlStreamReader::EndElement) {
                end(xml.name());
            } else if (token == QXmlStreamReader::Characters && m_isBody
                       && !m_paragraphs.isEmpty()) {
                append(xml.text().toString());
            }
        }
    }

    /// The properties of the run of exactly that text, and of its paragraph.
    Properties of(const QString &text) const { return m_runs.value(text); }

    /// The paragraphs, with what they stand in: "item 1", "cell 2".
    QStringList outline() const { return m_outline; }

private:
    void begin(const QXmlStreamReader &xml)
    {
        const QStringView name = xml.name();
        const auto value = [&](QLatin1StringView wanted) {
            for (const QXmlStreamAttribute &attribute : xml.attributes()) {
                if (attribute.name() == wanted) {
                    return attribute.value().toString();
                }
            }
            return QString();
        };
        if (name == "style"_L1 || name == "list-style"_L1) {
            m_style = value("name"_L1);
            m_styles[m_style] = m_styles.value(value("parent-style-name"_L1));
        } else if (name.startsWith("list-level-style"_L1)) {
            const QString level = u"level"_s + value("level"_L1) + u' ';
            for (const auto &key :
                 {"bullet-char"_L1, "num-format"_L1, "num-prefix"_L1, "num-suffix"_L1}) {
                m_styles[m_style].insert(level + key, value(key));
            }
        } else if (name.endsWith("-properties"_L1)) {
            for (const QXmlStreamAttribute &attribute : xml.attributes()) {
                m_styles[m_style].insert(attribute.name().toString(), attribute.value().toString());
            }
        } else if (name == "body"_L1) {
            m_isBody = true;
        } else if (name == "p"_L1 || name == "h"_L1) {
            m_paragraphs << m_styles.value(value("style-name"_L1));
            m_line.clear();
        } else if (name == "span"_L1) {
            m_spans << m_styles.value(value("style-name"_L1));
        } else if (name == "a"_L1) {
            m_link = value("href"_L1);
        } else if (name == "list"_L1) {
            ++m_lists;
            m_listStyle = value("style-name"_L1).isEmpty() ? m_listStyle : value("style-name"_L1);
        } else if (name == "table-cell"_L1) {
            m_cells << m_styles.value(value("style-name"_L1));
            m_cells.last().insert(u"columns"_s, value("number-columns-spanned"_L1));
            m_cells.last().insert(u"rows"_s, value("number-rows-spanned"_L1));
        } else if (name == "tab"_L1 && m_isBody) {
            append(u"\t"_s);
        } else if (name == "line-break"_L1 && m_isBody) {
            append(u"\u2028"_s);
        } else if (name == "s"_L1 && m_isBody) {
            append(u" "_s.repeated(std::max(value("c"_L1).toInt(), 1)));
        } else if (name == "image"_L1 && m_isBody) {
            append(u"(image)"_s);
        }
    }

    void end(QStringView name)
    {
        if (name == "span"_L1) {
            m_spans.removeLast();
        } else if (name == "a"_L1) {
            m_link.clear();
        } else if (name == "list"_L1) {
            --m_lists;
        } else if (name == "table-cell"_L1) {
            m_cells.removeLast();
        } else if ((name == "p"_L1 || name == "h"_L1) && m_isBody) {
            m_paragraphs.removeLast();
            const QString list = m_lists > 0 ? u"item "_s + QString::number(m_lists) + u' ' : u""_s;
            const QString cell =
                m_cells.isEmpty() ? u""_s : u"cell "_s + QString::number(m_cells.size()) + u' ';
            m_outline << cell + list + m_line;
        }
    }

    void append(const QString &text)
    {
        m_line += text;
        Properties &run = m_runs[text];
        run = m_paragraphs.isEmpty() ? Properties() : m_paragraphs.last();
        for (const Properties &span : m_spans) {
            for (auto property = span.begin(); property != span.end(); ++property) {
                if (*property != "transparent"_L1) {
                    run.insert(property.key(), *property);
                }
            }
        }
        run.insert(u"href"_s, m_link);
        if (!m_cells.isEmpty()) {
            run.insert(m_cells.last());
        }
        if (m_lists > 0) {
            run.insert(m_styles.value(m_listStyle));
        }
    }

    bool m_isBody = false;
    QString m_style;
    QHash<QString, Properties> m_styles;
    QList<Properties> m_paragraphs;
    QList<Properties> m_spans;
    QList<Properties> m_cells;
    int m_lists = 0;
    QString m_listStyle;
    QString m_link;
    QString m_line;
    QHash<QString, Properties> m_runs;
    QStringList m_outline;
};

QTextCharFormat plain()
{
    QTextCharFormat format;
    format.setFontFamilies({u"Helvetica"_s});
    format.setFontPointSize(12);
    return format;
}

void insertRuns(QTextCursor &cursor)
{
    const auto run = [&](const QString &text,
                         const std::function<void(QTextCharFormat &)> &change) {
        QTextCharFormat format = plain();
        change(format);
        cursor.insertText(text, format);
        cursor.insertText(u"|"_s, plain());
    };
    run(u"plain"_s, [](QTextCharFormat &) {});
    run(u"bold"_s, [](QTextCharFormat &f) { f.setFontWeight(QFont::Bold); });
    run(u"italic"_s, [](QTextCharFormat &f) { f.setFontItalic(true); });
    run(u"small"_s, [](QTextCharFormat &f) { f.setFontPointSize(7.5); });
    run(u"red"_s, [](QTextCharFormat &f) { f.setForeground(QColor(255, 0, 51)); });
    run(u"marked"_s, [](QTextCharFormat &f) { f.setBackground(QColor(255, 255, 0)); });
    run(u"wavy"_s, [](QTextCharFormat &f) { f.setUnderlineStyle(QTextCharFormat::WaveUnderline); });
    run(u"struck"_s, [](QTextCharFormat &f) { f.setFontStrikeOut(true); });
    run(u"raised"_s,
        [](QTextCharFormat &f) { f.setVerticalAlignment(QTextCharFormat::AlignSuperScript); });
    run(u"wide"_s, [](QTextCharFormat &f) {
        f.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        f.setFontLetterSpacing(2);
    });
    run(u"capitals"_s, [](QTextCharFormat &f) { f.setFontCapitalization(QFont::SmallCaps); });
    run(u"times"_s, [](QTextCharFormat &f) { f.setFontFamilies({u"Times New Roman"_s}); });
    run(u"linked"_s, [](QTextCharFormat &f) {
        f.setAnchor(true);
        f.setAnchorHref(u"https://example.org/?a=1&b=2"_s);
    });
    run(u"\u00e9\u20ac\u3042\U0001F600\u2028x\t{}\\;"_s, [](QTextCharFormat &) {});
}

void insertParagraph(QTextCursor &cursor)
{
    QTextBlockFormat format;
    format.setAlignment(Qt::AlignHCenter);
    format.setLeftMargin(48);
    format.setTextIndent(-24);
    format.setTopMargin(8);
    format.setLineHeight(150, QTextBlockFormat::ProportionalHeight);
    format.setBackground(QColor(0, 255, 0));
    cursor.insertBlock(format, plain());
    cursor.insertText(u"paragraph"_s);
}

void insertLists(QTextCursor &cursor)
{
    cursor.insertBlock(QTextBlockFormat(), plain());
    cursor.createList(QTextListFormat::ListDisc);
    cursor.insertText(u"one"_s);
    cursor.insertBlock();
    cursor.insertText(u"two"_s);
    QTextListFormat inner;
    inner.setStyle(QTextListFormat::ListUpperRoman);
    inner.setIndent(2);
    inner.setNumberPrefix(u"("_s);
    inner.setNumberSuffix(u")"_s);
    cursor.insertBlock();
    cursor.createList(inner);
    cursor.insertText(u"inner"_s);
    cursor.insertBlock(QTextBlockFormat(), plain());
    cursor.insertText(u"before table"_s);
}

void insertTable(QTextCursor &cursor)
{
    QTextTableFormat format;
    format.setColumnWidthConstraints({QTextLength(QTextLength::FixedLength, 100),
                                      QTextLength(QTextLength::FixedLength, 200),
                                      QTextLength(QTextLength::FixedLength, 150)});
    QTextTable *table = cursor.insertTable(3, 3, format);
    const auto fill = [table](int row, int column, const QString &text) {
        table->cellAt(row, column).firstCursorPosition().insertText(text, plain());
    };
    fill(0, 0, u"wide cell"_s);
    fill(1, 0, u"tall cell"_s);
    fill(0, 2, u"coloured"_s);
    fill(1, 1, u"11"_s);
    fill(1, 2, u"12"_s);
    fill(2, 1, u"21"_s);
    fill(2, 2, u"22"_s);
    QTextTableCellFormat coloured;
    coloured.setBackground(QColor(0, 0, 255));
    coloured.setVerticalAlignment(QTextCharFormat::AlignMiddle);
    coloured.setBorder(2);
    coloured.setBorderStyle(QTextFrameFormat::BorderStyle_Dashed);
    coloured.setBorderBrush(QColor(Qt::red));
    coloured.setPadding(10);
    table->cellAt(0, 2).setFormat(coloured);
    table->mergeCells(0, 0, 1, 2);
    table->mergeCells(1, 0, 2, 1);
    QTextTable *nested = table->cellAt(2, 2).lastCursorPosition().insertTable(1, 2);
    nested->cellAt(0, 0).firstCursorPosition().insertText(u"nested 0"_s, plain());
    nested->cellAt(0, 1).firstCursorPosition().insertText(u"nested 1"_s, plain());
}

/// \return the text as LibreOffice would save it, or nothing where it would not open it.
std::optional<QByteArray> openedByOffice(const QByteArray &rtf)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"text.rtf"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(rtf) != rtf.size()) {
        return std::nullopt;
    }
    file.close();
    QProcess office;
    office.start(program,
                 {u"-env:UserInstallation=file://"_s + folder.filePath(u"profile"_s),
                  u"--headless"_s, u"--convert-to"_s, u"fodt"_s, u"--outdir"_s, folder.path(),
                  file.fileName()});
    QFile result(folder.filePath(u"text.fodt"_s));
    if (!office.waitForFinished(patience) || !result.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return result.readAll();
}

} // namespace

/// Another program, which knows nothing of us, shows what we write.
class TestLibreOffice : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void showsTheTextInItsPlaces();
    void showsTheStyle_data();
    void showsTheStyle();

private:
    void openText();

    Understood m_shown;
};

void TestLibreOffice::initTestCase()
{
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        QSKIP("There is no soffice on this machine: libreoffice-writer-nogui has it.");
    }
    openText();
}

void TestLibreOffice::openText()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    insertRuns(cursor);
    insertParagraph(cursor);
    insertLists(cursor);
    insertTable(cursor);
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(u"after"_s, plain());
    const std::optional<QByteArray> shown = openedByOffice(rtfFromDocument(document));
    QVERIFY(shown);
    m_shown = Understood(*shown);
}

void TestLibreOffice::showsTheTextInItsPlaces()
{
    const QStringList expected {
        u"plain|bold|italic|small|red|marked|wavy|struck|raised|wide|capitals|times|linked|"
        "\u00e9\u20ac\u3042\U0001F600\u2028x\t{}\\;|"_s,
        u"paragraph"_s,
        u"item 1 one"_s,
        u"item 1 two"_s,
        u"item 2 inner"_s,
        u"before table"_s,
        u"cell 1 wide cell"_s,
        u"cell 1 coloured"_s,
        u"cell 1 tall cell"_s,
        u"cell 1 11"_s,
        u"cell 1 12"_s,
        u"cell 1 21"_s,
        u"cell 1 22"_s,
        u"cell 2 nested 0"_s,
        u"cell 2 nested 1"_s,
        u"cell 1 "_s,
        u"after"_s,
    };
    QCOMPARE(m_shown.outline(), expected);
}

void TestLibreOffice::showsTheStyle_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    const auto row = [](const char *text, const QString &property, const QString &value) {
        QTest::addRow("%s: %s", text, qPrintable(property)) << property << value;
    };
    row("plain", u"font-weight"_s, QString());
    row("bold", u"font-weight"_s, u"bold"_s);
    row("italic", u"font-style"_s, u"italic"_s);
    row("small", u"font-size"_s, u"7.5pt"_s);
    row("red", u"color"_s, u"#ff0033"_s);
    row("marked", u"background-color"_s, u"#ffff00"_s);
    row("wavy", u"text-underline-style"_s, u"wave"_s);
    row("struck", u"text-line-through-style"_s, u"solid"_s);
    row("raised", u"text-position"_s, u"super 58%"_s);
    row("wide", u"letter-spacing"_s, u"0.0209in"_s);
    row("capitals", u"font-variant"_s, u"small-caps"_s);
    row("times", u"font-name"_s, u"TimesNewRomanPSMT"_s);
    row("linked", u"href"_s, u"https://example.org/?a=1&b=2"_s);
    row("paragraph", u"text-align"_s, u"center"_s);
    row("paragraph", u"margin-left"_s, u"0.5in"_s);
    row("paragraph", u"text-indent"_s, u"-0.25in"_s);
    row("paragraph", u"margin-top"_s, u"0.0835in"_s);
    row("paragraph", u"line-height"_s, u"150%"_s);
    row("paragraph", u"background-color"_s, u"#00ff00"_s);
    row("one", u"level1 bullet-char"_s, u"\u2022"_s);
    row("inner", u"level2 num-format"_s, u"I"_s);
    row("inner", u"level2 num-prefix"_s, u"("_s);
    row("inner", u"level2 num-suffix"_s, u")"_s);
    row("wide cell", u"columns"_s, u"2"_s);
    row("tall cell", u"rows"_s, u"2"_s);
    row("tall cell", u"columns"_s, QString());
    row("coloured", u"background-color"_s, u"#0000ff"_s);
    row("coloured", u"vertical-align"_s, u"middle"_s);
    row("coloured", u"border"_s, u"1.5pt dashed #ff0000"_s);
    row("coloured", u"padding"_s, u"0.1042in"_s);
}

void TestLibreOffice::showsTheStyle()
{
    QFETCH(QString, property);
    QFETCH(QString, value);
    const QString text = QString::fromUtf8(QTest::currentDataTag()).section(u": "_s, 0, 0);
    QCOMPARE(m_shown.of(text).value(property), value);
}

QTEST_MAIN(TestLibreOffice)
#include "tst_libreoffice.moc"
