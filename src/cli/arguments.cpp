#include "cli/arguments.h"

#include "cli/streams.h"

#include <QFile>

#include <getopt.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

/// The command's options for getopt_long. Each long one answers its place in the list, plus this.
constexpr int firstLong = 1000;

struct Table
{
    std::vector<const Option *> options;
    std::vector<::option> longOnes;
    QByteArray letters;
};

Table tableOf(const Command &command)
{
    Table table;
    for (const OptionGroup &group : command.groups) {
        for (const Option &option : group.options) {
            const int place = firstLong + static_cast<int>(table.options.size());
            table.options.push_back(&option);
            table.longOnes.push_back(
                {option.name, option.argument ? required_argument : no_argument, nullptr, place});
            if (option.letter != '\0') {
                table.letters.append(option.letter).append(option.argument ? ":" : "");
            }
        }
    }
    table.longOnes.push_back({nullptr, 0, nullptr, 0});
    return table;
}

const Option *optionOf(const Table &table, int answer)
{
    if (answer >= firstLong) {
        return table.options.at(static_cast<std::size_t>(answer - firstLong));
    }
    for (const Option *option : table.options) {
        if (option->letter == answer) {
            return option;
        }
    }
    return nullptr;
}

} // namespace

std::optional<Arguments> Arguments::parse(const Command &command, int count, char **values)
{
    const Table table = tableOf(command);
    Arguments arguments;
    optind = 0; // starts anew
    for (int answer = 0; answer != -1;) {
        answer =
            getopt_long(count, values, table.letters.constData(), table.longOnes.data(), nullptr);
        if (answer == '?') {
            return std::nullopt; // getopt has told
        }
        if (const Option *option = answer == -1 ? nullptr : optionOf(table, answer)) {
            arguments.m_options.insert(QString::fromLatin1(option->name),
                                       option->argument ? QFile::decodeName(optarg) : u""_s);
        }
    }
    for (int i = optind; i < count; ++i) {
        arguments.m_files << QFile::decodeName(values[i]);
    }
    if (arguments.has("help")) {
        return arguments;
    }
    if (arguments.m_files.isEmpty()) {
        complain(QString::fromLatin1(command.name) + ": which file?"_L1);
        return std::nullopt;
    }
    if (arguments.m_files.size() > command.mostOperands) {
        complain(QString::fromLatin1(command.name) + ": one file at a time, not also '"_L1
                 + arguments.m_files.at(command.mostOperands) + u'\'');
        return std::nullopt;
    }
    return arguments;
}

std::optional<QString> Arguments::value(const char *option) const
{
    const auto found = m_options.constFind(QLatin1StringView(option));
    return found == m_options.constEnd() ? std::nullopt : std::optional(*found);
}

} // namespace quorvane
