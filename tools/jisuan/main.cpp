#include "platform/widgets/look.h"
#include "platform/widgets/system_desktop.h"
#include "tools/jisuan/calculator_window.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"jisuan"_s);
    setDesktopHost(systemDesktop());
    style::apply(application, keptLook());
    listenForFontKeys();
    jisuan::CalculatorWindow window;
    static_cast<QWidget&>(window).show();
    return QApplication::exec();
}
