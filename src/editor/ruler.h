#pragma once

#include "editor/tabstops.h"

#include <QTextBlockFormat>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorvane {

class EditorView;
class NSWindow;
class RulerMark;
class TabStopSheet;
class TextCommands;
class TextEditor;

/// The ruler above the text, with the indents and tab stops of the paragraph at the caret, for all
/// that are selected. Marks are dragged, and tab stops made by a click and dragged off; each is a
/// step of undo. A command leads to the marks, and Escape back.
class Ruler final : public QWidget
{
    Q_OBJECT

public:
    Ruler(TextEditor &editor, TextCommands &commands, EditorView &view, NSWindow &sheets);
    ~Ruler() override;

    QSize sizeHint() const override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Where the paragraph at the caret stands on the ruler.
    struct Scale
    {
        double margin = 0; // where its lengths are counted from
        double edge = 0; // where its lines end, the indent on the right included
        double pixels = 1; // of the ruler, to one of the document
        bool isRightToLeft = false;

        bool operator==(const Scale &other) const = default;
    };

    void setShown(bool shown);
    void refreshLater();
    void refresh();
    void watchLayout();
    Scale scaleAt(const QTextBlock &block) const;
    void makeIndents();
    void makeTabs(const QList<TabStop> &stops);
    void connectMark(RulerMark &mark);
    void place(RulerMark &mark, double pixels);

    double lengthAt(int x) const;
    double snapped(double pixels) const;
    double placeOf(const RulerMark &mark, int x) const;
    void showGuide(std::optional<double> x);
    void drawGuide(QPainter &painter) const;

    void moveMark(RulerMark &mark, double pixels);
    void setIndent(const RulerMark &mark, double pixels);
    void addTab(double position, QTextOption::TabType type);
    void changeTab(const TabStop &stop, const std::optional<TabStop> &changed);
    void changeBlocksAt(const QString &name,
                        const std::function<void(const QTextBlock &, QTextBlockFormat &)> &change);
    std::optional<TabStop> stopOf(const RulerMark &mark) const;
    void openMenu(RulerMark &mark, const QPoint &screenPlace);
    void edit(RulerMark &mark);
    bool mayChange() const;

    TextEditor &m_editor;
    TextCommands &m_commands;
    NSWindow &m_sheets;
    std::unique_ptr<TabStopSheet> m_sheet;
    std::vector<RulerMark *> m_indents; // first line, left, right
    std::vector<RulerMark *> m_tabs;
    QList<TabStop> m_stops;
    Scale m_scale;
    std::optional<double> m_guide; // in the editor's viewport
    QMetaObject::Connection m_layout;
    bool m_isAdding = false; // a tab stop, by a press on the ruler
    bool m_isPending = false;
};

} // namespace quorvane
