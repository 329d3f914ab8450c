#include "cli/migration.h"

#include "cli/storeddocument.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <mutex>
#include <thread>

#include <sys/stat.h>

namespace quorvane {

namespace {

using Item = Migration::Item;
using State = Migration::State;

// A saved file is waited for until it is on the disk: meanwhile another thread can use the core.
constexpr unsigned threadsPerCore = 2;

void fail(Item &item, const Failure &failure)
{
    item.state = State::Failed;
    item.failure = failure;
}

void look(Item &item)
{
    const Result<std::unique_ptr<StoredDocument>> loaded = StoredDocument::load(item.path);
    if (!loaded.value) {
        fail(item, loaded.failure);
        return;
    }
    const StoredDocument &document = **loaded.value;
    item.version = document.file().appversion;
    item.isBlowfish = document.cipher() == CipherFamily::Blowfish;
    if (item.version == currentFormatVersion) {
        item.state = State::Current;
    }
}

void move(Item &item, const QString &password, Migration::Mode mode)
{
    const Result<std::unique_ptr<StoredDocument>> loaded = StoredDocument::load(item.path);
    if (!loaded.value) {
        fail(item, loaded.failure);
        return;
    }
    StoredDocument &document = **loaded.value;
    std::optional<Failure> failure = document.unlock(password);
    if (!failure) {
        failure = mode == Migration::Mode::Save ? document.save() : document.whyNotSaved();
    }
    if (failure) {
        fail(item, *failure);
        return;
    }
    item.state = mode == Migration::Mode::Save ? State::Migrated : State::Opened;
}

} // namespace

Migration::Migration(const QStringList &paths)
{
    QSet<std::pair<dev_t, ino_t>> seen;
    for (const QString &path : paths) {
        Item item;
        item.path = path;
        struct stat status = {};
        if (::stat(QFile::encodeName(path).constData(), &status) == 0) {
            const std::pair identity(status.st_dev, status.st_ino);
            item.state = seen.contains(identity) ? State::Twice : State::Waiting;
            seen.insert(identity);
        }
        if (item.state == State::Waiting) {
            look(item);
        }
        m_items.push_back(std::move(item));
    }
}

qsizetype Migration::count(State state) const
{
    return std::count_if(m_items.begin(), m_items.end(),
                         [state](const Item &item) { return item.state == state; });
}

bool Migration::hasBlowfish() const
{
    return std::any_of(m_items.begin(), m_items.end(), [](const Item &item) {
        return item.state == State::Waiting && item.isBlowfish;
    });
}

void Migration::run(const QString &password, Mode mode, const std::function<void()> &progressed,
                    const std::atomic<bool> &stop)
{
    std::vector<Item *> waiting;
    for (Item &item : m_items) {
        if (item.state == State::Waiting) {
            waiting.push_back(&item);
        }
    }
    std::atomic<std::size_t> next = 0;
    std::mutex telling;
    const auto work = [&] {
        for (std::size_t i = next++; i < waiting.size() && !stop; i = next++) {
            move(*waiting[i], password, mode);
            const std::lock_guard guard(telling);
            progressed();
        }
    };
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::min(waiting.size(), cores * threadsPerCore); ++i) {
        threads.emplace_back(work);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace quorvane
