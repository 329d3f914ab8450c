// Two hundred pictures of 1600x1200 in a text, shown at 400x300: what they cost in memory once all
// were seen, and how long a page of them takes then, against a bare editor that was given each one
// decoded and in its size. Pages are painted by turns, so that whatever else the machine does falls
// on both.
//
// files_MB are the bytes of the files alone. all_MB is what the program's resident memory has grown
// by since the text was there, and files_MB: the layout, what is decoded and the copies of what was
// are in it. first_ms is the wait for all of a page that was never seen, worst_ms the longest that
// the window's thread has worked on a page of those that were: on what came in meanwhile, scrolling
// and painting. off is how much the first paint of such a page differs anywhere, of 255, from what
// it comes to when one goes on looking at it.
//
// With QT_SCALE_FACTOR=2 in the environment each picture takes four times as many pixels.

#include "editor/attachmentobject.h"
#include "editor/texteditor.h"
#include "paired.h"
#include "platform/largeblocks.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QThreadPool>

#include <array>
#include <ctime>

#include <malloc.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int count = 200;
constexpr QSize full(1600, 1200);
constexpr QSize shown(400, 300);
constexpr int twipsPerPixel = 15;

QApplication &application()
{
    static int argc = 1;
    static std::array<char, 6> name {"bench"};
    static std::array<char *, 2> argv {name.data(), nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    returnLargeBlocksAtOnce(); // as the program does
    static auto *made = new QApplication(argc, argv.data()); // may not be the last to go
    return *made;
}

/// Something with edges and shades, another one for each number.
QByteArray pictureOf(int number, const char *format)
{
    QImage image(full, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient shades(0, 0, full.width(), full.height());
    shades.setColorAt(0, QColor::fromHsv(number * 7 % 360, 160, 230));
    shades.setColorAt(1, QColor::fromHsv(number * 13 % 360, 200, 90));
    painter.fillRect(image.rect(), shades);
    for (int i = 0; i < 300; ++i) {
        painter.setBrush(QColor::fromHsv((number + i * 11) % 360, 180, 200));
        painter.drawEllipse((number * 31 + i * 97) % full.width(), i * 61 % full.height(), 60, 40);
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, format, 85) ? bytes : QByteArray();
}

std::unique_ptr<QTextDocument> textOf(const char *format)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    AttachmentStore &store = AttachmentStore::of(*document);
    QTextCursor cursor(document.get());
    for (int i = 0; i < count; ++i) {
        QTextCharFormat picture;
        picture.setObjectType(attachmentObjectType);
        picture.setProperty(AttachmentName, store.add(u"%1.png"_s.arg(i), pictureOf(i, format)));
        picture.setProperty(AttachmentId, store.nextId());
        picture.setProperty(AttachmentWidth, shown.width() * twipsPerPixel);
        picture.setProperty(AttachmentHeight, shown.height() * twipsPerPixel);
        cursor.insertText(QString(QChar::ObjectReplacementCharacter), picture);
        cursor.insertBlock();
    }
    return document;
}

void fillBare(QTextEdit &bare)
{
    auto *document = new QTextDocument(&bare);
    QTextCursor cursor(document);
    for (int i = 0; i < count; ++i) {
        QTextImageFormat picture;
        picture.setName(QString::number(i));
        picture.setWidth(shown.width());
        picture.setHeight(shown.height());
        QImage image(shown, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(i % 360, 200, 200));
        document->addResource(QTextDocument::ImageResource, QUrl(QString::number(i)), image);
        cursor.insertImage(picture);
        cursor.insertBlock();
    }
    bare.setDocument(document);
}

double residentMegabytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    return file.readAll().split(' ').at(1).toDouble() * double(::sysconf(_SC_PAGESIZE)) / 1e6;
}

