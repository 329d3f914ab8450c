#include "editor/linksheet.h"

#include "editor/textlinks.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace quorvane {

LinkSheet::LinkSheet(const std::optional<QString> &text, const QString &address, bool isNew,
                     QWidget *host)
    : FormSheet(isNew ? u"Insert Link"_s : u"Edit Link"_s,
                u"A web or mail address, or file: and the path of a file. Where no kind is told, "
                "the address becomes one of https or mailto."_s,
                isNew ? u"Insert"_s : u"Change"_s, host)
    , m_address(new QLineEdit(address, this))
{
    form().setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_address->setPlaceholderText(u"https://"_s);
    addField(u"&Address:"_s, m_address);
    if (text) {
        m_text = new QLineEdit(*text, this);
        m_text->setPlaceholderText(u"The address"_s);
        addField(u"&Text:"_s, m_text);
    }
    auto *fault = new QLabel(this);
    fault->setTextFormat(Qt::PlainText);
    fault->setWordWrap(true);
    fault->setMinimumHeight(2 * fault->fontMetrics().lineSpacing()); // the sheet stays as it is
    fault->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    form().addRow(fault);
    const auto judge = [this, fault] {
        const std::optional<QString> what = faultOfAddress(m_address->text());
        fault->setText(what.value_or(QString()));
        m_address->setAccessibleDescription(fault->text());
        confirmButton().setEnabled(!what && !this->address().isEmpty());
    };
    connect(m_address, &QLineEdit::textChanged, this, judge);
    judge();
    setMinimumWidth(460);
}

std::optional<QString> LinkSheet::text() const
{
    return m_text ? std::optional(m_text->text()) : std::nullopt;
}

QString LinkSheet::address() const
{
    return completedAddress(m_address->text());
}

} // namespace quorvane
