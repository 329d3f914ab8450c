#include "editor/draggedattachment.h"

#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
constexpr auto fileFormat = "text/uri-list"_L1;
}

DraggedAttachment::DraggedAttachment(std::unique_ptr<QMimeData> text,
                                     std::function<std::optional<QString>()> makeFile)
    : m_text(std::move(text))
    , m_makeFile(std::move(makeFile))
{ }

QStringList DraggedAttachment::formats() const
{
    return m_text->formats() + QStringList {fileFormat};
}

bool DraggedAttachment::hasFormat(const QString &format) const
{
    return formats().contains(format);
}

QVariant DraggedAttachment::retrieveData(const QString &format, QMetaType type) const
{
    if (format != fileFormat) {
        return m_text->hasFormat(format) ? QVariant(m_text->data(format)) : QVariant();
    }
    const std::optional<QString> file = m_makeFile();
    if (!file) {
        return {};
    }
    const QUrl url = QUrl::fromLocalFile(*file);
    return type.id() == QMetaType::QByteArray ? QVariant(url.toEncoded() + "\r\n")
                                              : QVariant(QVariantList {url});
}

} // namespace quorvane
