#include "document/documentfile.h"
#include "documentfixture.h"
#include "platform/nskeyedarchiver.h"

#include <QTest>

#include <limits>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"secret password"_s;

/// Keeps no rule of its own: what a document is before a class says how it decrypts.
class BareDocument final : public QVCryptoDoc
{
public:
    using QVCryptoDoc::QVCryptoDoc;

    std::optional<QByteArray> dataOfType() override { return std::nullopt; }

    bool readFromData(const QByteArray &) override { return true; }

    void makeWindowControllers() override { }
};

} // namespace

class TestDocumentState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewDocumentIsOpenUnmarkedAndHasItsToolbar();
    void aDocumentFromAFileShowsTheLockedWindowOnALaterTurn();
    void aFileWithoutABodyTakesTheUnlockedPreparation();
    void theRightPasswordBringsBackTextFrameAndToolbar();
    void theWrongPasswordIsToldAndStaysInTheField();
    void anEmptyFieldDoesNothing();
    void theBareDocumentRefusesEveryPassword();
    void theEditedMarkFollowsItsTable_data();
    void theEditedMarkFollowsItsTable();
    void commandsAreOfferedByState();
    void titlesAndMarksFollowTheReadOnlySwitch_data();
    void titlesAndMarksFollowTheReadOnlySwitch();
    void lockingAsksAndLocksOnALaterTurn();
    void aDocumentOfThisRunComesBackSmallAfterALock();
    void lockedDocumentsCloseAtOnceAndAnswerNobody_data();
    void lockedDocumentsCloseAtOnceAndAnswerNobody();
    void aNewerFileIsRefusedWithItsOwnAlert();
    void defaultsReachTheEditor();
};

void TestDocumentState::aNewDocumentIsOpenUnmarkedAndHasItsToolbar()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    QVERIFY(!fresh.document->isEncrypted() && fresh.document->isDecrypted());
    QVERIFY(fresh.document->requiresMandatoryPassword());
    QVERIFY(!fresh.document->isDocumentEdited());
    QVERIFY(fresh.outlets->toolbar.visible);
    QVERIFY(!fresh.document->myTextViewData());
    QVERIFY(world.fontManager.enabled);
    QCOMPARE(fresh.outlets->window.frames.size(), 0);
}

void TestDocumentState::aDocumentFromAFileShowsTheLockedWindowOnALaterTurn()
{
    World world;
    WindowedDocument sealed(world);
    QVERIFY(sealed.document->readFromData(fileOf(world, "text", password)));
    sealed.document->makeWindowControllers();
    ScriptedWindow &window = sealed.outlets->window;
    QCOMPARE(window.frames.size(), 0);
    QCOMPARE(window.maxSize, window.minimumSize);
    QVERIFY(!window.showsResizeIndicator && !sealed.outlets->shouldCascade);
    QVERIFY(!sealed.outlets->toolbar.visible && !sealed.outlets->toolbar.autosaves);
    QVERIFY2(!world.fontManager.enabled, "one locked window switches the font panel off for all");
    world.queue.runAll();
    QCOMPARE(window.frames, QList<NSRect>({{100, 100 + 600 - 180, 420, 180}}));
    QCOMPARE(window.calls.last(), u"center"_s);
    QVERIFY(!sealed.document->requiresMandatoryPassword());
    QVERIFY(!sealed.document->isDocumentEdited());
}

void TestDocumentState::aFileWithoutABodyTakesTheUnlockedPreparation()
{
    World world;
    DocumentFile file = *DocumentFile::fromData(fileOf(world, "text", password));
    file.textData.reset();
    WindowedDocument windowed(world, file.toData());
    QVERIFY(windowed.isRead && windowed.document->isEncrypted());
    QVERIFY(windowed.outlets->toolbar.visible);
    QCOMPARE(windowed.outlets->window.frames.size(), 0);
}

