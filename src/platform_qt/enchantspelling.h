#pragma once

#include "platform/spelling.h"

#include <QSet>
#include <QString>
#include <QThreadPool>

#include <map>
#include <memory>
#include <vector>

namespace quorvane {

/// Dictionaries by way of enchant 2, which knows the formats and where a desktop keeps them.
/// Nothing is looked for before it is asked for, and a dictionary is read beside the window's work.
class EnchantSpelling final : public Spelling
{
    Q_OBJECT

public:
    EnchantSpelling();
    ~EnchantSpelling() override;

    QStringList languages() override;
    void load(const QString &language, const Loaded &loaded) override;

private:
    class Dictionary;

    struct Entry
    {
        std::unique_ptr<Dictionary> dictionary;
        bool isReady = false;
        std::vector<Loaded> waiting;
    };

    void answer(Entry &entry);

    std::map<QString, Entry> m_entries;
    QSet<QString> m_ignored; // in every language
    QThreadPool m_readers;
};

} // namespace quorvane
