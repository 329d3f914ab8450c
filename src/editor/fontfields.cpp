#include "editor/fontfields.h"

#include "editor/fontfamilybox.h"
#include "editor/fontsizes.h"
#include "editor/texteditor.h"

#include <QFocusEvent>
#include <QFontDatabase>
#include <QLineEdit>
#include <QLocale>
#include <QRegularExpression>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double fractions = 100;
constexpr int narrowWidth = 108;
constexpr int wideWidth = 180;
constexpr int sizeWidth = 52;

QString sizeText(double size)
{
    return QLocale().toString(size, 'g', QLocale::FloatingPointShortest);
}

/// Of what people write: whatever the locale, comma and point both stand before a fraction.
std::optional<double> typedSize(QString text)
{
    text.replace(u',', u'.');
    static const QRegularExpression form(u"^\\s*(\\d+(\\.\\d*)?|\\.\\d+)\\s*(pt)?\\s*$"_s);
    const QRegularExpressionMatch match = form.match(text);
    const double size = std::round(match.captured(1).toDouble() * fractions) / fractions;
    const bool isOne = match.hasMatch() && size >= smallestFontSize && size <= largestFontSize;
    return isOne ? std::optional(size) : std::nullopt;
}

QString missingText(const QString &family)
{
    return u"The font “%1” is not installed. “%2” is shown in its place."_s.arg(
        family, QFontInfo(QFont(family)).family());
}

} // namespace

FontFields::FontFields(TextEditor &editor, QWidget *parent)
    : m_editor(editor)
{
    makeFamilies(parent);
    makeSizes(parent);
    connect(&m_editor, &QTextEdit::currentCharFormatChanged, this, &FontFields::showLater);
    connect(&m_editor, &QTextEdit::cursorPositionChanged, this, &FontFields::showLater);
    connect(&m_editor, &QTextEdit::selectionChanged, this, &FontFields::showLater);
    connect(&m_editor, &QTextEdit::textChanged, this, &FontFields::showLater);
    connect(&m_editor, &TextEditor::contentReplaced, this, &FontFields::showLater);
    show();
}

void FontFields::makeFamilies(QWidget *parent)
{
    m_family = new FontFamilyBox(parent);
    m_family->setAccessibleName(u"Font"_s);
    m_family->setAccessibleDescription(u"Font"_s); // the tool tip may say more
    m_family->lineEdit()->setAccessibleName(u"Font"_s);
    m_family->setToolTip(u"Font"_s);
    m_family->setFixedWidth(narrowWidth);
    m_family->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_family->installEventFilter(this);
    connect(m_family, &QComboBox::textActivated, this, &FontFields::applyFamily);
    connect(m_family->lineEdit(), &QLineEdit::returnPressed, this, [this] {
        const QString typed = m_family->lineEdit()->text().trimmed();
        const bool isOffered = m_family->findText(typed, Qt::MatchFixedString) >= 0;
        if (!isOffered && m_family->lineEdit()->hasFocus()) { // else it was activated already
            applyFamily(typed);
        }
    });
}

void FontFields::makeSizes(QWidget *parent)
{
    m_size = new QComboBox(parent);
    m_size->setObjectName(u"fontSize"_s);
    m_size->setAccessibleName(u"Font Size"_s);
    m_size->setToolTip(u"Font Size"_s);
    m_size->setEditable(true);
    m_size->lineEdit()->setAccessibleName(u"Font Size"_s);
    m_size->setInsertPolicy(QComboBox::NoInsert);
    m_size->setCompleter(nullptr);
    for (const int size : offeredFontSizes) {
        m_size->addItem(sizeText(size));
    }
    m_size->setMaxVisibleItems(int(offeredFontSizes.size()));
    m_size->setFixedWidth(sizeWidth);
    m_size->installEventFilter(this);
    connect(m_size, &QComboBox::activated, this,
            [this](int index) { applySize(m_size->itemText(index)); });
    connect(m_size->lineEdit(), &QLineEdit::returnPressed, this,
            [this] { applySize(m_size->currentText()); });
}

