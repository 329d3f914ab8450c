#pragma once

#include "platform/nswindow.h"

#include <QWidget>

#include <memory>

namespace quorvane {

class QVAppDelegateBase;

/// Tells which program this is, and of which release.
class AboutWindow final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString appName READ appName CONSTANT)
    Q_PROPERTY(QString vendorName READ vendorName CONSTANT)
    Q_PROPERTY(QString releaseString READ releaseString CONSTANT)
    Q_PROPERTY(QString buildString READ buildString CONSTANT)
    Q_PROPERTY(QString appStantment READ appStantment CONSTANT)
    Q_PROPERTY(bool hasUserGuide READ hasUserGuide CONSTANT)

public:
    explicit AboutWindow(QVAppDelegateBase &delegate);
    ~AboutWindow() override;

    /// What the window is placed and brought forward by.
    void setPlatformWindow(std::unique_ptr<NSWindow> window);

    QString appName() const;
    QString vendorName() const;
    QString releaseString() const;
    QString buildString() const;
    QString appStantment() const;

    bool hasUserGuide() const { return true; } ///< Of the program, installed or not.

    void openAbout();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QVAppDelegateBase &m_delegate;
    std::unique_ptr<NSWindow> m_window;
    QWidget *m_guide = nullptr;
};

} // namespace quorvane
