#pragma once

#include "platform/recoverystore.h"

#include <QMap>
#include <QSet>

#include <cerrno>

namespace quorvane {

/// What is kept against a crash, in memory. A second one over the same \a kept is the next start.
class FakeRecovery final : public RecoveryStore
{
public:
    NewEntry newEntry(const QString &name) override
    {
        if (writeError) {
            return {nullptr, *writeError};
        }
        names.insert(++m_last, name);
        return {std::make_unique<FakeEntry>(*this, m_last), {}};
    }

    std::vector<std::unique_ptr<Entry>> takeAbandoned() override
    {
        std::vector<std::unique_ptr<Entry>> entries;
        for (const int number : kept.keys()) {
            if (!m_living.contains(number)) {
                entries.push_back(std::make_unique<FakeEntry>(*this, number));
            }
        }
        return entries;
    }

    QMap<int, QByteArray> kept;
    QMap<int, QString> names;
    std::optional<FileError> writeError; ///< What every write fails with while it is set.
    int writes = 0;

private:
    class FakeEntry final : public Entry
    {
    public:
        FakeEntry(FakeRecovery &store, int number)
            : m_store(store)
            , m_number(number)
        {
            m_store.m_living.insert(number);
        }

        ~FakeEntry() override { m_store.m_living.remove(m_number); }

        QString path() const override { return QStringLiteral("/state/%1").arg(m_number); }

        QString name() const override { return m_store.names.value(m_number); }

        FileStore::ReadResult read() override { return {m_store.kept.value(m_number), {}, {}}; }

        std::optional<FileError> write(const QByteArray &data) override
        {
            ++m_store.writes;
            if (!m_store.writeError) {
                m_store.kept.insert(m_number, data);
            }
            return m_store.writeError;
        }

        void remove() override { m_store.kept.remove(m_number); }

    private:
        FakeRecovery &m_store;
        int m_number;
    };

    QSet<int> m_living;
    int m_last = 0;
};

} // namespace quorvane
