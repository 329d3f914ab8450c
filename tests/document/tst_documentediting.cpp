#include "document/publicnotedelegate.h"
#include "documentfixture.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

class TestDocumentEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSwitchIsWrittenAndMarksNothing();
    void theConversionAsksFirst_data();
    void theConversionAsksFirst();
    void theConversionKeepsItsOrder_data();
    void theConversionKeepsItsOrder();
    void theNoteSheetIsBegunAndEndedOnTheWindow();
};

void TestDocumentEditing::theSwitchIsWrittenAndMarksNothing()
{
    World world;
    WindowedDocument open(world);
    open.show(world);
    MyDocument &document = *open.document;
    const auto afterwards = [&document](auto operation) {
        operation();
        return document.myIsEditable();
    };
    QVERIFY(!afterwards([&] { document.switchReadAndWrite(); }));
    QVERIFY(afterwards([&] { document.switchReadAndWrite(); }));
    QVERIFY(!afterwards([&] { document.setReadOnly(); }));
    QVERIFY(!afterwards([&] { document.setReadOnly(); }));
    QVERIFY(afterwards([&] { document.setReadAndWrite(); }));
    document.setMyIsEditable(std::nullopt); // as a file may leave it
    QVERIFY(afterwards([&] { document.switchReadAndWrite(); }));
    QVERIFY(!document.isDocumentEdited());
}

void TestDocumentEditing::theConversionAsksFirst_data()
{
    QTest::addColumn<AlertAnswer>("answer");
    QTest::addColumn<bool>("converts");
    QTest::newRow("OK converts at once") << AlertAnswer::First << true;
    QTest::newRow("Cancel does nothing") << AlertAnswer::Second << false;
}

void TestDocumentEditing::theConversionAsksFirst()
{
    QFETCH(AlertAnswer, answer);
    World world;
    WindowedDocument open(world);
    open.show(world);
    open.outlets->textView.type("text");
    open.outlets->textView.calls.clear();
    open.document->makePlainText();
    const NSAlert alert {
        u"Converting all the content in plain text?"_s,
        u"Making a rich text content plain will lose all text styles (such as fonts and colors), images, attachments and document properties."_s,
        {u"OK"_s, u"Cancel"_s},
        NSAlertStyle::Informational};
    QCOMPARE(open.outlets->window.alerts, QList<NSAlert>({alert}));
    open.outlets->window.answer(answer);
    QTEST(!open.outlets->textView.calls.isEmpty(), "converts");
}

void TestDocumentEditing::theConversionKeepsItsOrder_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isRich");
    QTest::addColumn<bool>("isEditable");
    QTest::addColumn<bool>("isTooTall");
    QTest::addColumn<bool>("isInjection");
    QTest::addColumn<QStringList>("calls");
    const QString text = u"setAttributes"_s;
    const QStringList rest {u"setTypingAttributes"_s, u"setDefaultParagraphStyle"_s};
    const QStringList all = QStringList(text) + rest;
    const QByteArray a("a");
    QTest::newRow("a text") << a << true << true << false << false << all;
    QTest::newRow("an empty text: the typing changes")
        << QByteArray() << true << true << false << false << rest;
    QTest::newRow("no rich text") << a << false << true << false << false << QStringList();
    QTest::newRow("read-only") << a << true << false << false << false << QStringList();
    QTest::newRow("it would be too tall")
        << a << true << true << true << false << QStringList(text);
    QTest::newRow("another program: even read-only") << a << true << false << false << true << all;
    QTest::newRow("another program: an empty text")
        << QByteArray() << true << true << false << true << rest;
    QTest::newRow("another program: no rich text")
        << a << false << true << false << true << QStringList();
}

void TestDocumentEditing::theConversionKeepsItsOrder()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isRich);
    QFETCH(bool, isEditable);
    QFETCH(bool, isTooTall);
    QFETCH(bool, isInjection);
    World world;
    WindowedDocument open(world);
    open.show(world);
    world.defaults.setObject("StartupFontSize"_L1, 17.5);
    FakeTextView &view = open.outlets->textView;
    view.type(text);
    view.markUnedited();
    view.isRich = isRich;
    view.isTooTall = isTooTall;
    view.calls.clear();
    view.typingFont = std::nullopt;
    open.document->setMyIsEditable(isEditable);
    if (isInjection) {
        open.document->setContentAsText(u"not read"_s);
    } else {
        open.document->doMakePlainText();
    }
    QCOMPARE(open.document->isDocumentEdited(), isInjection && isRich);
    QCOMPARE(view.body().value_or(QByteArray()), text);
    QTEST(view.calls, "calls");
    const NSFont font {u"Helvetica"_s, 17.5};
    QVERIFY(view.calls.isEmpty() || view.textFont.value_or(font) == font);
    QCOMPARE(view.typingFont.has_value(), view.calls.size() > 1);
    QCOMPARE(view.paragraphs.defaultTabInterval, 80.0);
}

void TestDocumentEditing::theNoteSheetIsBegunAndEndedOnTheWindow()
{
    World world;
    WindowedDocument open(world);
    open.show(world);
    QVERIFY(!open.outlets->noteView.usesFontPanel && !open.outlets->noteView.usesRuler);
    open.document->editPublicNote();
    QVERIFY(open.outlets->noteSheet.isUp());
    open.document->closePublicNoteSheet();
    QVERIFY(!open.outlets->noteSheet.isUp() && !open.document->isDocumentEdited());
    PublicNoteDelegate delegate(*open.document);
    delegate.textDidChange();
    QVERIFY(open.document->isDocumentEdited());
}

QTEST_GUILESS_MAIN(TestDocumentEditing)
#include "tst_documentediting.moc"
