#include "document/documentfixture.h"
#include "editor/editorview.h"
#include "editor/texteditor.h"
#include "editor/texttransfer.h"
#include "platform/posixfilestore.h"
#include "platform/posixpackagestore.h"
#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/textproperties.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

constexpr auto ownersFile =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

const QByteArray styledBody = writeFlatRtfd(
    {{"a.bin", FlatRtfdEntry::Kind::File, QByteArray("\0\xff first", 8), {}},
     {"TXT.rtf",
      FlatRtfdEntry::Kind::File,
      "{\\rtf1\\ansi{\\fonttbl{\\f0 DejaVu Serif;}}{\\colortbl;\\red255\\green0\\blue0;}\\f0\\fs36 "
      "{\\b bold} and {\\cf1 red}\\\n\\pard\\qc centred {{\\NeXTGraphic a.bin \\width400 "
      "\\height300\n}\xac}}",
      {}}});

/// One document with its editor, on the real disk.
class Desk
{
public:
    explicit Desk(const QByteArray &body = QByteArray())
        : outlets(world.queue)
        , document(std::make_unique<MyDocument>(world.surroundings()))
        , view(editor)
    {
        outlets.connectTo(*document);
        document->myTextView = &view;
        document->setMyTextViewData(body);
        const auto isOpen = [this](const QString &path) {
            return openPaths.contains(path);
        };
        transfer = std::make_unique<TextTransfer>(
            *document, editor, view,
            TransferSurroundings {
                {world.queue, files, world.panels, world.timers}, packages, isOpen});
    }

    ~Desk() { document->disconnectOutlets(); }

    void select(int from, int to)
    {
        QTextCursor cursor = editor.textCursor();
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        editor.setTextCursor(cursor);
    }

    /// Runs an import to its end, with that file chosen.
    void import(void (*command)(TextTransfer &), const QString &path)
    {
        command(*transfer);
        world.queue.runAll(); // where a sheet was up before
        world.panels.answerSheet(path);
        world.queue.runAll();
    }

    /// Runs an export up to its panel.
    void beginExport(void (*command)(TextTransfer &))
    {
        command(*transfer);
        world.queue.runAll(); // where a sheet was up before
        outlets.window.answer(AlertAnswer::Second);
        world.queue.runAll();
    }

    World world;
    PosixFileStore files;
    PosixPackageStore packages;
    Outlets outlets;
    std::unique_ptr<MyDocument> document;
    TextEditor editor;
    EditorView view;
    QStringList openPaths;
    std::unique_ptr<TextTransfer> transfer;
};

using Command = void (*)(TextTransfer &);
const Command importText = [](TextTransfer &transfer) {
    transfer.importFromTEXT();
};
const Command importRtf = [](TextTransfer &transfer) {
    transfer.importFromRTF();
};
const Command importRtfd = [](TextTransfer &transfer) {
    transfer.importFromRTFD();
};
const Command exportText = [](TextTransfer &transfer) {
    transfer.exportToTEXT();
};
const Command exportRtf = [](TextTransfer &transfer) {
    transfer.exportToRTF();
};
const Command exportRtfd = [](TextTransfer &transfer) {
    transfer.exportToRTFD();
};

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "not readable";
}

} // namespace

Q_DECLARE_METATYPE(Command)

