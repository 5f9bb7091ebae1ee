#include "platform/widgets/style.h"
#include "tools/jisuan/calculator_window.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"jisuan"_s);
    style::apply(application);
    jisuan::CalculatorWindow window;
    static_cast<QWidget&>(window).show();
    return QApplication::exec();
}
