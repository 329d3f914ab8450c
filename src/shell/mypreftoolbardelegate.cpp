#include "shell/mypreftoolbardelegate.h"

#include "shell/prefimage.h"

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

struct PanelRow
{
    QString identifier;
    QString label;
    QString imageName;
    int contentHeight;
};

const PanelRow panels[] = {
    {u"0"_s, u"General"_s, u"generalPref"_s, 230},
    {u"1"_s, u"Edit"_s, u"textEditing"_s, 315},
    {u"2"_s, u"Advanced"_s, u"advanced"_s, 160},
    {u"3"_s, u"Update"_s, u"softwareUpdate"_s, 150},
};

} // namespace

QList<int> MyPrefToolbarDelegate::heightArray() const
{
    QList<int> heights;
    for (const PanelRow &panel : panels) {
        heights << panel.contentHeight;
    }
    return heights;
}

QStringList MyPrefToolbarDelegate::returnAllkeys() const
{
    QStringList keys;
    for (const PanelRow &panel : panels) {
        keys << panel.identifier;
    }
    return keys;
}

QAction *MyPrefToolbarDelegate::toolbarItemForItemIdentifier(const QString &identifier)
{
    const auto *row = std::find_if(std::begin(panels), std::end(panels), [&](const PanelRow &each) {
        return each.identifier == identifier;
    });
    if (row == std::end(panels)) {
        return nullptr;
    }
    auto *item = new QAction(prefImageNamed(row->imageName), row->label, this);
    item->setToolTip(row->label);
    item->setData(static_cast<int>(row - std::begin(panels)));
    return item;
}

} // namespace quorvane
