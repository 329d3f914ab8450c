#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace quorvane {

/// Gets the content of web addresses. It blocks: it is asked on a thread of its own.
class URLLoader
{
public:
    virtual ~URLLoader() = default;
    /// The body of a successful answer; nothing for any failure.
    virtual std::optional<QByteArray> contentsOfURL(const QString &url) = 0;
};

/// Runs work off the main thread, one thing after another.
class BackgroundQueue
{
public:
    virtual ~BackgroundQueue() = default;
    /// \a work runs on a thread of its own; \a done on the main queue, if the program lives so
    /// long.
    virtual void addOperation(std::function<void()> work, std::function<void()> done) = 0;
};

} // namespace quorvane
