#include "richtext/body.h"
#include "workflow/openeddocument.h"

#include <QFile>

class TestAttachments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDeletedAttachmentIsNotSavedAndComesBackWhole();
    void savingWarnsAndWritesTheVeryBytes();
    void openingMakesACopyThatTheLockTakesAway_data();
    void openingMakesACopyThatTheLockTakesAway();
    void whatMustNotBeOpenedIsRefused_data();
    void whatMustNotBeOpenedIsRefused();
    void aLockIsFasterThanAnAnswer();
    void commandsAreThereWhereTheyCanRun();
};

void TestAttachments::aDeletedAttachmentIsNotSavedAndComesBackWhole()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.bin"_s, "its bytes"));
    QVERIFY(bodyFromDocument(*opened.editor().content()).contains("its bytes"));
    QTest::keyClick(&opened.editor(), Qt::Key_Backspace);
    QVERIFY(!bodyFromDocument(*opened.editor().content()).contains("its bytes"));
    QTest::keyClick(&opened.editor(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(bodyFromDocument(*opened.editor().content()).contains("its bytes"));
}

void TestAttachments::savingWarnsAndWritesTheVeryBytes()
{
    Opened opened;
    auto &files = opened.program.files.files;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.bin"_s, QByteArray("a\0\xff", 3)));
    const auto save = [&](const QString &to) {
        opened.action(TextCommand::SaveAttachmentAs).trigger();
        QTRY_VERIFY(RealProgram::dialogText().contains(u"“b.bin” will not be encrypted"_s));
        QVERIFY(opened.answer(u"Save As…"_s));
        QVERIFY(QTest::qWaitFor([&] { return opened.program.panels.answerSave(to); }));
    };
    save(u"/out/b.bin"_s);
    QCOMPARE(files.value(u"/out/b.bin"_s), QByteArray("a\0\xff", 3));
    QCOMPARE(opened.program.panels.saved.last().name, u"b.bin"_s);
    const QByteArray document = files.value(path);
    save(path); // the document itself
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“letter.quorvane” is an open document"_s));
    QVERIFY(opened.answer(u"OK"_s));
    QCOMPARE(files.value(path), document);
    opened.program.files.replaceError = FileError {ENOSPC, filestep::writing, u"/out/c"_s};
    save(u"/out/c"_s);
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“b.bin” was not saved."_s));
    QVERIFY(opened.answer(u"OK"_s));
}

void TestAttachments::openingMakesACopyThatTheLockTakesAway_data()
{
    QTest::addColumn<bool>("locks");
    QTest::newRow("the lock") << true;
    QTest::newRow("the close") << false;
}

void TestAttachments::openingMakesACopyThatTheLockTakesAway()
{
    QFETCH(bool, locks);
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.pdf"_s, "%PDF words"));
    const QRectF place = placeOf(opened.editor(), opened.attachment(4));
    QWidget *view = opened.editor().viewport();
    QTest::mouseClick(view, Qt::LeftButton, {}, place.center().toPoint());
    QTest::mouseDClick(view, Qt::LeftButton, {}, place.center().toPoint());
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“b.pdf”"_s));
    QCOMPARE(opened.copies(), QStringList()); // nothing before the answer
    QVERIFY(opened.answer(u"Open"_s));
    const QString copy = opened.program.workspace.openedFiles.value(0);
    QVERIFY(copy.startsWith(opened.runtime.path() + u"/quorvane-"_s));
    QFile file(copy);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "%PDF words");
    QCOMPARE(opened.copies(), QStringList {u"b.pdf"_s});
    if (locks) {
        opened.document().doLockDocument();
        QTRY_VERIFY(opened.editor().isContentHidden());
        QCOMPARE(opened.editor().accessibleDescription(), QString());
    } else {
        opened.document().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QTRY_COMPARE(QDir(opened.runtime.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
}

void TestAttachments::whatMustNotBeOpenedIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QString>("words");
    QTest::newRow("a starter") << u"a.desktop"_s << QByteArray("[Desktop Entry]") << true
                               << u"It is a program, or starts one."_s;
    QTest::newRow("a file, without a private place")
        << u"a.pdf"_s << QByteArray("%PDF") << false << u"no private folder in memory"_s;
}

void TestAttachments::whatMustNotBeOpenedIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, hasSession);
    QFETCH(QString, words);
    Opened opened;
    if (!hasSession) {
        opened.document().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        opened.program.runtimePath.clear();
        opened.program.documents.openDocumentWithContentsOfURL(path);
        opened.unlock();
        opened.editor().moveCursor(QTextCursor::End);
    }
    QVERIFY(opened.insert(TextCommand::InsertFile, name, bytes));
    opened.action(TextCommand::OpenAttachment).trigger();
    QTRY_VERIFY2(RealProgram::dialogText().contains(words), qPrintable(RealProgram::dialogText()));
    QVERIFY(RealProgram::dialogText().contains(name));
    QVERIFY(opened.answer(u"OK"_s));
    QCOMPARE(opened.program.workspace.openedFiles, QStringList());
    QCOMPARE(opened.copies(), QStringList());
}

void TestAttachments::aLockIsFasterThanAnAnswer()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.pdf"_s, "%PDF"));
    opened.program.files.files.insert(u"/home/c.txt"_s, "words");
    opened.action(TextCommand::InsertFile).trigger();
    opened.document().doLockDocument();
    QTRY_VERIFY(opened.editor().isContentHidden());
    opened.program.panels.answerSheet(u"/home/c.txt"_s);
    QCoreApplication::processEvents();
    for (const TextCommand command :
         {TextCommand::InsertFile, TextCommand::InsertPicture, TextCommand::OpenAttachment,
          TextCommand::SaveAttachmentAs, TextCommand::PictureSize}) {
        QVERIFY(!opened.action(command).isEnabled());
    }
    opened.unlock();
    QTRY_VERIFY(!opened.editor().isContentHidden());
    QCOMPARE(opened.editor().toPlainText(), u"text"_s + object);
    QCOMPARE(opened.copies(), QStringList());
}

void TestAttachments::commandsAreThereWhereTheyCanRun()
{
    Opened opened;
    QVERIFY(!opened.action(TextCommand::OpenAttachment).isEnabled());
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({20, 10})));
    QVERIFY(opened.action(TextCommand::PictureSize).isEnabled());
    opened.document().setReadOnly();
    QVERIFY(opened.action(TextCommand::OpenAttachment).isEnabled());
    QVERIFY(opened.action(TextCommand::SaveAttachmentAs).isEnabled());
    for (const TextCommand command :
         {TextCommand::InsertFile, TextCommand::InsertPicture, TextCommand::PictureSize}) {
        QVERIFY(!opened.action(command).isEnabled());
    }
    const QPointF corner = placeOf(opened.editor(), opened.attachment(4)).bottomRight();
    select(opened.editor(), opened.attachment(4));
    opened.drag(corner, corner + QPointF(50, 50));
    opened.drop(*imageData({20, 10}));
    opened.paste(imageData({20, 10}));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s + object);
    QCOMPARE(opened.sizeAt(4), QSize(20, 10));
}

QTEST_MAIN(TestAttachments)
#include "tst_attachments.moc"
