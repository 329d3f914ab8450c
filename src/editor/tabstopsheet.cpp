#include "editor/tabstopsheet.h"

#include "editor/lengthfield.h"
#include "editor/rulermark.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
constexpr double farthest = 96 * 20;
constexpr int smallestWidth = 340;
} // namespace

TabStopSheet::TabStopSheet(const TabStop &stop, QWidget *host)
    : SheetDialog(u"Tab Stop"_s, u"The position is counted from the margin."_s, host)
    , m_initial(stop)
    , m_position(new LengthField(LengthField::Unit::Local, this))
    , m_type(new QComboBox(this))
    , m_leader(new QComboBox(this))
{
    m_position->setLengthRange(0, farthest);
    m_position->setLength(stop.position);
    for (const auto type : {QTextOption::LeftTab, QTextOption::CenterTab, QTextOption::RightTab,
                            QTextOption::DelimiterTab}) {
        m_type->addItem(tabTypeName(type), int(type));
    }
    m_type->setCurrentIndex(m_type->findData(int(stop.type)));
    const QString leaders[] = {
        u"None"_s,        u"Dots  ....."_s, u"Raised dots  ·····"_s, u"Dashes  -----"_s,
        u"Line  _____"_s, u"Thick line"_s,  u"Double line  ====="_s};
    for (const QString &leader : leaders) {
        m_leader->addItem(leader);
    }
    m_leader->setCurrentIndex(stop.leader - '0');
    auto *form = new QFormLayout;
    form->setHorizontalSpacing(16);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->addRow(u"&Position:"_s, m_position);
    form->addRow(u"&Alignment:"_s, m_type);
    form->addRow(u"&Leader:"_s, m_leader);
    column().addLayout(form);
    column().addStretch(1);
    addButtons(u"OK"_s, u"Cancel"_s);
    setMinimumWidth(smallestWidth);
}

TabStop TabStopSheet::stop() const
{
    TabStop stop = m_initial;
    if (std::abs(m_position->length() - m_initial.position) > 0.3) { // the field rounds
        stop.position = m_position->length();
    }
    stop.type = QTextOption::TabType(m_type->currentData().toInt());
    stop.leader = char('0' + m_leader->currentIndex());
    return stop;
}

void TabStopSheet::focusFirst()
{
    m_position->setFocus();
    m_position->selectAll();
}

} // namespace quorvane
