#pragma once

#include "platform/spelling.h"

#include <QHash>
#include <QTimer>

#include <optional>

namespace quorvane {

/// Says of words whether they are spelled right, in one language, and remembers what it has said.
/// Dictionaries are looked for when the first word is asked about, and then in a quiet moment.
class WordJudge final : public QObject
{
    Q_OBJECT

public:
    enum class Verdict { Right, Wrong, NotYetKnown };

    explicit WordJudge(Spelling &spelling);

    /// What there is a dictionary for.
    QStringList languages() { return m_spelling.languages(); }

    /// The language in use: the one that was chosen, or the system's. Looks for it if need be.
    std::optional<QString> language();
    void choose(const QString &language);

    /// \a mayLook allows to look a word up; else only what is remembered counts.
    Verdict verdict(const QString &word, bool mayLook = true);
    /// Whether words can be judged; where not yet, that is taken in hand.
    bool isReady();

    bool hasDictionary() const { return m_dictionary; }

    /// There will never be a dictionary of this language.
    bool isHopeless() const { return m_isHopeless; }

    QStringList suggestions(const QString &word);
    void learn(const QString &word);
    void ignore(const QString &word);

    /// What was asked so far is known nowhere any more.
    void forget() { m_verdicts.clear(); }

signals:
    /// What was said of words counts no more, or can be asked from now on.
    void changed();

private:
    void load();

    Spelling &m_spelling;
    SpellDictionary *m_dictionary = nullptr;
    std::optional<QString> m_language;
    QTimer m_quietMoment;
    bool m_isLoading = false;
    bool m_isHopeless = false;
    QHash<QString, bool> m_verdicts;
};

} // namespace quorvane
