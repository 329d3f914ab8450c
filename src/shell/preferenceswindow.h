#pragma once

#include "platform/nswindow.h"
#include "shell/preferencespanels.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace quorvane {

class MyPrefToolbarDelegate;

/// The window of the program's settings: four panels under a toolbar.
class PreferencesWindow final : public QWidget
{
    Q_OBJECT

public:
    using Adapt = std::function<std::unique_ptr<NSWindow>(QWidget &widget)>;

    PreferencesWindow(QVAppDelegateBase &delegate, NSUserDefaults &defaults, const Adapt &adapt);
    ~PreferencesWindow() override;

    NSWindow *platformWindow() const { return m_window.get(); }

    MyPrefToolbarDelegate *toolbarDelegate() const { return m_toolbarDelegate; }

    const FontPopups &fontPopups() const { return m_fontPopups; }

private:
    FontPopups m_fontPopups;
    std::unique_ptr<NSWindow> m_window;
    MyPrefToolbarDelegate *m_toolbarDelegate;
};

} // namespace quorvane
