#include "document/documentfile.h"
#include "documentfixture.h"
#include "platform/nskeyedarchiver.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

DocumentFile read(const std::optional<QByteArray> &data)
{
    return data ? DocumentFile::fromData(*data).value_or(DocumentFile()) : DocumentFile();
}

/// What changed from one file to the next, of what is renewed on saving.
QStringList renewed(const DocumentFile &before, const DocumentFile &after)
{
    QStringList fields;
    if (before.salt != after.salt && before.iv != after.iv) {
        fields << u"salt and IV"_s;
    }
    if (before.rc != after.rc && before.sha1Rc != after.sha1Rc) {
        fields << u"check"_s;
    }
    if (before.textData != after.textData) {
        fields << u"body"_s;
    }
    return fields;
}

} // namespace

class TestDocumentSaving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachEventRenewsWhatItHasTo_data();
    void eachEventRenewsWhatItHasTo();
    void eachFieldHasItsClassAndLength();
    void aSavedDocumentOpensWithItsPasswordAndNoOther();
    void dateAddressNoteAndSwitchComeBackAsTheyWere();
    void anAlteredFileIsRefusedOrDamaged_data();
    void anAlteredFileIsRefusedOrDamaged();
    void theFrameInTheFileIsThatOfTheUnlockedWindow();
    void aSealedDocumentIsNeverWritten();
    void aDocumentWithoutAPasswordIsNeverWritten();
    void aFailedWriteKeepsTheDocumentEditedAndTellsThePath();
    void aDocumentWithNothingInItSavesAndOpens();
};

void TestDocumentSaving::eachEventRenewsWhatItHasTo_data()
{
    QTest::addColumn<bool>("lockFirst");
    QTest::addColumn<bool>("changePassword");
    QTest::addColumn<QStringList>("expected");
    const QStringList all {u"salt and IV"_s, u"check"_s, u"body"_s};
    QTest::newRow("a save while unlocked renews everything") << false << false << all;
    QTest::newRow("a save with another password renews everything") << false << true << all;
    QTest::newRow("a lock with the same password makes only the body anew, under the kept values")
        << true << false << QStringList {u"body"_s};
    QTest::newRow("a lock with another password renews everything") << true << true << all;
}

void TestDocumentSaving::eachEventRenewsWhatItHasTo()
{
    QFETCH(bool, lockFirst);
    QFETCH(bool, changePassword);
    World world;
    MyDocument document(world.surroundings());
    document.setPlainPassword(u"first password"_s);
    document.setMyTextViewData(QByteArray("one"));
    const DocumentFile before = read(document.dataOfType());
    if (changePassword) {
        document.setPlainPassword(u"second password"_s);
    }
    document.setMyTextViewData(QByteArray("two"));
    if (lockFirst) {
        document.doLockDocument();
    }
    const DocumentFile after = read(document.dataOfType());
    QTEST(renewed(before, after), "expected");
    QCOMPARE(document.releaseToDecryptDoc(), 20400);
    if (lockFirst) {
        QCOMPARE(renewed(after, read(document.dataOfType())), QStringList());
    }
}

void TestDocumentSaving::eachFieldHasItsClassAndLength()
{
    World world;
    const DocumentFile file = read(fileOf(world, QByteArray(32, 'b'), u"secret password"_s));
    QCOMPARE(file.appversion, quint64(20400));
    QCOMPARE(file.salt->size(), 8);
    QCOMPARE(file.iv->size(), 16);
    QCOMPARE(file.sha1Rc->size(), 20);
    QCOMPARE(file.textData->size(), 48);
    QCOMPARE(file.crMAC->size(), 16);
    QVERIFY(file.rc->size() > 256 && file.rc->size() % 16 == 0);
    QVERIFY(file.crDate->size() % 16 == 0);
    QCOMPARE(file.windowRec, std::optional(NSRect()));
    QCOMPARE(file.isEditable, std::optional(true));
}

void TestDocumentSaving::aSavedDocumentOpensWithItsPasswordAndNoOther()
{
    World world;
    const QByteArray body("Zwölf Boxkämpfer");
    MyDocument document(world.surroundings());
    QVERIFY(document.readFromData(fileOf(world, body, u"größer 密码"_s)));
    QVERIFY(document.isEncrypted() && !document.requiresMandatoryPassword());
    for (const auto &wrong : {u"größer 密"_s, u"GRÖSSER 密码"_s, u" größer 密码"_s}) {
        document.setPlainPassword(wrong);
        QVERIFY(document.Decript() != 0);
        QVERIFY(!document.myTextViewData());
    }
    document.setPlainPassword(u"größer 密码"_s);
    QCOMPARE(document.Decript(), 0);
    QCOMPARE(document.myTextViewData(), std::optional(body));
}

