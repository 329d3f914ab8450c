#include "editor/documentprinter.h"

#include "document/mydocument.h"
#include "editor/editorview.h"
#include "editor/printjob.h"
#include "editor/printpreview.h"
#include "editor/scrolleddialog.h"
#include "editor/texteditor.h"
#include "richtext/body.h"

#include <QBuffer>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPdfWriter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QTextDocument>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qint64 turnMilliseconds = 50; // of painting, before the windows have their turn
constexpr double margin = 20; // millimetres
constexpr qint64 quietMilliseconds = 500; // before the progress is shown

/// Once the questions that the toolkit runs inside the dialog, in loops of its own, have returned.
void deleteWhenIdle(QDialog *dialog, int loopLevel)
{
    constexpr int patience = 50;
    if (QThread::currentThread()->loopLevel() <= loopLevel) {
        dialog->deleteLater();
        return;
    }
    QTimer::singleShot(patience, dialog,
                       [dialog, loopLevel] { deleteWhenIdle(dialog, loopLevel); });
}

constexpr int smallestWidth = 360;

class ProgressDialog final : public QDialog
{
public:
    ProgressDialog(QWidget *window, int total)
        : QDialog(window)
        , m_bar(new QProgressBar(this))
    {
        setWindowTitle(u"Print"_s);
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(new QLabel(u"Printing…"_s, this));
        m_bar->setRange(0, total);
        m_bar->setAccessibleName(u"Pages printed"_s);
        layout->addWidget(m_bar);
        auto *cancel = new QPushButton(u"Cancel"_s, this);
        connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
        layout->addWidget(cancel, 0, Qt::AlignRight);
        setMinimumWidth(smallestWidth);
    }

    void setPainted(int pages) { m_bar->setValue(pages); }

private:
    QProgressBar *m_bar;
};

} // namespace

/// One job, and where it goes.
class DocumentPrinter::Run final
{
public:
    Run(const QTextDocument &content, QPrinter &printer)
        : m_printer(printer)
    {
        const int resolution = PrintJob::resolutionFor(content);
        printer.setResolution(resolution);
        if (printer.outputFormat() == QPrinter::PdfFormat) {
            m_path = QFileInfo(printer.outputFileName()).absoluteFilePath();
            m_buffer.open(QIODevice::WriteOnly);
            m_writer = std::make_unique<QPdfWriter>(&m_buffer);
            m_writer->setResolution(resolution);
            m_writer->setPageLayout(printer.pageLayout());
            m_writer->setTitle(printer.docName());
        }
        QPagedPaintDevice &device =
            m_writer ? static_cast<QPagedPaintDevice &>(*m_writer) : printer;
        job = std::make_unique<PrintJob>(content, device);
        const bool isPart = printer.printRange() == QPrinter::PageRange;
        const bool repeats = !m_writer && !printer.supportsMultipleCopies();
        job->setPages(isPart ? printer.pageRanges() : QPageRanges(),
                      repeats ? printer.copyCount() : 1, printer.collateCopies(),
                      printer.pageOrder() == QPrinter::LastPageFirst);
        since.start();
    }

    /// Where the PDF is to be written; nothing for a job that went to a printer.
    std::optional<QString> path() const { return m_writer ? std::optional(m_path) : std::nullopt; }

    const QByteArray &pdf() const { return m_buffer.data(); }

    void abort()
    {
        if (!m_writer && job->painted() > 0) {
            m_printer.abort();
        }
    }

    QElapsedTimer since;
    QPointer<ProgressDialog> progress;

private:
    QPrinter &m_printer;
    QString m_path;
    QBuffer m_buffer;
    std::unique_ptr<QPdfWriter> m_writer;

public:
    std::unique_ptr<PrintJob> job; // goes before what it paints on
};

DocumentPrinter::DocumentPrinter(MyDocument &document, TextEditor &editor, const EditorView &view,
                                 QWidget &window, PrintingSurroundings surroundings)
    : m_document(document)
    , m_editor(editor)
    , m_view(view)
    , m_window(window)
    , m_surroundings(std::move(surroundings))
{ }

DocumentPrinter::~DocumentPrinter() = default;

QPrinter &DocumentPrinter::printer()
{
    if (!m_printer) {
        m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        m_printer->setResolution(PrintJob::bestResolution);
        m_printer->setPageMargins({margin, margin, margin, margin}, QPageLayout::Millimeter);
    }
    m_printer->setDocName(m_document.displayName());
    return *m_printer;
}

void DocumentPrinter::runPageLayout()
{
    auto *dialog = new QPageSetupDialog(&printer(), &m_window);
    scrollWhereTooTall(*dialog);
    beginSheet(dialog, [](int) {});
}

