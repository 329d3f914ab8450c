#include "editor/colourpalette.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QToolButton>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int swatchSize = 22;
constexpr int columns = 8;

struct Shades
{
    QLatin1StringView name; // for names of its own, empty
    QRgb colours[columns];
};

constexpr QLatin1StringView greyNames[columns] = {
    "Black"_L1,      "Darkest Grey"_L1, "Dark Grey"_L1,     "Grey"_L1,
    "Light Grey"_L1, "Pale Grey"_L1,    "Lightest Grey"_L1, "White"_L1,
};
constexpr QLatin1StringView hueNames[columns] = {
    "Red"_L1, "Orange"_L1, "Yellow"_L1, "Green"_L1, "Teal"_L1, "Blue"_L1, "Purple"_L1, "Pink"_L1,
};
constexpr Shades textShades[] = {
    {""_L1,
     {0xff000000, 0xff333333, 0xff555555, 0xff777777, 0xff999999, 0xffbbbbbb, 0xffdddddd,
      0xffffffff}},
    {"Dark %1"_L1,
     {0xff7f1d1d, 0xff7c3a0a, 0xff6b5200, 0xff14532d, 0xff134e4a, 0xff1e3a8a, 0xff4c1d95,
      0xff831843}},
    {"%1"_L1,
     {0xffc9252d, 0xffd9600b, 0xffb58900, 0xff1e8a3c, 0xff0f8a86, 0xff1f5fd0, 0xff7a35d0,
      0xffc52a78}},
    {"Light %1"_L1,
     {0xfff06a6a, 0xfff59e4a, 0xffe6c229, 0xff5fbf6b, 0xff4cc2bd, 0xff6fa3f2, 0xffab85f0,
      0xffee86b7}},
};
constexpr Shades highlightShades[] = {
    {"Pale %1"_L1,
     {0xffffd9d6, 0xffffe3c2, 0xfffff3a3, 0xffd5f2c8, 0xffc9f1ee, 0xffd3e4ff, 0xffe6dafc,
      0xfffcd9ea}},
    {"%1"_L1,
     {0xffff9d96, 0xffffc078, 0xffffe14d, 0xff9be27f, 0xff7fe0da, 0xff93bdff, 0xffc3a6f7,
      0xfff7a3cd}},
    {""_L1,
     {0xff000000, 0xff404040, 0xff7f7f7f, 0xffa6a6a6, 0xffbfbfbf, 0xffd9d9d9, 0xfff2f2f2,
      0xffffffff}},
};

QString nameOf(const Shades &shades, int column)
{
    return shades.name.isEmpty() ? QString(greyNames[column])
                                 : QString(shades.name).arg(hueNames[column]);
}

class Swatch final : public QAbstractButton
{
public:
    Swatch(const QColor &colour, const QString &name, QWidget *parent)
        : QAbstractButton(parent)
        , m_colour(colour)
    {
        setCheckable(true);
        setToolTip(name);
        setAccessibleName(name);
        setFixedSize(swatchSize, swatchSize);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF face = QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5);
        QColor edge = palette().color(QPalette::WindowText);
        edge.setAlphaF(0.3F);
        painter.setPen(edge);
        painter.setBrush(m_colour);
        painter.drawRoundedRect(face, 3, 3);
        if (hasFocus() || underMouse()) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
        }
        if (isChecked()) {
            const bool isDark = qGray(m_colour.rgb()) < 140;
            painter.setPen(QPen(isDark ? Qt::white : Qt::black, 1.8, Qt::SolidLine, Qt::RoundCap));
            painter.drawPolyline(QPolygonF {{7, 11.5}, {10, 14.5}, {15, 8}});
        }
    }

private:
    QColor m_colour;
};

