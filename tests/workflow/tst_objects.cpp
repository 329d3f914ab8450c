#include "editor/draggedattachment.h"
#include "richtext/attachmentstore.h"
#include "support/writtentext.h"
#include "workflow/openeddocument.h"

#include <QCheckBox>
#include <QDoubleSpinBox>

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
    void whatIsPutBehindALinkIsNoPartOfIt();
    void aHandleResizesInOneStep_data();
    void aHandleResizesInOneStep();
    void theSizeIsSetByKeysAlone();
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
    const auto again = savedAndRead(*opened.editor().content());
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
    const auto again = savedAndRead(*opened.editor().content());
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

void TestObjects::whatIsPutBehindALinkIsNoPartOfIt()
{
    Opened opened(R"({\rtf1{\field{\*\fldinst HYPERLINK "http://a.b"}{\fldrslt text}}})");
    QVERIFY(opened.insert(TextCommand::InsertPicture, u"a.png"_s, png({20, 10})));
    QVERIFY(!opened.attachment(4).format.hasProperty(LinkLook));
    QTest::keyClicks(&opened.editor(), u"ab"_s);
    const QTextCharFormat typed = opened.editor().textCursor().charFormat();
    QVERIFY(!typed.hasProperty(AttachmentName) && !typed.isAnchor());
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
    QFETCH(QSize, size);
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
    const QSize resized = opened.sizeAt(4);
    const QSize off = resized - size;
    QVERIFY2(qAbs(off.width()) <= 2 && qAbs(off.height()) <= 2,
             qPrintable(u"%1 x %2"_s.arg(resized.width()).arg(resized.height())));
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
    const auto ask = [&] {
        opened.action(TextCommand::PictureSize).trigger(); // the caret is behind the picture
        QTRY_VERIFY(RealProgram::dialog());
    };
    const auto enter = [&](const QString &name, const QString &keys) {
        auto *field = RealProgram::dialog()->findChildren<QDoubleSpinBox *>().value(
            name == "Width"_L1 ? 0 : 1);
        QCOMPARE(field->accessibleName(), name);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, keys);
    };
    ask();
    enter(u"Width"_s, u"80"_s);
    QTest::keyClick(RealProgram::dialog(), Qt::Key_Return);
    QTRY_VERIFY(!RealProgram::dialog());
    QCOMPARE(opened.sizeAt(4), QSize(80, 40));
    ask();
    RealProgram::dialog()->findChild<QCheckBox *>()->click();
    enter(u"Height"_s, u"70"_s);
    QVERIFY(opened.answer(u"Resize"_s));
    QCOMPARE(opened.sizeAt(4), QSize(80, 70));
    QCOMPARE(opened.undoName(), u"Resize Picture"_s);
    ask();
    RealProgram::press(u"Original Size"_s);
    QVERIFY(opened.answer(u"Resize"_s));
    QCOMPARE(opened.sizeAt(4), QSize(200, 100));
    ask();
    enter(u"Width"_s, u"33"_s);
    QTest::keyClick(RealProgram::dialog(), Qt::Key_Escape);
    QTRY_VERIFY(!RealProgram::dialog());
    QCOMPARE(opened.sizeAt(4), QSize(200, 100));
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
