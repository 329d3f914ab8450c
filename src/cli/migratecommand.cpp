#include "cli/commands.h"
#include "cli/migration.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"

#include <array>
#include <csignal>

#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

using State = Migration::State;

// Of a password in the oldest documents, no more reaches the key.
constexpr qsizetype blowfishKeyLength = 16;
constexpr int barWidth = 40;

std::atomic<bool> isStopped = false;
std::atomic<int> stoppedBy = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void stop(int signal)
{
    stoppedBy = signal;
    isStopped = true;
}

/// While it lives, what would end the program lets it end the documents at hand first.
class GentleEnd final
{
public:
    GentleEnd()
    {
        struct sigaction action = {};
        action.sa_handler = stop;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND); // the second time, at once
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            sigaction(endingSignals.at(i), nullptr, &m_before.at(i));
            if (m_before.at(i).sa_handler != SIG_IGN) {
                sigaction(endingSignals.at(i), &action, nullptr);
            }
        }
    }

    ~GentleEnd()
    {
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            sigaction(endingSignals.at(i), &m_before.at(i), nullptr);
        }
    }

    Q_DISABLE_COPY_MOVE(GentleEnd)

private:
    static constexpr std::array endingSignals {SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, endingSignals.size()> m_before {};
};

/// A bar on standard error, where that is a terminal.
class ProgressBar final
{
public:
    explicit ProgressBar(qsizetype total)
        : m_total(total)
        , m_isShown(total > 0 && ::isatty(STDERR_FILENO) == 1)
    {
        show();
    }

    ~ProgressBar()
    {
        if (m_isShown) {
            writeEverything(STDERR_FILENO, "\r\x1b[K");
        }
    }

    Q_DISABLE_COPY_MOVE(ProgressBar)

    void advance()
    {
        ++m_done;
        show();
    }

private:
    void show() const
    {
        if (!m_isShown) {
            return;
        }
        const auto filled = static_cast<int>(m_done * barWidth / m_total);
        const QByteArray bar = QByteArray(filled, '#') + QByteArray(barWidth - filled, '.');
        writeEverything(STDERR_FILENO,
                        "\r[" + bar + "] " + QByteArray::number(m_done) + '/'
                            + QByteArray::number(m_total));
    }

    qsizetype m_total;
    qsizetype m_done = 0;
    bool m_isShown;
};

QString wordFor(State state)
{
    switch (state) {
    case State::Waiting:
        return u"to migrate"_s;
    case State::Current:
        return u"current"_s;
    case State::Opened:
        return u"would migrate"_s;
    case State::Migrated:
        return u"migrated"_s;
    case State::Failed:
        return u"failed"_s;
    case State::Twice:
        break;
    }
    return u"named twice"_s;
}

bool printTable(const Migration &migration)
{
    QString table;
    for (const Migration::Item &item : migration.items()) {
        const bool isKnown = item.version != 0 || item.state == State::Waiting;
        QString versions = isKnown ? QString::number(item.version) : u"-"_s;
        if (item.state == State::Migrated) {
            versions += u" -> %1"_s.arg(currentFormatVersion);
        }
        table += wordFor(item.state).leftJustified(14) + versions.leftJustified(16)
            + harmless(item.path) + u'\n';
    }
    return printText(table);
}

QString summaryOf(const Migration &migration)
{
    QStringList parts;
    for (const State state : {State::Migrated, State::Opened, State::Waiting, State::Current,
                              State::Twice, State::Failed}) {
        if (const qsizetype count = migration.count(state)) {
            parts << u"%1 %2"_s.arg(count).arg(wordFor(state));
        }
    }
    return parts.join(u", "_s);
}

/// The password that the documents are to have from now on. Where it is typed, and the old cipher
/// would not notice a slip behind its sixteenth letter, it is typed twice.
Result<QString> passwordFor(const Migration &migration, const Arguments &arguments)
{
    Result<QString> typed = password(arguments, u"Password of the documents: "_s);
    const bool isTyped = !arguments.has("password-fd") && !arguments.has("password-file");
    if (!typed.value || !isTyped || !migration.hasBlowfish()
        || typed.value->size() <= blowfishKeyLength) {
        return typed;
    }
    const Result<QString> again = passwordFromTerminal(
        u"Once more, since old documents open with its first 16 letters alone: "_s);
    if (again.value && *again.value != *typed.value) {
        return {std::nullopt, {ExitCode::Usage, u"the two passwords differ"_s}};
    }
    return again;
}

std::optional<Failure> work(Migration &migration, const Arguments &arguments)
{
    const bool isTrial = arguments.has("dry-run");
    if (migration.count(State::Waiting) == 0 || (isTrial && !namesPassword(arguments))) {
        return std::nullopt;
    }
    const Result<QString> typed = passwordFor(migration, arguments);
    if (!typed.value) {
        return typed.failure;
    }
    const GentleEnd gently;
    ProgressBar bar(migration.count(State::Waiting));
    migration.run(
        *typed.value, isTrial ? Migration::Mode::TryOnly : Migration::Mode::Save,
        [&bar] { bar.advance(); }, isStopped);
    return std::nullopt;
}

} // namespace

ExitCode runMigrate(const Arguments &arguments)
{
    Migration migration(arguments.files());
    if (const std::optional<Failure> failure = work(migration, arguments)) {
        return fail(u"migrate"_s, *failure);
    }
    ExitCode code = printTable(migration) ? ExitCode::Done : ExitCode::CannotWrite;
    for (const Migration::Item &item : migration.items()) {
        if (item.state == State::Failed) {
            code = firstFailure(code, fail(item.path, item.failure));
        }
    }
    complain(summaryOf(migration));
    if (stoppedBy != 0) {
        complain(u"stopped by a signal; what is left \"to migrate\" is as it was"_s);
        std::raise(stoppedBy);
    }
    return code;
}

} // namespace quorvane
