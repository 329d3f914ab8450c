#pragma once

#include "cli/arguments.h"
#include "cli/failure.h"

namespace quorvane {

/// The group of options that say where a command takes its password from.
OptionGroup passwordOptions();
/// The same for a command that asks for none unless it is told to.
OptionGroup optionalPasswordOptions();
/// The options that say where a new password comes from.
OptionGroup newPasswordOptions();

/// Whether the arguments name any source of a password.
bool namesPassword(const Arguments &arguments);

/// The password that \a arguments say, or else what is typed at the terminal behind \a prompt.
Result<QString> password(const Arguments &arguments, const QString &prompt);
/// The same for the terminal alone, for who must type it once more.
Result<QString> passwordFromTerminal(const QString &prompt);

enum class NewPasswordSource { NewPasswordOptions, PasswordOptions };

/// A password to come, which must be long enough; at the terminal it is typed twice.
Result<QString> newPassword(const Arguments &arguments, NewPasswordSource source);

} // namespace quorvane
