#pragma once

#include <QWidget>

#include <vector>

class QBoxLayout;
class QFrame;
class QToolButton;

namespace quorvane {

/// Tools in groups, side by side. What does not fit stands in a panel that a button at the end
/// opens.
class ToolStrip final : public QWidget
{
    Q_OBJECT

public:
    explicit ToolStrip(QWidget *parent = nullptr);

    /// Puts a group at the end. The groups of the highest rank leave first.
    void addGroup(const QList<QWidget *> &tools, int rank);

    QToolButton *moreButton() const { return m_more; }

    void closePanel();

    bool isInPanel(const QWidget &tool) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// Tools went into the panel, or came back.
    void moved();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    struct Group
    {
        QWidget *box;
        int rank;
        bool fits = true;
    };

    void openPanel();
    void chooseWhatFits();
    void arrange();
    void fillPanel();
    int widthOfFitting() const;
    void closePanelBehind(QWidget &tool);

    std::vector<Group> m_groups;
    QToolButton *m_more;
    QFrame *m_panel;
    QBoxLayout *m_rows; // of the panel
};

} // namespace quorvane
