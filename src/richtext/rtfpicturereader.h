#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtfsink.h"
#include "richtext/rtftokenizer.h"

#include <optional>

namespace quorvane {

/// Reads what stands in the group of a picture.
class RtfPictureReader final
{
public:
    void begin();
    void word(RtfKeyword keyword, const RtfToken &token);
    void hex(QByteArrayView digits);

    void binary(QByteArrayView bytes) { m_picture.bytes.append(bytes.data(), bytes.size()); }

    /// The picture; nothing where it has no bytes.
    std::optional<RtfPicture> take();

private:
    RtfPicture m_picture;
    std::array<int, 6> m_numbers {}; ///< Width, its goal and scale, height, its goal and scale.
    int m_half = -1; ///< The first digit of a byte.
};

} // namespace quorvane
