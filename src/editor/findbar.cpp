#include "editor/findbar.h"

#include "editor/glyphicon.h"

#include <QAccessible>
#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMimeData>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr QMargins margins(8, 5, 6, 5);
constexpr int gap = 6;
constexpr int iconSize = 16;
constexpr QColor wrongOnLight(0xb3, 0x26, 0x1e);
constexpr QColor wrongOnDark(0xff, 0x8a, 0x80);

QString numberText(int number)
{
    return QLocale().toString(number);
}

QString standingText(const TextFinder::Standing &standing)
{
    switch (standing.state) {
    case TextSearch::State::Idle:
    case TextSearch::State::TooMuch:
        return {};
    case TextSearch::State::Running:
        return u"Searching…"_s;
    case TextSearch::State::Complete:
        break;
    }
    if (standing.count == 0) {
        return u"No matches"_s;
    }
    if (standing.current == 0) {
        return standing.count == 1 ? u"1 match"_s : u"%1 matches"_s.arg(numberText(standing.count));
    }
    const QString text =
        u"%1 of %2"_s.arg(numberText(standing.current), numberText(standing.count));
    return standing.wrapped ? text + u", wrapped"_s : text;
}

} // namespace

FindBar::FindBar(QWidget *parent)
    : QWidget(parent)
    , m_words(newField(u"Find"_s))
    , m_matchCase(newOption(Glyph::MatchCase, u"Match Case"_s))
    , m_wholeWords(newOption(Glyph::WholeWords, u"Whole Words"_s))
    , m_isExpression(newOption(Glyph::RegularExpression, u"Regular Expression"_s))
    , m_previous(newButton(Glyph::Previous, u"Find Previous"_s, u"Find Previous (Shift+Enter)"_s))
    , m_next(newButton(Glyph::Next, u"Find Next"_s, u"Find Next (Enter)"_s))
    , m_standing(new QLabel(this))
    , m_close(newButton(Glyph::Cross, u"Close Find Bar"_s, u"Close (Esc)"_s))
    , m_replaceTools(new QWidget(this))
    , m_replacement(newField(u"Replace With"_s))
    , m_replace(new QPushButton(u"Replace"_s, m_replaceTools))
    , m_replaceAll(new QPushButton(u"Replace All"_s, m_replaceTools))
    , m_inRange(new QCheckBox(u"In selection"_s, m_replaceTools))
    , m_message(new QLabel(this))
{
    setObjectName(u"findBar"_s);
    setAccessibleName(u"Find and Replace"_s);
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(margins);
    grid->setSpacing(gap);
    grid->setColumnStretch(0, 1);
    addFindRow();
    addReplaceRow();
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setObjectName(u"message"_s);
    grid->addWidget(m_message, 2, 0, 1, 2);
    m_message->hide();
    setReplacing(false);
    connect(QGuiApplication::clipboard(), &QClipboard::changed, this, &FindBar::noteCopy);
}

QLineEdit *FindBar::newField(const QString &name)
{
    auto *field = new QLineEdit(this);
    field->setPlaceholderText(name);
    field->setAccessibleName(name);
    field->setMinimumWidth(120);
    field->installEventFilter(this);
    return field;
}

