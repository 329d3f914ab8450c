#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtfsink.h"
#include "richtext/rtftokenizer.h"

namespace quorvane {

constexpr int deepestNesting = 8; ///< Of tables in tables; deeper ones count as this.

/// Reads what rows of tables say of themselves, for each depth of tables in tables on its own.
class RtfRowReader final
{
public:
    /// \a nesting is at least 1.
    void word(RtfKeyword keyword, const RtfToken &token, int nesting);

    const RtfRow &row(int nesting) const { return m_rows[std::size_t(nesting)]; }

private:
    enum class BorderOwner { None, Row, Cell };

    void cellWord(RtfKeyword keyword, const RtfToken &token, RtfRow &row);
    void borderWord(RtfKeyword keyword, const RtfToken &token, RtfRow &row);

    std::array<RtfRow, deepestNesting + 1> m_rows;
    RtfCell m_cell; ///< What was said since the last edge.
    BorderOwner m_borderOwner = BorderOwner::None;
    std::size_t m_side = 0;
};

} // namespace quorvane
