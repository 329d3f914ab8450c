#include "shell/preferencespanels.h"

#include "product/settings.h"
#include "shell/defaultsbinding.h"
#include "shell/qvappdelegatebase.h"
#include "shell/startupdocumentrow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QStyleOptionComboBox>
#include <QStylePainter>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double smallestFont = 4; // points
constexpr double largestFont = 288;
constexpr int shortestLockDelay = 30; // seconds; none is shorter, whatever is stored
constexpr int longestLockDelay = 24 * 60 * 60;

/// A family that is not listed is in force all the same, and is shown as plainly as the others; a
/// dark palette leaves usual placeholders black.
class FontPopup final : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QStylePainter painter(this);
        QStyleOptionComboBox option;
        initStyleOption(&option);
        if (currentIndex() < 0) {
            option.currentText = placeholderText();
        }
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    }
};

QCheckBox *newCheckBox(const QString &title, NSUserDefaults &defaults, const Key<bool> &key)
{
    auto *box = new QCheckBox(title);
    defaultsbinding::bindValue(defaults, key, *box);
    return box;
}

QDoubleSpinBox *newSizeBox(const QString &name, NSUserDefaults &defaults, const Key<double> &key)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(smallestFont, largestFont);
    box->setDecimals(1);
    box->setSuffix(u" pt"_s);
    box->setAccessibleName(name);
    defaultsbinding::bindValue(defaults, key, *box);
    return box;
}

QHBoxLayout *newRow(std::initializer_list<QWidget *> widgets)
{
    auto *row = new QHBoxLayout;
    for (QWidget *widget : widgets) {
        row->addWidget(widget);
    }
    return row;
}

void addFontRow(QFormLayout &form, const QString &title, QComboBox &popup, QWidget &size)
{
    popup.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QHBoxLayout *row = newRow({&popup, &size});
    row->setStretch(0, 1);
    auto *label = new QLabel(title);
    label->setBuddy(&popup);
    form.addRow(label, row);
}

} // namespace

QWidget *newGeneralPanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults)
{
    auto *panel = new QWidget;
    auto *form = new QFormLayout(panel);
    form->setContentsMargins(24, 20, 24, 16);
    form->setVerticalSpacing(14);
    auto *action = new QComboBox(panel);
    const QString titles[] = {u"New Document"_s, u"Open Panel, if Nothing Is Open"_s,
                              u"Open Panel"_s, u"Open Selected Document"_s};
    for (const QString &title : titles) {
        action->addItem(title, qint64(action->count()));
    }
    defaultsbinding::bindSelectedTag(defaults, settings::startupActionTag, *action);
    action->setAccessibleDescription(u"What a start shows"_s); // its name is its value here
    form->addRow(u"At &startup:"_s, action);
    form->addRow(u"Document:"_s, new StartupDocumentRow(delegate, defaults, *action));
    return panel;
}

QWidget *newEditPanel(NSUserDefaults &defaults, FontPopups &popups)
{
    auto *panel = new QWidget;
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(24, 16, 24, 16);
    popups = {new FontPopup(panel), new FontPopup(panel)};
    defaultsbinding::bindSelectedTitle(defaults, settings::startupFontFamily, *popups.ofDocuments);
    defaultsbinding::bindSelectedTitle(defaults, settings::publicNoteFontFamily,
                                       *popups.ofPublicNote);
    auto *documents = new QGroupBox(u"New Documents"_s, panel);
    auto *ofDocuments = new QFormLayout(documents);
    addFontRow(*ofDocuments, u"&Font:"_s, *popups.ofDocuments,
               *newSizeBox(u"Font size of new documents"_s, defaults, settings::startupFontSize));
    ofDocuments->addRow(newCheckBox(u"Show the &ruler"_s, defaults, settings::startWithRuler));
    ofDocuments->addRow(
        newCheckBox(u"Check &spelling while typing"_s, defaults, settings::startWithSpelling));
    auto *note = new QGroupBox(u"Public Note"_s, panel);
    auto *ofNote = new QFormLayout(note);
    addFontRow(
        *ofNote, u"F&ont:"_s, *popups.ofPublicNote,
        *newSizeBox(u"Font size of the public note"_s, defaults, settings::publicNoteFontSize));
    QHBoxLayout *traits =
        newRow({newCheckBox(u"&Bold"_s, defaults, settings::publicNoteFontBold),
                newCheckBox(u"&Italic"_s, defaults, settings::publicNoteFontItalic)});
    traits->setSpacing(24);
    traits->addStretch();
    ofNote->addRow(traits);
    column->addWidget(documents);
    column->addWidget(note);
    column->addStretch();
    const std::pair<QComboBox *, QString> names[] = {
        {popups.ofDocuments, u"Font of new documents"_s},
        {popups.ofPublicNote, u"Font of the public note"_s}};
    for (const auto &[popup, name] : names) {
        popup->setAccessibleName(name);
        popup->setAccessibleDescription(name); // where its value is told for its name
    }
    return panel;
}

