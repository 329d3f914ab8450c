#pragma once

#include "platform/urlloader.h"

#include <QStringList>

namespace quorvane {

/// A net without anybody in it.
class NobodyLoader final : public URLLoader
{
public:
    std::optional<QByteArray> contentsOfURL(const QString &url) override
    {
        asked << url;
        return std::nullopt;
    }

    QStringList asked;
};

class ImmediateBackground final : public BackgroundQueue
{
public:
    void addOperation(std::function<void()> work, std::function<void()> done) override
    {
        work();
        done();
    }
};

} // namespace quorvane
