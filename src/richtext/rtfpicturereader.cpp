#include "richtext/rtfpicturereader.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr int twipsPerPixel = 15;
constexpr int largestExtent = 1'000'000; // Twips; some fifteen metres.

bool isPixels(RtfPicture::Kind kind)
{
    return kind != RtfPicture::Kind::Wmf && kind != RtfPicture::Kind::MacPict;
}

/// Twips by the size in the file's own unit, the one that is wanted, and a percentage.
int extent(int own, int goal, int scale, RtfPicture::Kind kind)
{
    // The unit of metafiles is a hundredth of a millimetre.
    const double natural = isPixels(kind) ? own * double(twipsPerPixel) : own * 1440.0 / 2540.0;
    const double twips = goal > 0 ? goal : natural;
    return int(std::clamp(twips * (scale > 0 ? scale : 100) / 100, 0.0, double(largestExtent)));
}

} // namespace

void RtfPictureReader::begin()
{
    m_picture = RtfPicture();
    m_numbers = {};
    m_half = -1;
}

void RtfPictureReader::word(RtfKeyword keyword, const RtfToken &token)
{
    if (keyword.action == RtfAction::PictureKind) {
        m_picture.kind = RtfPicture::Kind(keyword.value);
    } else if (keyword.action == RtfAction::PictureNumber) {
        m_numbers[std::size_t(keyword.value)] = token.parameter;
    }
}

void RtfPictureReader::hex(QByteArrayView digits)
{
    m_picture.bytes.reserve(m_picture.bytes.size() + digits.size() / 2);
    for (const char c : digits) {
        const int digit = hexValue(c);
        if (digit < 0) {
            continue;
        }
        if (m_half < 0) {
            m_half = digit;
        } else {
            m_picture.bytes.append(char(m_half << 4 | digit));
            m_half = -1;
        }
    }
}

std::optional<RtfPicture> RtfPictureReader::take()
{
    if (m_picture.bytes.isEmpty()) {
        return std::nullopt;
    }
    m_picture.width = extent(m_numbers[0], m_numbers[1], m_numbers[2], m_picture.kind);
    m_picture.height = extent(m_numbers[3], m_numbers[4], m_numbers[5], m_picture.kind);
    return std::move(m_picture);
}

} // namespace quorvane
