#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace quorvane {

class Arguments;
enum class ExitCode;

/// An option as it is parsed, and as the help tells of it.
struct Option
{
    const char *name;
    const char *argument; ///< Its name in the help; null for an option without one.
    const char *help;
    char letter = '\0'; ///< A short form, if any.
};

struct OptionGroup
{
    const char *title;
    std::vector<Option> options;
};

struct Command
{
    const char *name;
    const char *operands; ///< As the usage line has them.
    const char *summary;
    const char *details; ///< What else the help says.
    int mostOperands; ///< One is always needed.
    std::vector<OptionGroup> groups;
    ExitCode (*run)(const Arguments &arguments);
};

/// What was given to a command.
class Arguments final
{
public:
    /// Sorts out \a count arguments, of which the first is the command's name, as GNU programs do.
    /// \return nothing where they are wrong, which has been told.
    static std::optional<Arguments> parse(const Command &command, int count, char **values);

    bool has(const char *option) const { return m_options.contains(QLatin1StringView(option)); }

    std::optional<QString> value(const char *option) const;

    const QStringList &files() const { return m_files; }

    const QString &file() const { return m_files.first(); }

private:
    QHash<QString, QString> m_options; ///< Without its dashes; the last one of a name counts.
    QStringList m_files;
};

} // namespace quorvane
