#pragma once

#include "shell/qvappdelegatebase.h"

namespace quorvane {

/// The application delegate of this program.
class MyAppDelegate final : public QVAppDelegateBase
{
    Q_OBJECT

public:
    using QVAppDelegateBase::QVAppDelegateBase;

    /// Registers the settings' default values; before everything else of the program's own.
    static void initialize(NSUserDefaults &defaults);
};

} // namespace quorvane
