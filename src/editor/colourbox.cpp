#include "editor/colourbox.h"

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct NamedColour
{
    QString name;
    QRgb colour;
};

const QList<NamedColour> &namedColours()
{
    static const QList<NamedColour> colours = {
        {u"Black"_s, qRgb(0, 0, 0)},
        {u"Dark Grey"_s, qRgb(0x60, 0x60, 0x60)},
        {u"Grey"_s, qRgb(0x96, 0x96, 0x96)},
        {u"Light Grey"_s, qRgb(0xd9, 0xd9, 0xd9)},
        {u"White"_s, qRgb(0xff, 0xff, 0xff)},
        {u"Red"_s, qRgb(0xd0, 0x3b, 0x2f)},
        {u"Orange"_s, qRgb(0xe8, 0x8a, 0x1a)},
        {u"Yellow"_s, qRgb(0xff, 0xe0, 0x66)},
        {u"Green"_s, qRgb(0x3d, 0x9a, 0x50)},
        {u"Blue"_s, qRgb(0x2a, 0x7f, 0xde)},
        {u"Purple"_s, qRgb(0x8a, 0x4f, 0xbf)},
        {u"Light Yellow"_s, qRgb(0xff, 0xf6, 0xd6)},
        {u"Light Green"_s, qRgb(0xdf, 0xf2, 0xe1)},
        {u"Light Blue"_s, qRgb(0xdd, 0xea, 0xfa)},
        {u"Light Red"_s, qRgb(0xfb, 0xe1, 0xdd)},
    };
    return colours;
}

QIcon swatch(const QColor &colour)
{
    constexpr int scale = 3; // stays sharp on screens of up to so many dots a pixel
    constexpr int side = 16;
    QPixmap pixmap(side * scale, side * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x80, 0x80, 0x80), 1));
    painter.setBrush(colour.isValid() ? QBrush(colour) : QBrush(Qt::NoBrush));
    const QRectF frame(1.5, 1.5, side - 3, side - 3);
    painter.drawRoundedRect(frame, 2, 2);
    if (!colour.isValid()) {
        painter.drawLine(frame.bottomLeft(), frame.topRight());
    }
    return QIcon(pixmap);
}

} // namespace

ColourBox::ColourBox(Nothing nothing, QWidget *parent)
    : QComboBox(parent)
{
    if (nothing == Nothing::IsOffered) {
        add(u"None"_s, QColor(), count());
    }
    for (const NamedColour &named : namedColours()) {
        add(named.name, QColor(named.colour), count());
    }
    addItem(u"Other…"_s);
    setPlaceholderText(u"Several"_s);
    setMaxVisibleItems(count());
    connect(this, &QComboBox::activated, this, &ColourBox::choose);
}

std::optional<QColor> ColourBox::colour() const
{
    const bool isColour = currentIndex() >= 0 && currentIndex() < count() - 1;
    return isColour ? std::optional(currentData().value<QColor>()) : std::nullopt;
}

void ColourBox::setColour(const std::optional<QColor> &colour)
{
    int index = -1;
    for (int i = 0; colour && i < count() - 1; ++i) {
        const auto offered = itemData(i).value<QColor>();
        const bool isSame = offered.isValid() == colour->isValid()
            && (!offered.isValid() || offered.rgba() == colour->rgba());
        index = isSame ? i : index;
    }
    if (colour && colour->isValid() && index < 0) {
        index = count() - 1;
        add(colour->name().toUpper(), *colour, index);
    }
    setCurrentIndex(index);
    m_chosen = index;
}

void ColourBox::add(const QString &name, const QColor &colour, int at)
{
    insertItem(at, swatch(colour), name, colour);
}

void ColourBox::choose(int index)
{
    if (index == count() - 1) {
        setCurrentIndex(m_chosen);
        askForOther();
        return;
    }
    m_chosen = index;
}

void ColourBox::askForOther()
{
    auto *dialog = new QColorDialog(colour().value_or(QColor(Qt::white)), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor &chosen) {
        setColour(chosen);
        emit activated(currentIndex());
    });
    dialog->open();
}

} // namespace quorvane
