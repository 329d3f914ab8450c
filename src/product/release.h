#pragma once

#include <QLatin1StringView>
#include <QString>

namespace quorvane {

using namespace Qt::StringLiterals;

/// The program's Release Number: major * 10000 + minor * 100 + patch.
constexpr qint64 releaseNumber = 20601;

constexpr QLatin1StringView productName = "Quorvane"_L1;
constexpr QLatin1StringView vendorName = "Orbelt - Mirando"_L1;
/// Under which the desktop knows the program.
constexpr QLatin1StringView applicationId = "com.orbelt.Quorvane"_L1;
constexpr QLatin1StringView documentExtension = "quorvane"_L1;
constexpr QLatin1StringView documentType = "application/x-quorvane"_L1; ///< As MIME names it.

} // namespace quorvane
