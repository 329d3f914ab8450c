#pragma once

#include "platform/panels.h"
#include "support/scriptedsheet.h"

#include <QList>

#include <memory>
#include <vector>

namespace quorvane {

/// Panels that are answered by script. A save panel is a real sheet of its window: it stays up
/// until \a answerSave or until the window ends it, which counts as dismissed.
class ScriptedPanels final : public FilePanels
{
public:
    void beginOpen(const NSOpenPanel &panel,
                   std::function<void(QStringList paths)> completion) override
    {
        opened.append(panel);
        completion(pathsToOpen);
    }

    void beginOpenSheet(NSWindow &window, const NSOpenPanel &panel,
                        std::function<void(QStringList paths)> completion) override
    {
        opened.append(panel);
        m_sheets.push_back(std::make_unique<ScriptedSheet>());
        window.beginSheet(*m_sheets.back(), [this, completion = std::move(completion)](int code) {
            completion(code == accepted ? QStringList {m_path} : QStringList());
        });
    }

    void beginSaveSheet(NSWindow &window, const NSSavePanel &panel,
                        std::function<void(std::optional<QString> path)> completion) override
    {
        saved.append(panel);
        m_sheets.push_back(std::make_unique<ScriptedSheet>());
        window.beginSheet(*m_sheets.back(), [this, completion = std::move(completion)](int code) {
            completion(code == accepted ? std::optional(m_path) : std::nullopt);
        });
    }

    /// The user chose \a path in the sheet that is up, or dismissed it. \return false where none
    /// is.
    bool answerSheet(const std::optional<QString> &path)
    {
        for (const auto &sheet : m_sheets) {
            if (sheet->isUp()) {
                m_path = path.value_or(QString());
                sheet->endSheet(path ? accepted : dismissed);
                return true;
            }
        }
        return false;
    }

    bool answerSave(const std::optional<QString> &path) { return answerSheet(path); }

    QList<NSOpenPanel> opened;
    QList<NSSavePanel> saved;
    QStringList pathsToOpen; ///< The answer of every open panel; empty for dismissed.

private:
    static constexpr int accepted = 1;
    static constexpr int dismissed = 0;

    std::vector<std::unique_ptr<ScriptedSheet>> m_sheets;
    QString m_path;
};

} // namespace quorvane
