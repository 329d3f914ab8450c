#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace quorvane {

/// The real window program in a process of its own: the test's executable, started again. It does
/// what it is told as its user would, by single lines; each has an answer.
class DrivenProgram final
{
public:
    /// Whether this process is one. Its `main` is then that of the program.
    static bool isMeant();

    explicit DrivenProgram(const QStringList &files, const QString &workingDirectory = {});
    DrivenProgram(const DrivenProgram &) = delete;
    DrivenProgram &operator=(const DrivenProgram &) = delete;
    /// Kills a program that is still there.
    ~DrivenProgram();

    /// The answer; empty where the program ends without one.
    QString tell(const QString &command, const QString &argument = {});

    QStringList titles() { return tell(QStringLiteral("titles")).split(u'/', Qt::SkipEmptyParts); }

    /// The titles of all windows that are shown, sorted.
    QStringList windows()
    {
        return tell(QStringLiteral("windows")).split(u'/', Qt::SkipEmptyParts);
    }

    qint64 id() const { return m_process.processId(); }

    /// Waits for the end. \return the exit code, or -1 for a crash.
    int exitCode();

    QString errorText() { return QString::fromUtf8(m_process.readAllStandardError()); }

private:
    QProcess m_process;
};

} // namespace quorvane
