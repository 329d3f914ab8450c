#include "editor/paragraphstylebox.h"

#include "editor/textcommands.h"

#include <QAbstractItemView>
#include <QAction>
#include <QKeyEvent>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct Style
{
    TextCommand command;
    double scale; // of its entry in the list
};

constexpr Style styles[] = {
    {TextCommand::BodyText, 1},    {TextCommand::Heading1, 1.5}, {TextCommand::Heading2, 1.3},
    {TextCommand::Heading3, 1.15}, {TextCommand::Heading4, 1},   {TextCommand::Heading5, 0.95},
    {TextCommand::Heading6, 0.9},
};

constexpr int boxWidth = 92;

} // namespace

ParagraphStyleBox::ParagraphStyleBox(TextCommands &commands, QWidget *parent)
    : QComboBox(parent)
    , m_commands(commands)
{
    setAccessibleName(u"Paragraph Style"_s);
    setToolTip(u"Paragraph Style"_s);
    setPlaceholderText(u"Style"_s);
    setFixedWidth(boxWidth);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    for (const Style &style : styles) {
        const QAction &action = commands.action(style.command);
        addItem(action.text().remove(u'&'));
        QFont shown = font();
        shown.setPointSizeF(shown.pointSizeF() * style.scale);
        shown.setBold(style.command != TextCommand::BodyText);
        setItemData(count() - 1, shown, Qt::FontRole);
        connect(&action, &QAction::changed, this, &ParagraphStyleBox::follow);
    }
    connect(this, &QComboBox::activated, this, [this](int index) {
        m_commands.action(styles[index].command).trigger();
        follow();
    });
    follow();
}

void ParagraphStyleBox::follow()
{
    int current = -1;
    for (int index = 0; index < int(std::size(styles)); ++index) {
        current = m_commands.action(styles[index].command).isChecked() ? index : current;
    }
    setCurrentIndex(current);
    setEnabled(m_commands.action(TextCommand::BodyText).isEnabled());
}

// The list itself asks for room in its own font only.
void ParagraphStyleBox::showPopup()
{
    constexpr int margins = 40;
    int widest = 0;
    for (int index = 0; index < count(); ++index) {
        const QFontMetrics metrics(itemData(index, Qt::FontRole).value<QFont>());
        widest = std::max(widest, metrics.horizontalAdvance(itemText(index)));
    }
    view()->setMinimumWidth(widest + margins);
    QComboBox::showPopup();
}

// Each step of an arrow key would style the paragraph anew.
void ParagraphStyleBox::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) {
        showPopup();
        return;
    }
    QComboBox::keyPressEvent(event);
}

} // namespace quorvane
