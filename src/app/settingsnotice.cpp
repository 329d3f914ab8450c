#include "app/settingsnotice.h"

#include "platform/nsalert.h"
#include "platform_qt/settingsdefaults.h"

namespace quorvane {

using namespace Qt::StringLiterals;

SettingsNotice::SettingsNotice(const SettingsDefaults &defaults, ModalAlerts &alerts)
    : m_defaults(defaults)
    , m_alerts(alerts)
{
    connect(&m_defaults, &SettingsDefaults::unwritable, this, [this] {
        tell(u"Your preferences could not be saved"_s,
             u"This file cannot be written:\n%1\n\nWhat you change counts until Quorvane ends."_s
                 .arg(m_defaults.path()));
    });
}

void SettingsNotice::tellHowTheyWereFound()
{
    switch (m_defaults.state()) {
    case SettingsDefaults::State::Whole:
        break;
    case SettingsDefaults::State::Damaged:
        tell(
            u"Your preferences could not be read in full"_s,
            (m_defaults.setAside()
                 ? u"Their file was damaged and is kept as:\n%1\n\nWhat could be read of it still counts; everything else is as it was at first."_s
                       .arg(*m_defaults.setAside())
                 : u"This file is damaged and could not be moved aside:\n%1\n\nWhat could be read of it counts; what you change counts until Quorvane ends."_s
                       .arg(m_defaults.path())));
        break;
    case SettingsDefaults::State::Unreadable:
        tell(
            u"Your preferences could not be read"_s,
            u"This file cannot be read:\n%1\n\nEverything is as it was at first, and what you change counts until Quorvane ends."_s
                .arg(m_defaults.path()));
        break;
    }
}

void SettingsNotice::tell(const QString &message, const QString &explanation)
{
    m_alerts.runModal({message, explanation, {u"OK"_s}}, [](AlertAnswer) {});
}

} // namespace quorvane
