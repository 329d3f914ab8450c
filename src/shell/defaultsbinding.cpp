#include "shell/defaultsbinding.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSignalBlocker>
#include <QSpinBox>

namespace quorvane::defaultsbinding {

namespace {

template <typename Show>
void follow(NSUserDefaults &defaults, QLatin1StringView key, QObject &control, Show show)
{
    QObject::connect(&defaults, &NSUserDefaults::changed, &control,
                     [key, show](const QString &changed) {
                         if (changed == key) {
                             show();
                         }
                     });
    show();
}

template <typename Box, typename T>
void bindNumber(NSUserDefaults &defaults, const Key<T> &key, Box &box)
{
    box.setKeyboardTracking(false); // a number half typed is none
    QObject::connect(&box, &Box::valueChanged, &defaults, [&defaults, key](auto value) {
        defaults.setObject(key.name, QVariant::fromValue(static_cast<T>(value)));
    });
    follow(defaults, key.name, box, [&defaults, &box, key] {
        const QSignalBlocker blocker(box); // it may have to show another number than the stored one
        const double value = static_cast<double>(defaults.value(key));
        const double shown = qBound(double(box.minimum()), value, double(box.maximum()));
        box.setValue(static_cast<decltype(box.value())>(shown));
    });
}

} // namespace

void bindValue(NSUserDefaults &defaults, const Key<bool> &key, QCheckBox &box)
{
    QObject::connect(&box, &QCheckBox::clicked, &defaults,
                     [&defaults, key](bool checked) { defaults.setObject(key.name, checked); });
    follow(defaults, key.name, box,
           [&defaults, &box, key] { box.setChecked(defaults.value(key)); });
}

void bindValue(NSUserDefaults &defaults, const Key<qint64> &key, QSpinBox &box)
{
    bindNumber(defaults, key, box);
}

void bindValue(NSUserDefaults &defaults, const Key<double> &key, QDoubleSpinBox &box)
{
    bindNumber(defaults, key, box);
}

void bindSelectedTag(NSUserDefaults &defaults, const Key<qint64> &key, QComboBox &popup)
{
    QObject::connect(&popup, &QComboBox::activated, &defaults, [&defaults, &popup, key](int index) {
        defaults.setObject(key.name, popup.itemData(index).toLongLong());
    });
    follow(defaults, key.name, popup, [&defaults, &popup, key] {
        popup.setCurrentIndex(popup.findData(defaults.value(key)));
    });
}

void bindSelectedTitle(NSUserDefaults &defaults, const Key<QLatin1StringView> &key,
                       QComboBox &popup)
{
    QObject::connect(
        &popup, &QComboBox::textActivated, &defaults,
        [&defaults, key](const QString &title) { defaults.setObject(key.name, title); });
    follow(defaults, key.name, popup, [&defaults, &popup, key] {
        const QString title = defaults.value(key);
        popup.setCurrentIndex(popup.findText(title, Qt::MatchFixedString | Qt::MatchCaseSensitive));
        popup.setPlaceholderText(title);
    });
}

} // namespace quorvane::defaultsbinding
