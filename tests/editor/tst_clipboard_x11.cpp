#include "editor/texteditor.h"
#include "richtext/body.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QTest>
#include <QTextDocument>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

/// What another program is given; nothing where it is refused.
std::optional<QByteArray> taken(const QString &format)
{
    QProcess other;
    other.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, u"clipboard"_s, u"-target"_s, format});
    const bool ended = QTest::qWaitFor([&other] { return other.state() == QProcess::NotRunning; });
    const bool succeeded =
        ended && other.exitStatus() == QProcess::NormalExit && other.exitCode() == 0;
    return succeeded ? std::optional(other.readAllStandardOutput()) : std::nullopt;
}

} // namespace

/// The clipboard between two programs.
class TestClipboard : public QObject
{
    Q_OBJECT

private slots:
    void anotherProgramTakesRtfUntilTheTextIsHidden();
    void rtfOfAnotherProgramIsPasted();
};

void TestClipboard::anotherProgramTakesRtfUntilTheTextIsHidden()
{
    TextEditor editor;
    editor.show();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    QVERIFY(editor.insertText(u"copied words"_s));
    editor.selectAll();
    editor.copy();
    for (const QString &format : {u"text/rtf"_s, u"application/rtf"_s}) {
        const QByteArray rtf = taken(format).value_or("refused");
        QCOMPARE(plainTextFromBody(rtf), u"copied words"_s);
        QCOMPARE(formOf(rtf), BodyForm::Rtf);
    }
    QCOMPARE(taken(u"UTF8_STRING"_s), std::optional<QByteArray>("copied words"));
    editor.setContentHidden(true);
    QCOMPARE(taken(u"text/rtf"_s), std::optional<QByteArray>());
    QCOMPARE(taken(u"UTF8_STRING"_s), std::optional<QByteArray>());
}

void TestClipboard::rtfOfAnotherProgramIsPasted()
{
    TextEditor editor;
    editor.show();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    QProcess other;
    other.start(
        u"xclip"_s,
        {u"-i"_s, u"-quiet"_s, u"-selection"_s, u"clipboard"_s, u"-target"_s, u"text/rtf"_s});
    other.write("{\\rtf1 {\\b from elsewhere}}");
    other.closeWriteChannel();
    const QClipboard *clipboard = QGuiApplication::clipboard();
    QVERIFY(QTest::qWaitFor([&] { return clipboard->mimeData()->hasFormat(u"text/rtf"_s); }));
    editor.paste();
    QCOMPARE(editor.toPlainText(), u"from elsewhere"_s);
    QCOMPARE(editor.textCursor().charFormat().fontWeight(), int(QFont::Bold));
    other.kill();
    QVERIFY(other.waitForFinished());
}

QTEST_MAIN(TestClipboard)
#include "tst_clipboard_x11.moc"
