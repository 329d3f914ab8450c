#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <optional>

namespace quorvane {

/// SIGTERM, SIGHUP and SIGINT as events of the main loop. One that the process was started to
/// ignore stays ignored. There can be one object of this class at a time.
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received(int number);

private:
    struct Former
    {
        int number;
        struct sigaction action;
    };

    void readNumbers();

    std::array<int, 2> m_pipe {-1, -1};
    std::optional<QSocketNotifier> m_notifier;
    std::array<std::optional<Former>, 3> m_former;
};

} // namespace quorvane
