#pragma once

#include <QAction>
#include <QList>
#include <QObject>
#include <QStringList>

class QActionGroup;
class QStackedWidget;
class QToolBar;
class QVBoxLayout;

namespace quorvane {

class NSWindow;

/// The frame of a preferences window: a toolbar of panels over the panels themselves. Choosing one
/// resizes the window to its height, from below; the top edge stays where it is.
class QVPrefToolbarDelegate : public QObject
{
    Q_OBJECT

public:
    /// The platform's window is taken over the widget that \a column lays out.
    QVPrefToolbarDelegate(QWidget &widget, QVBoxLayout &column, NSWindow *window,
                          QStackedWidget &tabView);

    /// Makes the toolbar and shows the first panel. Called once, when the panels are there.
    void awakeFromNib();
    void AttachToWindow();
    /// All of the window that is no panel, its title bar included; 0 without a window.
    int ToolbarHeightForWindow(const NSWindow *window) const;

    QStringList toolbarDefaultItemIdentifiers() const { return returnAllkeys(); }

    QStringList toolbarAllowedItemIdentifiers() const { return returnAllkeys(); }

    QStringList toolbarSelectableItemIdentifiers() const { return returnAllkeys(); }

    void toolbaritemclicked() { }

    /// Shows the panel of an item; without one, the first panel.
    void PanelAction(QAction *item);
    /// Does nothing for a number that is no panel's.
    void SetPanelTab(qint32 panel);

    QToolBar *toolbar() const { return m_toolbar; }

    QStackedWidget *myTabView() const { return &m_tabView; }

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    virtual QList<int> heightArray() const { return {}; } ///< Of the panels, in their order.

    virtual QStringList returnAllkeys() const { return {}; } ///< Identifiers of the items.

    /// A new item whose data is the number of its panel; null for an identifier that is none.
    virtual QAction *toolbarItemForItemIdentifier(const QString &) { return nullptr; }

private:
    void show(int panel);
    void bindSize();

    QWidget &m_widget;
    QVBoxLayout &m_column;
    NSWindow *m_myWindow;
    QStackedWidget &m_tabView;
    QToolBar *m_toolbar = nullptr;
    QActionGroup *m_items;
    QList<int> m_myHeightArray;
    int m_wantedHeight = 0; // of the widget
};

} // namespace quorvane
