#include "editor/texttransfer.h"

#include "document/mydocument.h"
#include "editor/copiedtext.h"
#include "editor/editorview.h"
#include "editor/texteditor.h"
#include "richtext/body.h"
#include "richtext/richtextexport.h"
#include "richtext/textproperties.h"

#include <QFileInfo>
#include <QPointer>
#include <QStringDecoder>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr auto packageExtension = "rtfd"_L1;
constexpr char packageText[] = "TXT.rtf";
constexpr qsizetype largestImport = 200'000'000;

/// Strictly UTF-8, with or without a byte order mark; nothing where it is anything else.
std::optional<QString> decoded(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

bool holdsText(const PackageEntries &entries)
{
    return std::any_of(entries.begin(), entries.end(), [](const PackageEntry &entry) {
        return !entry.isFolder && entry.name == packageText;
    });
}

/// Puts back the characters that a text document has no room for.
void restoreOriginalUnits(const QTextDocument &document, QString &text)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextFragment fragment = part.fragment();
            const int unit = fragment.charFormat().intProperty(OriginalUnit);
            for (int i = fragment.position();
                 unit != 0 && i < fragment.position() + fragment.length(); ++i) {
                if (text.at(i) == QChar::ReplacementCharacter) {
                    text[i] = QChar(char16_t(unit));
                }
            }
        }
    }
}

void tellItIsOpen(NSWindow *window, const QString &path)
{
    if (window) {
        const NSAlert alert {
            u"Nothing was exported to “%1”."_s.arg(QFileInfo(path).fileName()),
            u"That file is an open document of this program, and stays as it is. Choose another "
            u"name."_s,
            {u"OK"_s},
        };
        window->beginAlert(alert, [](AlertAnswer) {});
    }
}

} // namespace

/// What the three exports differ in.
struct TextTransfer::Export
{
    QString title;
    QString warning;
    QString extension;
    bool isPackage;
    std::optional<FileError> (*write)(const TransferSurroundings &to, const QString &path,
                                      const QTextDocument &document);
};

namespace {

// The user is warned in the same words of all that goes out.
QString warningOf(const QString &format, const QString &viewer)
{
    return u"WARNING.\n"
           "This command export the content of this document on a external file.\n"
           "Content will be saved in the external file in %1 format and will be not encrypted.\n"
           "Everyone will be able to acces the created external file using a standard %2 viewer.\n"
           "This doesn't in any way affect the protection of the Quorvane file.\n"
           "The lack of protection is only in the exported file."_s.arg(format, viewer);
}

std::optional<FileError> writeText(const TransferSurroundings &to, const QString &path,
                                   const QTextDocument &document)
{
    return to.machinery.files.replace(path, stringOf(document).toUtf8());
}

std::optional<FileError> writeRtf(const TransferSurroundings &to, const QString &path,
                                  const QTextDocument &document)
{
    return to.machinery.files.replace(path, rtfFromDocument(document));
}

std::optional<FileError> writePackage(const TransferSurroundings &to, const QString &path,
                                      const QTextDocument &document)
{
    return to.packages.replace(path, packageFromDocument(document));
}

} // namespace

TextTransfer::TextTransfer(MyDocument &document, TextEditor &editor, const EditorView &view,
                           TransferSurroundings surroundings)
    : m_document(document)
    , m_editor(editor)
    , m_view(view)
    , m_surroundings(std::move(surroundings))
{ }

// --- Import ---------------------------------------------------------------------------------

void TextTransfer::importFromTEXT()
{
    beginImport([](TextTransfer &transfer, const QString &path) { transfer.insertText(path); });
}

void TextTransfer::importFromRTF()
{
    beginImport([](TextTransfer &transfer, const QString &path) { transfer.insertRtf(path); });
}

void TextTransfer::importFromRTFD()
{
    beginImport([](TextTransfer &transfer, const QString &path) { transfer.insertRtfd(path); });
}

void TextTransfer::beginImport(Reading reading)
{
    NSWindow *window = m_document.windowForSheet();
    if (!window) {
        return;
    }
    // Any file may be chosen, whatever its name.
    const NSOpenPanel panel {{}, false, {packageExtension}};
    m_surroundings.machinery.panels.beginOpenSheet(
        *window, panel, [self = QPointer(this), reading](const QStringList &paths) {
            if (self && !paths.isEmpty()) {
                self->later([self, reading, path = paths.first()] { reading(*self, path); });
            }
        });
}

bool TextTransfer::canTakeText()
{
    if (m_view.isTooTall()) { // what the editor shows then is not the document's text
        emit m_editor.tooTall();
    }
    return !m_view.isTooTall();
}

void TextTransfer::insertText(const QString &path)
{
    const std::optional<QByteArray> data = read(path);
    const std::optional<QString> text = data ? decoded(*data) : std::nullopt;
    if (text && canTakeText()) {
        static_cast<void>(m_editor.insertText(*text, u"Import"_s));
    }
}

