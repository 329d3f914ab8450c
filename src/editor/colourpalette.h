#pragma once

#include "editor/stylememory.h"

#include <QFrame>

#include <optional>

class QAbstractButton;
class QBoxLayout;

namespace quorvane {

/// A pop-up to choose the colour of a text or of its ground from. It closes and deletes itself.
class ColourPalette final : public QFrame
{
    Q_OBJECT

public:
    /// \a current is marked; nothing stands for no colour of its own.
    ColourPalette(ColourUse use, const QList<QColor> &recent, const std::optional<QColor> &current,
                  QWidget *parent);

    /// Shows it at that place, or as near as the screen lets it.
    void popUp(const QRect &anchor);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void picked(const std::optional<QColor> &colour);
    void otherAsked();

private:
    void addNone(ColourUse use, bool isCurrent);
    void addSwatches(ColourUse use, const std::optional<QColor> &current);
    void addRecent(const QList<QColor> &recent);
    void addOther();
    QAbstractButton *swatch(const QColor &colour, const QString &name, bool isCurrent);
    void add(QAbstractButton *button);
    void choose(const std::optional<QColor> &colour);
    void moveFocus(int key);

    QBoxLayout *m_column;
    QList<QList<QAbstractButton *>> m_rows; // for the arrow keys
};

} // namespace quorvane