void TestDocumentSaving::dateAddressNoteAndSwitchComeBackAsTheyWere()
{
    World world;
    MyDocument made(world.surroundings());
    made.setPlainPassword(u"password"_s);
    made.setMyTextViewData(QByteArray("text"));
    made.setMyPublicTextData(u"a note\nof two lines"_s);
    made.setMyIsEditable(false);
    MyDocument opened(world.surroundings());
    QVERIFY(opened.readFromData(*made.dataOfType()));
    QCOMPARE(opened.myPublicTextData(), made.myPublicTextData());
    QCOMPARE(opened.myIsEditable(), false);
    opened.setPlainPassword(u"password"_s);
    QCOMPARE(opened.Decript(), 0);
    QCOMPARE(opened.myCrDate(), made.myCrDate());
    QCOMPARE(opened.myCrMAC().value_or(QByteArray()), made.myCrMAC().value_or(QByteArray()));
}

void TestDocumentSaving::anAlteredFileIsRefusedOrDamaged_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("opens");
    QTest::newRow("another digest refuses the right password") << u"sha1Rc"_s << false;
    QTest::newRow("a missing digest refuses the right password") << u"no sha1Rc"_s << false;
    QTest::newRow("a check record cut short is refused") << u"rc"_s << false;
    QTest::newRow("a missing salt is a failed decryption") << u"no salt"_s << false;
    QTest::newRow("a missing vector is a failed decryption") << u"no iv"_s << false;
    QTest::newRow("a missing body is a failed decryption") << u"no textData"_s << false;
    QTest::newRow("a damaged creation date is a failed decryption") << u"crDate"_s << false;
    QTest::newRow("a byte early in the body damages the text alone") << u"textData"_s << true;
}

void TestDocumentSaving::anAlteredFileIsRefusedOrDamaged()
{
    QFETCH(QString, field);
    QFETCH(bool, opens);
    World world;
    const QByteArray body(100, 'b');
    DocumentFile file = read(fileOf(world, body, u"password"_s));
    const auto alter = [](std::optional<QByteArray> &bytes) {
        bytes->data()[3] = char(~bytes->at(3));
    };
    if (field == u"sha1Rc"_s) {
        alter(file.sha1Rc);
    } else if (field == u"no sha1Rc"_s) {
        file.sha1Rc.reset();
    } else if (field == u"rc"_s) {
        file.rc->chop(16);
    } else if (field == u"no salt"_s) {
        file.salt.reset();
    } else if (field == u"no iv"_s) {
        file.iv.reset();
    } else if (field == u"no textData"_s) {
        file.textData.reset();
    } else if (field == u"crDate"_s) {
        alter(file.crDate);
    } else {
        alter(file.textData);
    }
    MyDocument document(world.surroundings());
    QVERIFY(document.readFromData(file.toData()));
    document.setPlainPassword(u"password"_s);
    QCOMPARE(document.Decript() == 0, opens);
    QCOMPARE(document.myTextViewData().has_value(), opens);
    QVERIFY(document.myTextViewData() != body);
}

void TestDocumentSaving::theFrameInTheFileIsThatOfTheUnlockedWindow()
{
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", u"password"_s));
    QVERIFY(windowed.isRead);
    windowed.document->submitPasswordToDecrypt(u"password"_s);
    const NSRect unlocked {40, 50, 900, 700};
    windowed.outlets->window.currentFrame = unlocked;
    windowed.outlets->toolbar.visible = true;
    QCOMPARE(read(windowed.document->dataOfType()).windowRec, std::optional(unlocked));
    windowed.document->doLockDocument();
    QVERIFY(windowed.outlets->window.currentFrame.height < unlocked.height);
    const DocumentFile locked = read(windowed.document->dataOfType());
    QCOMPARE(locked.windowRec, std::optional(unlocked));
    QCOMPARE(locked.makeToolbarVisibleAtDecrypt, std::optional(true));

    WindowedDocument created(world);
    created.show(world);
    created.document->setPlainPassword(u"password"_s);
    created.document->doLockDocument();
    const std::optional<NSObject> root =
        NSKeyedUnarchiver::unarchiveObjectWithData(*created.document->dataOfType());
    QVERIFY2(!root->dictionary()->contains(u"windowRecX"_s),
             "only a file that was read gives a frame to keep");
    QVERIFY(root->dictionary()->contains(u"makeToolbarVisibleAtDecrypt"_s));
}

