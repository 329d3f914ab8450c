#include "platform_qt/alertdialog.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTextBoundaryFinder>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int narrowestText = 280;
constexpr int widestText = 440;
constexpr int narrowestButton = 84;
constexpr int spacing = 12;

QStyle::StandardPixmap iconOf(NSAlertStyle style)
{
    switch (style) {
    case NSAlertStyle::Warning:
        return QStyle::SP_MessageBoxWarning;
    case NSAlertStyle::Informational:
        return QStyle::SP_MessageBoxInformation;
    case NSAlertStyle::Critical:
        return QStyle::SP_MessageBoxCritical;
    }
    return QStyle::SP_MessageBoxWarning;
}

// Lets a long word, such as a file name, break where it would leave the dialog. What can break by
// itself, such as a path at its slashes, stays: this is no part of a text that is copied.
QString breakable(const QString &text)
{
    constexpr int longestRun = 40;
    constexpr QChar zeroWidthSpace(0x200B);
    QTextBoundaryFinder lines(QTextBoundaryFinder::Line, text);
    QString result;
    int run = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        lines.setPosition(i);
        run = lines.isAtBoundary() ? 1 : run + 1;
        if (run > longestRun && !text[i].isLowSurrogate()) {
            result += zeroWidthSpace;
            run = 1;
        }
        result += text[i];
    }
    return result;
}

QLabel *makeLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(breakable(text), parent);
    label->setAccessibleName(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setFocusPolicy(Qt::NoFocus);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

int widthOf(const QLabel &label)
{
    return QFontMetrics(label.font()).size(0, label.text()).width();
}

void setTextWidth(QLabel &label, int width)
{
    label.setFixedWidth(width);
    label.setMinimumHeight(label.heightForWidth(width));
}

} // namespace

AlertDialog::AlertDialog(const NSAlert &alert, QWidget *parent)
    : QDialog(parent)
{
    // Neither minimised nor maximised: its window could not be reached meanwhile.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                   | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setObjectName(u"alert"_s);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setAccessibleName(alert.messageText);
    setAccessibleDescription(alert.informativeText);

    auto *layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(spacing + spacing / 2);
    auto *row = new QHBoxLayout;
    row->setSpacing(spacing + spacing / 2);
    layout->addLayout(row);

    auto *icon = new QLabel(this);
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()
                        ->standardIcon(iconOf(alert.alertStyle), nullptr, this)
                        .pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    row->addWidget(icon, 0, Qt::AlignTop);
    addTexts(alert, *row);
    layout->addLayout(makeButtons(alert.buttons));
}

void AlertDialog::addTexts(const NSAlert &alert, QHBoxLayout &row)
{
    auto *texts = new QVBoxLayout;
    texts->setSpacing(spacing - spacing / 4);
    row.addLayout(texts, 1);

    QLabel *message = makeLabel(alert.messageText, this);
    message->setObjectName(u"messageText"_s);
    QFont bold = message->font();
    bold.setBold(true);
    message->setFont(bold);
    texts->addWidget(message);
    if (alert.informativeText.isEmpty()) {
        setTextWidth(*message, std::clamp(widthOf(*message), narrowestText, widestText));
    } else {
        QLabel *informative = makeLabel(alert.informativeText, this);
        informative->setObjectName(u"informativeText"_s);
        texts->addWidget(informative);
        const int wanted = std::max(widthOf(*message), widthOf(*informative));
        const int width = std::clamp(wanted, narrowestText, widestText);
        setTextWidth(*message, width);
        setTextWidth(*informative, width);
    }
    texts->addStretch();
}

QHBoxLayout *AlertDialog::makeButtons(const QStringList &titles)
{
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(spacing - spacing / 4);
    buttons->addStretch();
    int code = static_cast<int>(AlertAnswer::First);
    for (const QString &title : titles) {
        // An ampersand in a title is one, not a mnemonic.
        auto *button = new QPushButton(QString(title).replace(u'&', u"&&"_s), this);
        connect(button, &QPushButton::clicked, this, [this, code] { done(code); });
        const int textWidth = button->fontMetrics().horizontalAdvance(title);
        button->setMinimumWidth(std::max(narrowestButton, textWidth + 3 * spacing));
        buttons->addWidget(button);
        if (code == static_cast<int>(AlertAnswer::First)) {
            button->setDefault(true);
            button->setFocus();
        }
        if (titles.size() == 1 || title == "Cancel"_L1) {
            m_escapeCode = code;
        }
        ++code;
    }
    return buttons;
}

void AlertDialog::reject()
{
    if (m_escapeCode) {
        done(*m_escapeCode);
    }
}

} // namespace quorvane
