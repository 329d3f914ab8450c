#pragma once

#include <QMimeData>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace quorvane {

/// An attachment on its way to another program, or to another place in the text. The file for other
/// programs is made when one asks for it, and not before.
class DraggedAttachment final : public QMimeData
{
    Q_OBJECT

public:
    /// \a text is the same attachment as a text. \a makeFile gives the path of the file, or
    /// nothing; it is called each time that one asks.
    DraggedAttachment(std::unique_ptr<QMimeData> text,
                      std::function<std::optional<QString>()> makeFile);

    QStringList formats() const override;
    bool hasFormat(const QString &format) const override;

protected:
    QVariant retrieveData(const QString &format, QMetaType type) const override;

private:
    std::unique_ptr<QMimeData> m_text;
    std::function<std::optional<QString>()> m_makeFile;
};

} // namespace quorvane
