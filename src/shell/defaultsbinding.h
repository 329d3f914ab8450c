#pragma once

#include "platform/nsuserdefaults.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

/// Ties controls to settings, both ways: what the user does is written, what anybody writes is
/// shown. A stored value that a control cannot show stays as it is until the user chooses another.
namespace quorvane::defaultsbinding {

void bindValue(NSUserDefaults &defaults, const Key<bool> &key, QCheckBox &box);
void bindValue(NSUserDefaults &defaults, const Key<qint64> &key, QSpinBox &box);
void bindValue(NSUserDefaults &defaults, const Key<double> &key, QDoubleSpinBox &box);
/// The setting is the data of the selected item.
void bindSelectedTag(NSUserDefaults &defaults, const Key<qint64> &key, QComboBox &popup);
/// The setting is the title of the selected item; one that no item has is shown all the same.
void bindSelectedTitle(NSUserDefaults &defaults, const Key<QLatin1StringView> &key,
                       QComboBox &popup);

} // namespace quorvane::defaultsbinding
