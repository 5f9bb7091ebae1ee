#include "platform/base/dialogs.h"

#include "platform/base/files.h"

namespace {

std::unique_ptr<DialogHost> host;
std::function<void()> hook;

DialogHost& asking()
{
    Q_ASSERT_X(host, "dialogs", "no dialog host is set");
    beforeAsking();
    return *host;
}

} // namespace

void setDialogHost(std::unique_ptr<DialogHost> newHost)
{
    host = std::move(newHost);
}

std::function<void()> setBeforeAsking(std::function<void()> newHook)
{
    return std::exchange(hook, std::move(newHook));
}

void beforeAsking()
{
    if (hook)
        hook();
}

void MsgBox(const QString& text, const QString& title, BoxIcon icon)
{
    asking().show({text, title, icon});
}

bool askYesNo(const QString& text, const QString& title, Answer preset)
{
    return asking().show({text, title, BoxIcon::Question, BoxButtons::YesNo, BoxKind::Message, preset}) == Answer::Yes;
}

void errorBox(const QString& text)
{
    asking().show({text, u"提示"_s, BoxIcon::Exclamation, BoxButtons::Ok, BoxKind::Error});
}

QString InputBox(const QString& prompt, const QString& title, const QString& preset)
{
    return asking().input({prompt, title, preset}).value_or(QString());
}

std::optional<QString> openFileDialog(const QString& title, const QString& filter, const QString& fileName)
{
    return asking().chooseFile({FileRequest::Purpose::Open, title, filter, fileName});
}

std::optional<QString> saveFileDialog(const QString& title, const QString& filter, const QString& fileName)
{
    return asking().chooseFile({FileRequest::Purpose::Save, title, filter, fileName});
}

std::optional<QString> askFileToWrite(const QString& title, const QString& filter, const QString& fileName)
{
    auto path = saveFileDialog(title, filter, fileName);
    if (path && fileExists(*path) && !askYesNo(u"文件“%1”已经存在，要替换它吗？"_s.arg(fileNameOf(*path))))
        path.reset();
    return path;
}

QString notWritten(const QString& path)
{
    return u"文件 %1 不能写入。请检查文件夹是否存在、文件是否正被别的程序打开。"_s.arg(path);
}

std::optional<PrintJob> printDialog(const PrintRequest& request)
{
    return asking().print(request);
}

void DoEvents()
{
    asking().doEvents();
}