class TestTextTransfer : public QObject
{
    Q_OBJECT

private slots:

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void anExportWarnsThenAsksWhereTo_data();
    void anExportWarnsThenAsksWhereTo();
    void anExportThatIsNotWantedWritesNothing_data();
    void anExportThatIsNotWantedWritesNothing();
    void textGoesOutAsItsCharacters();
    void anExportIsItsOwnersAloneAndLeavesTheDocumentAlone();
    void anEmptyEditorExportsEmptyFiles();
    void whatCannotBeWrittenIsPassedOverInSilence_data();
    void whatCannotBeWrittenIsPassedOverInSilence();
    void anOpenDocumentIsNotExportedOnto();
    void aTextTooTallToBeShownIsExportedWhole();
    void anImportPutsTheFileInPlaceOfTheSelection_data();
    void anImportPutsTheFileInPlaceOfTheSelection();
    void anImportIsOneStepOfUndoAndMarksTheDocumentEdited();
    void anImportAsksForAnyFileAndNothingMore_data();
    void anImportAsksForAnyFileAndNothingMore();
    void whatWasExportedComesBack_data();
    void whatWasExportedComesBack();
    void everyRoadBringsWhatASaveBrings_data();
    void everyRoadBringsWhatASaveBrings();

private:
    QString inFolder(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestTextTransfer::anExportWarnsThenAsksWhereTo_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("extension");
    const QString plain =
        u"WARNING.\nThis command export the content of this document on a external file.\nContent "
        u"will be saved in the external file in plain text format and will be not "
        u"encrypted.\nEveryone will be able to acces the created external file using a standard "
        u"text viewer.\nThis doesn't in any way affect the protection of the Quorvane file.\nThe "
        u"lack of protection is only in the exported file."_s;
    const QString rich =
        u"WARNING.\nThis command export the content of this document on a external file.\nContent "
        u"will be saved in the external file in RTF format and will be not encrypted.\nEveryone "
        u"will be able to acces the created external file using a standard RTF viewer.\nThis "
        u"doesn't in any way affect the protection of the Quorvane file.\nThe lack of protection "
        u"is only in the exported file."_s;
    QTest::newRow("text") << exportText << u"Export as Unencripted Text File"_s << plain
                          << u"txt"_s;
    QTest::newRow("RTF") << exportRtf << u"Export as Unencripted RTF File"_s << rich << u"rtf"_s;
    QTest::newRow("RTFD warns of RTF")
        << exportRtfd << u"Export as Unencripted RTF File"_s << rich << u"rtfd"_s;
}

void TestTextTransfer::anExportWarnsThenAsksWhereTo()
{
    QFETCH(Command, command);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(QString, extension);
    Desk desk("0123456789");
    desk.select(5, 9);
    command(*desk.transfer);
    const NSAlert expected {title, text, {u"Cancel"_s, u"Export"_s}, NSAlertStyle::Warning};
    QCOMPARE(desk.outlets.window.alerts, QList<NSAlert> {expected});
    QVERIFY(desk.outlets.window.answer(1001));
    QVERIFY(desk.world.panels.saved.isEmpty()); // not inside the alert's handler
    desk.world.queue.runAll();
    const NSSavePanel panel = desk.world.panels.saved.value(0);
    QCOMPARE(panel.allowedFileTypes, QStringList {extension});
    QCOMPARE(panel.directory + panel.name, QString());
    desk.editor.textCursor().insertText(u"late"_s); // what is exported is read at the end
    desk.select(5, 9);
    const QString path = inFolder(u"out."_s + extension);
    QVERIFY(desk.world.panels.answerSheet(path));
    const QByteArray written = contentOf(QFileInfo(path).isDir() ? path + u"/TXT.rtf"_s : path);
    QVERIFY2(written.contains("01234late9"), written.constData());
    QCOMPARE(QFileInfo(path).isDir(), command == exportRtfd);
    QCOMPARE(desk.editor.textCursor().selectedText(), u"late"_s);
}

void TestTextTransfer::anExportThatIsNotWantedWritesNothing_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("locks");
    QTest::addColumn<bool>("panelComes");
    QTest::addColumn<bool>("dismisses");
    QTest::newRow("the alert is cancelled") << 1000 << false << false << false;
    QTest::newRow("the panel is dismissed") << 1001 << false << true << true;
    QTest::newRow("a lock comes before the panel") << 1001 << true << false << false;
    QTest::newRow("a lock comes while the panel is up") << 1001 << true << true << false;
}

