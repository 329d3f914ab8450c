#include "shell/preferenceswindow.h"

#include "shell/mypreftoolbardelegate.h"
#include "shell/qvappdelegatebase.h"

#include <QKeySequence>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int usualWidth = 580;

} // namespace

PreferencesWindow::PreferencesWindow(QVAppDelegateBase &delegate, NSUserDefaults &defaults,
                                     const Adapt &adapt)
{
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                   | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint
                   | Qt::WindowCloseButtonHint); // there is nothing to see in a larger one
    auto *tabView = new QStackedWidget(this);
    tabView->addWidget(newGeneralPanel(delegate, defaults));
    tabView->addWidget(newEditPanel(defaults, m_fontPopups));
    tabView->addWidget(newAdvancedPanel(delegate, defaults));
    tabView->addWidget(newUpdatePanel(delegate, defaults));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(tabView, 1);
    // The panel that is shown decides on the height, not the highest one.
    column->setSizeConstraint(QLayout::SetNoConstraint);
    setMinimumWidth(std::max(usualWidth, tabView->minimumSizeHint().width()));
    resize(minimumWidth(), height());
    m_window = adapt(*this);
    m_toolbarDelegate = new MyPrefToolbarDelegate(*this, *column, m_window.get(), *tabView);
    m_toolbarDelegate->awakeFromNib();
    for (const QKeySequence &keys :
         {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    }
}

PreferencesWindow::~PreferencesWindow() = default;

} // namespace quorvane
