#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtftables.h"
#include "richtext/rtftokenizer.h"

namespace quorvane {

/// Fills the lists of the tables: by the two tables of lists and by the labels of old lists.
class RtfListReader final
{
public:
    explicit RtfListReader(RtfTables &tables)
        : m_tables(tables)
    { }

    void listWord(RtfKeyword keyword, const RtfToken &token);
    void overrideWord(RtfKeyword keyword, const RtfToken &token);
    void beginLevelText();
    /// Of the level that is being read; a length comes first and a semicolon last.
    void levelText(QStringView text);

    void beginOld();
    void oldWord(RtfKeyword keyword, const RtfToken &token);
    void oldText(QStringView text, int place);
    /// The end of an old label. \return the list's number; 0 where it is none.
    int endOld();

    int oldLevel() const { return m_oldLevel; }

private:
    RtfListLevel *level();

    RtfTables &m_tables;
    std::vector<RtfList> m_lists;
    QHash<int, std::size_t> m_listsById;
    QString m_levelText;
    std::optional<int> m_overriddenId;

    RtfListLevel m_old;
    QString m_oldTexts[2];
    bool m_oldHasKind = false;
    bool m_oldIsContinuation = false;
    int m_oldLevel = 0;
    int m_lastOld = 0;
};

} // namespace quorvane
