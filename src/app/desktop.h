#pragma once

#include "platform_qt/busconnector.h"
#include "platform_qt/dbusapplication.h"
#include "platform_qt/dbussessionevents.h"
#include "platform_qt/terminationsignals.h"
#include "shell/sessionguard.h"

#include <QObject>

#include <functional>
#include <optional>

namespace quorvane {

class MyAppDelegate;

/// The running program as the desktop sees it: whether it is in the background, which other starts
/// want something of it, when the screen locks, when it has to end.
class Desktop final : public QObject
{
    Q_OBJECT

public:
    struct Program
    {
        NSDocumentController &documents;
        MyAppDelegate &delegate;
        const NSUserDefaults &defaults;
        NSOperationQueue &mainQueue;
        /// Begins, with some work for documents or without any.
        std::function<void(const std::function<void()> &work)> begin;
        std::function<void()> startAnew; ///< Shows what a start without files shows.
        std::function<void()> willEnd; ///< From now on no window takes the place of a closed one.
    };

    /// The session bus may still be on its way.
    explicit Desktop(BusConnector &sessionBus);

    /// Whether another running program has taken the request, and this one is to end.
    [[nodiscard]] bool isServedByAnother(const StartRequest &request);
    /// From now on the desktop reaches that program, which must outlive this.
    void serve(const Program &program);
    /// Begins with the request.
    void begin(const Program &program, const StartRequest &request);
    /// Begins with the first call of the session bus, which has started the program for it. Where
    /// none comes, it ends.
    void beginWithFirstCall();

private:
    void followActivity(const Program &program);
    void followOtherStarts(const Program &program);
    void followScripts(const Program &program);
    void perform(const Program &program, const std::function<void()> &work);
    void activate(const Program &program);
    void followEnds(const Program &program);

    BusConnector &m_sessionBus;
    std::optional<BusConnector> m_systemBus;
    std::optional<DBusApplication> m_application;
    std::optional<DBusSessionEvents> m_sessionEvents;
    std::optional<SessionGuard> m_guard;
    std::optional<TerminationSignals> m_signals;
    bool m_hasBegun = false;
    bool m_isActive = false;
    bool m_isEnding = false;
};

} // namespace quorvane
