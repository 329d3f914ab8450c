#include "util/qvdatetagelaborated.h"

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString twoDigits(int number)
{
    return u"%1"_s.arg(number, 2, 10, QChar(u'0'));
}

} // namespace

QVDateTagElaborated::QVDateTagElaborated(Clock clock)
    : m_clock(std::move(clock))
{ }

QVariant QVDateTagElaborated::transformedValue(const QVariant &value) const
{
    if (!value.isValid()) {
        return u""_s;
    }
    // One reading for all tags: they cannot disagree when a second goes by.
    const QDateTime now = m_clock();
    const QDate date = now.date();
    const QTime time = now.time();
    QString text = value.toString();
    text.replace(u"<yy>"_s, twoDigits(date.year() % 100));
    text.replace(u"<YY>"_s, QString::number(date.year()));
    text.replace(u"<mm>"_s, twoDigits(date.month()));
    text.replace(u"<dd>"_s, twoDigits(date.day()));
    text.replace(u"<hh>"_s, twoDigits(time.hour()));
    text.replace(u"<ii>"_s, twoDigits(time.minute()));
    text.replace(u"<ss>"_s, twoDigits(time.second()));
    return text;
}

} // namespace quorvane
