#include "editor/spellchecking.h"

#include "editor/editorview.h"
#include "editor/insertion.h"
#include "editor/spellingwords.h"
#include "editor/textcommands.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "platform/nsalert.h"

#include <QActionGroup>
#include <QElapsedTimer>
#include <QLocale>
#include <QMenu>
#include <QTextBlock>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int mostSuggestions = 7;
constexpr int sliceMilliseconds = 5; // of looking up what is in view
constexpr int huntMilliseconds = 10;
constexpr int huntStretch = 1000; // characters, after which the time is looked at again
constexpr QColor waveOnLight(0xd9, 0x30, 0x25);
constexpr QColor waveOnDark(0xff, 0x7a, 0x70);

/// "English (United States)", with what else the tag says.
QString languageName(const QString &tag)
{
    const QLocale locale(tag);
    if (locale.language() == QLocale::C) {
        return tag;
    }
    const QString language = QLocale::languageToString(locale.language());
    if (!tag.contains(u'_')) {
        return language;
    }
    return locale.name() == tag
        ? u"%1 (%2)"_s.arg(language, QLocale::territoryToString(locale.territory()))
        : u"%1 (%2)"_s.arg(language, tag);
}

QString plainTitle(QString text)
{
    return text.replace(u'&', "&&"_L1);
}

} // namespace

SpellChecking::SpellChecking(const Surroundings &with)
    : m_editor(with.editor)
    , m_marks(with.marks)
    , m_sheets(with.sheets)
    , m_waves(with.editor)
    , m_judge(with.spelling)
{
    m_slices.setSingleShot(true);
    connect(&m_slices, &QTimer::timeout, this, &SpellChecking::hunt);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &SpellChecking::underline);
    defineCommands(with);
    with.view.switches.spelling = [this](bool on) {
        setOn(on);
    };
    m_marks.setSource(
        VisibleMarks::Layer::Spelling,
        [this](const QTextBlock &, const QTextBlock &, VisibleMarks::Marks &) { underline(); });
    with.contextMenu.addSection(
        [this](QMenu &menu, const QTextCursor &place) { offerCorrections(menu, place); });
    connect(&m_judge, &WordJudge::changed, &m_marks, &VisibleMarks::refresh);
    connect(&m_judge, &WordJudge::changed, this, &SpellChecking::hunt);
    connect(&m_editor, &QTextEdit::textChanged, this, [this] {
        m_isTyping = true;
        m_hunt.reset();
    });
    connect(&m_editor, &QTextEdit::cursorPositionChanged, this, &SpellChecking::noteCaret);
    const auto startAnew = [this] {
        m_hunt.reset();
        m_isTyping = false;
        m_waves.clear();
        m_judge.forget();
    };
    connect(&m_editor, &TextEditor::contentReplaced, this, startAnew);
    connect(&m_editor, &TextEditor::contentHiddenChanged, this, startAnew);
}

void SpellChecking::defineCommands(const Surroundings &with)
{
    TextCommands &commands = with.commands;
    const auto whereEdited = [this] {
        return MenuItemState {!m_editor.isReadOnly(), {}, {}};
    };
    commands.define(
        TextCommand::CheckSpelling, [this] { setOn(!m_isOn); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly(), {}, m_isOn};
        });
    commands.define(
        TextCommand::NextMisspelling, [this] { beginHunt(); }, whereEdited);
    const auto onWord = [&](TextCommand command, void (WordJudge::*run)(const QString &)) {
        commands.define(
            command,
            [this, run] {
                if (const auto word = wrongWordAt(m_editor.textCursor(), true)) {
                    (m_judge.*run)(word->selectedText());
                }
            },
            [this] {
                const bool isThere = m_judge.hasDictionary() && !m_editor.isReadOnly()
                    && wrongWordAt(m_editor.textCursor(), false);
                return MenuItemState {isThere, {}, {}};
            });
    };
    onWord(TextCommand::LearnWord, &WordJudge::learn);
    onWord(TextCommand::IgnoreWord, &WordJudge::ignore);
    commands.define(TextMenu::SpellingLanguage, [this](QMenu &menu) { offerLanguages(menu); });
}

void SpellChecking::setOn(bool on)
{
    m_isOn = on;
    m_marks.refresh();
}

