#include "editor/ruler.h"

#include "editor/editorview.h"
#include "editor/lengthfield.h"
#include "editor/paragraphformats.h"
#include "editor/rulermark.h"
#include "editor/tabstopsheet.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int barHeight = 26;
constexpr int farOff = 22; // from the bar: what is dropped there goes
constexpr double inch = 96;
constexpr double centimetre = inch / 2.54;
constexpr int closestNumbers = 26;

double unit()
{
    return LengthField::measuresInInches() ? inch : centimetre;
}

double defaultDotsPerInch()
{
    return std::round(QGuiApplication::primaryScreen()->logicalDotsPerInchY());
}

} // namespace

Ruler::Ruler(TextEditor &editor, TextCommands &commands, EditorView &view, NSWindow &sheets)
    : m_editor(editor)
    , m_commands(commands)
    , m_sheets(sheets)
{
    setObjectName(u"ruler"_s);
    setAccessibleName(u"Ruler"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setToolTip(u"Click to set a tab stop"_s);
    makeIndents();
    hide();
    view.switches.ruler = [this](bool shown) {
        setShown(shown);
    };
    commands.define(
        TextCommand::ShowRuler, [this] { setShown(isHidden()); },
        [this] {
            return MenuItemState {true, {}, !isHidden()};
        });
    commands.define(
        TextCommand::GoToRuler, [this] { m_indents.front()->setFocus(Qt::ShortcutFocusReason); },
        [this] {
            return MenuItemState {isVisible() && mayChange(), {}, {}};
        });
    connect(&editor, &QTextEdit::cursorPositionChanged, this, &Ruler::refreshLater);
    connect(&editor, &QTextEdit::textChanged, this, &Ruler::refreshLater);
    connect(&editor, &TextEditor::contentReplaced, this, &Ruler::watchLayout);
    connect(&editor, &TextEditor::contentHiddenChanged, this, &Ruler::watchLayout);
    connect(editor.horizontalScrollBar(), &QScrollBar::valueChanged, this, &Ruler::refresh);
    editor.installEventFilter(this);
    editor.viewport()->installEventFilter(this);
    editor.addOverlay([this](QPainter &painter) { drawGuide(painter); });
    watchLayout();
}

Ruler::~Ruler() = default;

QSize Ruler::sizeHint() const
{
    return {200, barHeight};
}

void Ruler::setShown(bool shown)
{
    setVisible(shown);
    m_commands.validateLater();
}

// Zoom and a new width change what the lengths of the text are on the screen.
void Ruler::watchLayout()
{
    disconnect(m_layout);
    m_layout =
        connect(m_editor.document()->documentLayout(),
                &QAbstractTextDocumentLayout::documentSizeChanged, this, &Ruler::refreshLater);
    showGuide(std::nullopt);
    refreshLater();
}

bool Ruler::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::ReadOnlyChange) {
        refreshLater();
    }
    return QWidget::eventFilter(watched, event);
}

void Ruler::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refreshLater();
}

void Ruler::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    refreshLater();
}

// --- What is shown --------------------------------------------------------------------------

bool Ruler::mayChange() const
{
    return !m_editor.isReadOnly() && !m_editor.isContentHidden();
}

void Ruler::refreshLater()
{
    if (isHidden() || std::exchange(m_isPending, true)) {
        return;
    }
    const auto now = [this] {
        m_isPending = false;
        refresh();
    };
    QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
}

void Ruler::refresh()
{
    if (isHidden()) {
        return;
    }
    const QTextBlock block = m_editor.textCursor().block();
    const Scale scale = scaleAt(block);
    if (scale != m_scale) {
        m_scale = scale;
        update();
    }
    const bool isShown = !m_editor.isContentHidden();
    makeTabs(isShown ? tabStopsOf(block) : QList<TabStop>());
    for (qsizetype i = 0; i < m_stops.size(); ++i) {
        place(*m_tabs[std::size_t(i)], m_stops.at(i).position);
    }
    const QTextBlockFormat format = block.blockFormat();
    const double start = textStartOf(block);
    const double places[] = {start, start - format.textIndent(),
                             (m_scale.edge - m_scale.margin) / m_scale.pixels
                                 - format.rightMargin()};
    for (std::size_t i = 0; i < m_indents.size(); ++i) {
        place(*m_indents[i], places[i]);
        m_indents[i]->setVisible(isShown && (i != 0 || !m_scale.isRightToLeft));
        m_indents[i]->setEnabled(mayChange());
    }
}

Ruler::Scale Ruler::scaleAt(const QTextBlock &block) const
{
    const QAbstractTextDocumentLayout &layout = *m_editor.document()->documentLayout();
    const QRectF rect = layout.blockBoundingRect(block);
    const int viewport =
        m_editor.viewport()->mapTo(m_editor.window(), QPoint()).x() - mapTo(window(), QPoint()).x();
    Scale scale;
    scale.margin = viewport + m_editor.origin().x() + rect.left();
    scale.isRightToLeft = block.textDirection() == Qt::RightToLeft;
    if (const QPaintDevice *device = layout.paintDevice()) {
        scale.pixels = device->logicalDpiY() / defaultDotsPerInch();
    }
    scale.edge =
        scale.margin + m_editor.viewport()->width() - 2 * m_editor.document()->documentMargin();
    if (block.layout()->lineCount() > 0) {
        const QTextLine line = block.layout()->lineAt(0);
        scale.edge = scale.margin + line.x() + line.width()
            + block.blockFormat().rightMargin() * scale.pixels;
    }
    return scale;
}

void Ruler::makeIndents()
{
    for (const auto indent :
         {RulerMark::Indent::First, RulerMark::Indent::Left, RulerMark::Indent::Right}) {
        m_indents.push_back(new RulerMark(indent, this));
        connectMark(*m_indents.back());
    }
}

