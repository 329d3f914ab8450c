#pragma once

#include <QtGlobal>

/// How much memory the whole program took at most, above what it held when this was made.
/// One at a time.
class PeakMemory final
{
public:
    PeakMemory();
    qint64 bytes() const;
};
