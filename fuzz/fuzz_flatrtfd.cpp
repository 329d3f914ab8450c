#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/richtextexport.h"

#include <QGuiApplication>
#include <QSet>
#include <QTextDocument>

#include <cstdint>
#include <cstdlib>

using namespace quorvane;

namespace {

QGuiApplication &application()
{
    static int count = 1;
    static char name[] = "fuzz_flatrtfd";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication instance(count, arguments);
    return instance;
}

/// Each name stands for itself in a folder of its own, on every disk.
void checkNames(const PackageEntries &entries)
{
    QSet<QString> seen;
    for (const PackageEntry &entry : entries) {
        const QString name = QString::fromUtf8(entry.name);
        const bool leadsOut = name.isEmpty() || name == QStringLiteral(".")
            || name == QStringLiteral("..") || name.contains(u'/') || name.contains(QChar(0));
        const QString key = name.toCaseFolded().normalized(QString::NormalizationForm_C);
        if (leadsOut || entry.name.size() > 255 || seen.contains(key)) {
            std::abort();
        }
        seen.insert(key);
        checkNames(entry.children);
    }
}

} // namespace

/// Whatever the bytes: what was read of a flattened folder is written and read again as the same,
/// and no name of it leads out of the package that is made of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    application();
    const QByteArray flat =
        "rtfd" + QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
    if (const std::optional<FlatRtfd> read = readFlatRtfd(flat)) {
        const std::optional<FlatRtfd> again = readFlatRtfd(writeFlatRtfd(read->entries));
        if (!again || again->entries != read->entries) {
            std::abort();
        }
    }
    QTextDocument document;
    readBody(flat, document);
    const PackageEntries entries = packageFromDocument(document);
    checkNames(entries);
    readBody(bodyFromPackage(entries), document);
    return 0;
}
