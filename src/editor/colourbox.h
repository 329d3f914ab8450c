#pragma once

#include <QColor>
#include <QComboBox>

#include <optional>

namespace quorvane {

/// Chooses one of some named colours, or any other one.
class ColourBox final : public QComboBox
{
    Q_OBJECT

public:
    enum class Nothing { IsOffered, IsNot };

    ColourBox(Nothing nothing, QWidget *parent);

    /// Absent where no one colour is chosen; not valid for no colour at all.
    std::optional<QColor> colour() const;
    void setColour(const std::optional<QColor> &colour);

private:
    void add(const QString &name, const QColor &colour, int at);
    void choose(int index);
    void askForOther();

    int m_chosen = -1;
};

} // namespace quorvane
