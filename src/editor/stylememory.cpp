#include "editor/stylememory.h"

namespace quorvane {

namespace {
constexpr QRgb firstTextColour = qRgb(0xc9, 0x25, 0x2d);
constexpr QRgb firstHighlight = qRgb(0xff, 0xe1, 0x4d);
} // namespace

QColor StyleMemory::last(ColourUse use) const
{
    const QList<QColor> colours = recent(use);
    if (!colours.isEmpty()) {
        return colours.first();
    }
    return QColor(use == ColourUse::Text ? firstTextColour : firstHighlight);
}

QList<QColor> StyleMemory::recent(ColourUse use) const
{
    const auto colours = m_recent.find(use);
    return colours == m_recent.end() ? QList<QColor>() : colours->second;
}

void StyleMemory::note(ColourUse use, const QColor &colour)
{
    QList<QColor> &colours = m_recent[use];
    colours.removeAll(colour);
    colours.prepend(colour);
    colours.resize(std::min<qsizetype>(colours.size(), mostRecent));
    emit lastChanged();
}

} // namespace quorvane
