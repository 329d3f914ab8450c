// What it takes to make a PDF of a text of some two hundred pages, against the toolkit's own
// printing of the same document. A few seconds are the goal.
#include "editor/printjob.h"
#include "paired.h"
#include "richtext/body.h"
#include "styledtext.h"

#include <QApplication>
#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>
#include <QTextDocument>

#include <memory>

using namespace quorvane;

namespace {

constexpr qsizetype size = 1'450'000; // of the RTF

std::unique_ptr<QPdfWriter> newWriter(QBuffer &buffer, int resolution)
{
    buffer.open(QIODevice::WriteOnly);
    auto writer = std::make_unique<QPdfWriter>(&buffer);
    writer->setPageSize(QPageSize(QPageSize::A4));
    writer->setResolution(resolution);
    return writer;
}

void Printing(benchmark::State &state)
{
    QTextDocument text;
    readBody(StyledText().rtf(size), text);
    const int resolution = PrintJob::resolutionFor(text);
    int pages = 0;
    measurePaired(
        state,
        [&] {
            QBuffer buffer;
            text.print(newWriter(buffer, resolution).get());
            return buffer.size() > 0;
        },
        [&] {
            QBuffer buffer;
            const auto writer = newWriter(buffer, resolution);
            PrintJob job(text, *writer);
            pages = job.pageCount();
            while (job.painted() < job.total()) {
                if (!job.paintNext()) {
                    return false;
                }
            }
            return job.finish() && buffer.size() > 0;
        });
    state.counters["pages"] = pages;
}

} // namespace

BENCHMARK(Printing)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
