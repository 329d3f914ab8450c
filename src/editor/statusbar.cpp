#include "editor/statusbar.h"

#include "editor/palelabel.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QAction>
#include <QElapsedTimer>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QTextBlock>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int pauseMilliseconds = 300; // of somebody who types
constexpr int sliceMilliseconds = 4;
constexpr int blocksAtOnce = 64; // between two looks at the clock

QString counted(qint64 count, const QString &one, const QString &many)
{
    return u"%1 %2"_s.arg(QLocale().toString(count), count == 1 ? one : many);
}

} // namespace

StatusBar::StatusBar(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
    , m_label(new QLabel(this))
    , m_readOnly(new PaleLabel(u"Read only"_s, this))
    , m_zoom(new QToolButton(this))
{
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(u"Status"_s);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // never widens the window
    m_zoom->setAutoRaise(true);
    m_zoom->setFocusPolicy(Qt::NoFocus);
    m_zoom->setToolTip(u"Show the text at its actual size"_s);
    m_zoom->setAccessibleName(u"Zoom"_s);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(14, 1, 6, 1);
    row->addWidget(m_label, 1);
    row->addWidget(m_readOnly);
    row->addWidget(m_zoom);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &StatusBar::countOn);
    connect(m_zoom, &QToolButton::clicked, &editor, [&editor] { editor.setZoom(1); });
    connect(&editor, &QTextEdit::textChanged, this, &StatusBar::begin);
    connect(&editor, &QTextEdit::selectionChanged, this, &StatusBar::begin);
    connect(&editor, &TextEditor::contentReplaced, this, &StatusBar::begin);
    connect(&editor, &TextEditor::contentHiddenChanged, this, [this] {
        tell({});
        begin();
    });
    connect(&editor, &TextEditor::zoomChanged, this, &StatusBar::showZoom);
    commands.define(
        TextCommand::ShowStatusBar,
        [this] {
            setVisible(isHidden());
            begin(); // nothing was counted for a bar that nobody saw
        },
        [this] {
            return MenuItemState {true, {}, !isHidden()};
        });
    m_readOnly->setVisible(editor.isReadOnly());
    editor.installEventFilter(this);
    showZoom();
    begin();
}

bool StatusBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ReadOnlyChange) {
        m_readOnly->setVisible(m_editor.isReadOnly());
    }
    return QFrame::eventFilter(watched, event);
}

void StatusBar::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    layout()->activate();
    showWhatFits();
}

void StatusBar::begin()
{
    m_left.clear();
    m_timer.start(pauseMilliseconds);
}

void StatusBar::countOn()
{
    if (m_editor.isContentHidden() || isHidden()) {
        return;
    }
    const QTextDocument &text = *m_editor.content();
    if (m_left.isEmpty()) {
        const QTextCursor caret = m_editor.textCursor();
        m_ofSelection = caret.hasSelection();
        m_left = m_ofSelection ? selectedRanges(caret)
                               : QList<SelectedRange> {{0, text.characterCount()}};
        m_counts = {};
    }
    QElapsedTimer clock;
    clock.start();
    for (int done = 1; !m_left.isEmpty(); ++done) {
        SelectedRange &range = m_left.last();
        const QTextBlock block = text.findBlock(range.from);
        const int from = range.from - block.position();
        const int length = std::min(block.length() - 1, range.to - block.position()) - from;
        m_counts += countsOf(QStringView(block.text()).mid(from, length));
        range.from = block.position() + block.length();
        if (range.from >= range.to) {
            m_left.removeLast();
        }
        if (done % blocksAtOnce == 0 && clock.hasExpired(sliceMilliseconds)) {
            m_timer.start(0);
            return;
        }
    }
    showCounts();
}

void StatusBar::showCounts()
{
    const QStringList parts {counted(m_counts.words, u"word"_s, u"words"_s),
                             counted(m_counts.characters, u"character"_s, u"characters"_s),
                             counted(m_counts.paragraphs, u"paragraph"_s, u"paragraphs"_s)};
    tell(m_ofSelection ? QStringList(u"Selected:  "_s + parts.first()) + parts.sliced(1) : parts);
}

void StatusBar::tell(const QStringList &parts)
{
    m_parts = parts;
    m_label->setAccessibleName(parts.join(u", "_s));
    showWhatFits();
}

void StatusBar::showWhatFits()
{
    const auto textOf = [this](qsizetype count) {
        return m_parts.first(count).join(u"  ·  "_s);
    };
    qsizetype count = m_parts.size();
    while (count > 1
           && m_label->fontMetrics().horizontalAdvance(textOf(count)) > m_label->width()) {
        --count;
    }
    m_label->setText(textOf(count));
    m_label->setToolTip(count < m_parts.size() ? textOf(m_parts.size()) : QString());
}

void StatusBar::showZoom()
{
    m_zoom->setText(u"%1 %"_s.arg(qRound(100 * m_editor.zoom())));
}

} // namespace quorvane
