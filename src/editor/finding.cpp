#include "editor/finding.h"

#include "editor/documentwindow.h"
#include "editor/findbar.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QKeyEvent>
#include <QTextBlock>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int longestWords = 200; // to be taken from the selection

/// What is selected, where one may want to find it again.
QString wordsOf(const QTextCursor &selection)
{
    const QString text = selection.selectedText();
    const bool isPart = text.size() <= longestWords && !text.contains(QChar::ParagraphSeparator)
        && !text.contains(QChar::LineSeparator)
        && !text.contains(QChar::ObjectReplacementCharacter);
    return isPart ? text : QString();
}

bool hasSpace(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

} // namespace

Finding::Finding(DocumentWindow &window, VisibleMarks &marks)
    : m_window(window)
    , m_editor(window.editor())
    , m_finder(m_editor, marks)
{
    defineCommands(window.commands());
    m_editor.installEventFilter(this);
    connect(&m_finder, &TextFinder::standingChanged, this, &Finding::showStanding);
    connect(&m_editor, &TextEditor::contentHiddenChanged, this, [this] {
        m_asked = false;
        m_finder.setMarking(false);
        if (m_bar) {
            m_bar->hide();
            m_bar->forget();
        }
    });
}

FindBar &Finding::bar()
{
    if (!m_bar) {
        m_bar = new FindBar(&m_window);
        m_bar->hide();
        m_window.addBelowText(m_bar);
        followBar();
    }
    return *m_bar;
}

void Finding::defineCommands(TextCommands &commands)
{
    const auto always = [] {
        return MenuItemState {true, {}, {}};
    };
    commands.define(
        TextCommand::Find, [this] { open(false); }, always);
    commands.define(
        TextCommand::FindAndReplace, [this] { open(true); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly(), {}, {}};
        });
    commands.define(
        TextCommand::FindNext, [this] { find(TextFinder::Direction::Forward); }, always);
    commands.define(
        TextCommand::FindPrevious, [this] { find(TextFinder::Direction::Backward); }, always);
    commands.define(
        TextCommand::FindSelection, [this] { findSelection(); },
        [this] {
            return MenuItemState {m_editor.textCursor().hasSelection(), {}, {}};
        });
}

void Finding::followBar()
{
    connect(&m_finder, &TextFinder::told, m_bar, &FindBar::tell);
    connect(m_bar, &FindBar::patternEdited, this, [this] {
        m_finder.setPattern(m_bar->pattern());
        if (isOpen() && !m_bar->pattern().isEmpty()) {
            m_finder.findHere();
        }
    });
    connect(m_bar, &FindBar::findAsked, this, &Finding::find);
    connect(m_bar, &FindBar::replaceAsked, this, [this] {
        if (!m_editor.isReadOnly()) {
            m_finder.replace(m_bar->replacement());
        }
    });
    connect(m_bar, &FindBar::replaceAllAsked, this, [this] {
        if (!m_editor.isReadOnly()) {
            m_finder.replaceAll(m_bar->replacement());
        }
    });
    connect(m_bar, &FindBar::rangeAsked, this, [this](bool on) {
        m_finder.setRange(on ? std::optional(m_editor.textCursor()) : std::nullopt);
    });
    connect(m_bar, &FindBar::closeAsked, this, &Finding::close);
}

bool Finding::isOpen() const
{
    return m_bar && !m_bar->isHidden();
}

void Finding::open(bool replaces)
{
    const QTextCursor selection = m_editor.textCursor();
    const QString words = wordsOf(selection);
    const bool isMatch = isOpen() && m_finder.standing().current > 0;
    const bool takesRange =
        replaces && selection.hasSelection() && !isMatch && (words.isEmpty() || hasSpace(words));
    bar().setReplacing(replaces);
    bar().show();
    m_finder.setMarking(true);
    m_finder.setRange(takesRange ? std::optional(selection) : std::nullopt);
    if (!words.isEmpty() && !takesRange && !isMatch) {
        bar().setWords(words);
    } else {
        m_finder.setPattern(bar().pattern());
    }
    bar().focusWords();
    showStanding();
}

void Finding::close()
{
    m_bar->hide();
    m_finder.setMarking(false);
    m_finder.setRange(std::nullopt);
    m_editor.setFocus();
    m_editor.ensureCursorVisible();
}

void Finding::find(TextFinder::Direction direction)
{
    const SearchPattern sought = bar().pattern();
    if (sought.isEmpty() || !sought.error().isEmpty()) {
        open(bar().isReplacing());
        return;
    }
    m_asked = true;
    m_finder.find(direction);
}

void Finding::findSelection()
{
    const QString words = wordsOf(m_editor.textCursor());
    if (!words.isEmpty()) {
        bar().setWords(words);
        m_finder.find(TextFinder::Direction::Forward);
    }
}

void Finding::showStanding()
{
    if (!m_bar) {
        return;
    }
    const TextFinder::Standing standing = m_finder.standing();
    const bool isKnown = standing.state == TextSearch::State::Complete
        || standing.state == TextSearch::State::TooMuch;
    if (m_asked && isKnown) {
        m_asked = false;
        if (!isOpen() && standing.count == 0) { // nobody would be told otherwise
            open(false);
        }
    }
    m_bar->showStanding(standing);
    m_bar->showRange(m_finder.hasRange(), m_editor.textCursor().hasSelection());
}

bool Finding::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && isOpen()
        && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Cancel)) {
        close();
        return true;
    }
    if (event->type() == QEvent::ReadOnlyChange && m_bar && m_editor.isReadOnly()) {
        m_bar->setReplacing(false);
        m_finder.setRange(std::nullopt);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quorvane
