#include "editor/printpreview.h"

#include "editor/printjob.h"
#include "editor/scrolleddialog.h"

#include <QAction>
#include <QGuiApplication>
#include <QLabel>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QToolBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr QSize usualSize(820, 760);

QWidget *spacer(QWidget *parent)
{
    auto *space = new QWidget(parent);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return space;
}

} // namespace

PrintPreview::PrintPreview(const QTextDocument &content, QPrinter &printer, QWidget *window)
    : QDialog(window)
    , m_content(content)
    , m_pages(new QPrintPreviewWidget(&printer, this))
    , m_place(new QLabel(this))
{
    setWindowTitle(u"Print Preview"_s);
    m_pages->setAccessibleName(u"Pages"_s);
    auto *bar = new QToolBar(this);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    addPages(*bar);
    bar->addSeparator();
    addZooms(*bar);
    bar->addWidget(spacer(bar));
    addEnds(*bar);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(m_pages, 1);
    connect(m_pages, &QPrintPreviewWidget::paintRequested, this,
            [this](QPrinter *paper) { paint(*paper); });
    connect(m_pages, &QPrintPreviewWidget::previewChanged, this, &PrintPreview::showPage);
    resize(usualSize.boundedTo({screen()->availableSize().width(), tallestOnScreen(*this)}));
    m_pages->fitInView();
}

void PrintPreview::addPages(QToolBar &bar)
{
    m_previous = bar.addAction(u"Previous"_s, this, [this] { turnTo(m_pages->currentPage() - 1); });
    m_previous->setShortcut(Qt::Key_PageUp);
    m_place->setMargin(4);
    bar.addWidget(m_place);
    m_next = bar.addAction(u"Next"_s, this, [this] { turnTo(m_pages->currentPage() + 1); });
    m_next->setShortcut(Qt::Key_PageDown);
}

void PrintPreview::addZooms(QToolBar &bar)
{
    bar.addAction(u"Page"_s, m_pages, &QPrintPreviewWidget::fitInView)
        ->setToolTip(u"Show the whole page"_s);
    bar.addAction(u"Width"_s, m_pages, &QPrintPreviewWidget::fitToWidth)
        ->setToolTip(u"Fit the width of the page"_s);
    bar.addAction(u"All"_s, m_pages, &QPrintPreviewWidget::setAllPagesViewMode)
        ->setToolTip(u"Show all pages"_s);
    QAction *larger = bar.addAction(u"+"_s, m_pages, [this] { m_pages->zoomIn(); });
    larger->setShortcut(QKeySequence::ZoomIn);
    larger->setToolTip(u"Zoom In"_s);
    QAction *smaller = bar.addAction(u"−"_s, m_pages, [this] { m_pages->zoomOut(); });
    smaller->setShortcut(QKeySequence::ZoomOut);
    smaller->setToolTip(u"Zoom Out"_s);
}

void PrintPreview::addEnds(QToolBar &bar)
{
    bar.addAction(u"Page Setup…"_s, this, [this] { done(pageSetupCode); });
    bar.addAction(u"Print…"_s, this, [this] { done(printCode); })->setShortcut(QKeySequence::Print);
    bar.addAction(u"Close"_s, this, &QDialog::reject);
}

void PrintPreview::paint(QPrinter &printer)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    printer.setResolution(PrintJob::resolutionFor(m_content));
    PrintJob job(m_content, printer);
    bool goesOn = true;
    while (goesOn && job.painted() < job.total()) {
        goesOn = job.paintNext();
    }
    static_cast<void>(job.finish()); // nothing is written that could fail
    QGuiApplication::restoreOverrideCursor();
}

void PrintPreview::showPage()
{
    const int count = m_pages->pageCount();
    const int page = m_pages->currentPage();
    m_place->setText(u"%1 of %2"_s.arg(page).arg(count));
    m_previous->setEnabled(page > 1);
    m_next->setEnabled(page < count);
}

void PrintPreview::turnTo(int page)
{
    m_pages->setSinglePageViewMode();
    m_pages->setCurrentPage(page);
    showPage();
}

} // namespace quorvane