void FontFields::setEnabled(bool enabled)
{
    m_family->setEnabled(enabled);
    m_size->setEnabled(enabled);
}

void FontFields::setRoomy(bool roomy)
{
    m_family->setFixedWidth(roomy ? wideWidth : narrowWidth);
}

// What was typed and not confirmed was not meant. The field itself would take it up if it is one of
// its items.
bool FontFields::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut
        && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason) {
        show();
    }
    return QObject::eventFilter(watched, event);
}

void FontFields::applyFamily(const QString &family)
{
    if (family.isEmpty()) {
        show();
        return;
    }
    QTextCharFormat look;
    look.setFontFamilies({family});
    apply(look);
    if (!QFontDatabase::hasFamily(family)) {
        tellOfMissing(family);
    }
}

void FontFields::tellOfMissing(const QString &family)
{
    QToolTip::showText(m_family->mapToGlobal(m_family->rect().bottomLeft()), missingText(family),
                       m_family);
}

void FontFields::applySize(const QString &text)
{
    const std::optional<double> size = typedSize(text);
    if (!size) {
        show();
        m_size->lineEdit()->selectAll();
        QToolTip::showText(m_size->mapToGlobal(m_size->rect().bottomLeft()),
                           u"A font size is a number from %1 to %2."_s.arg(
                               sizeText(smallestFontSize), sizeText(largestFontSize)),
                           m_size);
        return;
    }
    QTextCharFormat look;
    look.setFontPointSize(*size);
    apply(look);
}

void FontFields::apply(const QTextCharFormat &look)
{
    const QList<QTextCharFormat> &looks = m_editor.looks();
    const bool changes = std::any_of(looks.begin(), looks.end(), [&look](QTextCharFormat merged) {
        const QTextCharFormat former = merged;
        merged.merge(look);
        return merged != former;
    });
    if (changes) { // the toolkit tells of some keys twice
        m_editor.applyCharFormat(look, u"Font"_s);
    }
    show();
    emit applied();
    m_editor.setFocus();
}

void FontFields::showLater()
{
    if (std::exchange(m_shows, true)) {
        return;
    }
    const auto now = [this] {
        m_shows = false;
        show();
    };
    QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
}

void FontFields::show()
{
    const QFont normal = m_editor.document()->defaultFont();
    const auto familyOf = [&normal](const QTextCharFormat &look) {
        return look.font().resolve(normal).family();
    };
    const auto sizeOf = [this](const QTextCharFormat &look) {
        return sizeText(fontSizeOf(look, *m_editor.document()));
    };
    const QList<QTextCharFormat> &looks = m_editor.looks();
    const auto common = [&looks](const auto &of) {
        const QString first = of(looks.first());
        const bool isCommon =
            std::all_of(looks.begin(), looks.end(),
                        [&](const QTextCharFormat &look) { return of(look) == first; });
        return isCommon ? first : QString();
    };
    showFamily(common(familyOf));
    if (const QString size = common(sizeOf); m_size->currentText() != size) {
        const QSignalBlocker quiet(m_size);
        m_size->setCurrentIndex(m_size->findText(size));
        m_size->setEditText(size);
    }
}

void FontFields::showFamily(const QString &family)
{
    if (m_shownFamily == family && m_family->lineEdit()->text() == family) {
        return;
    }
    m_shownFamily = family;
    const QSignalBlocker quiet(m_family);
    m_family->setCurrentIndex(m_family->findText(family, Qt::MatchFixedString));
    m_family->setEditText(family);
    const bool isThere = family.isEmpty() || QFontDatabase::hasFamily(family);
    m_family->setToolTip(isThere ? u"Font"_s : missingText(family));
}

} // namespace quorvane
