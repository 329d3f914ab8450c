#include "editor/draggedattachment.h"
#include "editor/placedattachment.h"
#include "editor/textcommands.h"
#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/textproperties.h"
#include "workflow/realprogram.h"

#include <QBuffer>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTextDocument>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QString path = u"/documents/letter.quorvane"_s;
const QString object(QChar::ObjectReplacementCharacter);

QImage image(const QSize &size)
{
    QImage made(size, QImage::Format_RGB32);
    made.fill(Qt::darkGreen);
    return made;
}

QByteArray png(const QSize &size)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image(size).save(&buffer, "PNG") ? bytes : QByteArray();
}

/// The program with one document from a file, unlocked.
struct Opened
{
    explicit Opened(const QByteArray &body = "text", bool isEditable = true)
    {
        program.runtimePath = runtime.path();
        program.files.files.insert(path, program.fileOf(body, password, isEditable));
        program.documents.openDocumentWithContentsOfURL(path);
        unlock();
        editor().moveCursor(QTextCursor::End);
    }

    void unlock()
    {
        RealProgram::type(program.window().lockedPage(), u"Master Password"_s, password);
        QTest::keyClick(RealProgram::field(program.window().lockedPage(), u"Master Password"_s),
                        Qt::Key_Return);
    }

    TextEditor &editor() const { return program.editor(); }

    QAction &action(TextCommand command) const
    {
        program.window().commands().validate();
        return program.window().commands().action(command);
    }

    /// Presses that button of the question that comes.
    bool answer(const QString &button)
    {
        return QTest::qWaitFor([] { return RealProgram::dialog() != nullptr; })
            && RealProgram::press(button)
            && QTest::qWaitFor([] { return RealProgram::dialog() == nullptr; });
    }

    bool insert(TextCommand command, const QString &name, const QByteArray &bytes)
    {
        program.files.files.insert(u"/home/"_s + name, bytes);
        return choose(command, u"/home/"_s + name);
    }

    bool choose(TextCommand command, const QString &file)
    {
        // A sheet that was answered goes on a later turn.
        const bool mayRun = QTest::qWaitFor([&] { return action(command).isEnabled(); });
        action(command).trigger();
        const bool isChosen =
            mayRun && QTest::qWaitFor([&] { return program.panels.answerSheet(file); });
        QCoreApplication::processEvents();
        return isChosen;
    }

    void paste(std::unique_ptr<QMimeData> data) const
    {
        QGuiApplication::clipboard()->setMimeData(data.release());
        editor().paste();
    }

    void drop(const QMimeData &data) const
    {
        const QPoint place(30, 30);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(editor().viewport(), &enter);
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        if (enter.isAccepted()) {
            QCoreApplication::sendEvent(editor().viewport(), &drop);
        }
    }

    PlacedAttachment attachment(int position) const
    {
        return attachmentAt(*editor().document(), position).value_or(PlacedAttachment());
    }

    QSize sizeAt(int position) const // in pixels
    {
        const QTextCharFormat format = attachment(position).format;
        return QSize(format.intProperty(AttachmentWidth), format.intProperty(AttachmentHeight))
            / 15;
    }

    QString undoName() const { return editor().undoNames().undoName(); }

    void drag(const QPointF &from, const QPointF &to, Qt::KeyboardModifiers modifiers = {},
              bool isDropped = true) const
    {
        QWidget *view = editor().viewport();
        QTest::mousePress(view, Qt::LeftButton, {}, from.toPoint());
        QMouseEvent move(QEvent::MouseMove, to, view->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         modifiers);
        QCoreApplication::sendEvent(view, &move);
        if (!isDropped) {
            QTest::keyClick(&editor(), Qt::Key_Escape);
        }
        QTest::mouseRelease(view, Qt::LeftButton, modifiers, to.toPoint());
    }

    QStringList copies() const
    {
        QStringList found;
        for (const QString &folder :
             QDir(runtime.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QDir inner(runtime.filePath(folder));
            for (const QString &each : inner.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                found += QDir(inner.filePath(each)).entryList(QDir::Files);
            }
        }
        return found;
    }

    QTemporaryDir runtime;
    RealProgram program;
};

/// What is saved and read again.
std::unique_ptr<QTextDocument> reopened(const QTextDocument &document)
{
    auto again = std::make_unique<QTextDocument>();
    readBody(bodyFromDocument(document), *again);
    return again;
}

std::unique_ptr<QMimeData> imageData(const QSize &size)
{
    auto data = std::make_unique<QMimeData>();
    data->setImageData(image(size));
    return data;
}

} // namespace

class TestObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsPutIntoTheTextIsSavedWithItsNameAndBytes_data();
    void whatIsPutIntoTheTextIsSavedWithItsNameAndBytes();
    void whatIsPastedBecomesAPictureWhereItIsOne_data();
    void whatIsPastedBecomesAPictureWhereItIsOne();
    void whatCannotBeInsertedIsToldByItsName_data();
    void whatCannotBeInsertedIsToldByItsName();
    void aLargeFileIsAskedAboutFirst();
    void droppedFilesStandWhereTheyWereDropped();
    void aDeletedAttachmentIsNotSavedAndComesBackWhole();
    void whatIsTypedBehindIsOrdinaryText();
    void aHandleResizesInOneStep_data();
    void aHandleResizesInOneStep();
    void theSizeIsSetByKeysAlone();
    void savingWarnsAndWritesTheVeryBytes();
    void openingMakesACopyThatTheLockTakesAway_data();
    void openingMakesACopyThatTheLockTakesAway();
    void whatMustNotBeOpenedIsRefused_data();
    void whatMustNotBeOpenedIsRefused();
    void aLockIsFasterThanAnAnswer();
    void commandsAreThereWhereTheyCanRun();
    void aDragMakesItsFileOnlyWhenAsked();
    void aPictureIsNeverWiderThanItsColumn();
};

void TestObjects::whatIsPutIntoTheTextIsSavedWithItsNameAndBytes_data()
{
    QTest::addColumn<TextCommand>("command");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("undoName");
    QTest::newRow("a picture") << TextCommand::InsertPicture << u"a.png"_s << png({120, 80})
                               << QSize(120, 80) << u"Insert Picture"_s;
    QTest::newRow("a picture as a file") << TextCommand::InsertFile << u"a.png"_s << png({120, 80})
                                         << QSize(0, 0) << u"Insert File"_s;
    QTest::newRow("a name beyond ASCII")
        << TextCommand::InsertFile << u"Müller — 文.pdf"_s << QByteArray("%PDF\0\xff", 6)
        << QSize(0, 0) << u"Insert File"_s;
    QTest::newRow("an empty file")
        << TextCommand::InsertFile << u"empty"_s << QByteArray() << QSize(0, 0) << u"Insert File"_s;
}

void TestObjects::whatIsPutIntoTheTextIsSavedWithItsNameAndBytes()
{
    QFETCH(TextCommand, command);
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    Opened opened;
    QVERIFY(opened.insert(command, name, bytes));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s + object);
    QTEST(opened.undoName(), "undoName");
    QTEST(opened.sizeAt(4), "size");
    QVERIFY(opened.insert(command, name, bytes)); // the second one of its name
    const auto again = reopened(*opened.editor().content());
    const auto *store = AttachmentStore::find(*again);
    QCOMPARE(attachmentAt(*again, 4)->name(), name);
    QCOMPARE(attachmentAt(*again, 4)->format.intProperty(AttachmentWidth),
             opened.attachment(4).format.intProperty(AttachmentWidth));
    const QString second = attachmentAt(*again, 5)->name();
    QVERIFY(second != name && store->entry(second));
    QCOMPARE(store->entry(name)->bytes, bytes);
    QCOMPARE(store->entry(second)->bytes, bytes);
    opened.editor().undo();
    opened.editor().undo();
    QCOMPARE(opened.editor().toPlainText(), u"text"_s);
    opened.editor().redo();
    QCOMPARE(opened.attachment(4).name(), name);
}

void TestObjects::whatIsPastedBecomesAPictureWhereItIsOne_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QByteArray>("encoded");
    QTest::addColumn<bool>("isImage");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    const QString inside = u"<p>a<img src='data:image/png;base64,%1' width=40></p>"_s.arg(
        QString::fromLatin1(png({120, 80}).toBase64()));
    QTest::newRow("an image") << QString() << QByteArray() << true << object
                              << u"Pasted Image.png"_s;
    QTest::newRow("an image with its very bytes")
        << QString() << png({120, 80}) << false << object << u"Pasted Image.png"_s;
    QTest::newRow("an image that a page shows")
        << u"<img src='https://example.org/a.png'>"_s << png({120, 80}) << false << object
        << u"Pasted Image.png"_s;
    QTest::newRow("words, with a rendering of them")
        << u"<p>words</p>"_s << png({120, 80}) << false << u"words"_s << QString();
    QTest::newRow("an image within HTML")
        << inside << QByteArray() << false << u"a"_s + object << u"Pasted Image.png"_s;
}

