#include "shell/myappdelegate.h"

#include "product/settings.h"

namespace quorvane {

void MyAppDelegate::initialize(NSUserDefaults &defaults)
{
    defaults.registerDefaults(settings::registeredDefaults());
}

} // namespace quorvane
