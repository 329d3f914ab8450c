// The least that a program with an editor can be, up to its first painted window.
#include "firstpaint.h"

#include <QTextEdit>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    application.installEventFilter(new EndAfterFirstPaint);
    QMainWindow window;
    window.setCentralWidget(new QTextEdit);
    window.resize(820, 640);
    window.show();
    return QApplication::exec();
}
