#pragma once

#include <QComboBox>

namespace quorvane {

class TextCommands;

/// Shows and sets what a paragraph is: body, or a heading of some level.
class ParagraphStyleBox final : public QComboBox
{
    Q_OBJECT

public:
    explicit ParagraphStyleBox(TextCommands &commands, QWidget *parent = nullptr);

    void showPopup() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void follow();

    TextCommands &m_commands;
};

} // namespace quorvane
