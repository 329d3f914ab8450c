#include "document/passwordstrength.h"

#include "crypto/qvcommoncrypto.h"
#include "document/qvcryptodoc.h"

#include <QList>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <zxcvbn.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// An assumption, and the user is told of it: what thousands of processor cores or a few graphics
// cards do. The key of one guess costs QVCommonCrypto::derivationRounds of them.
constexpr double roundsPerSecond = 1e10;
constexpr double guessesPerSecond = roundsPerSecond / QVCommonCrypto::derivationRounds;
static_assert(guessesPerSecond == 1e6, "the text to the user says a million");

// The estimate takes time that grows faster than its input; so many letters are enough to judge.
constexpr qsizetype mostLetters = 64;

constexpr double minute = 60;
constexpr double hour = 60 * minute;
constexpr double day = 24 * hour;
constexpr double year = 365.25 * day;

/// What reaches the key, a byte for each whole letter: whoever guesses guesses letters, and the
/// several bytes of one would count as so many.
struct Letters
{
    QByteArray bytes;
    qsizetype units = 0; ///< How far they reach in the password.
};

Letters lettersThatReachTheKey(const QString &password)
{
    Letters letters;
    qsizetype room = QVCommonCrypto::keyBytesOf(password).size();
    const QList<uint> all = password.toUcs4();
    for (const uint letter : all) {
        room -= letter < 0x80 ? 1 : letter < 0x800 ? 2 : letter < 0x10000 ? 3 : 4;
        if (room < 0) {
            break;
        }
        const uint byte = letter < 0x80 ? std::max(letter, 1U) : 0x80 | (letter & 0x7f);
        letters.bytes.append(static_cast<char>(byte));
        letters.units += letter < 0x10000 ? 1 : 2;
    }
    return letters;
}

qsizetype charactersUpTo(const QString &password, qsizetype units)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, password);
    qsizetype count = 0;
    for (auto end = finder.toNextBoundary(); end >= 0 && end <= units;
         end = finder.toNextBoundary()) {
        ++count;
    }
    return count;
}

PasswordStrength::Level levelOf(double seconds)
{
    using Level = PasswordStrength::Level;
    constexpr std::array<std::pair<double, Level>, 4> limits {{{day, Level::VeryWeak},
                                                               {year, Level::Weak},
                                                               {1e3 * year, Level::Fair},
                                                               {1e6 * year, Level::Strong}}};
    for (const auto &[limit, level] : limits) {
        if (seconds < limit) {
            return level;
        }
    }
    return Level::VeryStrong;
}

QString levelText(PasswordStrength::Level level)
{
    switch (level) {
    case PasswordStrength::Level::TooShort:
        return u"Too short"_s;
    case PasswordStrength::Level::VeryWeak:
        return u"Very weak"_s;
    case PasswordStrength::Level::Weak:
        return u"Weak"_s;
    case PasswordStrength::Level::Fair:
        return u"Fair"_s;
    case PasswordStrength::Level::Strong:
        return u"Strong"_s;
    case PasswordStrength::Level::VeryStrong:
        break;
    }
    return u"Very strong"_s;
}

QString durationText(double seconds)
{
    struct Unit
    {
        double length;
        double until;
        QLatin1StringView name;
    };

    constexpr std::array units {Unit {1, minute, "second"_L1},
                                Unit {minute, hour, "minute"_L1},
                                Unit {hour, day, "hour"_L1},
                                Unit {day, 60 * day, "day"_L1},
                                Unit {year / 12, 2 * year, "month"_L1},
                                Unit {year, 1e3 * year, "year"_L1},
                                Unit {1e3 * year, 1e6 * year, "thousand year"_L1}};
    if (seconds < 1) {
        return u"less than a second"_s;
    }
    for (const Unit &unit : units) {
        const double count = std::round(seconds / unit.length);
        if (count * unit.length < unit.until) {
            const bool isPlural = count > 1 || unit.length > year;
            return u"about %1 %2%3"_s.arg(QString::number(count, 'f', 0), unit.name,
                                          isPlural ? u"s"_s : u""_s);
        }
    }
    return u"more than a million years"_s;
}

} // namespace

PasswordStrength PasswordStrength::of(const QString &password)
{
    const Letters letters = lettersThatReachTheKey(password);
    PasswordStrength strength;
    strength.characters = charactersUpTo(password, password.size());
    strength.protectingCharacters = charactersUpTo(password, letters.units);
    if (password.size() < QVCryptoDoc::leastPasswordLength) {
        return strength;
    }
    const double bits = ZxcvbnMatch(letters.bytes.left(mostLetters).constData(), nullptr, nullptr);
    strength.secondsToGuess = std::exp2(bits - 1) / guessesPerSecond; // half of them on average
    strength.level = levelOf(strength.secondsToGuess);
    return strength;
}

QString PasswordStrength::text() const
{
    if (level == Level::TooShort) {
        return u"Too short: a password has at least six characters."_s;
    }
    const QString sentence =
        u"%1. Someone who has the file and tries a million passwords a second needs %2."_s.arg(
            levelText(level), durationText(secondsToGuess));
    if (protectingCharacters >= characters) {
        return sentence;
    }
    const QString reaching = protectingCharacters > 1
        ? u"Only the first %1 characters protect the document"_s.arg(protectingCharacters)
        : u"Only the first character protects the document"_s;
    return u"%1: accents and other alphabets use up the room of the rest. %2"_s.arg(reaching,
                                                                                    sentence);
}

} // namespace quorvane
