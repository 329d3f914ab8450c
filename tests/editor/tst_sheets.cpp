#include "editor/linksheet.h"
#include "editor/paragraphsheet.h"
#include "editor/passwordsheet.h"
#include "editor/picturesizesheet.h"
#include "editor/publicnotesheet.h"
#include "editor/tablepropertiessheet.h"
#include "editor/tablesheet.h"
#include "editor/tabstopsheet.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

using MakeSheet = std::function<SheetDialog *(QWidget *host)>;
Q_DECLARE_METATYPE(MakeSheet)

namespace {

QString nameOf(QWidget *widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

/// What the keyboard reaches, row by row.
QList<QWidget *> fieldsOf(const QWidget &sheet)
{
    QList<QWidget *> fields;
    for (auto *widget : sheet.findChildren<QWidget *>()) {
        if ((widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy() && widget->isVisible()
            && widget->isEnabled() && widget->window() == &sheet) {
            fields << widget;
        }
    }
    const auto middle = [&sheet](const QWidget *field) {
        return field->mapTo(&sheet, field->rect().center());
    };
    std::sort(fields.begin(), fields.end(), [&](const QWidget *a, const QWidget *b) {
        constexpr int sameRow = 6;
        const QPoint distance = middle(a) - middle(b);
        return std::abs(distance.y()) > sameRow ? distance.y() < 0 : distance.x() < 0;
    });
    return fields;
}

} // namespace

class TestSheets : public QObject
{
    Q_OBJECT

private slots:

    void aSheetIsInOrder_data()
    {
        QTest::addColumn<MakeSheet>("make");
        const auto row = [](const char *name, MakeSheet make) {
            QTest::newRow(name) << std::move(make);
        };
        row("link", [](QWidget *host) { return new LinkSheet(u"words"_s, {}, true, host); });
        row("new table", [](QWidget *host) { return new TableSheet(host); });
        row("table", [](QWidget *host) {
            TableLook look;
            look.widths = {50, 50};
            return new TablePropertiesSheet(look, {}, {}, 0, host);
        });
        row("paragraph", [](QWidget *host) { return new ParagraphSheet({}, false, host); });
        row("tab stop", [](QWidget *host) { return new TabStopSheet({}, host); });
        row("picture", [](QWidget *host) {
            return new PictureSizeSheet(u"a.png"_s, {10, 10}, {20, 20}, host);
        });
        row("public note", [](QWidget *host) { return new PublicNoteSheet(host); });
        for (const auto kind : {PasswordSheet::Kind::Mandatory, PasswordSheet::Kind::Change}) {
            row(kind == PasswordSheet::Kind::Change ? "other password" : "password",
                [kind](QWidget *host) { return new PasswordSheet(kind, host); });
        }
    }

    void aSheetIsInOrder()
    {
        QFETCH(const MakeSheet, make);
        QWidget host;
        host.show();
        SheetDialog *sheet = make(&host);
        sheet->beginSheet({});
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        const QList<QWidget *> fields = fieldsOf(*sheet);
        fields.first()->setFocus();
        QStringList expected;
        QStringList passed;
        for (QWidget *field : fields) {
            const QString name = nameOf(field);
            QVERIFY2(!name.isEmpty() && !name.contains(u':'), field->metaObject()->className());
            expected << name;
            passed << nameOf(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(passed, expected);
        QCOMPARE(QApplication::focusWidget(), fields.first());
        for (const auto *button : sheet->findChildren<QPushButton *>()) {
            QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
        }
        QVERIFY(!sheet->findChild<QScrollArea *>()->verticalScrollBar()->isVisible());
        sheet->resize(sheet->width(), 5000);
        QVERIFY(sheet->height() <= sheet->screen()->availableGeometry().height());
        sheet->endSheet(QDialog::Rejected);
    }
};

QTEST_MAIN(TestSheets)
#include "tst_sheets.moc"
