// Makes the user guide: makeguide GUIDE.md OUT.pdf. The text is Markdown; its pictures stand beside
// it. The line "[contents]" becomes the table of contents, with the pages that things are on.
#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <cmath>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int resolution = 144; // dots per inch
constexpr double marginMillimetres = 22;
constexpr double footer = 40; // dots below the text, for the number of the page
constexpr double screenResolution = 96; // of Markdown's pictures and gaps
constexpr auto contentsMark = "[contents]"_L1;

struct Heading
{
    QString title;
    int level;
    int page;
};

QFont font(double size, bool bold = false)
{
    QFont result(u"DejaVu Sans"_s);
    result.setPointSizeF(size);
    result.setBold(bold);
    return result;
}

/// Pictures are as wide as the column at most.
class Guide final : public QTextDocument
{
public:
    Guide(const QString &markdown, const QString &folder, QPagedPaintDevice &paper)
        : m_folder(folder)
        , m_width((paper.width() - 2) * screenResolution / paper.logicalDpiX())
    {
        setDefaultFont(font(10));
        setDocumentMargin(0);
        setMarkdown(markdown);
        documentLayout()->setPaintDevice(&paper);
        setPageSize(QSizeF(paper.width(), paper.height() - footer));
        style();
        breakPages();
    }

    std::vector<Heading> headings()
    {
        std::vector<Heading> found;
        for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            if (level == 2 || level == 3) {
                const double top = documentLayout()->blockBoundingRect(block).top();
                found.push_back({block.text(), level, int(top / pageSize().height()) + 1});
            }
        }
        return found;
    }

protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        if (type != ImageResource) {
            return {};
        }
        QImageReader reader(m_folder + u'/' + name.toString());
        QImage image = reader.read();
        if (image.width() == 0) {
            std::fprintf(stderr, "makeguide: no picture %s\n", qPrintable(reader.fileName()));
            std::exit(1);
        }
        if (image.width() > m_width) { // kept sharp: shown smaller, not made smaller
            image.setDevicePixelRatio(image.width() / m_width);
        }
        return image;
    }

private:
    void style()
    {
        QTextCursor cursor(this);
        for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
            cursor.setPosition(block.position());
            const int level = block.blockFormat().headingLevel();
            QTextBlockFormat format;
            if (!block.text().contains(QChar::ObjectReplacementCharacter)) {
                format.setLineHeight(120, QTextBlockFormat::ProportionalHeight);
            }
            if (level > 0) {
                format.setTopMargin(level == 1 ? 0 : level == 2 ? 34 : 22);
                format.setBottomMargin(8);
            } else {
                format.setBottomMargin(block.textList() || cursor.currentTable() ? 1 : 8);
            }
            cursor.mergeBlockFormat(format);
            if (level > 0) {
                cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
                QTextCharFormat look;
                look.setFont(font(level == 1 ? 26 : level == 2 ? 17 : 12, true));
                cursor.setCharFormat(look);
            }
        }
        const auto frames = rootFrame()->childFrames();
        for (QTextFrame *frame : frames) {
            if (auto *table = qobject_cast<QTextTable *>(frame)) {
                QTextTableFormat format = table->format();
                format.setBorderCollapse(true);
                format.setBorder(0.5);
                format.setBorderBrush(QColor(190, 190, 190));
                format.setCellPadding(5);
                format.setCellSpacing(0);
                format.setTopMargin(4);
                format.setBottomMargin(12);
                format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
                table->setFormat(format);
            }
        }
    }

    /// No heading stands at the foot of a page, and no chapter begins on the last part of one.
    void breakPages()
    {
        for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            const double top = documentLayout()->blockBoundingRect(block).top();
            const double filled = std::fmod(top, pageSize().height()) / pageSize().height();
            if ((level == 2 && filled > 0.6) || (level == 3 && filled > 0.88)) {
                QTextBlockFormat format;
                format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
                QTextCursor(block).mergeBlockFormat(format);
            }
        }
    }

    QString m_folder;
    double m_width;
};

QString contentsOf(const std::vector<Heading> &headings)
{
    QString text;
    for (const Heading &heading : headings) {
        text += heading.level == 2 ? u"- "_s : u"    - "_s;
        text += u"%1  ·  %2\n"_s.arg(heading.title).arg(heading.page);
    }
    return text;
}

void paint(Guide &guide, QPdfWriter &writer)
{
    QPainter painter(&writer);
    const QSizeF page = guide.pageSize();
    for (int number = 0; number < guide.pageCount(); ++number) {
        if (number > 0) {
            writer.newPage();
        }
        painter.save();
        painter.translate(0, -number * page.height());
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = QRectF(0, number * page.height(), page.width(), page.height());
        context.palette.setColor(QPalette::Text, Qt::black);
        painter.setClipRect(context.clip);
        guide.documentLayout()->draw(&painter, context);
        painter.restore();
        painter.setFont(font(8));
        painter.drawText(QRectF(0, page.height(), page.width(), footer),
                         Qt::AlignBottom | Qt::AlignHCenter, QString::number(number + 1));
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QFile source(argc == 3 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (argc != 3 || !source.open(QIODevice::ReadOnly)) {
        std::fputs("usage: makeguide GUIDE.md OUT.pdf\n", stderr);
        return 2;
    }
    const QString markdown = QString::fromUtf8(source.readAll());
    QSaveFile out(QString::fromLocal8Bit(argv[2]));
    out.open(QIODevice::WriteOnly);
    QPdfWriter writer(&out);
    writer.setResolution(resolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(
        QMarginsF(marginMillimetres, marginMillimetres, marginMillimetres, marginMillimetres),
        QPageLayout::Millimeter);
    writer.setTitle(u"Quorvane User Guide"_s);
    const QString folder = QFileInfo(source).path();
    std::vector<Heading> headings;
    // The contents take up room themselves: the second pass knows how much.
    for (int pass = 0; pass < 2; ++pass) {
        headings = Guide(QString(markdown).replace(contentsMark, contentsOf(headings)), folder, writer)
                       .headings();
    }
    Guide guide(QString(markdown).replace(contentsMark, contentsOf(headings)), folder, writer);
    paint(guide, writer);
    return out.commit() ? 0 : 1;
}
