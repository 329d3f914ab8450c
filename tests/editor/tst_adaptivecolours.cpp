#include "editor/adaptivecolours.h"
#include "editor/texteditor.h"
#include "richtext/body.h"

#include <QTest>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

constexpr double readable = 4.5;

QPalette paletteOn(const QColor &paper, const QColor &ink)
{
    QPalette palette;
    palette.setColor(QPalette::Base, paper);
    palette.setColor(QPalette::Text, ink);
    return palette;
}

QTextCharFormat colours(const QColor &ink, const QColor &paper = {})
{
    QTextCharFormat format;
    if (ink.isValid()) {
        format.setForeground(ink);
    }
    if (paper.isValid()) {
        format.setBackground(paper);
    }
    return format;
}

} // namespace

class TestAdaptiveColours : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyInkBecomesReadableAndKeepsItsHue();
    void onlyWhatCannotBeReadIsShownOtherwise();
};

void TestAdaptiveColours::everyInkBecomesReadableAndKeepsItsHue()
{
    for (const QColor &paper : {QColor(30, 30, 30), QColor(0, 0, 0), QColor(250, 240, 150)}) {
        for (int hue = 0; hue < 360; hue += 30) {
            for (const int value : {40, 120, 255}) {
                const QColor ink = QColor::fromHsv(hue, 200, value);
                const QColor shown = readableInk(ink, paper);
                QVERIFY(contrastOf(shown, paper) >= readable);
                const int turn = qAbs(shown.hslHue() - ink.hslHue());
                QVERIFY(shown.hslSaturation() < 20 || std::min(turn, 360 - turn) < 12);
            }
        }
    }
    QCOMPARE(qRound(contrastOf(Qt::white, Qt::black)), 21);
}

void TestAdaptiveColours::onlyWhatCannotBeReadIsShownOtherwise()
{
    TextEditor editor;
    VisibleMarks marks(editor);
    AdaptiveColours adaptive(editor, marks);
    auto document = std::make_unique<QTextDocument>();
    QTextCursor cursor(document.get());
    cursor.insertText(u"plain "_s);
    cursor.insertText(u"black "_s, colours(Qt::black));
    cursor.insertText(u"navy "_s, colours(QColor(0, 0, 130)));
    cursor.insertText(u"yellow "_s, colours(Qt::yellow));
    cursor.insertText(u"marked "_s, colours({}, QColor(255, 240, 120)));
    QTextTable *table = cursor.insertTable(1, 1);
    QTextTableCellFormat shading;
    shading.setBackground(QColor(Qt::white));
    table->cellAt(0, 0).setFormat(shading);
    table->cellAt(0, 0).firstCursorPosition().insertText(u"shaded"_s);
    QCOMPARE(editor.showDocument(std::move(document)), TextEditor::ShowResult::Shown);
    const QByteArray body = bodyFromDocument(*editor.content());
    const auto shownOtherwise = [&editor] {
        QStringList texts;
        const auto selections = editor.extraSelections();
        for (const QTextEdit::ExtraSelection &mark : selections) {
            texts << mark.cursor.selectedText().trimmed();
        }
        return texts;
    };
    editor.resize(600, 400);
    editor.show();
    editor.setPalette(paletteOn(QColor(30, 30, 30), Qt::white));
    adaptive.setEnabled(true);
    const QStringList unreadable {u"black"_s, u"navy"_s, u"marked"_s, u"shaded"_s};
    QTRY_COMPARE(shownOtherwise(), unreadable);
    editor.setContentHidden(true);
    QTRY_COMPARE(shownOtherwise(), QStringList());
    editor.setContentHidden(false);
    QTRY_COMPARE(shownOtherwise(), unreadable);
    editor.setPalette(paletteOn(Qt::white, Qt::black));
    QTRY_COMPARE(shownOtherwise(), QStringList());
    QCOMPARE(bodyFromDocument(*editor.content()), body);
}

QTEST_MAIN(TestAdaptiveColours)
#include "tst_adaptivecolours.moc"
