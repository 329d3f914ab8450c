#pragma once

#include "platform/nsuserdefaults.h"

namespace quorvane::settings {

using namespace Qt::StringLiterals;

// Every setting of the program, with the value that holds until the user chooses another.
inline constexpr Key<bool> notifyUpdate {"notifyUpdate"_L1, true};
inline constexpr Key<qint64> lastVersionUsedToUpdatePref {"lastVersionUsedToUpdatePref"_L1, 0};
inline constexpr Key<bool> haveSelectedPrefForCheckForUpdate {
    "haveSelectedPrefForCheckForUpdate"_L1, false};
inline constexpr Key<qint64> userPrefForCheckForUpdate {"userPrefForCheckForUpdate"_L1, 0};
inline constexpr Key<qint64> startupActionTag {"StartupActionTag"_L1, 0};
inline constexpr Key<QLatin1StringView> startupSelectedDoc {"StartupSelectedDoc"_L1, ""_L1};
inline constexpr Key<QLatin1StringView> startupFontFamily {"StartupFontFamily"_L1, "Helvetica"_L1};
inline constexpr Key<double> startupFontSize {"StartupFontSize"_L1, 12.0};
inline constexpr Key<QLatin1StringView> publicNoteFontFamily {"PublicNoteFontFamily"_L1,
                                                              "Helvetica"_L1};
inline constexpr Key<double> publicNoteFontSize {"PublicNoteFontSize"_L1, 12.0};
inline constexpr Key<bool> publicNoteFontBold {"PublicNoteFontBold"_L1, false};
inline constexpr Key<bool> publicNoteFontItalic {"PublicNoteFontItalic"_L1, false};
inline constexpr Key<bool> startWithRuler {"StartWithRuler"_L1, false};
inline constexpr Key<bool> startWithSpelling {"StartWithSpelling"_L1, true};
inline constexpr Key<bool> autolocBackgroundEnabled {"autolocBackgroundEnabled"_L1, false};
inline constexpr Key<qint64> autolocBackgroundInterval {"autolocBackgroundInterval"_L1,
                                                        120}; // seconds

// Never registered: nothing is there until it is first written.
inline constexpr auto startupSelectedDocBookmark =
    "StartupSelectedDocBookmark"_L1; // empty: cleared
inline constexpr auto lastCheckDateForUpdate = "lastCheckDateForUpdate"_L1;

/// The sixteen registered values.
QVariantMap registeredDefaults();

} // namespace quorvane::settings