QToolButton *textButton(const QString &text, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(text);
    button->setAutoRaise(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

} // namespace

ColourPalette::ColourPalette(ColourUse use, const QList<QColor> &recent,
                             const std::optional<QColor> &current, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_column(new QVBoxLayout(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Raised));
    setAccessibleName(use == ColourUse::Text ? u"Text Colour"_s : u"Highlight"_s);
    m_column->setContentsMargins(8, 8, 8, 8);
    m_column->setSpacing(6);
    addNone(use, !current);
    addSwatches(use, current);
    addRecent(recent);
    addOther();
}

void ColourPalette::addNone(ColourUse use, bool isCurrent)
{
    auto *none = textButton(use == ColourUse::Text ? u"Automatic"_s : u"None"_s, this);
    none->setCheckable(true);
    none->setChecked(isCurrent);
    m_column->addWidget(none);
    m_rows.push_back({});
    add(none);
    connect(none, &QAbstractButton::clicked, this, [this] { choose(std::nullopt); });
}

void ColourPalette::addSwatches(ColourUse use, const std::optional<QColor> &current)
{
    auto *grid = new QGridLayout;
    grid->setSpacing(2);
    m_column->addLayout(grid);
    const auto addRow = [&](const Shades &shades) {
        m_rows.push_back({});
        for (int column = 0; column < columns; ++column) {
            const QColor colour(shades.colours[column]);
            grid->addWidget(swatch(colour, nameOf(shades, column), current == colour),
                            int(m_rows.size()), column);
        }
    };
    if (use == ColourUse::Text) {
        std::for_each(std::begin(textShades), std::end(textShades), addRow);
    } else {
        std::for_each(std::begin(highlightShades), std::end(highlightShades), addRow);
    }
}

void ColourPalette::addRecent(const QList<QColor> &recent)
{
    if (recent.isEmpty()) {
        return;
    }
    m_column->addWidget(new QLabel(u"Recent"_s, this));
    auto *row = new QHBoxLayout;
    row->setSpacing(2);
    m_column->addLayout(row);
    m_rows.push_back({});
    for (const QColor &colour : recent) {
        row->addWidget(swatch(colour, u"Recent: %1"_s.arg(colour.name()), false));
    }
    row->addStretch();
}

void ColourPalette::addOther()
{
    auto *other = textButton(u"More…"_s, this);
    m_column->addWidget(other);
    m_rows.push_back({});
    add(other);
    connect(other, &QAbstractButton::clicked, this, [this] {
        close();
        emit otherAsked();
    });
}

QAbstractButton *ColourPalette::swatch(const QColor &colour, const QString &name, bool isCurrent)
{
    auto *button = new Swatch(colour, name, this);
    button->setChecked(isCurrent);
    button->setFocusPolicy(Qt::StrongFocus);
    add(button);
    connect(button, &QAbstractButton::clicked, this, [this, colour] { choose(colour); });
    return button;
}

void ColourPalette::add(QAbstractButton *button)
{
    button->installEventFilter(this);
    m_rows.last().push_back(button);
}

void ColourPalette::choose(const std::optional<QColor> &colour)
{
    close();
    emit picked(colour);
}

void ColourPalette::popUp(const QRect &anchor)
{
    adjustSize();
    const QScreen *onto = parentWidget()->screen();
    const QRect room = onto->availableGeometry();
    QPoint place = anchor.bottomLeft() + QPoint(0, 1);
    if (place.y() + height() > room.bottom()) {
        place.setY(anchor.top() - height());
    }
    place.setX(std::clamp(place.x(), room.left(), std::max(room.left(), room.right() - width())));
    place.setY(std::max(room.top(), place.y()));
    move(place);
    show();
    QAbstractButton *first = m_rows.first().first();
    for (const QList<QAbstractButton *> &row : std::as_const(m_rows)) {
        const auto current = std::find_if(
            row.begin(), row.end(), [](const QAbstractButton *one) { return one->isChecked(); });
        first = current == row.end() ? first : *current;
    }
    first->setFocus(Qt::PopupFocusReason);
}

bool ColourPalette::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        static_cast<QAbstractButton *>(watched)->click();
        return true;
    }
    const bool isArrow = key >= Qt::Key_Left && key <= Qt::Key_Down;
    if (isArrow) {
        moveFocus(key);
    }
    return isArrow;
}

void ColourPalette::moveFocus(int key)
{
    for (qsizetype y = 0; y < m_rows.size(); ++y) {
        for (qsizetype x = 0; x < m_rows[y].size(); ++x) {
            if (!m_rows[y][x]->hasFocus()) {
                continue;
            }
            const qsizetype up = key == Qt::Key_Up ? 1 : 0;
            const qsizetype down = key == Qt::Key_Down ? 1 : 0;
            const qsizetype left = key == Qt::Key_Left ? 1 : 0;
            const qsizetype right = key == Qt::Key_Right ? 1 : 0;
            const auto &row = m_rows[std::clamp<qsizetype>(y + down - up, 0, m_rows.size() - 1)];
            row[std::clamp<qsizetype>(x + right - left, 0, row.size() - 1)]->setFocus();
            return;
        }
    }
}

} // namespace quorvane
