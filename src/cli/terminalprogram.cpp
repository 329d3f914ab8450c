#include "cli/terminalprogram.h"

#include "cli/commands.h"
#include "cli/passwords.h"
#include "cli/streams.h"
#include "product/qvappsupportutility.h"
#include "product/release.h"

#include <algorithm>
#include <limits>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int manyFiles = std::numeric_limits<int>::max();
constexpr int columnOfHelp = 28;

const OptionGroup helpOptions {"Help", {{"help", nullptr, "show this text and exit", 'h'}}};

const std::vector<Command> &commands()
{
    static const std::vector<Command> all {
        {"info",
         "FILE...",
         "tell what a document says in the clear",
         "Format version and family, cipher, public note, read-only switch, window frame and the\n"
         "length of every field. Asks for no password.\n",
         manyFiles,
         {{"Options", {{"json", nullptr, "write JSON: an array with an object for each document"}}},
          helpOptions},
         &runInfo},
        {"cat",
         "FILE",
         "write the content of a document",
         "FORMAT is text (in UTF-8, the default), rtf, html, rtfd or body, the bytes as they were\n"
         "encrypted. An rtfd is a package, a folder, and needs --output. What OUT was is replaced\n"
         "in one step; OUT can be read by you alone. A protected document is not replaced; a pipe\n"
         "or a device, also as /dev/stdout, is written to.\n",
         1,
         {{"Options",
           {{"format", "FORMAT", "write this format", 'f'},
            {"output", "OUT", "write to OUT, not to standard output", 'o'}}},
          passwordOptions(),
          helpOptions},
         &runCat},
        {"create",
         "FILE",
         "make a new protected document",
         "IN is a text, RTF or an RTFD package; - is standard input. Without --from the document\n"
         "is empty. Its password has six characters or more; there is no way in without it.\n",
         1,
         {{"Options",
           {{"from", "IN", "take the content from IN"},
            {"note", "TEXT", "the public note, which anybody can read"},
            {"force", nullptr, "replace FILE where it exists"}}},
          {"Password (without these, it is asked for at the terminal, twice)",
           passwordOptions().options},
          helpOptions},
         &runCreate},
        {"passwd",
         "FILE",
         "change the password of a document",
         "The new one has six characters or more. A document of an old version moves to the\n"
         "current one.\n",
         1,
         {passwordOptions(), newPasswordOptions(), helpOptions},
         &runPasswd},
        {"note",
         "FILE",
         "print or set the public note of a document",
         "To print it asks for no password, to set it does.\n",
         1,
         {{"Options", {{"set", "TEXT", "make TEXT the note"}}}, passwordOptions(), helpOptions},
         &runNote},
        {"migrate",
         "FILE...",
         "save documents of old versions in the current one",
         "All have one password. Text, note, read-only switch and window frame stay; documents of\n"
         "the current version are left alone. After a failure, which leaves its file as it was,\n"
         "the others are still done.\n",
         manyFiles,
         {{"Options",
           {{"dry-run", nullptr, "write nothing; with a password, try whether it opens them",
             'n'}}},
          {"Password (without these, it is asked for at the terminal)",
           optionalPasswordOptions().options},
          helpOptions},
         &runMigrate},
        {"verify",
         "FILE...",
         "tell whether documents are whole",
         "With a password, also whether it opens them.\n",
         manyFiles,
         {optionalPasswordOptions(), helpOptions},
         &runVerify},
    };
    return all;
}

QString helpOf(const Option &option)
{
    QString left =
        option.letter == '\0' ? u"      --"_s : u"  -"_s + QLatin1Char(option.letter) + u", --"_s;
    left += QLatin1StringView(option.name);
    if (option.argument) {
        left += u'=' + QLatin1StringView(option.argument);
    }
    left = left.leftJustified(columnOfHelp - 1) + u' ';
    return left + QLatin1StringView(option.help) + u'\n';
}

QString helpOf(const Command &command)
{
    QString text = u"Usage: quorvane-cli %1 [OPTION]... %2\n"_s.arg(
        QLatin1StringView(command.name), QLatin1StringView(command.operands));
    const QString summary = QString::fromLatin1(command.summary);
    text += summary.left(1).toUpper() + summary.mid(1) + u".\n\n"_s;
    text += QLatin1StringView(command.details);
    for (const OptionGroup &group : command.groups) {
        text += u'\n' + QLatin1StringView(group.title) + u":\n"_s;
        for (const Option &option : group.options) {
            text += helpOf(option);
        }
    }
    return text;
}

QString helpOfProgram()
{
    QString text = u"Usage: quorvane-cli COMMAND [OPTION]... FILE...\n"
                   u"Work on encrypted Quorvane documents without their windows.\n\n"
                   u"Commands:\n"_s;
    for (const Command &command : commands()) {
        text += u"  "_s + QString::fromLatin1(command.name).leftJustified(10)
            + QLatin1StringView(command.summary) + u'\n';
    }
    text += u"\n  -h, --help      show this text and exit\n"
            u"  -V, --version   show the version and exit\n\n"
            u"\"quorvane-cli COMMAND --help\" tells the options of a command.\n\n"
            u"Passwords are never taken from arguments or the environment.\n"
            u"Exit status: 0 done, 1 usage, 2 not readable or no document, 3 wrong password,\n"
            u"4 newer version, 5 cannot write. Of several files, the first that failed counts.\n"_s;
    return text;
}

int print(const QString &text)
{
    return static_cast<int>(printText(text) ? ExitCode::Done : ExitCode::CannotWrite);
}

int wrongUsage(const QString &topic)
{
    writeEverything(2, ("Try 'quorvane-cli "_L1 + topic + "--help'.\n"_L1).toUtf8());
    return static_cast<int>(ExitCode::Usage);
}

int run(const Command &command, int argc, char **argv)
{
    const std::optional<Arguments> arguments = Arguments::parse(command, argc, argv);
    if (!arguments) {
        return wrongUsage(QString::fromLatin1(command.name) + u' ');
    }
    if (arguments->has("help")) {
        return print(helpOf(command));
    }
    return static_cast<int>(command.run(*arguments));
}

} // namespace

ExitCode fail(const QString &path, const Failure &failure)
{
    complain(path, failure.reason);
    return failure.code;
}

ExitCode firstFailure(ExitCode before, ExitCode now)
{
    return before == ExitCode::Done ? now : before;
}

int runTerminalProgram(int argc, char **argv)
{
    const QByteArray first(argc > 1 ? argv[1] : "");
    if (first == "-h" || first == "--help") {
        return print(helpOfProgram());
    }
    if (first == "-V" || first == "--version") {
        return print(u"quorvane-cli (%1) %2\n"_s.arg(
            productName, QVAppSupportUtility::calcReleaseString(releaseNumber)));
    }
    const auto command = std::find_if(commands().begin(), commands().end(),
                                      [&first](const Command &each) { return first == each.name; });
    if (command == commands().end()) {
        complain(argc > 1 ? u"'%1' is no command"_s.arg(QString::fromLocal8Bit(first))
                          : u"which command?"_s);
        return wrongUsage(u""_s);
    }
    // The command's arguments follow its name, which stands for the program in what getopt tells.
    static char name[] = "quorvane-cli";
    argv[1] = name;
    return run(*command, argc - 1, argv + 1);
}

} // namespace quorvane
