#include "richtext/rtfhyperlink.h"

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

/// Takes the next word off the front: what stands in quotation marks is one.
QString takeWord(QStringView &text)
{
    text = text.trimmed();
    if (text.startsWith(u'"')) {
        const qsizetype end = text.indexOf(u'"', 1);
        const QStringView word = end < 0 ? text.sliced(1) : text.sliced(1, end - 1);
        text = end < 0 ? QStringView() : text.sliced(end + 1);
        return word.toString();
    }
    qsizetype end = 0;
    while (end < text.size() && !text[end].isSpace()) {
        ++end;
    }
    const QStringView word = text.first(end);
    text = text.sliced(end);
    return word.toString();
}

} // namespace

QString addressOfHyperlink(const QString &instruction)
{
    QStringView rest(instruction);
    if (takeWord(rest).compare("HYPERLINK"_L1, Qt::CaseInsensitive) != 0) {
        return {};
    }
    QString address;
    QString place;
    while (!(rest = rest.trimmed()).isEmpty()) {
        const bool isSwitch = rest.startsWith(u'\\');
        const QString word = takeWord(rest);
        if (!isSwitch) {
            address = address.isEmpty() ? word : address;
        } else if (word == "\\l"_L1) {
            place = takeWord(rest);
        } else if (word == "\\o"_L1 || word == "\\t"_L1) {
            takeWord(rest); // What it says when it is pointed at, and the window that it opens in.
        }
    }
    return place.isEmpty() ? address : address + u'#' + place;
}

} // namespace quorvane
