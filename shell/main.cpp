#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/form.h"
#include "platform/widgets/look.h"
#include "platform/widgets/system_desktop.h"
#include "platform/widgets/window_dialogs.h"
#include "shell/entry.h"
#include "shell/program_folder.h"
#include "shell/session.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(gProgramName);
    QApplication::setQuitOnLastWindowClosed(false); // only the exit commands end the process
    setDesktopHost(systemDesktop());
    setDialogHost(windowDialogs());
    style::apply(application, keptLook());
    listenForFontKeys();
    const ProgramFolder folder = programFolder(QApplication::applicationDirPath());
    if (!folder.trouble.isEmpty()) {
        errorBox(folder.trouble);
        return 1;
    }
    setProgramFolder(folder.path);
    QTimer::singleShot(0, &application,
                       [] { runCommand([] { runEntry(commandLineOf(QApplication::arguments().mid(1))); }); });
    return QApplication::exec();
}
