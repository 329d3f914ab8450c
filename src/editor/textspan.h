#pragma once

namespace quorvane {

/// A place in a text: of a document in its positions, of a paragraph in its characters.
struct TextSpan
{
    int from = 0;
    int length = 0;

    int end() const { return from + length; }

    bool operator==(const TextSpan &) const = default;
};

} // namespace quorvane
