#pragma once

#include <QString>

namespace quorvane {

/// How long a password keeps someone busy who has the file and guesses. Judged is what reaches the
/// key: behind letters beyond ASCII, the end of a password does not.
struct PasswordStrength
{
    enum class Level { TooShort, VeryWeak, Weak, Fair, Strong, VeryStrong };

    /// A document may have the password whatever it says here, unless that is TooShort.
    static PasswordStrength of(const QString &password);

    /// The whole in plain words, one or two sentences.
    QString text() const;

    Level level = Level::TooShort;
    double secondsToGuess = 0; ///< On average.
    qsizetype characters = 0; ///< As a person counts them.
    qsizetype protectingCharacters = 0; ///< Those that reach the key whole: the first ones.
};

} // namespace quorvane