void TestDocumentState::theRightPasswordBringsBackTextFrameAndToolbar()
{
    World world;
    DocumentFile file = *DocumentFile::fromData(fileOf(world, "text", password));
    file.windowRec = NSRect {30, 40, 700, 500};
    file.makeToolbarVisibleAtDecrypt = true;
    WindowedDocument windowed(world, file.toData());
    ScriptedWindow &window = windowed.outlets->window;
    windowed.outlets->passwordField.text = password;
    window.calls.clear();
    windowed.document->submitPasswordToDecrypt(password);
    QVERIFY(!windowed.document->isEncrypted());
    QCOMPARE(windowed.document->myTextViewData(), std::optional(QByteArray("text")));
    QCOMPARE(window.calls,
             QStringList({u"makeFirstResponder"_s, u"setMaxSize"_s, u"setShowsResizeIndicator"_s,
                          u"setFrame animated"_s}));
    QCOMPARE(window.currentFrame, (NSRect {30, 40, 700, 500}));
    QCOMPARE(window.maxSize.width, double(std::numeric_limits<float>::max()));
    QVERIFY(windowed.outlets->toolbar.visible && windowed.outlets->toolbar.autosaves);
    QVERIFY(world.fontManager.enabled);
    QVERIFY(windowed.outlets->passwordField.text.isEmpty());
    QCOMPARE(windowed.outlets->progress.started, 1);
    QVERIFY(windowed.outlets->progress.hidden);
    QCOMPARE(windowed.document->plainPassword(), password);
    QCOMPARE(windowed.document->plainPasswordInserted(), std::optional(QString(u""_s)));
}

void TestDocumentState::theWrongPasswordIsToldAndStaysInTheField()
{
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    windowed.outlets->passwordField.text = u"wrong one"_s;
    windowed.document->submitPasswordToDecrypt(u"wrong one"_s);
    QVERIFY(windowed.document->isEncrypted());
    QCOMPARE(windowed.outlets->window.alerts,
             QList<NSAlert>({{u"Wrong Password"_s,
                              u"You inserted a wrong password.\nTo access this document you must "
                              u"insert exactly the "
                              "password used to protect it"_s,
                              {u"OK"_s}}}));
    QCOMPARE(windowed.outlets->passwordField.text, u"wrong one"_s);
    QCOMPARE(windowed.document->plainPassword(), u"wrong one"_s);
    QCOMPARE(windowed.document->plainPasswordInserted(), std::optional(QString(u"wrong one"_s)));
    QVERIFY(windowed.outlets->progress.hidden);
    windowed.document->submitPasswordToDecrypt(password);
    QVERIFY(!windowed.document->isEncrypted());
}

void TestDocumentState::anEmptyFieldDoesNothing()
{
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    windowed.document->updateChangeCount(NSDocumentChangeType::Done);
    windowed.document->submitPasswordToDecrypt(u""_s);
    windowed.document->submitPasswordToDecrypt(std::nullopt);
    QVERIFY(windowed.document->isDocumentEdited());
    QCOMPARE(windowed.outlets->window.alerts.size(), 0);
    QCOMPARE(windowed.outlets->progress.started, 0);
}

void TestDocumentState::theBareDocumentRefusesEveryPassword()
{
    World world;
    BareDocument document({world.queue, world.files, world.panels, world.timers}, u"quorvane"_s);
    document.setIsEncrypted(true);
    document.submitPasswordToDecrypt(password);
    QVERIFY(document.isEncrypted());
    QCOMPARE(document.Decript(), 1);
}

void TestDocumentState::theEditedMarkFollowsItsTable_data()
{
    QTest::addColumn<QString>("event");
    QTest::addColumn<bool>("isEdited");
    QTest::newRow("typing sets it") << u"typing"_s << true;
    QTest::newRow("a change of the password sets it") << u"password"_s << true;
    QTest::newRow("a lock leaves it set") << u"lock"_s << true;
    QTest::newRow("a wrong password clears it") << u"wrong"_s << false;
    QTest::newRow("a right password clears it") << u"right"_s << false;
    QTest::newRow("a save clears it") << u"save"_s << false;
    QTest::newRow("the read-only switch does not set it") << u"switch"_s << false;
}

void TestDocumentState::theEditedMarkFollowsItsTable()
{
    QFETCH(QString, event);
    QFETCH(bool, isEdited);
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    MyDocument &document = *windowed.document;
    document.setFileURL(u"/documents/a.quorvane"_s);
    document.submitPasswordToDecrypt(password);
    const auto type = [&windowed] {
        windowed.outlets->textView.type("edited");
        windowed.document->textDidChange();
    };
    if (event == u"password"_s) {
        document.setPlainPasswordPrevious(password);
        document.setPlainPasswordInserted(u"another"_s);
        document.setPlainPasswordInsertedRetype(u"another"_s);
        document.confirmChangePasswordSheet();
    } else if (event == u"switch"_s) {
        document.setMyIsEditable(false);
    } else {
        type();
    }
    if (event == u"save"_s) {
        document.saveDocument();
    }
    if (event == u"lock"_s || event == u"wrong"_s || event == u"right"_s) {
        document.doLockDocument();
    }
    if (event == u"wrong"_s || event == u"right"_s) {
        document.submitPasswordToDecrypt(event == u"right"_s ? password : u"wrong one"_s);
    }
    QCOMPARE(document.isDocumentEdited(), isEdited);
    QCOMPARE(windowed.outlets->window.isDocumentEdited, isEdited);
    if (event == u"right"_s) {
        QCOMPARE(document.myTextViewData(), std::optional(QByteArray("edited")));
    }
}

