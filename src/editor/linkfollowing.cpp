#include "editor/linkfollowing.h"

#include "editor/textcommands.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "editor/textlinks.h"
#include "platform/nswindow.h"
#include "platform/nsworkspace.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QToolTip>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int longestTip = 200;

QString shortened(const QString &address)
{
    return address.size() > longestTip ? address.first(longestTip) + u'…' : address;
}

} // namespace

LinkFollowing::LinkFollowing(TextEditor &editor, TextCommands &commands, TextContextMenu &menu,
                             NSWindow &window, NSWorkspace &workspace)
    : m_editor(editor)
    , m_commands(commands)
    , m_window(window)
    , m_workspace(workspace)
{
    commands.define(
        TextCommand::OpenLink, [this] { open(addressAtCaret()); },
        [this] {
            return MenuItemState {!addressAtCaret().isEmpty(), {}, {}};
        });
    menu.addSection([this](QMenu &shown, const QTextCursor &at) { addToMenu(shown, at); });
    editor.viewport()->setMouseTracking(true);
    editor.viewport()->installEventFilter(this);
    editor.installEventFilter(this);
    connect(&editor, &TextEditor::contentHiddenChanged, this, [this] {
        QToolTip::hideText();
        showHand(false);
    });
}

// Asked at each move of the caret, so not by way of the whole paragraph.
QString LinkFollowing::addressAtCaret() const
{
    QTextCursor cursor = m_editor.textCursor();
    cursor.setPosition(cursor.position()); // without what typing would do there
    QString address = cursor.charFormat().anchorHref();
    if (address.isEmpty() && !cursor.atBlockEnd()) {
        cursor.movePosition(QTextCursor::Right);
        address = cursor.charFormat().anchorHref();
    }
    return address;
}

void LinkFollowing::addToMenu(QMenu &menu, const QTextCursor &at)
{
    const auto link = linkAround(*m_editor.document(), at.position());
    if (!link) {
        return;
    }
    if (!m_editor.textCursor().hasSelection()) {
        menu.addAction(&m_commands.action(TextCommand::OpenLink));
    } else { // the caret is elsewhere
        QAction *follow = menu.addAction(u"&Open Link…"_s);
        connect(follow, &QAction::triggered, this,
                [this, address = link->address] { open(address); });
    }
    QAction *copy = menu.addAction(u"Copy Link &Address"_s);
    connect(copy, &QAction::triggered, this, [this, address = link->address] {
        if (!m_editor.isContentHidden()) {
            QGuiApplication::clipboard()->setText(address);
        }
    });
    if (!m_editor.isReadOnly()) {
        menu.addAction(&m_commands.action(TextCommand::InsertLink));
        menu.addAction(&m_commands.action(TextCommand::RemoveLink));
    }
}

bool LinkFollowing::eventFilter(QObject *watched, QEvent *event)
{
    if (m_editor.isContentHidden()) {
        return QObject::eventFilter(watched, event);
    }
    const QEvent::Type type = event->type();
    if (watched == &m_editor && (type == QEvent::KeyPress || type == QEvent::KeyRelease)) {
        followKey(*static_cast<QKeyEvent *>(event), type == QEvent::KeyPress);
    } else if (watched == m_editor.viewport() && type == QEvent::ToolTip) {
        return showTip(*static_cast<QHelpEvent *>(event));
    } else if (watched == m_editor.viewport()
               && (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease
                   || type == QEvent::MouseMove)) {
        return mouseEvent(*static_cast<QMouseEvent *>(event));
    }
    return QObject::eventFilter(watched, event);
}

bool LinkFollowing::mouseEvent(const QMouseEvent &event)
{
    const bool withControl = event.modifiers() == Qt::ControlModifier;
    const QPoint place = event.position().toPoint();
    if (event.type() == QEvent::MouseMove) {
        const bool mayOpen = withControl && event.buttons() == Qt::NoButton;
        showHand(mayOpen && !m_editor.anchorAt(place).isEmpty());
        return false;
    }
    if (event.button() != Qt::LeftButton) {
        return false;
    }
    if (event.type() == QEvent::MouseButtonPress) {
        m_pressed = withControl ? m_editor.anchorAt(place) : QString();
        return !m_pressed.isEmpty();
    }
    const QString pressed = std::exchange(m_pressed, QString());
    if (!pressed.isEmpty() && m_editor.anchorAt(place) == pressed) {
        showHand(false); // whatever opens has the mouse now
        open(pressed);
    }
    return !pressed.isEmpty();
}

bool LinkFollowing::showTip(const QHelpEvent &event)
{
    const QString address = m_editor.anchorAt(event.pos());
    if (address.isEmpty()) {
        QToolTip::hideText();
        return false;
    }
    // The address is a stranger's, and a tip would take it for markup.
    const QString words = shortened(address).toHtmlEscaped() + u"<br>Ctrl+click to open"_s;
    QToolTip::showText(event.globalPos(), u"<p style='white-space:pre'>"_s + words + u"</p>"_s,
                       m_editor.viewport());
    return true;
}

void LinkFollowing::followKey(const QKeyEvent &event, bool isPressed)
{
    if (event.key() == Qt::Key_Control) {
        const QPoint place = m_editor.viewport()->mapFromGlobal(QCursor::pos());
        showHand(isPressed && m_editor.viewport()->rect().contains(place)
                 && !m_editor.anchorAt(place).isEmpty());
    }
}

void LinkFollowing::showHand(bool shows)
{
    if (std::exchange(m_showsHand, shows) != shows) { // others have cursors to show, too
        m_editor.viewport()->setCursor(shows ? Qt::PointingHandCursor : Qt::IBeamCursor);
    }
}

void LinkFollowing::open(const QString &address)
{
    const QUrl url(completedAddress(address), QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (scheme == "file"_L1) {
        askToOpenFile(url.host().isEmpty() ? url.toLocalFile() : QString());
        return;
    }
    if (scheme != "http"_L1 && scheme != "https"_L1 && scheme != "mailto"_L1) {
        tell(
            u"This link cannot be opened from a document."_s,
            u"It leads to “%1”. Web and mail addresses and files can be opened, and nothing else."_s
                .arg(shortened(address)));
        return;
    }
    if (!url.isValid() || !m_workspace.openURL(url)) {
        tell(u"This link could not be opened."_s,
             u"No program was found for “%1”."_s.arg(shortened(address)));
    }
}

void LinkFollowing::askToOpenFile(const QString &path)
{
    if (path.isEmpty()) {
        tell(u"This link cannot be opened from a document."_s,
             u"It leads to a file on another computer."_s);
        return;
    }
    const NSAlert question {
        u"Do you want to open a file of this computer?"_s,
        u"The link leads to “%1”. It is opened by another program. Open it only if you trust "
        "whoever made the link."_s.arg(path),
        {u"Cancel"_s, u"Open"_s},
    };
    m_window.beginAlert(question, [this, path, self = QPointer<QObject>(this)](AlertAnswer answer) {
        if (answer != AlertAnswer::Second || !self || m_editor.isContentHidden()) {
            return;
        }
        if (!m_workspace.openLinkedFile(path)) {
            tell(u"The file could not be opened."_s,
                 u"“%1” is not there, or it is a program, or there is no program for it."_s.arg(
                     path));
        }
    });
}

void LinkFollowing::tell(const QString &what, const QString &why)
{
    m_window.beginAlert({what, why, {u"OK"_s}}, [](AlertAnswer) {});
}

} // namespace quorvane