/// Of this thread alone: what others take of the processor meanwhile is no part of a page.
double ownMilliseconds()
{
    timespec time {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

void prepare(QTextEdit &editor)
{
    editor.resize(800, 600);
    editor.show();
    QCoreApplication::processEvents();
}

/// Another page each time, from the top again at the end. What has come in is taken in before, as
/// between any two pages that a person sees.
bool paintNextPage(QTextEdit &editor)
{
    QCoreApplication::processEvents();
    QScrollBar &bar = *editor.verticalScrollBar();
    bar.setValue(bar.value() >= bar.maximum() ? 0 : bar.value() + bar.pageStep());
    editor.viewport()->repaint();
    return true;
}

void seeAll(QTextEdit &editor)
{
    editor.verticalScrollBar()->setValue(0);
    for (int page = 0; page <= count; ++page) {
        paintNextPage(editor);
        do {
            QThreadPool::globalInstance()->waitForDone();
            QCoreApplication::processEvents();
        } while (QThreadPool::globalInstance()->activeThreadCount() > 0);
    }
}

/// Until what is seen was decoded in full.
void rest(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds
           || QThreadPool::globalInstance()->activeThreadCount() > 0) {
        QCoreApplication::processEvents();
    }
}

/// How much the lightness differs at most, from 0 to 255, where it is looked at coarsely.
int differenceOf(const QImage &one, const QImage &other)
{
    constexpr QSize coarse(80, 60);
    const QImage first = one.scaled(coarse, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage second = other.scaled(coarse, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int most = 0;
    for (int y = 0; y < coarse.height(); ++y) {
        for (int x = 0; x < coarse.width(); ++x) {
            most = std::max(most, std::abs(qGray(first.pixel(x, y)) - qGray(second.pixel(x, y))));
        }
    }
    return most;
}

/// By how much the first paint of a page differs from what it comes to when it is looked at.
int worstFirstPaint(QTextEdit &editor)
{
    constexpr int pages = 20;
    int worst = 0;
    for (int page = 0; page < pages; ++page) {
        paintNextPage(editor);
        const QImage first = editor.grab().toImage();
        rest(200);
        const QImage settled = editor.grab().toImage();
        worst = std::max(worst, differenceOf(first, settled));
    }
    return worst;
}

void pictures(benchmark::State &state, const char *format)
{
    application();
    TextEditor ours;
    prepare(ours);
    qint64 bytes = 0;
    std::unique_ptr<QTextDocument> document = textOf(format);
    for (int i = 0; i < count; ++i) {
        bytes += AttachmentStore::of(*document).entry(u"%1.png"_s.arg(i))->bytes.size();
    }
    malloc_trim(0); // what making them has left must not be given out again for nothing
    const double before = residentMegabytes();
    if (ours.showDocument(std::move(document)) != TextEditor::ShowResult::Shown) {
        state.SkipWithError("the text is not shown");
        return;
    }
    QElapsedTimer clock;
    clock.start();
    seeAll(ours);
    const double first = double(clock.elapsed());
    seeAll(ours);
    rest(500);
    state.counters["files_MB"] = double(bytes) / 1e6;
    state.counters["all_MB"] = residentMegabytes() - before + double(bytes) / 1e6;
    state.counters["first_ms"] = first / count;
    state.counters["off"] = worstFirstPaint(ours);
    QTextEdit bare;
    fillBare(bare);
    prepare(bare);
    double worst = 0;
    measurePaired(
        state, [&bare] { return paintNextPage(bare); },
        [&ours, &worst] {
            const double start = ownMilliseconds();
            paintNextPage(ours);
            worst = std::max(worst, ownMilliseconds() - start);
            return true;
        });
    state.counters["worst_ms"] = worst;
}

void drawnAsPng(benchmark::State &state)
{
    pictures(state, "PNG");
}

void takenAsJpeg(benchmark::State &state)
{
    pictures(state, "JPG");
}

BENCHMARK(drawnAsPng)->Iterations(2 * count)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(takenAsJpeg)->Iterations(2 * count)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
