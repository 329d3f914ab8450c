#pragma once

#include <QColor>
#include <QObject>
#include <QTextBlockFormat>
#include <QTextCharFormat>

#include <map>
#include <optional>

namespace quorvane {

enum class ColourUse { Text, Highlight };

/// What a paragraph and its characters look like, without anything of the text itself.
struct CopiedStyle
{
    QTextCharFormat characters;
    QTextBlockFormat paragraph;
};

/// The styles that were last used in the program, whatever the window. Forgotten when it ends.
class StyleMemory final : public QObject
{
    Q_OBJECT

public:
    static constexpr int mostRecent = 8;

    QColor last(ColourUse use) const;
    QList<QColor> recent(ColourUse use) const; ///< The latest first.
    void note(ColourUse use, const QColor &colour);

    std::optional<CopiedStyle> copied;

signals:
    void lastChanged();

private:
    std::map<ColourUse, QList<QColor>> m_recent;
};

} // namespace quorvane