void TestObjects::whatIsPastedBecomesAPictureWhereItIsOne()
{
    QFETCH(QString, html);
    QFETCH(QByteArray, encoded);
    QFETCH(bool, isImage);
    QFETCH(QString, text);
    QFETCH(QString, name);
    Opened opened {QByteArray()};
    std::unique_ptr<QMimeData> data =
        isImage ? imageData({120, 80}) : std::make_unique<QMimeData>();
    if (!html.isEmpty()) {
        data->setHtml(html);
    }
    if (!encoded.isEmpty()) {
        data->setData(u"image/png"_s, encoded);
    }
    opened.paste(std::move(data));
    QCOMPARE(opened.editor().toPlainText(), text);
    const auto again = reopened(*opened.editor().content());
    QCOMPARE(again->toPlainText(), text);
    if (!name.isEmpty()) {
        const int at = int(text.indexOf(object));
        const auto picture = attachmentAt(*again, at);
        QCOMPARE(picture->name(), name);
        QCOMPARE(opened.sizeAt(at), at == 0 ? QSize(120, 80) : QSize(40, 27));
        const QByteArray bytes = AttachmentStore::find(*again)->entry(name)->bytes;
        QVERIFY(encoded.isEmpty() || bytes == encoded);
        QCOMPARE(QImage::fromData(bytes).size(), QSize(120, 80));
    }
}

void TestObjects::whatCannotBeInsertedIsToldByItsName_data()
{
    QTest::addColumn<TextCommand>("command");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("words");
    QTest::newRow("a missing file")
        << TextCommand::InsertFile << u"/home/gone.txt"_s << u"“gone.txt” could not be read."_s;
    QTest::newRow("a folder") << TextCommand::InsertFile << QDir::tempPath() << u"is a folder"_s;
    QTest::newRow("a picture that is none")
        << TextCommand::InsertPicture << u"/home/a.png"_s << u"“a.png” is no picture"_s;
}

void TestObjects::whatCannotBeInsertedIsToldByItsName()
{
    QFETCH(TextCommand, command);
    QFETCH(QString, file);
    QFETCH(QString, words);
    Opened opened;
    opened.program.files.files.insert(u"/home/a.png"_s, "words");
    opened.choose(command, file);
    QTRY_VERIFY2(RealProgram::dialogText().contains(words), qPrintable(RealProgram::dialogText()));
    QVERIFY(opened.answer(u"OK"_s));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s);
    QVERIFY(!opened.editor().document()->isUndoAvailable());
}

void TestObjects::aLargeFileIsAskedAboutFirst()
{
    Opened opened;
    const QByteArray large(25'000'001, 'x');
    opened.insert(TextCommand::InsertFile, u"large.bin"_s, large);
    QTRY_VERIFY(RealProgram::dialogText().contains(u"“large.bin” has 25.0 MB."_s));
    QVERIFY(opened.answer(u"Cancel"_s));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s);
    opened.insert(TextCommand::InsertFile, u"large.bin"_s, large);
    QVERIFY2(opened.answer(u"Insert"_s), qPrintable(RealProgram::dialogText()));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s + object);
}

void TestObjects::droppedFilesStandWhereTheyWereDropped()
{
    Opened opened;
    opened.program.files.files.insert(u"/home/a.png"_s, png({20, 10}));
    opened.program.files.files.insert(u"/home/b.txt"_s, "words");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(u"/home/a.png"_s), QUrl::fromLocalFile(u"/home/b.txt"_s)});
    opened.drop(data);
    QCOMPARE(opened.editor().toPlainText().count(object), 2);
    QCOMPARE(opened.undoName(), u"Drag and Drop"_s);
    opened.editor().undo();
    QCOMPARE(opened.editor().toPlainText(), u"text"_s);
    opened.drop(*imageData({20, 10}));
    QCOMPARE(opened.editor().toPlainText().count(object), 1);
}

void TestObjects::aDeletedAttachmentIsNotSavedAndComesBackWhole()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.bin"_s, "its bytes"));
    QVERIFY(bodyFromDocument(*opened.editor().content()).contains("its bytes"));
    QTest::keyClick(&opened.editor(), Qt::Key_Backspace);
    QVERIFY(!bodyFromDocument(*opened.editor().content()).contains("its bytes"));
    QTest::keyClick(&opened.editor(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(bodyFromDocument(*opened.editor().content()).contains("its bytes"));
}

void TestObjects::whatIsTypedBehindIsOrdinaryText()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({20, 10})));
    QTest::keyClicks(&opened.editor(), u"ab"_s);
    QTextCursor cursor = opened.editor().textCursor();
    QVERIFY(!cursor.charFormat().hasProperty(AttachmentName));
    QCOMPARE(opened.editor().toPlainText(), u"text"_s + object + u"ab"_s);
}

