#pragma once

#include <QList>
#include <QPainter>

#include <memory>

class QPagedPaintDevice;
class QPageRanges;
class QTextDocument;

namespace quorvane {

/// A text on its way to paper: laid out on a copy of its own, so that it may be edited meanwhile,
/// and painted page by page. Nothing but the text is printed, black on white where it says nothing
/// else, whatever the colours of the desktop.
class PrintJob final
{
public:
    static constexpr int bestResolution = 300; ///< Dots per inch.

    /// The resolution at which a text as long as this one still fits into the toolkit's numbers;
    /// beyond them it would come out as a single page. To be set at the device before the job.
    static int resolutionFor(const QTextDocument &content);

    /// Lays the text out for the device, which outlives the job.
    PrintJob(const QTextDocument &content, QPagedPaintDevice &device);
    ~PrintJob();
    Q_DISABLE_COPY_MOVE(PrintJob)

    int pageCount() const;

    /// What is to be printed, in this order; every page once where nothing is said.
    void setPages(const QPageRanges &ranges, int copies, bool collates, bool backwards);

    /// Pages that are painted, and those that are to be.
    int painted() const { return m_next; }

    int total() const { return int(m_pages.size()); }

    /// Opens the device at the first page and paints the next one. \return false where the device
    /// does not take it.
    [[nodiscard]] bool paintNext();
    /// Closes the device. \return whether it has taken all.
    [[nodiscard]] bool finish();

private:
    void paint(int page);

    std::unique_ptr<QTextDocument> m_text;
    QPagedPaintDevice &m_device;
    QPainter m_painter;
    QList<int> m_pages; // counted from 0
    int m_next = 0;
};

} // namespace quorvane
