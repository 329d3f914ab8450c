#include "cli/failure.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString reasonOf(const FileError &error)
{
    QString reason = error.code == 0 ? u"what was written could not be read back"_s
                                     : qt_error_string(error.code);
    reason += u" while "_s + error.step;
    if (error.isInPlace()) {
        reason += u"; the new content is in its place, but may not outlive a power cut"_s;
    }
    return reason;
}

} // namespace

Failure cannotRead(const FileError &error)
{
    return {ExitCode::NotReadable, reasonOf(error)};
}

Failure cannotWrite(const FileError &error)
{
    return {ExitCode::CannotWrite, reasonOf(error)};
}

} // namespace quorvane