void TestDocumentSaving::aSealedDocumentIsNeverWritten()
{
    World world;
    const QByteArray file = fileOf(world, "text", u"password"_s);
    WindowedDocument sealed(world, file);
    sealed.document->setFileURL(u"/documents/a.quorvane"_s);
    sealed.document->submitPasswordToDecrypt(u"wrong one"_s);
    world.queue.runAll();
    sealed.outlets->window.answer(AlertAnswer::First);
    bool isSaved = true;
    static_cast<NSDocument &>(*sealed.document).saveDocument([&isSaved](bool saved) {
        isSaved = saved;
    });
    world.queue.runAll();
    QVERIFY(!isSaved);
    QCOMPARE(world.files.replaces, 0);
    QVERIFY(sealed.outlets->window.alerts.last().messageText.contains(u"a.quorvane"_s));
}

void TestDocumentSaving::aDocumentWithoutAPasswordIsNeverWritten()
{
    World world;
    WindowedDocument windowed(world);
    windowed.show(world);
    windowed.outlets->textView.type("text");
    windowed.document->setFileURL(u"/documents/a.quorvane"_s);
    windowed.document->saveDocument();
    QCOMPARE(world.files.replaces, 0);
    QVERIFY(windowed.document->isDocumentEdited());
}

void TestDocumentSaving::aFailedWriteKeepsTheDocumentEditedAndTellsThePath()
{
    World world;
    WindowedDocument windowed(world);
    windowed.show(world);
    windowed.document->setPlainPassword(u"password"_s);
    windowed.outlets->textView.type("text");
    windowed.document->textDidChange();
    world.files.replaceError =
        FileError {ENOSPC, u"writing the new file"_s, u"/documents/a.quorvane"_s};
    windowed.document->saveDocument();
    world.queue.runAll();
    QVERIFY(world.panels.answerSave(u"/documents/a.quorvane"_s));
    world.queue.runAll();
    QVERIFY(windowed.document->isDocumentEdited() && windowed.outlets->window.isDocumentEdited);
    QVERIFY(!windowed.document->fileURL());
    const NSAlert told = windowed.outlets->window.alerts.last();
    QVERIFY(told.messageText.contains(u"a.quorvane"_s)
            && told.informativeText.contains(u"/documents/"_s));
    windowed.outlets->window.answer(AlertAnswer::First);
    world.queue.runAll();
    QVERIFY(told.informativeText.contains(u"has not been changed"_s));
    // The new file stands, but it is not sure to outlive a power cut: it is to be saved once more.
    world.files.replaceError =
        FileError {EIO, filestep::flushingFolder, u"/documents/a.quorvane"_s};
    windowed.document->setFileURL(u"/documents/a.quorvane"_s);
    windowed.document->saveDocument();
    world.queue.runAll();
    QVERIFY(windowed.document->isDocumentEdited());
    QVERIFY(!windowed.outlets->window.alerts.last().informativeText.contains(
        u"has not been changed"_s));
    windowed.outlets->window.answer(AlertAnswer::First);
    world.files.replaceError.reset();
    windowed.document->setFileURL(u"/documents/a.quorvane"_s);
    windowed.document->saveDocument();
    QVERIFY(!windowed.document->isDocumentEdited());
    QCOMPARE(world.files.files.keys(), QStringList {u"/documents/a.quorvane"_s});
}

void TestDocumentSaving::aDocumentWithNothingInItSavesAndOpens()
{
    World world;
    MyDocument document(world.surroundings());
    document.setPlainPassword(u"password"_s);
    const std::optional<QByteArray> data = document.dataOfType();
    QVERIFY(data);
    QCOMPARE(read(data).textData->size(), 16);
    MyDocument opened(world.surroundings());
    QVERIFY(opened.readFromData(*data));
    opened.setPlainPassword(u"password"_s);
    QCOMPARE(opened.Decript(), 0);
    QCOMPARE(opened.myTextViewData(), std::optional(QByteArray()));
}

QTEST_GUILESS_MAIN(TestDocumentSaving)
#include "tst_documentsaving.moc"
