#include "platform_qt/enchantspelling.h"

#include <utility>

#include <enchant-2/enchant.h>

namespace quorvane {

namespace {

using Broker = std::unique_ptr<EnchantBroker, decltype(&enchant_broker_free)>;

Broker newBroker()
{
    return {enchant_broker_init(), enchant_broker_free};
}

} // namespace

// Each has a broker of its own: brokers know nothing of threads.
class EnchantSpelling::Dictionary final : public SpellDictionary
{
public:
    explicit Dictionary(EnchantSpelling &spelling)
        : m_spelling(spelling)
    { }

    ~Dictionary() override
    {
        if (m_dictionary) {
            enchant_broker_free_dict(m_broker.get(), m_dictionary);
        }
    }

    void read(const QByteArray &tag)
    {
        m_broker = newBroker();
        m_dictionary = enchant_broker_request_dict(m_broker.get(), tag.constData());
    }

    bool isThere() const { return m_dictionary; }

    bool knows(const QString &word) override
    {
        const QByteArray utf8 = word.toUtf8();
        return m_spelling.m_ignored.contains(word)
            || enchant_dict_check(m_dictionary, utf8.constData(), utf8.size()) <= 0;
    }

    QStringList suggestions(const QString &word) override
    {
        const QByteArray utf8 = word.toUtf8();
        size_t count = 0;
        char **list = enchant_dict_suggest(m_dictionary, utf8.constData(), utf8.size(), &count);
        QStringList words;
        for (size_t i = 0; list && i < count; ++i) {
            words << QString::fromUtf8(list[i]);
        }
        if (list) {
            enchant_dict_free_string_list(m_dictionary, list);
        }
        return words;
    }

    void learn(const QString &word) override
    {
        const QByteArray utf8 = word.toUtf8();
        enchant_dict_add(m_dictionary, utf8.constData(), utf8.size());
        emit m_spelling.wordsChanged();
    }

    void ignore(const QString &word) override
    {
        m_spelling.m_ignored.insert(word);
        emit m_spelling.wordsChanged();
    }

private:
    EnchantSpelling &m_spelling;
    Broker m_broker {nullptr, enchant_broker_free};
    EnchantDict *m_dictionary = nullptr;
};

EnchantSpelling::EnchantSpelling()
{
    m_readers.setMaxThreadCount(1); // the readers of some formats share tables
}

EnchantSpelling::~EnchantSpelling()
{
    m_readers.clear();
    m_readers.waitForDone();
}

QStringList EnchantSpelling::languages()
{
    const auto add = [](const char *tag, const char *, const char *, const char *, void *to) {
        static_cast<QStringList *>(to)->append(QString::fromUtf8(tag));
    };
    QStringList tags;
    enchant_broker_list_dicts(newBroker().get(), add, &tags);
    tags.removeDuplicates();
    tags.sort();
    return tags;
}

void EnchantSpelling::load(const QString &language, const Loaded &loaded)
{
    const bool isNew = m_entries.find(language) == m_entries.end();
    Entry &entry = m_entries[language];
    entry.waiting.push_back(loaded);
    const auto ready = [this, &entry] {
        entry.isReady = true;
        answer(entry);
    };
    if (!isNew) {
        if (entry.isReady) {
            QMetaObject::invokeMethod(this, ready, Qt::QueuedConnection);
        }
        return;
    }
    entry.dictionary = std::make_unique<Dictionary>(*this);
    m_readers.start([this, ready, dictionary = entry.dictionary.get(), tag = language.toUtf8()] {
        dictionary->read(tag);
        QMetaObject::invokeMethod(this, ready, Qt::QueuedConnection);
    });
}

void EnchantSpelling::answer(Entry &entry)
{
    const std::vector<Loaded> waiting = std::exchange(entry.waiting, {});
    for (const Loaded &loaded : waiting) {
        loaded(entry.dictionary->isThere() ? entry.dictionary.get() : nullptr);
    }
}

} // namespace quorvane