void DocumentPrinter::showPreview()
{
    auto *preview = new PrintPreview(*m_editor.content(), printer(), &m_window);
    beginSheet(preview, [this](int code) {
        // A sheet ends before the next one begins.
        const auto next = code == PrintPreview::printCode ? &DocumentPrinter::printDocument
            : code == PrintPreview::pageSetupCode         ? &DocumentPrinter::runPageLayout
                                                          : nullptr;
        if (next) {
            m_surroundings.mainQueue.addOperation([self = QPointer(this), next] {
                if (self && !self->m_document.isEncrypted()) {
                    (self->*next)();
                }
            });
        }
    });
}

void DocumentPrinter::printDocument()
{
    auto *dialog = new QPrintDialog(&printer(), &m_window);
    scrollWhereTooTall(*dialog);
    beginSheet(dialog, [this](int code) {
        if (code == QDialog::Accepted) {
            m_surroundings.mainQueue.addOperation([self = QPointer(this)] {
                if (self) {
                    self->print();
                }
            });
        }
    });
}

void DocumentPrinter::beginSheet(QDialog *dialog, std::function<void(int code)> ended)
{
    const int loopLevel = QThread::currentThread()->loopLevel();
    NSWindow *window = m_document.windowForSheet();
    if (!window) {
        delete dialog;
        return;
    }
    window->beginSheet(
        m_surroundings.sheetOf(*dialog),
        [self = QPointer(this), dialog, loopLevel, ended = std::move(ended)](int code) {
            deleteWhenIdle(dialog, loopLevel);
            if (self) {
                ended(code);
            }
        });
}

void DocumentPrinter::print()
{
    if (m_run || m_document.isEncrypted() || m_document.isClosed()) {
        return;
    }
    const QString path = m_printer->outputFileName();
    if (m_printer->outputFormat() == QPrinter::PdfFormat && m_surroundings.isOpen(path)) {
        tellFailure(u"“%1” is an open document of this program, and stays as it is."_s.arg(
            QFileInfo(path).fileName()));
        return;
    }
    if (m_view.isTooTall()) {
        QTextDocument unshown; // the editor stands empty for a text that it cannot show
        readBody(m_view.body().value_or(QByteArray()), unshown);
        m_run = std::make_unique<Run>(unshown, *m_printer);
    } else {
        m_run = std::make_unique<Run>(*m_editor.content(), *m_printer);
    }
    if (m_run->job->total() == 0) {
        dropRun();
        tellFailure(u"It has no such pages."_s);
        return;
    }
    printNextPages();
}

void DocumentPrinter::printNextPages()
{
    if (!m_run || m_document.isEncrypted() || m_document.isClosed()) {
        dropRun();
        return;
    }
    PrintJob &job = *m_run->job;
    QElapsedTimer turn;
    turn.start();
    while (job.painted() < job.total() && turn.elapsed() < turnMilliseconds) {
        if (!job.paintNext()) {
            dropRun();
            tellFailure(u"The printer does not take the job."_s);
            return;
        }
    }
    if (job.painted() == job.total()) {
        finishRun();
        return;
    }
    showProgress();
    m_surroundings.mainQueue.addOperation([self = QPointer(this)] {
        if (self) {
            self->printNextPages();
        }
    });
}

void DocumentPrinter::showProgress()
{
    if (m_run->progress) {
        m_run->progress->setPainted(m_run->job->painted());
    } else if (m_run->since.elapsed() > quietMilliseconds) {
        m_run->progress = new ProgressDialog(&m_window, m_run->job->total());
        // Whatever ends it while there are pages left, a lock too, ends the job.
        beginSheet(m_run->progress, [this](int) { dropRun(); });
    }
}

void DocumentPrinter::finishRun()
{
    const auto run = std::move(m_run);
    if (run->progress) {
        run->progress->done(QDialog::Accepted);
    }
    if (!run->job->finish()) {
        tellFailure(u"The printer has not taken all of the job."_s);
    } else if (const auto path = run->path()) {
        if (const auto error = m_surroundings.files.replace(*path, run->pdf())) {
            tellFailure(error->reason());
        }
    }
}

void DocumentPrinter::dropRun()
{
    if (const auto run = std::move(m_run)) {
        run->abort();
        if (run->progress) {
            run->progress->done(QDialog::Rejected);
        }
    }
}

void DocumentPrinter::tellFailure(const QString &reason)
{
    if (NSWindow *window = m_document.windowForSheet()) {
        window->beginAlert(
            {u"“%1” could not be printed."_s.arg(m_document.displayName()), reason, {u"OK"_s}},
            [](AlertAnswer) {});
    }
}

} // namespace quorvane
