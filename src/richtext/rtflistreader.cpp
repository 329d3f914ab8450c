#include "richtext/rtflistreader.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::size_t mostLists = 100'000;
constexpr std::size_t mostLevels = 9;
constexpr int bullet = 23; // Number of \levelnfc.
constexpr qsizetype longestText = 64;
constexpr QChar defaultBullet(0x2022);

} // namespace

RtfListLevel *RtfListReader::level()
{
    return m_lists.empty() || m_lists.back().levels.empty() ? nullptr
                                                            : &m_lists.back().levels.back();
}

void RtfListReader::listWord(RtfKeyword keyword, const RtfToken &token)
{
    RtfListLevel *const last = level();
    switch (keyword.action) {
    case RtfAction::List:
        if (m_lists.size() < mostLists) {
            m_lists.emplace_back();
        }
        break;
    case RtfAction::LevelStart:
        if (!m_lists.empty() && m_lists.back().levels.size() < mostLevels) {
            m_lists.back().levels.emplace_back();
        }
        break;
    case RtfAction::LevelKind:
        if (last) {
            last->kind = token.parameter;
        }
        break;
    case RtfAction::LevelFirst:
        if (last) {
            last->start = token.parameter;
        }
        break;
    case RtfAction::ListId:
        if (!m_lists.empty()) {
            m_listsById.insert(token.parameter, m_lists.size() - 1);
        }
        break;
    default:
        break;
    }
}

void RtfListReader::beginLevelText()
{
    m_levelText.clear();
}

void RtfListReader::levelText(QStringView text)
{
    RtfListLevel *const last = level();
    m_levelText.append(text.first(std::min(text.size(), longestText - m_levelText.size())));
    if (!last || m_levelText.isEmpty()) {
        return;
    }
    const qsizetype told = m_levelText.at(0).unicode();
    QString label = m_levelText.sliced(1);
    if (label.endsWith(u';') && label.size() > told) {
        label.chop(1);
    }
    last->text = label;
}

void RtfListReader::overrideWord(RtfKeyword keyword, const RtfToken &token)
{
    if (keyword.action == RtfAction::ListOverride) {
        m_overriddenId.reset();
    } else if (keyword.action == RtfAction::ListId) {
        m_overriddenId = token.parameter;
    } else if (keyword.action == RtfAction::ListNumber && m_overriddenId && token.parameter > 0) {
        const auto found = m_listsById.constFind(*m_overriddenId);
        if (found != m_listsById.constEnd()) {
            m_tables.lists.insert(token.parameter, m_lists[*found]);
        }
    }
}

void RtfListReader::beginOld()
{
    m_old = RtfListLevel();
    m_oldTexts[0].clear();
    m_oldTexts[1].clear();
    m_oldHasKind = false;
    m_oldIsContinuation = false;
    m_oldLevel = 0;
}

void RtfListReader::oldWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::OldKind:
        m_old.kind = keyword.value;
        m_oldHasKind = true;
        break;
    case RtfAction::OldFirst:
        m_old.start = token.parameter;
        break;
    case RtfAction::OldContinuation:
        m_oldIsContinuation = true;
        break;
    case RtfAction::OldLevel:
        m_oldLevel = std::clamp(token.parameter - 1, 0, int(mostLevels) - 1);
        m_oldHasKind = true;
        break;
    default:
        break;
    }
}

void RtfListReader::oldText(QStringView text, int place)
{
    QString &to = m_oldTexts[place];
    to.append(text.first(std::min(text.size(), longestText - to.size())));
}

int RtfListReader::endOld()
{
    if (!m_oldHasKind || m_oldIsContinuation) {
        return 0;
    }
    const bool isBullet = m_old.kind == bullet;
    m_old.text = isBullet ? m_oldTexts[0] : m_oldTexts[0] + QChar(0) + m_oldTexts[1];
    if (isBullet && m_old.text.isEmpty()) {
        m_old.text = defaultBullet;
    }
    const RtfList list {{m_old}, true};
    const auto last = m_tables.lists.constFind(m_lastOld);
    if (last == m_tables.lists.constEnd() || *last != list) {
        --m_lastOld;
        m_tables.lists.insert(m_lastOld, list);
    }
    return m_lastOld;
}

} // namespace quorvane