// --- Marks ----------------------------------------------------------------------------------

void SpellChecking::underline()
{
    if (m_isOn && !m_editor.isReadOnly()) {
        const bool isDark = m_editor.palette().color(QPalette::Base).lightness() < 128;
        m_waves.set(wrongWordsInView(), isDark ? waveOnDark : waveOnLight);
    } else {
        m_waves.clear();
    }
}

QList<QTextCursor> SpellChecking::wrongWordsInView()
{
    QList<QTextCursor> wrong;
    QElapsedTimer time;
    time.start();
    bool isUnfinished = false;
    const TextSpan inView = m_marks.inView();
    QTextBlock block = m_editor.document()->findBlock(inView.from);
    for (; block.isValid() && block.position() <= inView.end(); block = block.next()) {
        const QString text = block.text();
        const TextSpan within {inView.from - block.position(), inView.length};
        for (const TextSpan &word : wordsToCheck(text, within)) {
            if (!m_judge.isReady()) {
                return wrong; // it will say so when it is
            }
            const TextSpan place {block.position() + word.from, word.length};
            if (isBeingTyped(place)) {
                continue;
            }
            const auto verdict = m_judge.verdict(text.mid(word.from, word.length),
                                                 time.elapsed() < sliceMilliseconds);
            isUnfinished = isUnfinished || verdict == WordJudge::Verdict::NotYetKnown;
            if (verdict == WordJudge::Verdict::Wrong) {
                QTextCursor cursor(block);
                cursor.setPosition(place.from);
                cursor.setPosition(place.end(), QTextCursor::KeepAnchor);
                wrong << cursor;
            }
        }
    }
    if (isUnfinished) {
        m_rest.start(0);
    }
    return wrong;
}

bool SpellChecking::isBeingTyped(const TextSpan &word) const
{
    const int caret = m_editor.textCursor().position();
    return m_isTyping && caret >= word.from && caret <= word.end();
}

void SpellChecking::noteCaret()
{
    const int revision = m_editor.document()->revision();
    if (revision == m_revision && m_isTyping) { // it was moved, and not by typing
        m_isTyping = false;
        m_marks.refreshAfterTyping();
    }
    m_revision = revision;
}

// --- Corrections ----------------------------------------------------------------------------

std::optional<QTextCursor> SpellChecking::wrongWordAt(const QTextCursor &place, bool mayLook)
{
    const QTextBlock block = place.block();
    const QString text = block.text();
    const int at = place.selectionEnd() - block.position();
    for (const TextSpan &word : wordsToCheck(text, {at, 0})) {
        const bool isThere = word.from <= at && at <= word.end();
        if (isThere
            && m_judge.verdict(text.mid(word.from, word.length), mayLook)
                == WordJudge::Verdict::Wrong) {
            QTextCursor cursor(block);
            cursor.setPosition(block.position() + word.from);
            cursor.setPosition(block.position() + word.end(), QTextCursor::KeepAnchor);
            return cursor;
        }
    }
    return std::nullopt;
}

void SpellChecking::offerCorrections(QMenu &menu, const QTextCursor &place)
{
    if (m_editor.isReadOnly() || m_editor.isContentHidden() || !m_judge.hasDictionary()) {
        return;
    }
    const std::optional<QTextCursor> word = wrongWordAt(place, true);
    if (!word) {
        return;
    }
    const QString wrong = word->selectedText();
    const QStringList suggestions = m_judge.suggestions(wrong).mid(0, mostSuggestions);
    for (const QString &suggestion : suggestions) {
        connect(menu.addAction(plainTitle(suggestion)), &QAction::triggered, this,
                [this, word, wrong, suggestion] {
                    if (word->selectedText() == wrong) { // else the text is another one by now
                        correct(*word, suggestion);
                    }
                });
    }
    if (suggestions.isEmpty()) {
        menu.addAction(u"No Suggestions"_s)->setEnabled(false);
    }
    menu.addSeparator();
    connect(menu.addAction(u"&Learn Word"_s), &QAction::triggered, this,
            [this, wrong] { m_judge.learn(wrong); });
    connect(menu.addAction(u"&Ignore Word"_s), &QAction::triggered, this,
            [this, wrong] { m_judge.ignore(wrong); });
}

