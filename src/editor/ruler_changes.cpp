#include "editor/paragraphformats.h"
#include "editor/ruler.h"
#include "editor/rulermark.h"
#include "editor/tabstopsheet.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "platform/nswindow.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTextBlock>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int farOff = 22; // from the bar: what is released there is not meant
constexpr double closest = 0.6; // pixels between the places of one stop in two paragraphs

constexpr QTextOption::TabType tabTypes[] = {QTextOption::LeftTab, QTextOption::CenterTab,
                                             QTextOption::RightTab, QTextOption::DelimiterTab};

} // namespace

std::optional<TabStop> Ruler::stopOf(const RulerMark &mark) const
{
    const auto found = std::find(m_tabs.begin(), m_tabs.end(), &mark);
    return found == m_tabs.end() ? std::nullopt : std::optional(m_stops.at(found - m_tabs.begin()));
}

void Ruler::changeBlocksAt(
    const QString &name, const std::function<void(const QTextBlock &, QTextBlockFormat &)> &change)
{
    m_editor.edit(name, [&change](QTextCursor &cursor) {
        const QList<QTextBlock> blocks = selectedBlocks(cursor);
        for (const QTextBlock &block : blocks) {
            changeBlock(block, [&](QTextBlockFormat &format) { change(block, format); });
        }
    });
    refresh();
}

void Ruler::moveMark(RulerMark &mark, double pixels)
{
    if (mark.indent()) {
        setIndent(mark, pixels);
        return;
    }
    const std::optional<TabStop> stop = stopOf(mark);
    if (!stop) {
        return;
    }
    TabStop moved = *stop;
    moved.position = std::max(0.0, pixels);
    const bool hadFocus = mark.hasFocus();
    changeTab(*stop, moved);
    const auto same = std::find(m_stops.begin(), m_stops.end(), moved);
    if (hadFocus && same != m_stops.end()) { // it may have passed another one
        m_tabs[std::size_t(same - m_stops.begin())]->setFocus();
    }
}

// The left indent takes the first line along.
void Ruler::setIndent(const RulerMark &mark, double pixels)
{
    const double width = (m_scale.edge - m_scale.margin) / m_scale.pixels;
    changeBlocksAt(u"Indents"_s, [&](const QTextBlock &block, QTextBlockFormat &format) {
        const double list = textStartOf(block) - format.leftMargin() - format.textIndent();
        const double left = format.leftMargin();
        switch (*mark.indent()) {
        case RulerMark::Indent::First:
            setIndents(format, left, block.textList() ? 0 : std::max(0.0, pixels) - left - list);
            break;
        case RulerMark::Indent::Left:
            setIndents(format, std::max(0.0, pixels - list), format.textIndent());
            break;
        case RulerMark::Indent::Right:
            format.setRightMargin(std::max(0.0, width - pixels));
            break;
        }
    });
}

void Ruler::addTab(double position, QTextOption::TabType type)
{
    changeBlocksAt(u"Tab Stop"_s, [=](const QTextBlock &block, QTextBlockFormat &format) {
        QList<TabStop> stops = tabStopsOf(block);
        const auto isThere = [position](const TabStop &stop) {
            return std::abs(stop.position - position) < closest;
        };
        stops.removeIf(isThere);
        stops.append({position, type});
        setTabStops(format, stops, textStartOf(block));
    });
}

/// In every selected paragraph that has the stop.
void Ruler::changeTab(const TabStop &stop, const std::optional<TabStop> &changed)
{
    changeBlocksAt(u"Tab Stop"_s, [&](const QTextBlock &block, QTextBlockFormat &format) {
        QList<TabStop> stops = tabStopsOf(block);
        const auto isThere = [&stop](const TabStop &candidate) {
            return std::abs(candidate.position - stop.position) < closest;
        };
        if (stops.removeIf(isThere) == 0) {
            return;
        }
        if (changed) {
            stops.append(*changed);
        }
        setTabStops(format, stops, textStartOf(block));
    });
}

// --- Mouse ----------------------------------------------------------------------------------

void Ruler::mousePressEvent(QMouseEvent *event)
{
    const bool isOnLine = event->pos().x() > m_scale.margin && event->pos().x() < m_scale.edge;
    m_isAdding = event->button() == Qt::LeftButton && isOnLine && mayChange();
    mouseMoveEvent(event);
}

void Ruler::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isAdding) {
        const double position = snapped(lengthAt(event->pos().x()));
        const bool isOff = !rect().adjusted(0, -farOff, 0, farOff).contains(event->pos());
        showGuide(isOff ? std::nullopt : std::optional(m_scale.margin + position * m_scale.pixels));
    }
}

void Ruler::mouseReleaseEvent(QMouseEvent *event)
{
    const bool adds = std::exchange(m_isAdding, false)
        && rect().adjusted(0, -farOff, 0, farOff).contains(event->pos());
    showGuide(std::nullopt);
    if (adds) {
        addTab(std::max(0.0, snapped(lengthAt(event->pos().x()))), QTextOption::LeftTab);
    }
}

void Ruler::contextMenuEvent(QContextMenuEvent *event)
{
    if (!mayChange()) {
        return;
    }
    const double position = std::max(0.0, snapped(lengthAt(event->pos().x())));
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const QTextOption::TabType type : tabTypes) {
        connect(menu->addAction(u"Add %1 Tab Stop"_s.arg(tabTypeName(type))), &QAction::triggered,
                this, [=, this] { addTab(position, type); });
    }
    menu->addSeparator();
    QAction *clear = menu->addAction(u"Remove All Tab Stops"_s);
    clear->setEnabled(!m_stops.isEmpty());
    connect(clear, &QAction::triggered, this, [this] {
        changeBlocksAt(u"Tab Stop"_s, [](const QTextBlock &block, QTextBlockFormat &format) {
            setTabStops(format, {}, textStartOf(block));
        });
    });
    menu->popup(event->globalPos());
}

void Ruler::openMenu(RulerMark &mark, const QPoint &screenPlace)
{
    const std::optional<TabStop> stop = stopOf(mark);
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (!stop) {
        menu->addAction(&m_commands.action(TextCommand::Paragraph));
        menu->popup(screenPlace);
        return;
    }
    for (const QTextOption::TabType type : tabTypes) {
        QAction *action = menu->addAction(tabTypeName(type));
        action->setCheckable(true);
        action->setChecked(type == stop->type);
        connect(action, &QAction::triggered, this, [this, stop, type] {
            TabStop changed = *stop;
            changed.type = type;
            changeTab(*stop, changed);
        });
    }
    menu->addSeparator();
    connect(menu->addAction(u"Tab Stop…"_s), &QAction::triggered, &mark, &RulerMark::editAsked);
    connect(menu->addAction(u"Remove"_s), &QAction::triggered, this,
            [this, stop] { changeTab(*stop, std::nullopt); });
    menu->popup(screenPlace);
}

void Ruler::edit(RulerMark &mark)
{
    const std::optional<TabStop> stop = stopOf(mark);
    if (!stop) {
        m_commands.action(TextCommand::Paragraph).trigger();
        return;
    }
    if (m_sheet && m_sheet->isVisible()) {
        return;
    }
    m_sheet = std::make_unique<TabStopSheet>(*stop, window());
    m_sheets.beginSheet(*m_sheet, [this, stop](int code) {
        if (code == QDialog::Accepted) {
            changeTab(*stop, m_sheet->stop());
        }
        m_editor.setFocus();
    });
}

} // namespace quorvane
