#include "platform/filestore.h"

#include <cerrno>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString refusal(const FileError &error)
{
    if (error.step == filestep::makingNewFile) {
        return u"The folder “%1” does not let you make a new file in it, and a document is never "
               u"overwritten where it stands. Save it in another folder."_s;
    }
    return u"You do not have permission to do this to “%1”."_s;
}

/// \return the cause as a sentence with %1 for the path; empty where no better one than the
/// system's own is known.
QString knownCause(const FileError &error)
{
    switch (error.code) {
    case 0:
        return u"What “%1” holds is not what was written: the disk may be failing."_s;
    case ENOSPC:
        return u"There is not enough free space on the disk of “%1”."_s;
    case EDQUOT:
        return u"Your share of the disk of “%1” is used up."_s;
    case EACCES:
    case EPERM:
        return refusal(error);
    case EROFS:
        return u"The disk of “%1” can only be read, not written."_s;
    case ENOENT:
        return u"“%1” does not exist."_s;
    case ENOTDIR:
        return u"A part of the path “%1” is not a folder."_s;
    case EIO:
        return u"The disk reported an error at “%1”."_s;
    case ENAMETOOLONG:
        return u"The name “%1” is too long."_s;
    case ELOOP:
        return u"The symbolic link “%1” leads to too many others, or back to itself."_s;
    case EISDIR:
        return u"“%1” is a folder, not a file."_s;
    case ENODEV:
        return u"“%1” is a device or a pipe, not a file."_s;
    case EFBIG:
        return u"“%1” is too large."_s;
    case EAGAIN:
        return u"Another program was changing “%1” at the same time. Try again."_s;
    case EBUSY:
    case ETXTBSY:
        return u"“%1” is in use by another program."_s;
    case EMFILE:
    case ENFILE:
        return u"Too many files are open to get at “%1”."_s;
    case ENOMEM:
        return u"There is not enough memory to handle “%1”."_s;
    case ESTALE:
    case ENOTCONN:
    case ETIMEDOUT:
    case EHOSTDOWN:
    case EHOSTUNREACH:
        return u"The connection to the disk of “%1” is lost."_s;
    default:
        return QString();
    }
}

} // namespace

QString FileError::reason() const
{
    QString cause = knownCause(*this);
    if (cause.isEmpty()) {
        cause = u"“%1”: "_s + qt_error_string(code) + u'.';
    }
    cause.replace("%1"_L1, path); // no arg(): a path may hold a %2 of its own
    cause += u" This happened while "_s + step + u'.';
    if (isInPlace()) {
        cause += u" The new content is in its place, but it is not certain to outlive a power cut."
                 u" Save again."_s;
    }
    return cause;
}

bool FileError::isInPlace() const
{
    return step == filestep::flushingFolder;
}

bool FileStore::StampResult::isMissing() const
{
    return !stamp && (error.code == ENOENT || error.code == ENOTDIR);
}

} // namespace quorvane
