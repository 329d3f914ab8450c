#pragma once

#include <QString>

#include <sys/stat.h>

namespace quorvane {

/// Of what stands there itself, be it a link; all zero where nothing does.
inline struct stat statOf(const QString &path)
{
    struct stat result = {};
    ::lstat(path.toUtf8().constData(), &result);
    return result;
}

/// The permissions.
inline mode_t modeOf(const QString &path)
{
    return statOf(path).st_mode & 07777;
}

} // namespace quorvane