QWidget *newAdvancedPanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults)
{
    auto *panel = new QWidget;
    auto *form = new QFormLayout(panel);
    form->setContentsMargins(24, 20, 24, 16);
    auto *enabled = newCheckBox(u"&Lock open documents when Quorvane is in the background"_s,
                                defaults, settings::autolocBackgroundEnabled);
    auto *interval = new QSpinBox(panel);
    interval->setRange(shortestLockDelay, longestLockDelay);
    interval->setSuffix(u" seconds"_s);
    interval->setAccessibleName(u"Delay of the automatic lock"_s);
    defaultsbinding::bindValue(defaults, settings::autolocBackgroundInterval, *interval);
    interval->setEnabled(enabled->isChecked());
    QObject::connect(enabled, &QCheckBox::toggled, interval, &QWidget::setEnabled);
    form->addRow(enabled);
    QHBoxLayout *delay = newRow({interval});
    delay->addStretch();
    auto *after = new QLabel(u"Lock &after:"_s, panel);
    after->setBuddy(interval);
    form->addRow(after, delay);
    auto *hint = new QLabel(
        u"They are locked at once, too, when the screen locks or the machine goes to sleep."_s,
        panel);
    form->addRow(hint);
    auto *restore = new QPushButton(u"&Restore Defaults…"_s, panel);
    restore->setAutoDefault(true); // Enter presses it, too
    QObject::connect(restore, &QPushButton::clicked, &delegate,
                     &QVAppDelegateBase::restoreDefaults);
    auto *last = newRow({restore});
    last->setContentsMargins(0, 6, 0, 0);
    last->addStretch();
    form->addRow(last);
    return panel;
}

QWidget *newUpdatePanel(QVAppDelegateBase &delegate, NSUserDefaults &defaults)
{
    auto *panel = new QWidget;
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(24, 20, 24, 16);
    column->addWidget(newCheckBox(u"&Tell me when a newer release is available"_s, defaults,
                                  settings::notifyUpdate));
    auto *last = new QLabel(panel);
    const auto showLast = [last, &defaults] {
        const QDateTime date =
            defaults.objectForKey(settings::lastCheckDateForUpdate).toDateTime().toLocalTime();
        last->setText(u"Last checked: %1"_s.arg(
            date.isValid() ? QLocale().toString(date, QLocale::ShortFormat) : u"never"_s));
    };
    QObject::connect(&defaults, &NSUserDefaults::changed, last, showLast);
    showLast();
    column->addWidget(last);
    auto *check = new QPushButton(u"&Check Now"_s, panel);
    check->setAutoDefault(true); // Enter presses it, too
    QObject::connect(check, &QPushButton::clicked, &delegate,
                     &QVAppDelegateBase::checkForLastReleaseAvailable);
    QObject::connect(&delegate, &QVAppDelegateBase::asksForUpdates, last,
                     [last, showLast](bool asks) {
                         if (asks) {
                             last->setText(u"Checking…"_s);
                         } else {
                             showLast();
                         }
                     });
    column->addSpacing(6);
    column->addWidget(check, 0, Qt::AlignLeft);
    column->addStretch();
    return panel;
}

} // namespace quorvane