void TestDocumentState::commandsAreOfferedByState()
{
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    MyDocument &document = *windowed.document;
    const auto offered = [&document] {
        QString marks;
        for (const DocumentAction action :
             {DocumentAction::SaveDocument, DocumentAction::SaveDocumentAs,
              DocumentAction::DocumentPassword, DocumentAction::RevertDocumentToSaved,
              DocumentAction::RunPageLayout, DocumentAction::PrintPreview,
              DocumentAction::PrintDocument, DocumentAction::EditPublicNote,
              DocumentAction::ImportFromTEXT, DocumentAction::ImportFromRTF,
              DocumentAction::ImportFromRTFD, DocumentAction::ExportToTEXT,
              DocumentAction::ExportToRTF, DocumentAction::ExportToRTFD,
              DocumentAction::SwitchReadAndWrite, DocumentAction::MakePlainText,
              DocumentAction::LockDocument, DocumentAction::SetReadOnly,
              DocumentAction::SetReadAndWrite}) {
            marks += document.validateMenuItem(action).enabled ? u'+' : u'-';
        }
        return marks;
    };
    // Who may write and who may only read stays on offer: it says nothing of the content.
    QCOMPARE(offered(), u"-----------------++"_s);
    document.submitPasswordToDecrypt(password);
    QCOMPARE(offered(), u"++++++++++++++++-++"_s); // no file yet: there is nothing to lock back to
    document.setFileURL(u"/documents/a.quorvane"_s);
    QCOMPARE(offered(), u"+++++++++++++++++++"_s);
    document.setMyIsEditable(false);
    QCOMPARE(offered(), u"+++++++++++++++-+++"_s);
    document.doLockDocument();
    QCOMPARE(offered(), u"-----------------++"_s);
    WindowedDocument fresh(world);
    fresh.document->setFileURL(u"/documents/b.quorvane"_s);
    QVERIFY(!fresh.document->validateMenuItem(DocumentAction::LockDocument).enabled);
    QVERIFY(fresh.document->validateMenuItem(DocumentAction::SaveDocument).enabled);
}

void TestDocumentState::titlesAndMarksFollowTheReadOnlySwitch_data()
{
    QTest::addColumn<bool>("isEditable");
    QTest::addColumn<QString>("title");
    QTest::newRow("a document that may be edited") << true << u"Prevent Editing"_s;
    QTest::newRow("a read-only document") << false << u"Allow Editing"_s;
}

void TestDocumentState::titlesAndMarksFollowTheReadOnlySwitch()
{
    QFETCH(const bool, isEditable);
    QFETCH(const QString, title);
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    MyDocument &document = *windowed.document;
    document.setMyIsEditable(isEditable);
    for (const bool locked : {true, false}) { // the title is told of a disabled item too
        QCOMPARE(document.validateMenuItem(DocumentAction::SwitchReadAndWrite),
                 (MenuItemState {!locked, title, {}}));
        QCOMPARE(document.validateMenuItem(DocumentAction::SetReadOnly),
                 (MenuItemState {true, {}, !isEditable}));
        QCOMPARE(document.validateMenuItem(DocumentAction::SetReadAndWrite),
                 (MenuItemState {true, {}, isEditable}));
        document.submitPasswordToDecrypt(password);
    }
}

