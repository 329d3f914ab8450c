// Writes and reads document files for a script that speaks the format by itself:
//   docfile write OUT PASSWORD-FILE BODY-FILE NOTE-FILE
//   docfile read IN PASSWORD-FILE          the body goes to standard output
// Exit codes: 0 done, 1 usage, 2 not readable, 3 wrong password, 4 newer version, 5 cannot write.
#include "document/documentfixture.h"
#include "platform/posixfilestore.h"

#include <QStringList>

#include <cstdio>

using namespace quorvane;

namespace {

std::optional<QByteArray> contentOf(const QString &path)
{
    return PosixFileStore().read(path).data;
}

int write(const QStringList &arguments)
{
    World world;
    const auto password = contentOf(arguments[1]);
    const auto body = contentOf(arguments[2]);
    const auto note = contentOf(arguments[3]);
    if (!password || !body || !note) {
        return 2;
    }
    const QByteArray file =
        fileOf(world, *body, QString::fromUtf8(*password), QString::fromUtf8(*note));
    return PosixFileStore().replace(arguments[0], file) ? 5 : 0;
}

int read(const QStringList &arguments)
{
    World world;
    const auto file = contentOf(arguments[0]);
    const auto password = contentOf(arguments[1]);
    MyDocument document(world.surroundings());
    if (!file || !password || !document.readFromData(*file)) {
        return document.hasToldWhyNotRead() ? 4 : 2;
    }
    document.setPlainPassword(QString::fromUtf8(*password));
    if (document.Decript() != 0) {
        return 3;
    }
    const QByteArray body = document.myTextViewData().value_or(QByteArray());
    const auto size = static_cast<std::size_t>(body.size());
    return std::fwrite(body.constData(), 1, size, stdout) == size ? 0 : 5;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 2; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    const QByteArray command(argc > 1 ? argv[1] : "");
    if (command == "write" && arguments.size() == 4) {
        return write(arguments);
    }
    if (command == "read" && arguments.size() == 2) {
        return read(arguments);
    }
    return 1;
}
