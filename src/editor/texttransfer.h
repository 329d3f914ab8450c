#pragma once

#include "platform/nsdocument.h"
#include "platform/packagestore.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QTextDocument;

namespace quorvane {

class EditorView;
class MyDocument;
class TextEditor;

/// What text on its way in or out of a document asks of the world.
struct TransferSurroundings
{
    DocumentSurroundings machinery;
    PackageStore &packages;
    /// Whether a document of the program has the file of that path open: then nothing is exported
    /// onto it.
    std::function<bool(const QString &path)> isOpen;
};

/// The commands that move text between a document's editor and files outside it.
///
/// An import puts the text of a file in the place of the selection, in one step of undo, and does
/// so in a read-only document too. A file that gives no text changes nothing; no failure is told
/// of, but for a text that is too long to be shown. An export warns, asks where to, and replaces
/// what stands there in one step; it changes nothing of the document. What is exported is what the
/// editor holds when the panel is answered. Nothing is read or written once the document is locked.
class TextTransfer final : public QObject
{
public:
    TextTransfer(MyDocument &document, TextEditor &editor, const EditorView &view,
                 TransferSurroundings surroundings);

    void importFromTEXT();
    void importFromRTF();
    void importFromRTFD();
    void exportToTEXT();
    void exportToRTF();
    void exportToRTFD();

private:
    struct Export;
    using Reading = void (*)(TextTransfer &transfer, const QString &path);

    void beginImport(Reading reading);
    void insertText(const QString &path);
    void insertRtf(const QString &path);
    void insertRtfd(const QString &path);
    void insertBody(const QByteArray &body);
    std::optional<QByteArray> read(const QString &path);
    std::optional<QByteArray> rtfdAt(const QString &path);
    bool canTakeText();

    void beginExport(NSWindow *window, const Export &what);
    void askWhere(const Export &what);
    void write(const Export &what, const QString &path);
    void later(std::function<void()> operation);

    MyDocument &m_document;
    TextEditor &m_editor;
    const EditorView &m_view;
    TransferSurroundings m_surroundings;
};

/// The characters of a document: paragraphs and cells parted by LF, U+FFFC for each attachment,
/// everything else as it is.
QString stringOf(const QTextDocument &document);

} // namespace quorvane
