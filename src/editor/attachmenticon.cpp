#include "editor/attachmenticon.h"

#include "editor/adaptivecolours.h"

#include <QFileInfo>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double narrowestFrame = 132;
constexpr QSizeF page(24, 30);
constexpr double gap = 8;
constexpr double roundness = 6;
constexpr double narrowestName = 60; // below it there is only the sheet of paper

QFont nameFont()
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(QFontInfo(font).pixelSize());
    return font;
}

QFont detailFont()
{
    QFont font = nameFont();
    font.setPixelSize(std::max(9, font.pixelSize() * 85 / 100));
    return font;
}

/// Between two colours of the palette: readable on light and dark ground alike.
QColor blend(const QColor &from, const QColor &to, double share)
{
    const auto mix = [share](float a, float b) {
        return float(a + (b - a) * share);
    };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

/// The ending of the name where it is short enough to be read on the paper.
QString kindOf(const QString &name)
{
    constexpr int longest = 4;
    const QString ending = QFileInfo(name).suffix().toUpper();
    return ending.size() <= longest ? ending : QString();
}

void drawPage(QPainter &painter, const QRectF &rect, const QString &kind, const QPalette &palette)
{
    const QColor ground = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::Text);
    const double fold = rect.width() * 0.32;
    QPainterPath outline(rect.topLeft());
    outline.lineTo(rect.right() - fold, rect.top());
    outline.lineTo(rect.right(), rect.top() + fold);
    outline.lineTo(rect.bottomRight());
    outline.lineTo(rect.bottomLeft());
    outline.closeSubpath();
    QPainterPath corner(QPointF(rect.right() - fold, rect.top()));
    corner.lineTo(rect.right() - fold, rect.top() + fold);
    corner.lineTo(rect.right(), rect.top() + fold);
    const QPen line(blend(ground, ink, 0.55), 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(line);
    painter.setBrush(ground);
    painter.drawPath(outline);
    painter.setBrush(blend(ground, ink, 0.15));
    painter.drawPath(corner);
    if (kind.isEmpty()) {
        painter.setPen(QPen(blend(ground, ink, 0.35), 1.2, Qt::SolidLine, Qt::RoundCap));
        for (const double at : {0.5, 0.65, 0.8}) {
            const double y = rect.top() + rect.height() * at;
            painter.drawLine(QPointF(rect.left() + 5, y), QPointF(rect.right() - 5, y));
        }
        return;
    }
    QFont font = nameFont();
    font.setPixelSize(kind.size() > 3 ? 7 : 8);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(readableInk(palette.color(QPalette::Link), ground));
    painter.drawText(rect.adjusted(0, rect.height() * 0.42, 0, 0), Qt::AlignCenter, kind);
}

} // namespace

QString shownAttachmentName(const QString &name)
{
    static const QRegularExpression number(u"^\\d+__#\\$!@%!#__(?=.)"_s);
    QString shown = name;
    return shown.remove(number);
}

QSizeF fileFrame(const QString &name)
{
    const double text = QFontMetricsF(nameFont()).horizontalAdvance(shownAttachmentName(name));
    const double width = std::ceil(page.width() + text + 3 * gap + 2);
    return {std::clamp(width, narrowestFrame, largestFileFrame.width()), largestFileFrame.height()};
}

void drawFile(QPainter &painter, const QRectF &rect, const QString &name, qint64 size,
              const QPalette &palette)
{
    const QColor ground = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::Text);
    painter.setPen(QPen(blend(ground, ink, 0.22), 1));
    painter.setBrush(blend(ground, ink, 0.045));
    painter.drawRoundedRect(rect.adjusted(1.5, 1.5, -1.5, -1.5), roundness, roundness);
    const double scale =
        std::min({1.0, (rect.width() - gap) / page.width(), (rect.height() - gap) / page.height()});
    if (scale < 0.3) {
        return;
    }
    QRectF paper(QPointF(), page * scale);
    paper.moveCenter(rect.center());
    const QString shown = shownAttachmentName(name);
    const double room = rect.width() - page.width() - 3 * gap;
    if (room < narrowestName) {
        drawPage(painter, paper, {}, palette);
        return;
    }
    paper.moveLeft(rect.left() + gap);
    drawPage(painter, paper, scale < 1 ? QString() : kindOf(shown), palette);
    const QFontMetricsF nameMetrics(nameFont());
    const QFontMetricsF detailMetrics(detailFont());
    const double height = nameMetrics.height() + detailMetrics.height();
    const bool hasDetail = height <= rect.height() - 4;
    const QRectF text(paper.right() + gap, rect.center().y() - height / 2, room, height);
    painter.setFont(nameFont());
    painter.setPen(ink);
    painter.drawText(hasDetail ? text : QRectF(text.left(), rect.top(), room, rect.height()),
                     (hasDetail ? Qt::AlignTop : Qt::AlignVCenter) | Qt::TextSingleLine,
                     nameMetrics.elidedText(shown, Qt::ElideMiddle, room));
    if (hasDetail) {
        painter.setFont(detailFont());
        painter.setPen(blend(ground, ink, 0.62));
        painter.drawText(
            text, Qt::AlignBottom | Qt::TextSingleLine,
            QLocale().formattedDataSize(size, size < 1000 ? 0 : 1, QLocale::DataSizeSIFormat));
    }
}

void drawComingPicture(QPainter &painter, const QRectF &rect, const QPalette &palette)
{
    const QColor ground = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::Text);
    painter.fillRect(rect, blend(ground, ink, 0.06));
    QRectF sign(0, 0, 36, 28);
    if (rect.width() < 2 * sign.width() || rect.height() < 2 * sign.height()) {
        return;
    }
    sign.moveCenter(rect.center());
    const QColor line = blend(ground, ink, 0.3);
    painter.setPen(QPen(line, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(sign, 3, 3);
    painter.drawPolyline(QPolygonF {{sign.left() + 4, sign.bottom() - 5},
                                    {sign.left() + 13, sign.top() + 13},
                                    {sign.left() + 20, sign.bottom() - 9},
                                    {sign.left() + 25, sign.top() + 15},
                                    {sign.right() - 4, sign.bottom() - 5}});
    painter.setBrush(line);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(sign.right() - 9, sign.top() + 8), 2.6, 2.6);
}

} // namespace quorvane
