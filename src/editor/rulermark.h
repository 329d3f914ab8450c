#pragma once

#include <QAbstractSlider>
#include <QTextOption>

#include <optional>

namespace quorvane {

/// An indent or a tab stop on the ruler. Its value is its place, in twips from the margin; keys and
/// assistive programs change it as that of any slider.
class RulerMark final : public QAbstractSlider
{
    Q_OBJECT

public:
    enum class Indent { First, Left, Right };

    static constexpr int size = 13;

    RulerMark(Indent indent, QWidget *ruler);
    RulerMark(QTextOption::TabType type, QWidget *ruler);

    std::optional<Indent> indent() const { return m_indent; }

    /// Shows where it is without telling that it has moved.
    void showPlace(double pixels);

    /// It would be gone if it were let go here.
    void setFading(bool fades);

    QSize sizeHint() const override { return {size, size}; }

signals:
    /// It is held at that place of the ruler.
    void dragged(const QPoint &place);
    void dropped(const QPoint &place);
    void removeAsked();
    void editAsked();
    void menuAsked(const QPoint &screenPlace);
    void leaveAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void prepare();
    void drawIndent(QPainter &painter) const;

    std::optional<Indent> m_indent;
    QTextOption::TabType m_tabType = QTextOption::LeftTab;
    QPoint m_held; // the place of the press
    bool m_isHeld = false;
    bool m_isDragged = false;
    bool m_fades = false;
};

/// The sign of a kind of tab stop, on a square of that size.
void drawTabSign(QPainter &painter, QTextOption::TabType type, double size);

QString tabTypeName(QTextOption::TabType type);

} // namespace quorvane
