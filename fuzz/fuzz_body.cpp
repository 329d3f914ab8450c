#include "richtext/body.h"

#include <QGuiApplication>
#include <QTextDocument>

#include <cstdint>
#include <cstdlib>

namespace {

QGuiApplication &application()
{
    static int count = 1;
    static char name[] = "fuzz_body";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication instance(count, arguments);
    return instance;
}

/// Rows and their cells are parted in one way in text and in another one in documents.
QString charactersOf(const QByteArray &body)
{
    return quorvane::plainTextFromBody(body).remove(QChar(u'\n')).remove(QChar(u'\t'));
}

} // namespace

/// Whatever the bytes: a body is read, and what is written of it has the same characters.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    application();
    const QByteArray body(reinterpret_cast<const char *>(data), qsizetype(size));
    QTextDocument document;
    quorvane::readBody(body, document);
    const QByteArray written = quorvane::bodyFromDocument(document);
    if (charactersOf(written) != charactersOf(body)) {
        std::abort();
    }
    quorvane::readBody(written, document);
    if (quorvane::bodyFromDocument(document) != written) {
        std::abort();
    }
    return 0;
}
