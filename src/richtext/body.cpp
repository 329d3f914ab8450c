#include "richtext/body.h"

#include "richtext/attachmentstore.h"
#include "richtext/flatrtfd.h"
#include "richtext/plaintextsink.h"
#include "richtext/rtfcodepage.h"
#include "richtext/rtfreader.h"
#include "richtext/rtfsurplus.h"
#include "richtext/rtfwriter.h"
#include "richtext/textdocumentsink.h"

#include <QStringDecoder>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace quorvane {

namespace {

constexpr char textName[] = "TXT.rtf";
constexpr char attributesName[] = ".";
constexpr char fileName[] = ".."; // The contents, where a single file was flattened.
constexpr int deepestWrapper = 8;

/// A body taken apart.
struct Parts
{
    QByteArray text; ///< RTF or plain text.
    FlatRtfdEntries files;
    std::vector<FlatRtfdAttributes> attributes;
};

bool isFile(const FlatRtfdEntry &entry, const char *name)
{
    return entry.kind == FlatRtfdEntry::Kind::File && entry.name == name;
}

Parts partsOf(FlatRtfd folder)
{
    Parts parts;
    bool hasText = false;
    bool hasFile = false;
    QByteArray file;
    for (FlatRtfdEntry &entry : folder.entries) {
        if (!hasText && isFile(entry, textName)) {
            parts.text = entry.bytes;
            hasText = true;
        } else if (isFile(entry, attributesName)) {
            parts.attributes = readFlatRtfdAttributes(entry.bytes);
        } else if (!hasFile && isFile(entry, fileName)) {
            file = entry.bytes;
            hasFile = true;
        } else if (!entry.name.startsWith("__@") || !entry.name.endsWith("@__")) {
            parts.files.push_back(std::move(entry));
        }
    }
    if (!hasText) {
        parts.text = file;
    }
    return parts;
}

Parts partsOf(const QByteArray &body)
{
    Parts parts {body, {}, {}};
    // A wrapper holds nothing but what it wraps.
    for (int depth = 0; depth < deepestWrapper && parts.files.empty(); ++depth) {
        std::optional<FlatRtfd> folder = readFlatRtfd(parts.text);
        if (!folder) {
            break;
        }
        parts = partsOf(*std::move(folder));
    }
    return parts;
}

QString decodeText(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        text.resize(bytes.size());
        std::transform(bytes.begin(), bytes.end(), text.begin(),
                       [](char c) { return QChar(fromWindowsLatin(uchar(c))); });
    }
    return text;
}

void readText(const QByteArray &text, RtfSink &sink,
              const std::function<void(double)> &progress = {})
{
    if (formOf(text) == BodyForm::Rtf) {
        RtfReader reader(text, sink);
        reader.setProgress(progress);
        reader.read();
        return;
    }
    const RtfTables tables;
    sink.begin(tables);
    sink.text(decodeText(text), RtfParagraph(), RtfCharacter());
    sink.end(RtfParagraph(), RtfCharacter());
}

} // namespace

BodyForm formOf(const QByteArray &body)
{
    if (body.isEmpty()) {
        return BodyForm::Empty;
    }
    if (body.startsWith("rtfd")) {
        return BodyForm::FlatRtfd;
    }
    return body.startsWith("{\\rtf") ? BodyForm::Rtf : BodyForm::PlainText;
}

void readBody(const QByteArray &body, QTextDocument &document,
              const std::function<void(double)> &progress)
{
    const bool hadUndo = document.isUndoRedoEnabled();
    document.setUndoRedoEnabled(false);
    document.clear();
    Parts parts = partsOf(body);
    AttachmentStore::of(document).setEntries(std::move(parts.files), parts.attributes);
    QTextCursor block(&document);
    block.beginEditBlock();
    TextDocumentSink sink(document);
    readText(parts.text, sink, progress);
    block.endEditBlock();
    document.setModified(false);
    document.setUndoRedoEnabled(hadUndo);
}

bool bodyHoldsSurplus(const QByteArray &body)
{
    const Parts parts = partsOf(body);
    return formOf(parts.text) == BodyForm::Rtf && rtfHoldsSurplus(parts.text);
}

QByteArray bodyFromDocument(const QTextDocument &document)
{
    RtfWriter writer(document);
    const QByteArray text = writer.write();
    FlatRtfdEntries entries;
    std::vector<FlatRtfdAttributes> records;
    if (const AttachmentStore *store = AttachmentStore::find(document)) {
        for (const AttachmentStore::WrittenEntry &file :
             store->entriesFor(writer.attachmentNames())) {
            entries.push_back(*file.entry);
            records.push_back(file.attributes);
        }
    }
    FlatRtfdAttributes textRecord;
    textRecord.name = textName;
    records.push_back(textRecord);
    const FlatRtfdEntry textEntry {textName, FlatRtfdEntry::Kind::File, text, {}};
    const FlatRtfdEntry recordEntry {
        attributesName, FlatRtfdEntry::Kind::File, writeFlatRtfdAttributes(records), {}};
    // The order of the platform itself, which is another one with files and without.
    const bool hasFiles = !entries.empty();
    entries.push_back(hasFiles ? recordEntry : textEntry);
    entries.push_back(hasFiles ? textEntry : recordEntry);
    return writeFlatRtfd(entries);
}

QString plainTextFromBody(const QByteArray &body)
{
    PlainTextSink sink;
    readText(partsOf(body).text, sink);
    return sink.text();
}

} // namespace quorvane