// Marks stay as long as they can: one of them may hold the keyboard.
void Ruler::makeTabs(const QList<TabStop> &stops)
{
    const auto typesOf = [](const QList<TabStop> &of) {
        QList<int> types;
        for (const TabStop &stop : of) {
            types.append(int(stop.type));
        }
        return types;
    };
    const bool isSame = typesOf(stops) == typesOf(m_stops);
    m_stops = stops;
    if (!isSame) {
        for (RulerMark *mark : m_tabs) {
            mark->hide();
            mark->deleteLater(); // it may be what asked for this
        }
        m_tabs.clear();
        for (const TabStop &stop : stops) {
            m_tabs.push_back(new RulerMark(stop.type, this));
            connectMark(*m_tabs.back());
            m_tabs.back()->show();
        }
    }
    for (RulerMark *mark : m_tabs) {
        mark->setEnabled(mayChange());
    }
}

void Ruler::connectMark(RulerMark &mark)
{
    RulerMark *const at = &mark;
    connect(at, &RulerMark::dragged, this, [this, at](const QPoint &place) {
        const bool goes = !at->indent() && (place.y() < -farOff || place.y() > barHeight + farOff);
        const double pixels = placeOf(*at, place.x());
        showGuide(goes ? std::nullopt : std::optional(m_scale.margin + pixels * m_scale.pixels));
        at->setFading(goes);
        this->place(*at, pixels);
    });
    connect(at, &RulerMark::dropped, this, [this, at](const QPoint &place) {
        const bool goes = !at->indent() && (place.y() < -farOff || place.y() > barHeight + farOff);
        const std::optional<TabStop> stop = stopOf(*at);
        showGuide(std::nullopt);
        at->setFading(false);
        if (goes && stop) {
            changeTab(*stop, std::nullopt);
        } else {
            moveMark(*at, placeOf(*at, place.x()));
        }
    });
    connect(at, &QAbstractSlider::valueChanged, this,
            [this, at](int twips) { moveMark(*at, twips / 15.0); });
    connect(at, &RulerMark::removeAsked, this, [this, at] {
        if (const std::optional<TabStop> stop = stopOf(*at)) {
            changeTab(*stop, std::nullopt);
            m_editor.setFocus();
        }
    });
    connect(at, &RulerMark::editAsked, this, [this, at] { edit(*at); });
    connect(at, &RulerMark::leaveAsked, &m_editor, [this] { m_editor.setFocus(); });
    connect(at, &RulerMark::menuAsked, this,
            [this, at](const QPoint &screenPlace) { openMenu(*at, screenPlace); });
}

void Ruler::place(RulerMark &mark, double pixels)
{
    mark.showPlace(pixels);
    const double x = m_scale.margin + pixels * m_scale.pixels;
    const bool isFirst = mark.indent() == RulerMark::Indent::First;
    mark.move(int(std::lround(x)) - RulerMark::size / 2,
              isFirst ? 0 : barHeight - RulerMark::size - 1);
}

double Ruler::lengthAt(int x) const
{
    return (x - m_scale.margin) / m_scale.pixels;
}

double Ruler::snapped(double pixels) const
{
    const double step = LengthField::measuresInInches() ? inch / 16 : centimetre / 10;
    return std::round(pixels / step) * step;
}

double Ruler::placeOf(const RulerMark &mark, int x) const
{
    const double width = (m_scale.edge - m_scale.margin) / m_scale.pixels;
    if (mark.indent() == RulerMark::Indent::Right) { // counted from the edge
        return width - std::max(0.0, snapped(width - lengthAt(x)));
    }
    return std::clamp(snapped(lengthAt(x)), 0.0, width);
}

void Ruler::showGuide(std::optional<double> x)
{
    if (x) {
        *x -= m_editor.viewport()->mapTo(m_editor.window(), QPoint()).x()
            - mapTo(window(), QPoint()).x();
    }
    if (m_guide != x) {
        m_guide = x;
        m_editor.viewport()->update();
    }
}

void Ruler::drawGuide(QPainter &painter) const
{
    if (m_guide) {
        painter.setPen(QPen(m_editor.palette().color(QPalette::Highlight), 1, Qt::DashLine));
        painter.drawLine(QPointF(*m_guide, 0), QPointF(*m_guide, m_editor.viewport()->height()));
    }
}

void Ruler::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    const QRectF line(m_scale.margin, 5, m_scale.edge - m_scale.margin, barHeight - 11);
    painter.fillRect(line, palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, height() - 1, width(), height() - 1);
    if (m_editor.isContentHidden()) {
        return;
    }
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.75);
    painter.setFont(small);
    QColor ink = palette().color(QPalette::Text);
    ink.setAlphaF(0.6F);
    painter.setPen(ink);
    const double step = unit() * m_scale.pixels;
    const int parts = LengthField::measuresInInches() ? 8 : 2;
    const int every = int(std::ceil(closestNumbers / step));
    const double middle = line.center().y();
    for (int count = 1; m_scale.margin + count * step / parts < m_scale.edge; ++count) {
        const double x = m_scale.margin + count * step / parts;
        if (x < 0 || x > width()) {
            continue;
        }
        if (count % (parts * every) == 0) {
            const QRectF place(x - closestNumbers / 2.0, line.top(), closestNumbers, line.height());
            painter.drawText(place, Qt::AlignCenter, QString::number(count / parts));
        } else if (step / parts > 5) {
            const double half = 2 * count % parts == 0 ? 2.5 : 1.5;
            painter.drawLine(QPointF(x, middle - half), QPointF(x, middle + half));
        }
    }
}

} // namespace quorvane
