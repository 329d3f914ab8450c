#include "document/documentfixture.h"
#include "editor/documentprinter.h"
#include "editor/editorview.h"
#include "editor/printjob.h"
#include "editor/printpreview.h"
#include "editor/texteditor.h"
#include "platform/posixfilestore.h"
#include "platform_qt/dialogsheet.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QPageRanges>
#include <QPalette>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

/// What a program of poppler-utils says of the PDF.
QByteArray told(const QByteArray &pdf, const QString &program, QStringList arguments)
{
    QProcess process;
    process.start(program, arguments << u"-"_s << u"-"_s);
    process.write(pdf);
    process.closeWriteChannel();
    process.waitForFinished();
    return process.readAllStandardOutput();
}

QImage firstPage(const QByteArray &pdf)
{
    const QStringList arguments {u"-png"_s, u"-r"_s, u"50"_s, u"-singlefile"_s};
    QProcess process;
    process.start(u"pdftoppm"_s, arguments + QStringList {u"-"_s});
    process.write(pdf);
    process.closeWriteChannel();
    process.waitForFinished();
    return QImage::fromData(process.readAllStandardOutput());
}

QByteArray printed(const QByteArray &body)
{
    QTextDocument document;
    readBody(body, document);
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(PrintJob::resolutionFor(document));
    PrintJob job(document, writer);
    while (job.painted() < job.total()) {
        if (!job.paintNext()) {
            return {};
        }
    }
    return job.finish() ? pdf : QByteArray();
}

QDialog *dialog()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (auto *found = qobject_cast<QDialog *>(widget); found && found->isVisible()) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

class TestDocumentPrinter : public QObject
{
    Q_OBJECT

private slots:
    void everyPageHasItsText();
    void aPageBreakOfTheTextIsOneOfThePaper();
    void whatTheToolkitLeavesOutIsPrinted();
    void pagesComeInTheOrderThatIsAskedFor_data();
    void pagesComeInTheOrderThatIsAskedFor();
    void aLongTextIsPrintedAtAResolutionThatHoldsIt();
    void thePaperIsWhiteUnderTheColoursOfTheText();
    void aPdfIsPutInPlaceForItsOwnerAlone_data();
    void aPdfIsPutInPlaceForItsOwnerAlone();
    void thePreviewTurnsItsPagesAndSaysWhatIsNext();
};

void TestDocumentPrinter::everyPageHasItsText()
{
    QByteArray body;
    for (int line = 0; line < 300; ++line) {
        body += "line " + QByteArray::number(line) + ".\n";
    }
    const QByteArray text = told(printed(body), u"pdftotext"_s, {});
    QVERIFY(text.count('\f') > 3);
    for (int line = 0; line < 300; ++line) {
        QCOMPARE(text.count("line " + QByteArray::number(line) + "."), 1);
    }
}

void TestDocumentPrinter::aPageBreakOfTheTextIsOneOfThePaper()
{
    const QList<QByteArray> pages =
        told(printed("one\ftwo\nthree\n\ffour"), u"pdftotext"_s, {}).split('\f');
    QCOMPARE(pages.size(), 4); // behind each page is a mark
    QCOMPARE(pages.at(0).trimmed(), "one");
    QCOMPARE(pages.at(1).simplified(), "two three");
    QCOMPARE(pages.at(2).trimmed(), "four");
}

void TestDocumentPrinter::whatTheToolkitLeavesOutIsPrinted()
{
    const QByteArray body =
        "{\\rtf1{\\*\\listtable{\\list{\\listlevel\\levelnfc0\\levelstartat3{\\leveltext\\'02\\'00)"
        ";}}"
        "\\listid1}}{\\*\\listoverridetable{\\listoverride\\listid1\\ls1}}\\pard\\ls1 item\\par "
        "\\pard\\tqr\\tldot\\tx3000 left\\tab right\\par\\pard\\pagebb next}";
    const QList<QByteArray> pages = told(printed(body), u"pdftotext"_s, {}).split('\f');
    QCOMPARE(pages.size(), 3);
    QVERIFY(pages.at(0).contains("3)"));
    QVERIFY(pages.at(0).contains("....."));
    QCOMPARE(pages.at(1).trimmed(), "next");
}

void TestDocumentPrinter::pagesComeInTheOrderThatIsAskedFor_data()
{
    QTest::addColumn<QString>("ranges");
    QTest::addColumn<int>("copies");
    QTest::addColumn<bool>("collates");
    QTest::addColumn<bool>("backwards");
    QTest::addColumn<QByteArray>("pages");
    QTest::newRow("all") << u""_s << 1 << true << false << QByteArray("1 2 3");
    QTest::newRow("some") << u"1,3-9"_s << 1 << true << false << QByteArray("1 3");
    QTest::newRow("backwards") << u"2-3"_s << 1 << true << true << QByteArray("3 2");
    QTest::newRow("copies") << u""_s << 2 << true << false << QByteArray("1 2 3 1 2 3");
    QTest::newRow("copies by page") << u"1-2"_s << 2 << false << false << QByteArray("1 1 2 2");
    QTest::newRow("none") << u"7"_s << 1 << true << false << QByteArray();
}

