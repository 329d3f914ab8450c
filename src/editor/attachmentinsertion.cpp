#include "editor/attachmentinsertion.h"

#include "editor/attachmentobject.h"
#include "editor/picturefile.h"
#include "editor/placedattachment.h"
#include "editor/selectedtext.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "platform/safefilename.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QMimeData>
#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qint64 askedAbove = 25'000'000;
constexpr qint64 largestFile = 500'000'000; // all of a document is encrypted in one piece
constexpr double screenDotsPerInch = 96;
constexpr double lineHeight = 40; // around an attachment, generously
constexpr std::array pictureFormats {"image/png"_L1,  "image/jpeg"_L1, "image/gif"_L1,
                                     "image/webp"_L1, "image/tiff"_L1, "image/bmp"_L1};

QString shownSizeOf(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

/// A name that nothing in the store has: "Pasted Image 2.png" where there is one.
QString freeName(const AttachmentStore &store, const QString &wanted)
{
    const QFileInfo file(wanted);
    const QString ending = file.suffix().isEmpty() ? QString() : u'.' + file.suffix();
    const QString stem = wanted.chopped(ending.size());
    QString name = wanted;
    for (int number = 2; store.entry(name); ++number) {
        name = stem + u' ' + QString::number(number) + ending;
    }
    return name;
}

QStringList localFiles(const QMimeData &source)
{
    QStringList paths;
    for (const QUrl &url : source.urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    return paths;
}

QByteArray pngOf(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

NSAlert tooLargeQuestion(const QStringList &names, qint64 bytes)
{
    const QString what = names.size() == 1
        ? u"“%1” has %2."_s.arg(names.first(), shownSizeOf(bytes))
        : u"These %1 files have %2."_s.arg(names.size()).arg(shownSizeOf(bytes));
    return {what + u" Do you want to put that into the document?"_s,
            u"All of a document is kept in memory, and encrypted anew each time it is saved. A "
            u"large document takes longer to save, to lock and to unlock."_s,
            {u"Cancel"_s, u"Insert"_s},
            NSAlertStyle::Warning};
}

} // namespace

struct AttachmentInsertion::Batch
{
    QStringList paths;
    As as;
    QStringList problems;
    qint64 bytes = 0;
};

AttachmentInsertion::AttachmentInsertion(TextEditor &editor, TextCommands &commands,
                                         NSWindow &sheets, const EditorSurroundings &world)
    : m_editor(editor)
    , m_sheets(sheets)
    , m_world(world)
{
    const auto writes = [this] {
        return MenuItemState {!m_editor.isReadOnly(), {}, {}};
    };
    commands.define(
        TextCommand::InsertPicture, [this] { choose(As::Pictures); }, writes);
    commands.define(
        TextCommand::InsertFile, [this] { choose(As::Files); }, writes);
    editor.setForeignObjects({[this](const QMimeData &source) { return offers(source); },
                              [this](const QMimeData &source) {
                                  return take(source);
                              }});
}

// --- Files ----------------------------------------------------------------------------------

void AttachmentInsertion::choose(As as)
{
    NSOpenPanel panel;
    panel.allowedFileTypes = as == As::Pictures ? pictureFileTypes() : QStringList();
    panel.allowsMultipleSelection = true;
    panel.prompt = u"&Insert"_s;
    m_world.transfer.machinery.panels.beginOpenSheet(
        m_sheets, panel, [self = QPointer(this), as](const QStringList &paths) {
            if (!self || paths.isEmpty()) {
                return;
            }
            // Not before the panel is gone: there may be something to ask.
            self->m_world.transfer.machinery.mainQueue.addOperation([self, paths, as] {
                if (self) {
                    self->insertFiles(paths, as);
                }
            });
        });
}

void AttachmentInsertion::insertFiles(const QStringList &paths, As as)
{
    if (m_editor.isReadOnly() || m_editor.isContentHidden()) {
        return;
    }
    Batch batch {{}, as, {}, 0};
    for (const QString &path : paths) {
        const QString name = QFileInfo(path).fileName();
        const FileStore::StampResult found = m_world.transfer.machinery.files.stamp(path);
        if (QFileInfo(path).isDir()) {
            batch.problems.append(
                u"“%1” is a folder. Pack it into one file, or insert its files."_s.arg(name));
        } else if (!found.stamp) {
            batch.problems.append(u"“%1” could not be read. %2"_s.arg(name, found.error.reason()));
        } else if (found.stamp->size > largestFile) {
            batch.problems.append(
                u"“%1” has %2, more than a document can hold. It takes files of up to %3."_s.arg(
                    name, shownSizeOf(found.stamp->size), shownSizeOf(largestFile)));
        } else {
            batch.paths.append(path);
            batch.bytes += found.stamp->size;
        }
    }
    read(std::move(batch));
}

void AttachmentInsertion::read(Batch batch)
{
    if (batch.bytes <= askedAbove) {
        readNow(batch);
        return;
    }
    QStringList names;
    for (const QString &path : batch.paths) {
        names.append(QFileInfo(path).fileName());
    }
    m_sheets.beginAlert(tooLargeQuestion(names, batch.bytes),
                        [self = QPointer(this), batch](AlertAnswer answer) {
                            if (self && answer == AlertAnswer::Second) {
                                self->readNow(batch);
                            } else if (self) {
                                self->tell(batch.problems);
                            }
                        });
}

void AttachmentInsertion::readNow(const Batch &batch)
{
    QStringList problems = batch.problems;
    std::vector<Item> items;
    for (const QString &path : batch.paths) {
        const QString name = QFileInfo(path).fileName();
        FileStore::ReadResult file = m_world.transfer.machinery.files.read(path);
        if (!file.data) {
            problems.append(u"“%1” could not be read. %2"_s.arg(name, file.error.reason()));
            continue;
        }
        Item item = batch.as == As::Files ? Item {safeFileName(name), *file.data, {}}
                                          : pictureItem(name, *file.data);
        if (batch.as == As::Pictures && item.size.isEmpty()) {
            problems.append(u"“%1” is no picture that can be shown here. Insert it as a file "
                            "instead."_s.arg(name));
            continue;
        }
        items.push_back(std::move(item));
    }
    if (!items.empty()) {
        const bool isPictures = std::none_of(items.begin(), items.end(),
                                             [](const Item &item) { return item.size.isEmpty(); });
        insert(std::move(items), isPictures ? u"Insert Picture"_s : u"Insert File"_s);
    }
    tell(problems);
}

void AttachmentInsertion::tell(const QStringList &problems)
{
    constexpr qsizetype most = 5;
    if (problems.isEmpty() || m_editor.isContentHidden()) {
        return;
    }
    QStringList told = problems.first(std::min(most, problems.size()));
    if (problems.size() > most) {
        told.append(u"And %1 more."_s.arg(problems.size() - most));
    }
    const QString heading =
        problems.size() == 1 ? u"A file was not inserted."_s : u"Some files were not inserted."_s;
    m_sheets.beginAlert({heading, told.join(u"\n\n"_s), {u"OK"_s}}, [](AlertAnswer) {});
}

// --- Into the text --------------------------------------------------------------------------

bool AttachmentInsertion::insert(std::vector<Item> items, const QString &undoName)
{
    if (m_editor.isReadOnly() || m_editor.isContentHidden()) {
        return false;
    }
    double height = 0;
    for (const Item &item : items) {
        height += item.size.height() + 2 * lineHeight;
    }
    if (!m_editor.hasRoomFor(height)) {
        emit m_editor.tooTall();
        return false;
    }
    QTextDocument &document = *m_editor.content();
    AttachmentStore &store = AttachmentStore::of(document);
    QTextCharFormat around = lookOfTyped(m_editor.textCursor());
    dropLink(around);
    const bool isDone = m_editor.edit(undoName, [&](QTextCursor &cursor) {
        cursor.removeSelectedText();
        for (const Item &item : items) {
            const QString name = store.add(freeName(store, item.name), item.bytes);
            cursor.insertText(QString(QChar::ObjectReplacementCharacter),
                              attachmentFormat(document, around, name, item.size));
        }
    });
    m_editor.setCurrentCharFormat(around);
    m_editor.ensureCursorVisible();
    m_editor.setFocus();
    return isDone;
}

/// As a picture where it can be shown, else as a file.
AttachmentInsertion::Item AttachmentInsertion::pictureItem(const QString &name,
                                                           const QByteArray &bytes) const
{
    const std::optional<PictureInfo> info = pictureInfo(bytes);
    return {safeFileName(name), bytes, info ? shownSize(info->natural) : QSizeF()};
}

/// No wider than the column that the caret is in.
QSizeF AttachmentInsertion::shownSize(const QSizeF &natural) const
{
    constexpr double widest = 700;
    constexpr double tallest = 4000;
    constexpr double narrowest = 32;
    const QTextBlock block = m_editor.textCursor().block();
    const QTextBlockFormat paragraph = block.blockFormat();
    const double scale = resolutionOf(*m_editor.content()) / screenDotsPerInch;
    const double column = (m_editor.viewport()->width() / scale)
        - 2 * m_editor.content()->documentMargin() - paragraph.leftMargin()
        - paragraph.rightMargin();
    const QSizeF most(std::clamp(column, narrowest, widest), tallest);
    const bool fits = natural.width() <= most.width() && natural.height() <= most.height();
    return fits ? natural : natural.scaled(most, Qt::KeepAspectRatio).expandedTo(QSizeF(1, 1));
}

// --- From other programs --------------------------------------------------------------------

bool AttachmentInsertion::offers(const QMimeData &source) const
{
    const auto has = [&source](QLatin1StringView format) {
        return source.hasFormat(format);
    };
    return source.hasImage() || std::any_of(pictureFormats.begin(), pictureFormats.end(), has)
        || !localFiles(source).isEmpty();
}

bool AttachmentInsertion::take(const QMimeData &source)
{
    const QStringList paths = localFiles(source);
    if (paths.isEmpty()) {
        return takeImage(source);
    }
    insertFiles(paths, As::WhateverTheyAre);
    return true;
}

bool AttachmentInsertion::takeImage(const QMimeData &source)
{
    for (const QLatin1StringView format : pictureFormats) {
        const QByteArray bytes = source.hasFormat(format) ? source.data(format) : QByteArray();
        if (const auto info = pictureInfo(bytes)) {
            return insert({pictureItem(u"Pasted Image."_s + info->ending, bytes)},
                          u"Paste Picture"_s);
        }
    }
    const QByteArray bytes = pngOf(qvariant_cast<QImage>(source.imageData()));
    return !bytes.isEmpty()
        && insert({pictureItem(u"Pasted Image.png"_s, bytes)}, u"Paste Picture"_s);
}

} // namespace quorvane
