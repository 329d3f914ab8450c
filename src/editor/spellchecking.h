#pragma once

#include "editor/visiblemarks.h"
#include "editor/wavyunderlines.h"
#include "editor/wordjudge.h"
#include "platform/nswindow.h"

#include <QObject>
#include <QTextCursor>
#include <QTimer>

#include <optional>

class QMenu;

namespace quorvane {

class EditorView;
class TextCommands;
class TextContextMenu;
class TextEditor;

/// Spelling of a text: what is wrong in view is underlined as one types, corrections are in the
/// context menu. What nobody may edit is not marked. No word goes anywhere but to the dictionary.
class SpellChecking final : public QObject
{
public:
    struct Surroundings
    {
        TextEditor &editor;
        TextCommands &commands;
        VisibleMarks &marks;
        TextContextMenu &contextMenu;
        EditorView &view;
        NSWindow &sheets;
        Spelling &spelling;
    };

    explicit SpellChecking(const Surroundings &with);

    /// The words that are underlined as wrong.
    const QList<QTextCursor> &underlined() const { return m_waves.places(); }

private:
    /// On the way to the next misspelled word.
    struct Hunt
    {
        int begin; // where it began, and ends when it has gone round
        int from;
        bool hasWrapped = false;
    };

    void defineCommands(const Surroundings &with);
    void setOn(bool on);
    void underline();
    QList<QTextCursor> wrongWordsInView();
    bool isBeingTyped(const TextSpan &word) const;
    void noteCaret();
    std::optional<QTextCursor> wrongWordAt(const QTextCursor &place, bool mayLook);
    void offerCorrections(QMenu &menu, const QTextCursor &place);
    void correct(QTextCursor word, const QString &correction);
    void offerLanguages(QMenu &menu);
    void beginHunt();
    void hunt();
    void huntInStretch();
    void tell(const QString &words, const QString &more);

    TextEditor &m_editor;
    VisibleMarks &m_marks;
    NSWindow &m_sheets;
    WavyUnderlines m_waves;
    WordJudge m_judge;
    QTimer m_slices; // of the hunt
    QTimer m_rest; // of what is in view, whose words are looked up in slices, too
    std::optional<Hunt> m_hunt;
    bool m_isOn = false;
    bool m_isTyping = false; // the caret stands where the text has changed
    int m_revision = 0; // of the text, when the caret moved last
};

} // namespace quorvane
