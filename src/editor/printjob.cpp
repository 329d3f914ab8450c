#include "editor/printjob.h"

#include "editor/attachmentobject.h"
#include "editor/heightestimate.h"
#include "editor/listmarkpainter.h"
#include "editor/tabstops.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QPalette>
#include <QSet>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace quorvane {

namespace {

constexpr double screenResolution = 96;
// The layout's numbers end at 2^25. Pages are not filled to their last line.
constexpr double tallestPrint = 24'000'000;
constexpr double narrowestColumn = 480; // in pixels of a screen: a letter with wide margins
constexpr QChar pageBreak(u'\f');

QPalette paper()
{
    QPalette palette(Qt::white);
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, Qt::black);
    }
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, Qt::white);
    palette.setColor(QPalette::Mid, Qt::gray);
    return palette;
}

/// A new page begins where the text says so: the toolkit knows it of paragraphs alone.
void breakPages(QTextDocument &text)
{
    QTextBlockFormat onNewPage;
    onNewPage.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    const QString characters = text.toRawText();
    QTextCursor cursor(&text);
    for (qsizetype at = characters.size() - 1; at >= 0; --at) { // from the end: places stay true
        if (characters.at(at) != pageBreak) {
            continue;
        }
        cursor.setPosition(int(at));
        cursor.deleteChar();
        if (!cursor.atBlockStart()) {
            cursor.insertBlock();
        }
        cursor.mergeBlockFormat(onNewPage);
    }
}

/// The files that the text calls by their names.
FlatRtfdEntries attachedFiles(const QTextDocument &text)
{
    FlatRtfdEntries files;
    const AttachmentStore *store = AttachmentStore::find(text);
    if (!store) {
        return files;
    }
    QSet<QString> names;
    for (const QTextFormat &format : text.allFormats()) {
        if (format.objectType() == attachmentObjectType) {
            names.insert(format.stringProperty(AttachmentName));
        }
    }
    for (const AttachmentStore::WrittenEntry &written : store->entriesFor(names)) {
        files.push_back(*written.entry);
    }
    return files;
}

std::unique_ptr<QTextDocument> printedCopy(const QTextDocument &content)
{
    std::unique_ptr<QTextDocument> copy(content.clone());
    copy->setUndoRedoEnabled(false);
    copy->setDocumentMargin(0); // the page has its own
    AttachmentStore::of(*copy).setEntries(attachedFiles(content), {});
    breakPages(*copy);
    AttachmentObject::registerFor(*copy, paper());
    return copy;
}

} // namespace

int PrintJob::resolutionFor(const QTextDocument &content)
{
    const double height = HeightEstimate(narrowestColumn).of(content).wide;
    const double fitting = screenResolution * tallestPrint / std::max(height, 1.0);
    return int(std::clamp<double>(fitting, screenResolution, bestResolution));
}

PrintJob::PrintJob(const QTextDocument &content, QPagedPaintDevice &device)
    : m_text(printedCopy(content))
    , m_device(device)
{
    m_text->documentLayout()->setPaintDevice(&device);
    m_text->setPageSize(QSizeF(device.width(), device.height()));
    setPages({}, 1, true, false);
}

PrintJob::~PrintJob()
{
    if (m_painter.isActive()) {
        m_painter.end(); // before the device goes
    }
}

int PrintJob::pageCount() const
{
    return m_text->pageCount();
}

void PrintJob::setPages(const QPageRanges &ranges, int copies, bool collates, bool backwards)
{
    QList<int> once;
    for (int page = 0; page < pageCount(); ++page) {
        if (ranges.isEmpty() || ranges.contains(page + 1)) {
            once.append(page);
        }
    }
    if (backwards) {
        std::reverse(once.begin(), once.end());
    }
    m_pages.clear();
    if (collates) {
        for (int copy = 0; copy < copies; ++copy) {
            m_pages += once;
        }
        return;
    }
    for (const int page : once) {
        m_pages += QList<int>(copies, page);
    }
}

bool PrintJob::paintNext()
{
    const bool isTaken = m_next == 0 ? m_painter.begin(&m_device) : m_device.newPage();
    if (isTaken) {
        paint(m_pages.at(m_next++));
    }
    return isTaken;
}

void PrintJob::paint(int page)
{
    const QSizeF size = m_text->pageSize();
    const QRectF view(QPointF(0, page * size.height()), size);
    m_painter.save();
    m_painter.translate(-view.topLeft());
    m_painter.setClipRect(view);
    QAbstractTextDocumentLayout::PaintContext context;
    // What only touches the page belongs to its neighbour.
    context.clip = view.adjusted(0, 1, 0, -1);
    context.palette = paper();
    m_text->documentLayout()->draw(&m_painter, context);
    const int first = m_text->documentLayout()->hitTest(view.topLeft(), Qt::FuzzyHit);
    const QTextBlock block = m_text->findBlock(std::max(first, 0));
    drawListMarks(m_painter, block, view, context.palette);
    drawTabLeaders(m_painter, block, view, context.palette);
    m_painter.restore();
}

bool PrintJob::finish()
{
    return m_painter.isActive() && m_painter.end();
}

} // namespace quorvane
