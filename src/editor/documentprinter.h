#pragma once

#include "platform/filestore.h"
#include "platform/nsoperationqueue.h"
#include "platform/nswindow.h"

#include <QObject>

#include <functional>
#include <memory>

class QDialog;
class QPrinter;
class QWidget;

namespace quorvane {

class EditorView;
class MyDocument;
class TextEditor;

/// What printing asks of the world.
struct PrintingSurroundings
{
    NSOperationQueue &mainQueue;
    FileStore &files;
    /// Makes a dialog a sheet; it belongs to the dialog.
    std::function<NSSheet &(QDialog &dialog)> sheetOf;
    /// Whether a document of the program has the file of that path open.
    std::function<bool(const QString &path)> isOpen;
};

/// Prints the text of a document and keeps the settings of its window. Paper and printer are chosen
/// in the toolkit's own dialogs, as sheets. A PDF is made in memory and put in place in one step,
/// readable by its owner alone; a job for a printer is the printing system's from its first page
/// on.
class DocumentPrinter final : public QObject
{
public:
    DocumentPrinter(MyDocument &document, TextEditor &editor, const EditorView &view,
                    QWidget &window, PrintingSurroundings surroundings);
    ~DocumentPrinter() override;

    void runPageLayout();
    /// Shows the pages as they would be printed, in a sheet that leads on to printing.
    void showPreview();
    void printDocument();

private:
    class Run;

    QPrinter &printer();
    void beginSheet(QDialog *dialog, std::function<void(int code)> ended);
    void print();
    void printNextPages();
    void showProgress();
    void finishRun();
    void dropRun();
    void tellFailure(const QString &reason);

    MyDocument &m_document;
    TextEditor &m_editor;
    const EditorView &m_view;
    QWidget &m_window;
    PrintingSurroundings m_surroundings;
    std::unique_ptr<QPrinter> m_printer; // made when it is first needed: it looks for printers
    std::unique_ptr<Run> m_run; // the job that is under way
};

} // namespace quorvane
