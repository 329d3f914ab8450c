#include "cli/headless.h"
#include "document/documentfile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// What was read is written in the current version, and comes back from there.
void writeAndReadAgain(const DocumentFile &file)
{
    const QByteArray written = file.toData();
    const std::optional<DocumentFile> again = DocumentFile::fromData(written);
    require(again && again->appversion == currentFormatVersion);
    require(again->textData == file.textData && again->publicTextData == file.publicTextData);
    require(again->isEditable == file.isEditable && again->salt == file.salt);
    require(!file.windowRec || again->windowRec == file.windowRec);
}

} // namespace

// Whatever the bytes: a document loads or does not, and one of the oldest versions is tried with a
// password. The others derive a key first, which would leave the fuzzer little time for anything.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const std::optional<DocumentFile> file = DocumentFile::fromData(input);
    static Headless world;
    MyDocument document(world.surroundings());
    const bool isRead = document.readFromData(input);
    require(isRead == (file && familyOf(file->appversion) != FormatFamily::Newer));
    if (!isRead) {
        return 0;
    }
    require(document.isEncrypted() && document.myPublicTextData() == file->publicTextData);
    writeAndReadAgain(*file);
    if (cipherOf(document.releaseToDecryptDoc()) == CipherFamily::Blowfish) {
        document.setPlainPassword(u"correct horse"_s);
        const bool opens = document.Decript() == 0;
        require(opens == document.myTextViewData().has_value());
    }
    return 0;
}
