#include "richtext/rtfkeywords.h"

#include "richtext/rtfsink.h"

#include <algorithm>
#include <string_view>

namespace quorvane {

namespace {

struct Entry
{
    std::string_view word;
    RtfAction action;
    int value = 0;
};

using enum RtfAction;

constexpr Entry entries[] = {
    {"NeXTGraphic", Graphic},
    {"annotation", Aside},
    {"ansi", CodePage, 1252},
    {"ansicpg", AnsiCodePage},
    {"atnauthor", Skip},
    {"atnid", Skip},
    {"b", Bold},
    {"blue", Blue},
    {"bullet", Insert, 0x2022},
    {"c", Channel},
    {"cell", CellEnd},
    {"cf", Colour},
    {"cname", ColourName},
    {"colortbl", ColourTable},
    {"column", Insert, 0x000c},
    {"comment", Skip},
    {"cpg", FontCodePage},
    {"csgray", ColourSpace, 1},
    {"cssrgb", ColourSpace, 3},
    {"datafield", Skip},
    {"deff", DefaultFont},
    {"deleted", Deleted},
    {"do", Transparent},
    {"dptxbxtext", Aside},
    {"emdash", Insert, 0x2014},
    {"emspace", Insert, 0x2003},
    {"endash", Insert, 0x2013},
    {"enspace", Insert, 0x2002},
    {"expandedcolortbl", ExpandedColourTable},
    {"f", Font},
    {"falt", Skip},
    {"fchars", Skip},
    {"fcharset", Charset},
    {"fi", Carried},
    {"field", Transparent},
    {"filetbl", Skip},
    {"fldinst", Skip},
    {"fldrslt", Transparent},
    {"fontemb", Skip},
    {"fonttbl", FontTable},
    {"footer", Aside},
    {"footerf", Aside},
    {"footerl", Aside},
    {"footerr", Aside},
    {"footnote", Aside},
    {"fs", Size},
    {"fsmilli", SizeFraction},
    {"ftncn", Skip},
    {"ftnsep", Skip},
    {"ftnsepc", Skip},
    {"green", Green},
    {"header", Aside},
    {"headerf", Aside},
    {"headerl", Aside},
    {"headerr", Aside},
    {"height", Height},
    {"i", Italic},
    {"info", Skip},
    {"lchars", Skip},
    {"ldblquote", Insert, 0x201c},
    {"li", Carried},
    {"lin", Carried},
    {"line", Insert, 0x2028},
    {"listoverridetable", Skip},
    {"listtable", Skip},
    {"lquote", Insert, 0x2018},
    {"ltrmark", Insert, 0x200e},
    {"ltrpar", Carried},
    {"mac", CodePage, 10000},
    {"nestcell", CellEnd},
    {"nestrow", RowEnd},
    {"nesttableprops", Transparent},
    {"nonesttables", Skip},
    {"nonshppict", Skip},
    {"noorient", NoOrient},
    {"objclass", Skip},
    {"objdata", Skip},
    {"objname", Skip},
    {"page", Insert, 0x000c},
    {"pagebb", Carried},
    {"par", ParagraphEnd},
    {"pard", ParagraphDefaults},
    {"pardeftab", Carried},
    {"pc", CodePage, 437},
    {"pca", CodePage, 850},
    {"pict", Skip},
    {"plain", Plain},
    {"pn", Skip},
    {"qc", Alignment, int(RtfAlignment::Centre)},
    {"qd", Alignment, int(RtfAlignment::Justify)},
    {"qj", Alignment, int(RtfAlignment::Justify)},
    {"ql", Alignment, int(RtfAlignment::Left)},
    {"qmspace", Insert, 0x2005},
    {"qnatural", Alignment, int(RtfAlignment::Natural)},
    {"qr", Alignment, int(RtfAlignment::Right)},
    {"rdblquote", Insert, 0x201d},
    {"red", Red},
    {"result", Transparent},
    {"revtbl", Skip},
    {"ri", Carried},
    {"rin", Carried},
    {"row", RowEnd},
    {"rquote", Insert, 0x2019},
    {"rtlmark", Insert, 0x200f},
    {"rtlpar", Carried},
    {"rxe", Skip},
    {"sa", Carried},
    {"sb", Carried},
    {"sect", ParagraphEnd},
    {"shpinst", Transparent},
    {"shprslt", Skip},
    {"shptxt", Aside},
    {"sl", Carried},
    {"slleading", Carried},
    {"slmaximum", Carried},
    {"slmult", Carried},
    {"sn", Skip},
    {"sp", Skip},
    {"stylesheet", Skip},
    {"sv", Skip},
    {"tab", Insert, 0x0009},
    {"tc", Skip},
    {"tcl", Skip},
    {"template", Skip},
    {"tqc", Carried},
    {"tqdec", Carried},
    {"tqr", Carried},
    {"tx", Carried},
    {"txe", Skip},
    {"u", Unicode},
    {"uc", FallbackLength},
    {"ud", UnicodeAlternative},
    {"ul", Underline, 1},
    {"uld", Underline, 1},
    {"uldash", Underline, 1},
    {"uldashd", Underline, 1},
    {"uldashdd", Underline, 1},
    {"uldb", Underline, 1},
    {"ulhwave", Underline, 1},
    {"ulldash", Underline, 1},
    {"ulnone", Underline, 0},
    {"ulth", Underline, 1},
    {"ulthd", Underline, 1},
    {"ulthdash", Underline, 1},
    {"ulthdashd", Underline, 1},
    {"ulthdashdd", Underline, 1},
    {"ulthldash", Underline, 1},
    {"ululdbwave", Underline, 1},
    {"ulw", Underline, 1},
    {"ulwave", Underline, 1},
    {"upr", Alternatives},
    {"width", Width},
    {"xe", Skip},
    {"zwbo", Insert, 0x200b},
    {"zwj", Insert, 0x200d},
    {"zwnbo", Insert, 0x2060},
    {"zwnj", Insert, 0x200c},
};

constexpr bool isBefore(const Entry &a, const Entry &b)
{
    return a.word < b.word;
}

static_assert(std::is_sorted(std::begin(entries), std::end(entries), isBefore));

} // namespace

RtfKeyword rtfKeyword(QByteArrayView word)
{
    const std::string_view wanted(word.data(), std::size_t(word.size()));
    const Entry *found =
        std::lower_bound(std::begin(entries), std::end(entries), Entry {wanted, None}, isBefore);
    if (found == std::end(entries) || found->word != wanted) {
        return {};
    }
    return {found->action, found->value};
}

} // namespace quorvane
