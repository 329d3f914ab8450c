#pragma once

#include <QSizeF>
#include <QString>

class QPainter;
class QPalette;
class QRectF;

namespace quorvane {

/// The name of an attachment as a person knows it: without the number that was put in front of it
/// when there were two of that name.
QString shownAttachmentName(const QString &name);

/// The largest frame that any file takes.
inline constexpr QSizeF largestFileFrame {260, 44};

/// What a file with that name takes up, in pixels of the screen.
QSizeF fileFrame(const QString &name);

/// Draws a file in the text: a sheet of paper with the file's kind, its name, and how large it is.
void drawFile(QPainter &painter, const QRectF &rect, const QString &name, qint64 size,
              const QPalette &palette);

/// Draws what stands in for a picture that is not decoded yet.
void drawComingPicture(QPainter &painter, const QRectF &rect, const QPalette &palette);

} // namespace quorvane