void TextTransfer::insertRtf(const QString &path)
{
    const std::optional<QByteArray> data = read(path);
    if (data && formOf(*data) == BodyForm::Rtf) {
        insertBody(*data);
    }
}

void TextTransfer::insertRtfd(const QString &path)
{
    if (const std::optional<QByteArray> body = rtfdAt(path)) {
        insertBody(*body);
    }
}

void TextTransfer::insertBody(const QByteArray &body)
{
    if (canTakeText()) {
        static_cast<void>(
            m_editor.insertDocument(*pastedBody(body, *m_editor.content()), u"Import"_s));
    }
}

/// The file's bytes; nothing where there are none to be had.
std::optional<QByteArray> TextTransfer::read(const QString &path)
{
    FileStore::ReadResult file = m_surroundings.machinery.files.read(path);
    const bool isTooLarge =
        file.data ? file.data->size() > largestImport : file.error.code == EFBIG;
    if (isTooLarge) {
        emit m_editor.tooTall();
        return std::nullopt;
    }
    return std::move(file.data);
}

/// A package, or what others have made of one: its flattened form or its text alone.
std::optional<QByteArray> TextTransfer::rtfdAt(const QString &path)
{
    const PackageStore::ReadResult package = m_surroundings.packages.read(path);
    if (package.entries) {
        return holdsText(*package.entries) ? std::optional(bodyFromPackage(*package.entries))
                                           : std::nullopt;
    }
    std::optional<QByteArray> data = read(path);
    const BodyForm form = formOf(data.value_or(QByteArray()));
    return form == BodyForm::FlatRtfd || form == BodyForm::Rtf ? std::move(data) : std::nullopt;
}

// --- Export ---------------------------------------------------------------------------------

void TextTransfer::exportToTEXT()
{
    beginExport(m_document.myWindow,
                {u"Export as Unencripted Text File"_s, warningOf(u"plain text"_s, u"text"_s),
                 u"txt"_s, false, writeText});
}

void TextTransfer::exportToRTF()
{
    beginExport(m_document.windowForSheet(),
                {u"Export as Unencripted RTF File"_s, warningOf(u"RTF"_s, u"RTF"_s), u"rtf"_s,
                 false, writeRtf});
}

// The words are those of the RTF export: there are none of its own.
void TextTransfer::exportToRTFD()
{
    beginExport(m_document.windowForSheet(),
                {u"Export as Unencripted RTF File"_s, warningOf(u"RTF"_s, u"RTF"_s),
                 packageExtension, true, writePackage});
}

void TextTransfer::beginExport(NSWindow *window, const Export &what)
{
    if (!window) {
        return;
    }
    const NSAlert alert {
        what.title, what.warning, {u"Cancel"_s, u"Export"_s}, NSAlertStyle::Warning};
    window->beginAlert(alert, [self = QPointer(this), what](AlertAnswer answer) {
        if (self && answer == AlertAnswer::Second) {
            self->later([self, what] { self->askWhere(what); });
        }
    });
}

void TextTransfer::askWhere(const Export &what)
{
    NSWindow *window = m_document.windowForSheet();
    if (!window) {
        return;
    }
    NSSavePanel panel;
    panel.allowedFileTypes = {what.extension};
    panel.savesPackage = what.isPackage;
    m_surroundings.machinery.panels.beginSaveSheet(
        *window, panel, [self = QPointer(this), what](const std::optional<QString> &path) {
            if (self && path && !self->m_document.isEncrypted()) {
                self->write(what, *path);
            }
        });
}

void TextTransfer::write(const Export &what, const QString &path)
{
    if (m_surroundings.isOpen(path)) {
        tellItIsOpen(m_document.windowForSheet(), path);
        return;
    }
    if (!m_view.isTooTall()) {
        static_cast<void>(what.write(m_surroundings, path, *m_editor.content()));
        return;
    }
    QTextDocument unshown; // the editor stands empty for a text that it cannot show
    readBody(m_view.body().value_or(QByteArray()), unshown);
    static_cast<void>(what.write(m_surroundings, path, unshown));
}

void TextTransfer::later(std::function<void()> operation)
{
    m_surroundings.machinery.mainQueue.addOperation(
        [self = QPointer(this), operation = std::move(operation)] {
            // It may have been locked or closed in between.
            if (self && !self->m_document.isEncrypted() && !self->m_document.isClosed()) {
                operation();
            }
        });
}

QString stringOf(const QTextDocument &document)
{
    QString text = document.toRawText();
    std::replace_if(
        text.begin(), text.end(),
        [](QChar c) { return c == QChar::ParagraphSeparator || isDocumentInternal(c.unicode()); },
        u'\n');
    if (text.contains(QChar::ReplacementCharacter)) {
        restoreOriginalUnits(document, text);
    }
    return text;
}

} // namespace quorvane