void TestDocumentState::lockingAsksAndLocksOnALaterTurn()
{
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    MyDocument &document = *windowed.document;
    ScriptedWindow &window = windowed.outlets->window;
    document.submitPasswordToDecrypt(password);
    document.lockDocument();
    QCOMPARE(
        window.alerts.last(),
        (NSAlert {
            u"Lock Document back to the crypted state?"_s,
            u"To browse the document data again you will need to re-insert the master password"_s,
            {u"OK"_s, u"Cancel"_s}}));
    window.answer(AlertAnswer::Second);
    world.queue.runAll();
    QVERIFY(!document.isEncrypted());
    document.updateChangeCount(NSDocumentChangeType::Done);
    document.lockDocument();
    QCOMPARE(window.alerts.last().informativeText,
             u"Before locking the document you need to save it on disk.\nTo browse the document "
             u"data again you will "
             "need to re-insert the master password"_s);
    window.currentFrame = {10, 20, 800, 500.7};
    windowed.outlets->toolbar.visible = true;
    window.answer(AlertAnswer::First);
    QVERIFY(!document.isEncrypted());
    world.queue.runAll();
    QVERIFY(document.isEncrypted());
    QCOMPARE(window.frames.last(), (NSRect {10, 20 + 320, 420, 180}));
    QCOMPARE(document.myWinRectToUse(), (NSRect {10, 20, 800, 500.7}));
    QVERIFY(!windowed.outlets->toolbar.visible && document.makeToolbarVisibleAtDecrypt());
    QVERIFY2(windowed.outlets->toolbar.autosaves && world.fontManager.enabled,
             "a lock leaves both as they are");
    QCOMPARE(world.files.replaces, 0);
}

void TestDocumentState::aDocumentOfThisRunComesBackSmallAfterALock()
{
    World world;
    WindowedDocument windowed(world);
    windowed.show(world);
    windowed.document->setPlainPassword(password);
    windowed.outlets->textView.type("text");
    windowed.document->doLockDocument();
    windowed.document->submitPasswordToDecrypt(password);
    QVERIFY(!windowed.document->isEncrypted());
    QCOMPARE(windowed.outlets->window.currentFrame.height,
             windowed.outlets->window.minimumSize.height);
    QCOMPARE(windowed.document->myTextViewData(), std::optional(QByteArray("text")));
}

void TestDocumentState::lockedDocumentsCloseAtOnceAndAnswerNobody_data()
{
    QTest::addColumn<bool>("wasOpen");
    QTest::newRow("sealed") << false;
    QTest::newRow("locked while marked edited") << true;
}

void TestDocumentState::lockedDocumentsCloseAtOnceAndAnswerNobody()
{
    QFETCH(bool, wasOpen);
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", password));
    if (wasOpen) {
        windowed.document->submitPasswordToDecrypt(password);
        windowed.document->updateChangeCount(NSDocumentChangeType::Done);
        windowed.document->doLockDocument();
    }
    windowed.document->canCloseDocument([](bool) { QFAIL("the caller is not answered"); });
    QVERIFY(windowed.document->isClosed() && windowed.outlets->window.isClosed);
    QCOMPARE(windowed.outlets->window.alerts.size(), 0);
    QCOMPARE(world.files.replaces, 0);
}

void TestDocumentState::aNewerFileIsRefusedWithItsOwnAlert()
{
    World world;
    const NSDictionary newer {{u"appversion"_s, NSNumber::numberWithLong(20401)}};
    MyDocument document(world.surroundings());
    QVERIFY(!document.readFromData(NSKeyedArchiver::archivedDataWithRootObject(NSObject(newer))));
    QVERIFY(document.hasToldWhyNotRead() && !document.requiresMandatoryPassword());
    QVERIFY(document.makeToolbarVisibleAtDecrypt() && !document.isEncrypted());
    QCOMPARE(document.releaseToDecryptDoc(), 0);
    QCOMPARE(world.alerts.shown.size(), 1);
    QCOMPARE(
        world.alerts.shown.first().messageText,
        u"The document you requested to open was created with a more recent version of this application"_s);
    QCOMPARE(world.alerts.shown.first().buttons,
             QStringList({u"Go to Download Last Version"_s, u"Cancel"_s}));
    world.alerts.answer(AlertAnswer::First);
    QCOMPARE(world.workspace.opened.size(), 1);
}

void TestDocumentState::defaultsReachTheEditor()
{
    World world;
    WindowedDocument first(world);
    first.show(world);
    QCOMPARE(first.outlets->textView.typingFont, std::optional(NSFont {u"Helvetica"_s, 12}));
    QVERIFY(first.outlets->textView.checksSpelling && !first.outlets->textView.rulerVisible);
    world.defaults.setObject(settings::startupFontFamily.name, u"No Such Font"_s);
    world.defaults.setObject(settings::startWithRuler.name, true);
    world.defaults.setObject(settings::startWithSpelling.name, false);
    WindowedDocument second(world);
    second.show(world);
    QVERIFY(!second.outlets->textView.typingFont);
    QVERIFY(!second.outlets->textView.checksSpelling && second.outlets->textView.rulerVisible);
    QVERIFY2(first.outlets->textView.checksSpelling, "an open window keeps its state");
}

QTEST_GUILESS_MAIN(TestDocumentState)
#include "tst_documentstate.moc"
