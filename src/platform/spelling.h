#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QLocale;

namespace quorvane {

/// The words of one language, as the desktop's dictionaries have them.
class SpellDictionary
{
public:
    virtual ~SpellDictionary() = default;
    virtual bool knows(const QString &word) = 0;
    /// The best first.
    virtual QStringList suggestions(const QString &word) = 0;
    /// Writes the word into the person's own list of this language. Nothing else here ever writes a
    /// word.
    virtual void learn(const QString &word) = 0;
    /// Takes the word for known in every language as long as the program runs.
    virtual void ignore(const QString &word) = 0;
};

/// The desktop's dictionaries.
class Spelling : public QObject
{
    Q_OBJECT

public:
    using Loaded = std::function<void(SpellDictionary *dictionary)>;

    /// Tags like en_GB of the languages that there is a dictionary for, in their order.
    virtual QStringList languages() = 0;
    /// Answers in a later turn of the event loop, with null where there is no such dictionary. It
    /// lives as long as this.
    virtual void load(const QString &language, const Loaded &loaded) = 0;

signals:
    /// A word was learnt or is ignored from now on.
    void wordsChanged();
};

/// The one of \a languages for a system that speaks like \a locale. Nothing where none of them is
/// that language.
std::optional<QString> offeredLanguage(const QStringList &languages, const QLocale &locale);

} // namespace quorvane
