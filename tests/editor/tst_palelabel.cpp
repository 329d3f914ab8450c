#include "editor/palelabel.h"

#include <QApplication>
#include <QTest>

#include <cmath>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

// As WCAG 2.1 counts it.
double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

double contrast(double one, double other)
{
    return (qMax(one, other) + 0.05) / (qMin(one, other) + 0.05);
}

} // namespace

class TestPaleLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itsWordsStandBackAndStayReadable_data();
    void itsWordsStandBackAndStayReadable();
};

void TestPaleLabel::itsWordsStandBackAndStayReadable_data()
{
    QTest::addColumn<QColor>("paper");
    QTest::addColumn<QColor>("ink");
    QTest::newRow("light") << QColor(0xef, 0xef, 0xef) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(0x35, 0x35, 0x35) << QColor(Qt::white);
}

void TestPaleLabel::itsWordsStandBackAndStayReadable()
{
    QFETCH(const QColor, paper);
    QFETCH(const QColor, ink);
    QWidget window;
    QPalette palette = window.palette();
    palette.setColor(QPalette::Window, paper);
    palette.setColor(QPalette::WindowText, ink);
    window.setPalette(palette);
    PaleLabel label(u"\u2588\u2588\u2588"_s, &window); // full blocks: ink without edges
    const QImage shown = window.grab().toImage();
    double strongest = 1;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            strongest =
                qMax(strongest, contrast(luminance(shown.pixelColor(x, y)), luminance(paper)));
        }
    }
    QVERIFY2(strongest >= 4.5, qPrintable(QString::number(strongest)));
    QVERIFY(strongest < 0.8 * contrast(luminance(ink), luminance(paper)));
}

QTEST_MAIN(TestPaleLabel)
#include "tst_palelabel.moc"