void SpellChecking::correct(QTextCursor word, const QString &correction)
{
    const TextSpan place {word.selectionStart(), word.selectionEnd() - word.selectionStart()};
    m_editor.edit(u"Correct Spelling"_s,
                  [&](QTextCursor &cursor) { replaceCharacters(cursor, place, correction); });
    m_editor.setFocus();
}

// --- Languages ------------------------------------------------------------------------------

void SpellChecking::offerLanguages(QMenu &menu)
{
    const QStringList tags = m_judge.languages();
    if (tags.isEmpty()) {
        menu.addAction(u"No dictionary is installed…"_s)->setEnabled(false);
        menu.addAction(u"Packages like hunspell-en-us bring one."_s)->setEnabled(false);
        return;
    }
    std::map<QString, QString> byName;
    for (const QString &tag : tags) {
        byName[languageName(tag)] = tag;
    }
    const std::optional<QString> current = m_judge.language();
    if (!current) {
        const QString system = QLocale::languageToString(QLocale::system().language());
        menu.addAction(u"No dictionary for %1 is installed"_s.arg(system))->setEnabled(false);
        menu.addSeparator();
    }
    delete menu.findChild<QActionGroup *>(); // of its former items
    auto *group = new QActionGroup(&menu);
    for (const auto &[name, tag] : byName) {
        QAction *action = menu.addAction(plainTitle(name));
        action->setCheckable(true);
        action->setChecked(tag == current);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, chosen = tag] { m_judge.choose(chosen); });
    }
}

// --- The next one ---------------------------------------------------------------------------

void SpellChecking::beginHunt()
{
    const int from = m_editor.textCursor().selectionEnd();
    m_hunt = Hunt {from, from};
    hunt();
}

void SpellChecking::hunt()
{
    if (!m_hunt) {
        return;
    }
    if (m_judge.isHopeless()) {
        m_hunt.reset();
        tell(
            u"There is no dictionary for your language."_s,
            u"Choose another language in the Spelling menu, or install a dictionary. Packages like "
            "hunspell-en-us bring one."_s);
        return;
    }
    if (!m_judge.isReady()) {
        return; // goes on when it is
    }
    QElapsedTimer time;
    time.start();
    while (m_hunt && !time.hasExpired(huntMilliseconds)) {
        huntInStretch();
    }
    if (m_hunt) {
        m_slices.start(0);
    }
}

void SpellChecking::huntInStretch()
{
    const QTextBlock block = m_editor.document()->findBlock(m_hunt->from);
    const QString text = block.text();
    const int from = m_hunt->from - block.position();
    const int to = std::min(from + huntStretch, int(text.size()));
    const bool endsBlock = to == text.size();
    const int next = block.position() + (endsBlock ? block.length() : to);
    for (const TextSpan &word : wordsToCheck(text, {from, to - from})) {
        const int position = block.position() + word.from;
        if (word.from < from) {
            continue;
        }
        if (word.from >= to || (m_hunt->hasWrapped && position >= m_hunt->begin)) {
            break;
        }
        if (m_judge.verdict(text.mid(word.from, word.length)) == WordJudge::Verdict::Wrong) {
            QTextCursor cursor = m_editor.textCursor();
            cursor.setPosition(position);
            cursor.setPosition(position + word.length, QTextCursor::KeepAnchor);
            m_hunt.reset();
            m_editor.setTextCursor(cursor);
            m_editor.ensureCursorVisible();
            return;
        }
    }
    if (m_hunt->hasWrapped && next > m_hunt->begin) {
        m_hunt.reset();
        tell(u"No misspelled word was found."_s,
             u"The whole text was checked (%1)."_s.arg(
                 languageName(m_judge.language().value_or(QString()))));
        return;
    }
    const bool endsText = endsBlock && !block.next().isValid();
    m_hunt->from = endsText ? 0 : next;
    m_hunt->hasWrapped = m_hunt->hasWrapped || endsText;
}

void SpellChecking::tell(const QString &words, const QString &more)
{
    m_sheets.beginAlert({words, more, {u"OK"_s}}, [](AlertAnswer) {});
}

} // namespace quorvane