QToolButton *FindBar::newButton(Glyph glyph, const QString &name, const QString &tip)
{
    auto *button = new QToolButton(this);
    button->setIcon(glyphIcon(glyph));
    button->setIconSize({iconSize, iconSize});
    button->setAutoRaise(true);
    button->setAccessibleName(name);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton *FindBar::newOption(Glyph glyph, const QString &name)
{
    QToolButton *button = newButton(glyph, name, name);
    button->setCheckable(true);
    connect(button, &QToolButton::toggled, this, &FindBar::edited);
    return button;
}

void FindBar::addFindRow()
{
    m_standing->setTextFormat(Qt::PlainText);
    m_standing->setObjectName(u"standing"_s);
    m_standing->setMinimumWidth(m_standing->fontMetrics().horizontalAdvance(u"No matches"_s));
    auto *tools = new QHBoxLayout;
    tools->setSpacing(2);
    for (QToolButton *button : {m_matchCase, m_wholeWords, m_isExpression, m_previous, m_next}) {
        tools->addWidget(button);
    }
    tools->insertSpacing(3, gap);
    tools->addSpacing(gap);
    tools->addWidget(m_standing, 1);
    tools->addWidget(m_close);
    auto *grid = static_cast<QGridLayout *>(layout());
    grid->addWidget(m_words, 0, 0);
    grid->addLayout(tools, 0, 1);
    connect(m_words, &QLineEdit::textEdited, this, &FindBar::edited);
    connect(m_previous, &QToolButton::clicked, this,
            [this] { emit findAsked(TextFinder::Direction::Backward); });
    connect(m_next, &QToolButton::clicked, this,
            [this] { emit findAsked(TextFinder::Direction::Forward); });
    connect(m_close, &QToolButton::clicked, this, &FindBar::closeAsked);
}

void FindBar::addReplaceRow()
{
    auto *tools = new QHBoxLayout(m_replaceTools);
    tools->setContentsMargins({});
    tools->setSpacing(gap);
    tools->addWidget(m_replace);
    tools->addWidget(m_replaceAll);
    tools->addWidget(m_inRange);
    tools->addStretch(1);
    for (QPushButton *button : {m_replace, m_replaceAll}) {
        button->setAutoDefault(false);
    }
    auto *grid = static_cast<QGridLayout *>(layout());
    grid->addWidget(m_replacement, 1, 0);
    grid->addWidget(m_replaceTools, 1, 1);
    connect(m_replace, &QPushButton::clicked, this, &FindBar::replaceAsked);
    connect(m_replaceAll, &QPushButton::clicked, this, &FindBar::replaceAllAsked);
    connect(m_inRange, &QCheckBox::clicked, this, &FindBar::rangeAsked);
}

SearchPattern FindBar::pattern() const
{
    return {m_words->text(),
            {m_matchCase->isChecked(), m_wholeWords->isChecked(), m_isExpression->isChecked()}};
}

QString FindBar::replacement() const
{
    return m_replacement->text();
}

void FindBar::setWords(const QString &words)
{
    m_words->setText(m_isExpression->isChecked() ? QRegularExpression::escape(words) : words);
    edited();
}

bool FindBar::isReplacing() const
{
    return !m_replacement->isHidden();
}

void FindBar::setReplacing(bool replaces)
{
    m_replacement->setVisible(replaces);
    m_replaceTools->setVisible(replaces);
}

void FindBar::showRange(bool hasRange, bool selected)
{
    m_inRange->setEnabled(hasRange || selected);
    m_inRange->setChecked(hasRange);
}

void FindBar::focusWords()
{
    m_words->setFocus(Qt::ShortcutFocusReason);
    m_words->selectAll();
}

void FindBar::edited()
{
    m_told.clear();
    emit patternEdited();
}

void FindBar::showStanding(const TextFinder::Standing &standing)
{
    const SearchPattern sought = pattern();
    const QString error = sought.error();
    const bool shows = !sought.isEmpty() && error.isEmpty();
    const QString text = shows ? standingText(standing) : QString();
    if (m_standing->text() != text) {
        m_standing->setText(text);
        m_standing->setAccessibleName(text);
    }
    if (!error.isEmpty()) {
        showMessage(error + u'.', true);
    } else if (standing.state == TextSearch::State::TooMuch) {
        showMessage(u"This expression takes too long to look for in this text."_s, true);
    } else if (!m_told.isEmpty()) {
        showMessage(m_told, false);
    } else if (sought.asksForParagraphs()) {
        showMessage(u"\\n is a line break within a paragraph here: matches never go beyond the "
                    "end of one."_s,
                    false);
    } else {
        showMessage({}, false);
    }
}

void FindBar::tell(const QString &words)
{
    m_told = words;
    showMessage(words, false);
}

void FindBar::showMessage(const QString &words, bool isWrong)
{
    if (m_message->text() == words && m_isWrong == isWrong) {
        return;
    }
    m_isWrong = isWrong;
    m_message->setText(words);
    m_message->setVisible(!words.isEmpty());
    colourMessage();
    if (!words.isEmpty() && isVisible()) {
        QAccessibleEvent alert(m_message, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void FindBar::colourMessage()
{
    QPalette colours = palette();
    if (m_isWrong) {
        const bool isDark = colours.color(QPalette::Window).lightness() < 128;
        colours.setColor(QPalette::WindowText, isDark ? wrongOnDark : wrongOnLight);
    }
    m_message->setPalette(colours);
}

// The very object comes back only as long as the clipboard is this program's.
void FindBar::noteCopy(QClipboard::Mode mode)
{
    const QClipboard *clipboard = QGuiApplication::clipboard();
    for (const QLineEdit *field : {m_words, m_replacement}) {
        if (field->hasFocus() && field->hasSelectedText()
            && field->selectedText() == clipboard->text(mode)) {
            m_copies[mode] = clipboard->mimeData(mode);
        }
    }
}

void FindBar::forget()
{
    for (const auto &[mode, copy] : m_copies) {
        if (copy && QGuiApplication::clipboard()->mimeData(mode) == copy) {
            QGuiApplication::clipboard()->clear(mode);
        }
    }
    m_copies.clear();
    m_words->setText({}); // other than clear(), this cannot be undone
    m_replacement->setText({});
    m_told.clear();
    m_inRange->setChecked(false);
    showStanding({});
}

// The fields would take Enter with any other key held down as well.
bool FindBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) {
        return QWidget::eventFilter(watched, event);
    }
    m_told.clear();
    if (key->modifiers().testFlag(Qt::ShiftModifier)) {
        emit findAsked(TextFinder::Direction::Backward);
    } else if (watched == m_replacement) {
        emit replaceAsked();
    } else {
        emit findAsked(TextFinder::Direction::Forward);
    }
    return true;
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel)) {
        emit closeAsked();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FindBar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        colourMessage();
    }
}

} // namespace quorvane
