#include "editor/fontfamilybox.h"

#include <QAbstractItemView>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStringListModel>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int sampleWidth = 64;
constexpr int padding = 6;

/// The name, and at the end of the row a few letters of the font.
class FamilyDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const QString family = index.data().toString();
        const QList<QFontDatabase::WritingSystem> systems = QFontDatabase::writingSystems(family);
        const bool isSymbols =
            !systems.contains(QFontDatabase::Latin) || systems.contains(QFontDatabase::Symbol);
        QFont font(family);
        font.setPointSizeF(option.font.pointSizeF());
        painter->save();
        painter->setFont(font);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->setPen(
            option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        const QRect place = QStyle::alignedRect(option.direction, Qt::AlignRight | Qt::AlignVCenter,
                                                QSize(sampleWidth, option.rect.height()),
                                                option.rect.adjusted(0, 0, -padding, 0));
        painter->setClipRect(place);
        painter->drawText(place, int(Qt::AlignRight | Qt::AlignVCenter),
                          isSymbols ? u"★ ✂ ∑"_s : u"AaBbg"_s);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize hint = QStyledItemDelegate::sizeHint(option, index);
        return {hint.width() + sampleWidth + 3 * padding, hint.height() + padding};
    }
};

} // namespace

FontFamilyBox::FontFamilyBox(QWidget *parent)
    : QComboBox(parent)
    , m_families(new QStringListModel(this))
{
    setEditable(true);
    setInsertPolicy(NoInsert);
    setModel(m_families);
    setItemDelegate(new FamilyDelegate(this));
    connect(qGuiApp, &QGuiApplication::fontDatabaseChanged, this, &FontFamilyBox::list);
    list();
}

// Where several makers have a family of one name, the toolkit adds theirs.
void FontFamilyBox::list()
{
    QStringList families;
    const QStringList all = QFontDatabase::families();
    for (const QString &family : all) {
        if (!QFontDatabase::isPrivateFamily(family)) {
            families << family.section(u" ["_s, 0, 0);
        }
    }
    families.removeDuplicates();
    const QSignalBlocker quiet(this);
    const QString shown = currentText();
    m_families->setStringList(families);
    setCurrentIndex(findText(shown, Qt::MatchFixedString));
    setEditText(shown);
}

void FontFamilyBox::showPopup()
{
    view()->setMinimumWidth(view()->sizeHintForColumn(0)
                            + view()->verticalScrollBar()->sizeHint().width());
    QComboBox::showPopup();
}

} // namespace quorvane
