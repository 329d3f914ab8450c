#pragma once

#include "richtext/attachmentstore.h"

#include <QMimeData>
#include <QPointer>
#include <QTextBlockFormat>
#include <QTextDocumentFragment>

#include <memory>
#include <optional>
#include <vector>

class QTextCursor;
class QTextDocument;

namespace quorvane {

class TextEditor;

/// The text as it would be saved, with its attachments. No other program knows it.
inline constexpr QLatin1StringView rtfdFormat("application/x-quorvane-rtfd");

/// What was copied from a text: as a body of its own, as RTF, and in the formats that everyone
/// knows; a picture alone also as the file that it is, and as a PNG. Nothing is written before it
/// is asked for, and nothing is given out while the text it comes from is hidden.
class CopiedText final : public QMimeData
{
    Q_OBJECT

public:
    /// \a common offers the formats that everyone knows; \a source is the editor it comes from.
    CopiedText(std::unique_ptr<QMimeData> common, const QTextCursor &selection,
               const TextEditor *source);

    /// Clears each clipboard that this program owns with what was copied from \a source.
    static void clearClipboards(const TextEditor *source);

    QStringList formats() const override;
    bool hasFormat(const QString &format) const override;

protected:
    QVariant retrieveData(const QString &format, QMetaType type) const override;

private:
    struct Entry
    {
        FlatRtfdEntry entry;
        FlatRtfdAttributes attributes;
    };

    struct Picture
    {
        QString type;
        QByteArray bytes;
        bool isTurned;
    };

    bool isHidden() const;
    std::optional<Picture> pictureIn(const QTextCursor &selection) const;
    QStringList pictureFormats() const;
    std::unique_ptr<QTextDocument> text() const;
    std::unique_ptr<QTextDocument> document() const;

    std::unique_ptr<QMimeData> m_common;
    QTextDocumentFragment m_text;
    std::optional<QTextBlockFormat> m_firstParagraph; // where it was copied from its beginning
    std::vector<Entry> m_entries;
    std::optional<Picture> m_picture; // where it is all that was copied
    int m_length; // in characters
    bool m_beginsInItem = false; // of a list, or in the midst of one
    bool m_beginsWithItem = false; // and all of it was copied
    QPointer<const TextEditor> m_source;
};

bool offersRtf(const QMimeData &source);

/// The RTF that a program offers, under whatever name; empty where there is none.
QByteArray rtfOf(const QMimeData &source);

/// The text that \a body holds, to be inserted into \a target. The files of its attachments are in
/// the store of \a target already, under the names that the text calls them by; a file that is
/// there and that no attachment of \a target stands for, since it was cut, is not put there again.
std::unique_ptr<QTextDocument> pastedBody(const QByteArray &body, QTextDocument &target);

} // namespace quorvane