void TestObjects::aHandleResizesInOneStep_data()
{
    QTest::addColumn<QPointF>("handle"); // 0 to 1 of the picture
    QTest::addColumn<QPointF>("by");
    QTest::addColumn<bool>("withShift");
    QTest::addColumn<bool>("isDropped");
    QTest::addColumn<QSize>("size");
    QTest::newRow("the corner keeps the ratio")
        << QPointF(1, 1) << QPointF(100, 10) << false << true << QSize(300, 150);
    QTest::newRow("the right edge keeps the ratio too")
        << QPointF(1, 0.5) << QPointF(-100, 0) << false << true << QSize(100, 50);
    QTest::newRow("the upper left corner grows away from it")
        << QPointF(0, 0) << QPointF(-20, -10) << false << true << QSize(220, 110);
    QTest::newRow("Shift frees the ratio")
        << QPointF(1, 1) << QPointF(100, -50) << true << true << QSize(300, 50);
    QTest::newRow("no smaller than can be seen")
        << QPointF(1, 1) << QPointF(-500, -500) << false << true << QSize(16, 8);
    QTest::newRow("Escape leaves it")
        << QPointF(1, 1) << QPointF(100, 50) << false << false << QSize(200, 100);
}

void TestObjects::aHandleResizesInOneStep()
{
    QFETCH(QPointF, handle);
    QFETCH(QPointF, by);
    QFETCH(bool, withShift);
    QFETCH(bool, isDropped);
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({200, 100})));
    const QRectF place = placeOf(opened.editor(), opened.attachment(4));
    QCOMPARE(place.size().toSize(), QSize(200, 100));
    QTest::mouseClick(opened.editor().viewport(), Qt::LeftButton, {}, place.center().toPoint());
    QVERIFY(selectedAttachment(opened.editor()));
    QCOMPARE(opened.editor().accessibleDescription(), u"Picture “a.png” is selected"_s);
    const QPointF from =
        place.topLeft() + QPointF(place.width() * handle.x(), place.height() * handle.y());
    opened.drag(from, from.toPoint() + by, withShift ? Qt::ShiftModifier : Qt::NoModifier,
                isDropped);
    const QSize size = opened.sizeAt(4);
    const QSize wanted = QTest::qData("size", QMetaType::fromType<QSize>().id())
        ? *static_cast<QSize *>(QTest::qData("size", QMetaType::fromType<QSize>().id()))
        : QSize();
    const QSize off = size - wanted;
    QVERIFY2(qAbs(off.width()) <= 2 && qAbs(off.height()) <= 2,
             qPrintable(u"%1 x %2"_s.arg(size.width()).arg(size.height())));
    QVERIFY(selectedAttachment(opened.editor()));
    QCOMPARE(opened.undoName(), isDropped ? u"Resize Picture"_s : u"Insert Picture"_s);
    if (isDropped) {
        opened.editor().undo();
        QCOMPARE(opened.sizeAt(4), QSize(200, 100));
    }
}

void TestObjects::theSizeIsSetByKeysAlone()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({200, 100})));
    const auto enter = [&](const QString &name, const QString &keys) {
        auto *field = RealProgram::dialog()->findChildren<QDoubleSpinBox *>().value(
            name == "Width"_L1 ? 0 : 1);
        QCOMPARE(field->accessibleName(), name);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, keys);
    };
    opened.action(TextCommand::PictureSize).trigger(); // the caret is behind the picture
    QTRY_VERIFY(RealProgram::dialog());
    enter(u"Width"_s, u"80"_s);
    QTest::keyClick(RealProgram::dialog(), Qt::Key_Return);
    QTRY_VERIFY(!RealProgram::dialog());
    QCOMPARE(opened.sizeAt(4), QSize(80, 40));
    opened.action(TextCommand::PictureSize).trigger();
    QTRY_VERIFY(RealProgram::dialog());
    RealProgram::dialog()->findChild<QCheckBox *>()->click();
    enter(u"Height"_s, u"70"_s);
    QVERIFY(opened.answer(u"Resize"_s));
    QCOMPARE(opened.sizeAt(4), QSize(80, 70));
    QCOMPARE(opened.undoName(), u"Resize Picture"_s);
    opened.action(TextCommand::PictureSize).trigger();
    QTRY_VERIFY(RealProgram::dialog());
    RealProgram::press(u"Original Size"_s);
    QVERIFY(opened.answer(u"Resize"_s));
    QCOMPARE(opened.sizeAt(4), QSize(200, 100));
    opened.action(TextCommand::PictureSize).trigger();
    QTRY_VERIFY(RealProgram::dialog());
    enter(u"Width"_s, u"33"_s);
    QTest::keyClick(RealProgram::dialog(), Qt::Key_Escape);
    QTRY_VERIFY(!RealProgram::dialog());
    QCOMPARE(opened.sizeAt(4), QSize(200, 100));
}

