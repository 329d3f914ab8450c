#include "editor/wordjudge.h"

#include "editor/spellingwords.h"

#include <QLocale>
#include <QPointer>

namespace quorvane {

namespace {
constexpr int quietMilliseconds = 250; // after which a window has long been painted
constexpr int mostVerdicts = 20'000;
} // namespace

WordJudge::WordJudge(Spelling &spelling)
    : m_spelling(spelling)
{
    m_quietMoment.setSingleShot(true);
    m_quietMoment.setInterval(quietMilliseconds);
    connect(&m_quietMoment, &QTimer::timeout, this, &WordJudge::load);
    connect(&spelling, &Spelling::wordsChanged, this, [this] {
        m_verdicts.clear();
        emit changed();
    });
}

std::optional<QString> WordJudge::language()
{
    if (!m_language) {
        m_language = offeredLanguage(m_spelling.languages(), QLocale::system());
    }
    return m_language;
}

void WordJudge::choose(const QString &language)
{
    m_language = language;
    m_dictionary = nullptr;
    m_isHopeless = false;
    m_verdicts.clear();
    load();
    emit changed();
}

bool WordJudge::isReady()
{
    if (!m_dictionary && !m_isHopeless && !m_isLoading && !m_quietMoment.isActive()) {
        m_quietMoment.start();
    }
    return m_dictionary;
}

void WordJudge::load()
{
    const std::optional<QString> wanted = language();
    if (!wanted) {
        m_isHopeless = true;
        emit changed();
        return;
    }
    m_isLoading = true;
    const auto take = [judge = QPointer(this), tag = *wanted](SpellDictionary *dictionary) {
        if (judge && judge->m_language == tag) {
            judge->m_isLoading = false;
            judge->m_dictionary = dictionary;
            judge->m_isHopeless = !dictionary;
            judge->m_verdicts.clear();
            emit judge->changed();
        }
    };
    m_spelling.load(*wanted, take);
}

WordJudge::Verdict WordJudge::verdict(const QString &word, bool mayLook)
{
    const QString form = dictionaryForm(word);
    const auto said = m_verdicts.constFind(form);
    if (said != m_verdicts.constEnd()) {
        return *said ? Verdict::Right : Verdict::Wrong;
    }
    if (!mayLook || !m_dictionary) {
        return Verdict::NotYetKnown;
    }
    if (m_verdicts.size() >= mostVerdicts) {
        m_verdicts.clear();
    }
    const bool isRight = m_dictionary->knows(form);
    m_verdicts.insert(form, isRight);
    return isRight ? Verdict::Right : Verdict::Wrong;
}

QStringList WordJudge::suggestions(const QString &word)
{
    return m_dictionary ? m_dictionary->suggestions(dictionaryForm(word)) : QStringList();
}

void WordJudge::learn(const QString &word)
{
    if (m_dictionary) {
        m_dictionary->learn(dictionaryForm(word));
    }
}

void WordJudge::ignore(const QString &word)
{
    if (m_dictionary) {
        m_dictionary->ignore(dictionaryForm(word));
    }
}

} // namespace quorvane