void TestTextTransfer::anExportThatIsNotWantedWritesNothing()
{
    QFETCH(int, answer);
    QFETCH(bool, locks);
    QFETCH(bool, panelComes);
    QFETCH(bool, dismisses);
    Desk desk("secret");
    desk.transfer->exportToTEXT();
    desk.outlets.window.answer(answer);
    if (locks && !panelComes) {
        desk.document->setIsEncrypted(true);
    }
    desk.world.queue.runAll();
    QCOMPARE(desk.world.panels.saved.size(), panelComes ? 1 : 0);
    if (panelComes) {
        desk.document->setIsEncrypted(locks);
        desk.world.panels.answerSheet(dismisses ? std::nullopt
                                                : std::optional(inFolder(u"out.txt"_s)));
    }
    desk.world.queue.runAll();
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void TestTextTransfer::textGoesOutAsItsCharacters()
{
    Desk desk(styledBody);
    desk.editor.moveCursor(QTextCursor::End);
    QVERIFY(desk.editor.insertText(u"a\u00a0b\u2028c\ufdd0d\ufffde\n"_s));
    QCOMPARE(stringOf(*desk.editor.content()),
             u"bold and red\ncentred \ufffca\u00a0b\u2028c\ufdd0d\ufffde\n"_s);
    QTextCursor end(desk.editor.content());
    end.movePosition(QTextCursor::End);
    end.insertTable(1, 2);
    QVERIFY(stringOf(*desk.editor.content()).endsWith(u"e\n\n\n\n"_s));
}

void TestTextTransfer::anExportIsItsOwnersAloneAndLeavesTheDocumentAlone()
{
    Desk desk("text");
    const QByteArray body = desk.view.body().value_or(QByteArray());
    for (const Command command : {exportText, exportRtf, exportRtfd}) {
        desk.beginExport(command);
        const QString path = inFolder(desk.world.panels.saved.last().allowedFileTypes.first());
        desk.world.panels.answerSheet(path);
        const QString file = QFileInfo(path).isDir() ? path + u"/TXT.rtf"_s : path;
        QCOMPARE(QFileInfo(file).permissions(), ownersFile);
    }
    QVERIFY(!desk.document->isDocumentEdited());
    QCOMPARE(desk.view.body(), std::optional(body));
}

void TestTextTransfer::anEmptyEditorExportsEmptyFiles()
{
    Desk desk;
    for (const Command command : {exportText, exportRtf}) {
        desk.beginExport(command);
        const QString path = inFolder(command == exportText ? u"a.txt"_s : u"a.rtf"_s);
        desk.world.panels.answerSheet(path);
        QVERIFY(QFile::exists(path));
        QCOMPARE(plainTextFromBody(contentOf(path)), QString());
        QCOMPARE(formOf(contentOf(path)), command == exportText ? BodyForm::Empty : BodyForm::Rtf);
    }
}

void TestTextTransfer::whatCannotBeWrittenIsPassedOverInSilence_data()
{
    QTest::addColumn<Command>("command");
    QTest::newRow("text") << exportText;
    QTest::newRow("RTF") << exportRtf;
    QTest::newRow("RTFD") << exportRtfd;
}

void TestTextTransfer::whatCannotBeWrittenIsPassedOverInSilence()
{
    QFETCH(Command, command);
    Desk desk("text");
    desk.beginExport(command);
    desk.world.panels.answerSheet(inFolder(u"missing/out"_s));
    desk.world.queue.runAll();
    QCOMPARE(desk.outlets.window.alerts.size(), 1); // the warning alone
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void TestTextTransfer::anOpenDocumentIsNotExportedOnto()
{
    Desk desk("text");
    const QString path = inFolder(u"letter.txt"_s);
    writeFile(path, "ciphertext");
    desk.openPaths = {path};
    for (const Command command : {exportText, exportRtf, exportRtfd}) {
        desk.beginExport(command);
        desk.world.panels.answerSheet(path);
        desk.world.queue.runAll();
        QVERIFY(desk.outlets.window.alerts.last().messageText.contains(u"letter.txt"_s));
        desk.outlets.window.answer(AlertAnswer::First);
        desk.world.queue.runAll();
        QCOMPARE(contentOf(path), "ciphertext");
    }
}

void TestTextTransfer::aTextTooTallToBeShownIsExportedWhole()
{
    QByteArray body = "{\\rtf1\\fs3000 ";
    for (int line = 0; line < 20000; ++line) {
        body += "x\\\n";
    }
    Desk desk(body + "end}");
    QVERIFY(desk.view.isTooTall());
    desk.beginExport(exportText);
    desk.world.panels.answerSheet(inFolder(u"out.txt"_s));
    const QByteArray written = contentOf(inFolder(u"out.txt"_s));
    QCOMPARE(written.size(), 20000 * 2 + 3);
    QVERIFY(written.endsWith("x\nend"));
    desk.import(importText, inFolder(u"out.txt"_s));
    QCOMPARE(desk.view.body(), std::optional(body + "end}"));
    QVERIFY(desk.editor.content()->isEmpty()); // typed there, it would not be saved
}

void TestTextTransfer::anImportPutsTheFileInPlaceOfTheSelection_data()
{
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("path"); // of what is made below, or of the system
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text"); // of a document that was "01[2345]6789"
    const QString unchanged = u"0123456789"_s;
    const QByteArray rtf = "{\\rtf1 {\\b new}}";
    const QByteArray flat = writeFlatRtfd({{"TXT.rtf", FlatRtfdEntry::Kind::File, rtf, {}}});
    QTest::newRow("text") << importText << u"a.txt"_s << QByteArray("new\xc3\xa4")
                          << u"01new\u00e46789"_s;
    QTest::newRow("text of lines that end as elsewhere")
        << importText << u"a.txt"_s << QByteArray("a\r\nb\rc\nd") << u"01a\nb\nc\nd6789"_s;
    QTest::newRow("text with a byte order mark")
        << importText << u"a.txt"_s << QByteArray("\xef\xbb\xbfnew") << u"01new6789"_s;
    QTest::newRow("text of no characters is a text")
        << importText << u"a.txt"_s << QByteArray("") << u"016789"_s;
    QTest::newRow("text that is not UTF-8")
        << importText << u"a.txt"_s << QByteArray("new\xe4 text") << unchanged;
    QTest::newRow("text that ends in the midst of a character")
        << importText << u"a.txt"_s << QByteArray("new\xc3") << unchanged;
    QTest::newRow("text that is an image")
        << importText << u"a.png"_s << QByteArray("\x89PNG\r\n\x1a\n") << unchanged;
    QTest::newRow("RTF") << importRtf << u"a.doc"_s << rtf << u"01new6789"_s;
    QTest::newRow("RTF of no characters")
        << importRtf << u"a.rtf"_s << QByteArray("{\\rtf1}") << u"016789"_s;
    QTest::newRow("RTF that is cut short")
        << importRtf << u"a.rtf"_s << QByteArray("{\\rtf1 {\\b new") << u"01new6789"_s;
    QTest::newRow("RTF that is none") << importRtf << u"a.rtf"_s << QByteArray("new") << unchanged;
    QTest::newRow("RTFD") << importRtfd << u"a.rtfd"_s << rtf << u"01new6789"_s;
    QTest::newRow("RTFD flattened") << importRtfd << u"flat.rtfd"_s << flat << u"01new6789"_s;
    QTest::newRow("RTFD that is its text alone")
        << importRtfd << u"a.rtf"_s << rtf << u"01new6789"_s;
    QTest::newRow("RTFD that is a text")
        << importRtfd << u"a.txt"_s << QByteArray("new") << unchanged;
    QTest::newRow("RTFD that is any folder") << importRtfd << u"."_s << QByteArray() << unchanged;
    for (const QString &path : {u"missing"_s, u"/dev/zero"_s, u"pipe"_s}) {
        const QByteArray name = path.toUtf8();
        QTest::newRow(("text from " + name).constData())
            << importText << path << QByteArray() << unchanged;
        QTest::newRow(("RTF from " + name).constData())
            << importRtf << path << QByteArray() << unchanged;
        QTest::newRow(("RTFD from " + name).constData())
            << importRtfd << path << QByteArray() << unchanged;
    }
}

void TestTextTransfer::anImportPutsTheFileInPlaceOfTheSelection()
{
    QFETCH(Command, command);
    QFETCH(QString, path);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    path = QDir(m_folder->path()).absoluteFilePath(path);
    if (path.endsWith("a.rtfd"_L1)) {
        QVERIFY(QDir().mkdir(path));
        writeFile(path + u"/TXT.rtf"_s, bytes);
    } else if (path.endsWith("pipe"_L1)) {
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    } else if (path.startsWith(m_folder->path() + u'/') && !path.endsWith("missing"_L1)
               && !QFileInfo(path).isDir()) {
        writeFile(path, bytes);
    }
    Desk desk("0123456789");
    desk.select(2, 6);
    desk.import(command, path);
    QCOMPARE(desk.editor.toPlainText(), text);
    QVERIFY(desk.outlets.window.alerts.isEmpty());
    QCOMPARE(desk.editor.content()->isModified(), text != u"0123456789"_s);
}

void TestTextTransfer::anImportIsOneStepOfUndoAndMarksTheDocumentEdited()
{
    Desk desk("0123456789");
    QObject::connect(&desk.editor, &QTextEdit::textChanged, desk.document.get(),
                     &MyDocument::textDidChange);
    writeFile(inFolder(u"a.txt"_s), "one\n\ufdd0two");
    writeFile(inFolder(u"a.rtf"_s), "{\\rtf1 one\\\n\\qc {\\b two}}");
    desk.editor.setReadOnly(true);
    for (const Command command : {importText, importRtf}) {
        desk.select(2, 6);
        desk.import(command, inFolder(command == importText ? u"a.txt"_s : u"a.rtf"_s));
        QVERIFY(desk.document->isDocumentEdited());
        QVERIFY(desk.editor.toPlainText().startsWith(u"01one\n"_s));
        QVERIFY(!desk.editor.textCursor().hasSelection());
        desk.editor.undo();
        QCOMPARE(desk.editor.toPlainText(), u"0123456789"_s);
        QVERIFY(!desk.editor.content()->isUndoAvailable());
    }
}

void TestTextTransfer::anImportAsksForAnyFileAndNothingMore_data()
{
    QTest::addColumn<Command>("command");
    QTest::newRow("text") << importText;
    QTest::newRow("RTF") << importRtf;
    QTest::newRow("RTFD") << importRtfd;
}

void TestTextTransfer::anImportAsksForAnyFileAndNothingMore()
{
    QFETCH(Command, command);
    Desk desk("text");
    writeFile(inFolder(u"a.rtf"_s), "{\\rtf1 new}");
    command(*desk.transfer);
    QCOMPARE(desk.world.panels.opened.value(0).allowedFileTypes, QStringList());
    QVERIFY(!desk.world.panels.opened.value(0).allowsMultipleSelection);
    desk.world.panels.answerSheet(std::nullopt);
    desk.world.queue.runAll();
    command(*desk.transfer);
    desk.world.queue.runAll();
    desk.world.panels.answerSheet(inFolder(u"a.rtf"_s));
    QCOMPARE(desk.editor.toPlainText(), u"text"_s); // not inside the panel's handler
    desk.document->setIsEncrypted(true);
    desk.world.queue.runAll();
    QCOMPARE(desk.editor.toPlainText(), u"text"_s);
}

void TestTextTransfer::whatWasExportedComesBack_data()
{
    QTest::addColumn<Command>("out");
    QTest::addColumn<Command>("in");
    QTest::addColumn<bool>("keepsFiles");
    QTest::newRow("text") << exportText << importText << false;
    QTest::newRow("RTF") << exportRtf << importRtf << false;
    QTest::newRow("RTFD") << exportRtfd << importRtfd << true;
}

void TestTextTransfer::whatWasExportedComesBack()
{
    QFETCH(Command, out);
    QFETCH(Command, in);
    QFETCH(bool, keepsFiles);
    Desk from(styledBody);
    from.beginExport(out);
    const QString path =
        inFolder(u"a."_s + from.world.panels.saved.last().allowedFileTypes.first());
    from.world.panels.answerSheet(path);
    Desk to;
    to.import(in, path);
    const bool keepsStyle = in != importText;
    QVERIFY(to.editor.toPlainText().startsWith(u"bold and red\ncentred "_s));
    QTextCursor cursor(to.editor.content());
    cursor.setPosition(2);
    QCOMPARE(cursor.charFormat().fontWeight() == QFont::Bold, keepsStyle);
    cursor.setPosition(11);
    QCOMPARE(cursor.charFormat().foreground().color() == QColor(Qt::red), keepsStyle);
    QCOMPARE(to.editor.content()->lastBlock().blockFormat().alignment() == Qt::AlignHCenter,
             keepsStyle);
    if (keepsFiles) {
        QCOMPARE(bodyFromDocument(*to.editor.content()), bodyFromDocument(*from.editor.content()));
        const AttachmentStore *store = AttachmentStore::find(*to.editor.content());
        QVERIFY(store && store->entry(u"a.bin"_s));
        QCOMPARE(store->entry(u"a.bin"_s)->bytes, QByteArray("\0\xff first", 8));
    }
}

void TestTextTransfer::everyRoadBringsWhatASaveBrings_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray list =
        "{\\pard\\ls1\\ilvl0 one\\\n\\ls1\\ilvl1 in it\\\n\\ls1\\ilvl0 two\\\n}";
    const QByteArray table = "{\\trowd\\cellx2000\\cellx4000\\pard\\intbl a\\cell b\\cell\\row}";
    const QByteArray others =
        "\\pard\\qc {\\field{\\*\\fldinst{HYPERLINK \"http://a/\"}}{\\fldrslt link}} "
        "{\\ul\\strike\\fs60 loud}{{\\NeXTGraphic a.bin \\width400 \\height300\n}\xac}\\\n";
    QTest::newRow("a list at the beginning") << list + others + table + "\\pard end";
    QTest::newRow("a list at the end") << others + "\\pard\\ls1\\ilvl0 one\\\ntwo";
    QTest::newRow("a table at the beginning") << table + others + list + "\\pard end";
    QTest::newRow("a table at the end") << "\\pard first\\\n" + list + others + table;
}

void TestTextTransfer::everyRoadBringsWhatASaveBrings()
{
    QFETCH(QByteArray, text);
    const QByteArray rtf =
        "{\\rtf1\\ansi{\\*\\listtable{\\list{\\listlevel\\levelnfc0{\\leveltext\\'02\\'00.;}"
        "{\\levelnumbers\\'01;}}{\\listlevel\\levelnfc23{\\leveltext\\'01\\u8226 ?;}"
        "{\\levelnumbers;}}\\listid1}}{\\*\\listoverridetable{\\listoverride\\listid1\\ls1}}"
        + text + "}";
    Desk from(writeFlatRtfd({{"a.bin", FlatRtfdEntry::Kind::File, "bytes", {}},
                             {"TXT.rtf", FlatRtfdEntry::Kind::File, rtf, {}}}));
    QTextDocument saved;
    readBody(bodyFromDocument(*from.editor.content()), saved);
    const QByteArray expected = bodyFromDocument(saved);

    from.beginExport(exportRtfd);
    from.world.panels.answerSheet(inFolder(u"a.rtfd"_s));
    Desk imported;
    imported.import(importRtfd, inFolder(u"a.rtfd"_s));
    QCOMPARE(bodyFromDocument(*imported.editor.content()), expected);
    from.editor.selectAll();
    from.editor.copy();
    Desk pasted;
    pasted.editor.paste();
    QCOMPARE(bodyFromDocument(*pasted.editor.content()), expected);
    from.editor.cut();
    from.editor.paste();
    QCOMPARE(bodyFromDocument(*from.editor.content()), expected);
}

QTEST_MAIN(TestTextTransfer)
#include "tst_texttransfer.moc"