void TestObjects::savingWarnsAndWritesTheVeryBytes()
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

void TestObjects::openingMakesACopyThatTheLockTakesAway_data()
{
    QTest::addColumn<bool>("locks");
    QTest::newRow("the lock") << true;
    QTest::newRow("the close") << false;
}

void TestObjects::openingMakesACopyThatTheLockTakesAway()
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
        opened.program.document()->doLockDocument();
        QTRY_VERIFY(opened.editor().isContentHidden());
        QCOMPARE(opened.editor().accessibleDescription(), QString());
    } else {
        opened.program.document()->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QTRY_COMPARE(QDir(opened.runtime.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
}

void TestObjects::whatMustNotBeOpenedIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QString>("words");
    QTest::newRow("a starter") << u"a.desktop"_s << QByteArray("[Desktop Entry]") << true
                               << u"It is a program, or starts one."_s;
    QTest::newRow("a script") << u"a.txt"_s << QByteArray("#!/bin/sh") << true
                              << u"It is a program, or starts one."_s;
    QTest::newRow("a file, without a private place")
        << u"a.pdf"_s << QByteArray("%PDF") << false << u"no private folder in memory"_s;
}

void TestObjects::whatMustNotBeOpenedIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, hasSession);
    QFETCH(QString, words);
    Opened opened;
    if (!hasSession) {
        opened.program.document()->close();
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

void TestObjects::aLockIsFasterThanAnAnswer()
{
    Opened opened;
    QVERIFY(opened.insert(TextCommand::InsertFile, u"b.pdf"_s, "%PDF"));
    opened.program.files.files.insert(u"/home/c.txt"_s, "words");
    opened.action(TextCommand::InsertFile).trigger();
    opened.program.document()->doLockDocument();
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

void TestObjects::commandsAreThereWhereTheyCanRun()
{
    Opened opened;
    QVERIFY(!opened.action(TextCommand::OpenAttachment).isEnabled());
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({20, 10})));
    QVERIFY(opened.action(TextCommand::PictureSize).isEnabled());
    opened.program.document()->setReadOnly();
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

void TestObjects::aDragMakesItsFileOnlyWhenAsked()
{
    int asked = 0;
    auto text = std::make_unique<QMimeData>();
    text->setData(u"text/rtf"_s, "{\\rtf1}");
    const DraggedAttachment dragged(std::move(text), [&asked] {
        ++asked;
        return std::optional(u"/run/user/1/quorvane-a/1/a b.pdf"_s);
    });
    QVERIFY(dragged.hasUrls());
    QCOMPARE(dragged.data(u"text/rtf"_s), "{\\rtf1}");
    QCOMPARE(asked, 0);
    QCOMPARE(dragged.data(u"text/uri-list"_s), "file:///run/user/1/quorvane-a/1/a%20b.pdf\r\n");
    QCOMPARE(dragged.urls().value(0).toLocalFile(), u"/run/user/1/quorvane-a/1/a b.pdf"_s);
    QCOMPARE(asked, 2);
}

void TestObjects::aPictureIsNeverWiderThanItsColumn()
{
    Opened opened;
    const auto resize = [&](int width) {
        QSize last;
        int resting = 0; // looks at a window that has the same size: it grows after an unlock
        const bool rests = QTest::qWaitFor([&] {
            const QSize now = opened.program.window().size();
            resting = now == std::exchange(last, now) ? resting + 1 : 0;
            return resting > 40;
        });
        opened.program.window().resize(width, 700);
        return rests && QTest::qWaitFor([&] {
                   return qAbs(opened.editor().viewport()->width() - width) < 40;
               });
    };
    QVERIFY(resize(900));
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({2000, 1000})));
    const QSize inserted = opened.sizeAt(4);
    QVERIFY(inserted.width() <= 700 && inserted.width() == 2 * inserted.height());
    QVERIFY(resize(500));
    const QRectF place = placeOf(opened.editor(), opened.attachment(4));
    QVERIFY(place.width() > 250 && place.right() <= opened.editor().viewport()->width());
    QVERIFY(qAbs(place.width() / place.height() - 2) < 0.02);
    QCOMPARE(opened.sizeAt(4), inserted); // what is saved stays
}

QTEST_MAIN(TestObjects)
#include "tst_objects.moc"
