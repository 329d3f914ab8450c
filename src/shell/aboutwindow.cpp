#include "shell/aboutwindow.h"

#include "editor/glyphpicture.h"
#include "product/buildsettings.h"
#include "shell/productlabel.h"
#include "shell/qvappdelegatebase.h"

#include <QBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int markExtent = 72;

} // namespace

AboutWindow::AboutWindow(QVAppDelegateBase &delegate)
    : m_delegate(delegate)
{
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                   | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(36, 30, 36, 26);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(new GlyphPicture(Glyph::Padlock, markExtent, this), 0, Qt::AlignHCenter);
    column->addSpacing(10);
    const auto add = [&](QLabel *label) {
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        column->addWidget(label, 0, Qt::AlignHCenter);
    };
    add(newProductLabel(this));
    add(new QLabel(appStantment(), this));
    column->addSpacing(10);
    add(new QLabel(u"Release %1 (build %2)"_s.arg(releaseString(), buildString()), this));
    add(new QLabel(vendorName(), this));
    column->addSpacing(14);
    auto *buttons = new QHBoxLayout;
    const auto addButton = [&](const QString &title, auto action) {
        auto *button = new QPushButton(title, this);
        button->setAutoDefault(true); // Enter presses it, too
        connect(button, &QPushButton::clicked, &m_delegate, action);
        buttons->addWidget(button);
        return button;
    };
    m_guide = addButton(u"User &Guide"_s, &QVAppDelegateBase::openUserGuide);
    m_guide->setVisible(hasUserGuide());
    addButton(u"&Web Site"_s, &QVAppDelegateBase::webSite)->setFocus();
    column->addLayout(buttons);
    for (const QKeySequence &keys :
         {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    }
}

AboutWindow::~AboutWindow() = default;

void AboutWindow::setPlatformWindow(std::unique_ptr<NSWindow> window)
{
    m_window = std::move(window);
}

QString AboutWindow::appName() const
{
    return m_delegate.appName();
}

QString AboutWindow::vendorName() const
{
    return m_delegate.vendorName();
}

QString AboutWindow::releaseString() const
{
    return m_delegate.releaseString();
}

QString AboutWindow::buildString() const
{
    return buildsettings::buildString();
}

QString AboutWindow::appStantment() const
{
    return QVAppDelegateBase::getAppStantment();
}

// The Window menu lists documents, and so never this window.
void AboutWindow::openAbout()
{
    if (!m_window) {
        return;
    }
    if (!m_window->isVisible()) {
        adjustSize(); // else it is the middle of a larger window that is centred
        m_window->center();
        m_window->setTitle(u"About %1"_s.arg(appName()));
    }
    m_window->makeKeyAndOrderFront();
}

void AboutWindow::showEvent(QShowEvent *event)
{
    m_guide->setEnabled(m_delegate.isUserGuideInstalled());
    QWidget::showEvent(event);
}

} // namespace quorvane
