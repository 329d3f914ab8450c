#include "cli/passwords.h"

#include "cli/terminal.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype leastPasswordLength = 6; // UTF-16 units
constexpr qsizetype longestLine = qsizetype(1) << 20;

constexpr Option passwordFd {"password-fd", "N",
                             "read the password from the open descriptor N, up to its line end"};
constexpr Option passwordFile {"password-file", "PATH",
                               "take the first line of the file PATH as the password"};
constexpr Option askPassword {"ask-password", nullptr, "ask for the password at the terminal"};
constexpr Option newPasswordFd {"new-password-fd", "N",
                                "read the new password from the open descriptor N"};
constexpr Option newPasswordFile {"new-password-file", "PATH",
                                  "take the first line of the file PATH as the new password"};

using PasswordResult = Result<QString>;

PasswordResult failure(const QString &reason)
{
    return {std::nullopt, {ExitCode::Usage, reason}};
}

PasswordResult decoded(const QByteArray &line)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless
                               | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder(line);
    return decoder.hasError() ? failure(u"the password is not in UTF-8"_s)
                              : PasswordResult {text, {}};
}

/// Reads no byte behind the line end: what follows belongs to the next reader.
PasswordResult firstLineOf(int descriptor, const QString &name)
{
    QByteArray line;
    char byte = 0;
    while (line.size() < longestLine) {
        const ssize_t count = ::read(descriptor, &byte, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return failure(u"no password from %1: "_s.arg(name) + qt_error_string(errno));
        }
        if (count == 0 && line.isEmpty()) {
            return failure(u"no password from %1: it is empty"_s.arg(name));
        }
        if (count == 0 || byte == '\n') {
            if (line.endsWith('\r')) { // of a line end as other systems write it
                line.chop(1);
            }
            return decoded(line);
        }
        line.append(byte);
    }
    return failure(u"no password from %1: its first line is too long"_s.arg(name));
}

PasswordResult fromDescriptor(const QString &number)
{
    bool isNumber = false;
    const int descriptor = number.toInt(&isNumber);
    if (!isNumber || descriptor < 0) {
        return failure(u"'%1' is no descriptor"_s.arg(number));
    }
    return firstLineOf(descriptor, u"descriptor %1"_s.arg(descriptor));
}

PasswordResult fromFile(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file < 0) {
        return failure(u"no password from '%1': "_s.arg(path) + qt_error_string(errno));
    }
    const PasswordResult result = firstLineOf(file, u"'%1'"_s.arg(path));
    ::close(file);
    return result;
}

struct Source
{
    const Option &fd;
    const Option &file;

    bool isNamed(const Arguments &arguments) const
    {
        return arguments.has(fd.name) || arguments.has(file.name);
    }

    PasswordResult read(const Arguments &arguments) const
    {
        if (arguments.has(fd.name) && arguments.has(file.name)) {
            return failure(u"--%1 and --%2: only one of them"_s.arg(QLatin1StringView(fd.name),
                                                                    QLatin1StringView(file.name)));
        }
        const std::optional<QString> number = arguments.value(fd.name);
        return number ? fromDescriptor(*number) : fromFile(arguments.value(file.name).value());
    }
};

constexpr Source given {passwordFd, passwordFile};
constexpr Source fresh {newPasswordFd, newPasswordFile};

/// One with control characters could hardly be typed again.
PasswordResult allowed(PasswordResult result)
{
    const auto isControl = [](QChar character) {
        return character.category() == QChar::Other_Control;
    };
    if (result.value && std::any_of(result.value->begin(), result.value->end(), isControl)) {
        return failure(u"the new password has a control character in it, such as a tab or a NUL; "
                       u"it must have none"_s);
    }
    if (result.value && result.value->size() < leastPasswordLength) {
        return failure(u"Password Too Short. You have to use a password which is at least six "
                       u"character long."_s);
    }
    return result;
}

PasswordResult typedTwice()
{
    const PasswordResult first = passwordFromTerminal(u"New password: "_s);
    if (!first.value) {
        return first;
    }
    const PasswordResult second = passwordFromTerminal(u"New password again: "_s);
    if (second.value && *first.value != *second.value) {
        return failure(u"Passwords inserted in the two fields doesn't match"_s);
    }
    return second;
}

} // namespace

OptionGroup passwordOptions()
{
    return {"Password (without these, it is asked for at the terminal)",
            {passwordFd, passwordFile}};
}

OptionGroup optionalPasswordOptions()
{
    return {"Password (without these, none is asked for)", {passwordFd, passwordFile, askPassword}};
}

OptionGroup newPasswordOptions()
{
    return {"New password (without these, it is asked for at the terminal, twice)",
            {newPasswordFd, newPasswordFile}};
}

bool namesPassword(const Arguments &arguments)
{
    return given.isNamed(arguments) || arguments.has(askPassword.name);
}

PasswordResult password(const Arguments &arguments, const QString &prompt)
{
    return given.isNamed(arguments) ? given.read(arguments) : passwordFromTerminal(prompt);
}

PasswordResult passwordFromTerminal(const QString &prompt)
{
    Terminal terminal;
    if (!terminal.isThere()) {
        return failure(u"there is no terminal to ask for a password at; see --help for other "
                       u"ways to give one"_s);
    }
    const std::optional<QByteArray> line = terminal.readHidden(prompt.toUtf8());
    return line ? decoded(*line) : failure(u"no password was typed"_s);
}

PasswordResult newPassword(const Arguments &arguments, NewPasswordSource source)
{
    const Source &named = source == NewPasswordSource::PasswordOptions ? given : fresh;
    return allowed(named.isNamed(arguments) ? named.read(arguments) : typedTwice());
}

} // namespace quorvane
