#pragma once

#include "platform/filestore.h"

#include <QString>

#include <optional>

namespace quorvane {

/// How the program ends. Several files: the code of the first one that failed.
enum class ExitCode {
    Done = 0,
    Usage = 1, ///< Arguments, or a password that could not be had or is not allowed.
    NotReadable = 2, ///< Not readable, no document, or damaged.
    WrongPassword = 3,
    NewerVersion = 4,
    CannotWrite = 5,
};

/// Why something was not done, in words that stand behind the name of a file.
struct Failure
{
    ExitCode code = ExitCode::Done;
    QString reason;
};

/// A value, or why there is none.
template <typename T> struct [[nodiscard]] Result
{
    std::optional<T> value;
    Failure failure; ///< Told only where there is no value.
};

Failure cannotRead(const FileError &error);
Failure cannotWrite(const FileError &error);

} // namespace quorvane