void TestDocumentPrinter::pagesComeInTheOrderThatIsAskedFor()
{
    QFETCH(QString, ranges);
    QFETCH(int, copies);
    QFETCH(bool, collates);
    QFETCH(bool, backwards);
    QFETCH(QByteArray, pages);
    QTextDocument document;
    document.setPlainText(u"1\f2\f3"_s);
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    PrintJob job(document, writer);
    job.setPages(QPageRanges::fromString(ranges), copies, collates, backwards);
    while (job.painted() < job.total()) {
        QVERIFY(job.paintNext());
    }
    QCOMPARE(told(pages.isEmpty() || !job.finish() ? QByteArray() : pdf, u"pdftotext"_s, {})
                 .simplified(),
             pages);
}

void TestDocumentPrinter::aLongTextIsPrintedAtAResolutionThatHoldsIt()
{
    QTextDocument document;
    document.setPlainText(u"short"_s);
    QCOMPARE(PrintJob::resolutionFor(document), PrintJob::bestResolution);
    document.setDefaultFont(QFont(u"DejaVu Sans"_s, 400));
    document.setPlainText(u"i\n"_s.repeated(20'000));
    const int resolution = PrintJob::resolutionFor(document);
    QVERIFY(resolution < PrintJob::bestResolution && resolution >= 96);
}

void TestDocumentPrinter::thePaperIsWhiteUnderTheColoursOfTheText()
{
    const QPalette before = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(20, 20, 20)));
    QImage red(8, 8, QImage::Format_RGB32);
    red.fill(Qt::red);
    QBuffer png;
    QVERIFY(png.open(QIODevice::WriteOnly) && red.save(&png, "PNG"));
    const QImage page = firstPage(printed(
        writeFlatRtfd({{"a.bin", FlatRtfdEntry::Kind::File, "bytes", {}},
                       {"a.png", FlatRtfdEntry::Kind::File, png.data(), {}},
                       {"TXT.rtf",
                        FlatRtfdEntry::Kind::File,
                        "{\\rtf1 \\fs96 text {{\\NeXTGraphic a.bin \\width400 \\height300\n}\xac}"
                        "{{\\NeXTGraphic a.png \\width1440 \\height1440\n}\xac}}",
                        {}}})));
    QApplication::setPalette(before);
    int dark = 0;
    int light = 0;
    int reddish = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            const QRgb colour = page.pixel(x, y);
            dark += qGray(colour) < 64 && qRed(colour) < 64 ? 1 : 0;
            light += qGray(colour) > 240 ? 1 : 0;
            reddish += qRed(colour) > 240 && qGreen(colour) < 16 ? 1 : 0;
        }
    }
    QVERIFY(dark > 100 && dark < 800); // the letters, but not the file's sign
    QVERIFY(light > page.width() * page.height() * 9 / 10);
    QVERIFY(reddish > 48 * 48 && reddish < 52 * 52); // an inch, at 50 dots
}

void TestDocumentPrinter::aPdfIsPutInPlaceForItsOwnerAlone_data()
{
    QTest::addColumn<bool>("locks");
    QTest::newRow("the dialog is accepted") << false;
    QTest::newRow("a lock ends the dialog") << true;
}

void TestDocumentPrinter::aPdfIsPutInPlaceForItsOwnerAlone()
{
    QFETCH(bool, locks);
    World world;
    PosixFileStore files;
    Outlets outlets(world.queue);
    MyDocument document(world.surroundings());
    outlets.connectTo(document);
    TextEditor editor;
    const EditorView view(editor);
    QVERIFY(editor.insertText(u"printed words"_s));
    const auto sheetOf = [](QDialog &made) -> NSSheet & {
        return *new DialogSheet(made);
    };
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"out.pdf"_s);
    {
        QWidget window;
        DocumentPrinter printer(document, editor, view, window,
                                {world.queue, files, sheetOf, [](const QString &) {
                                     return false;
                                 }});
        printer.printDocument();
        auto *asked = qobject_cast<QPrintDialog *>(dialog());
        QVERIFY(asked);
        asked->printer()->setOutputFileName(path);
        if (locks) {
            document.setIsEncrypted(true);
            outlets.window.answer(modalResponseStop);
        } else {
            asked->done(QDialog::Accepted);
        }
        world.queue.runAll();
    }
    document.disconnectOutlets();
    QFile file(path);
    QCOMPARE(file.open(QIODevice::ReadOnly), !locks);
    if (!locks) {
        QCOMPARE(told(file.readAll(), u"pdftotext"_s, {}).simplified(), "printed words");
        QVERIFY(!(file.permissions() & (QFile::ReadGroup | QFile::ReadOther)));
    }
}

void TestDocumentPrinter::thePreviewTurnsItsPagesAndSaysWhatIsNext()
{
    QTextDocument document;
    readBody("one\ftwo\fthree", document);
    QPrinter printer(QPrinter::HighResolution);
    PrintPreview preview(document, printer, nullptr);
    preview.show();
    const auto *place = preview.findChild<QLabel *>();
    const auto choose = [&preview](const QString &title) {
        const auto actions = preview.findChildren<QAction *>();
        const auto named = std::find_if(actions.begin(), actions.end(), [&](const QAction *action) {
            return action->text() == title;
        });
        (*named)->trigger();
        return (*named)->isEnabled();
    };
    QTRY_COMPARE(place->text(), u"1 of 3"_s);
    QVERIFY(!choose(u"Previous"_s));
    choose(u"Next"_s);
    QVERIFY(!choose(u"Next"_s));
    QCOMPARE(place->text(), u"3 of 3"_s);
    choose(u"Print…"_s);
    QCOMPARE(preview.result(), PrintPreview::printCode);
    QVERIFY(!preview.isVisible());
}

QTEST_MAIN(TestDocumentPrinter)
#include "tst_documentprinter.moc"
