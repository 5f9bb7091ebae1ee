#include "shell/ZbSet.h"

#include "ledger/Module1.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QDir>
#include <QFile>
#include <QMenu>

namespace {

constexpr QStringView appPathMark = u"%AppPath%";
constexpr QStringView ledgerFilter = u"恒仓宁帐本文件(*.hcn)|*.hcn|所有文件(*.*)|*.*";

QString listFile()
{
    return gAppPath + u"dbsetup.dat"_s;
}

QString ledgerFolder()
{
    QString folder = gAppPath + u"我的帐本"_s;
    QDir().mkpath(folder); // an existing or refused folder is no matter: the dialog then starts elsewhere
    return folder;
}

QString backupSettingsFile(const QString& ledgerName)
{
    return gAppPath + ledgerName + u"bak.set"_s;
}

/// Paths below the program folder are kept relative, which makes an installation movable.
QString packed(const QString& path)
{
    return path.startsWith(gAppPath) ? appPathMark + path.sliced(gAppPath.size()) : path;
}

QString unpacked(const QString& line)
{
    const bool relative = QStringView(line).first(qMin(line.size(), appPathMark.size())) == appPathMark;
    return localPath(relative ? gAppPath + line.sliced(appPathMark.size()) : line);
}

QString askLedgerName(const QString& title, const QString& preset)
{
    const QString name = CleanLedgerName(InputBox(u"请输入新建帐本的名称："_s, title, preset));
    return name.isEmpty() ? u"新建"_s + gLedgerName : name;
}

} // namespace

QString CleanLedgerName(const QString& text)
{
    QString name = Trim(text);
    name.removeIf([](QChar c) { return c.unicode() < 128 && !c.isLetterOrNumber(); });
    return name;
}

ZbSet::ZbSet()
    : Form(formName(), u"恒仓宁仓管系统标准版--帐本设置"_s)
{
    Cmb[0] = makeCombo(u"Cmb"_s, 0, false);
    Cmb[1] = makeCombo(u"Cmb"_s, 1, false);
    Label2 = makeLabel(u"Label2"_s, u"帐本文件："_s);
    Label2->setToolTip(u"双击打开帐本文件所在的文件夹"_s);
    onDoubleClick(Label2, [this] { openFolder(); });
    Chk = makeCheck(u"Chk"_s, u"下次启动系统默认使用该帐本不显示本窗口"_s);
    Cmd[0] = makeButton(
        u"Cmd"_s, u"打开帐本"_s, [this] { OpenSelected(); }, 0, ButtonLook::Primary);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"增加帐本"_s, [this] { showEditMenu(); }, 1);
    Cmd[2] = makeButton(
        u"Cmd"_s, u"删除帐本"_s, [this] { unlist(); }, 2);
    Cmd[3] = makeButton(
        u"Cmd"_s, u"退出系统"_s, [this] { leave(); }, 3);
    Cmd[0]->setDefault(true);

    auto* fields = new FieldLayout;
    fields->add(makeLabel(u"Label1"_s, u"帐本名称："_s), Cmb[0]);
    fields->add(Label2, Cmb[1]);
    fields->addUnlabelled(Chk);
    content()->addLayout(fields);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({nullptr, Cmd[0], Cmd[1], Cmd[2], Cmd[3]}));
    style::keepWidth(content()->parentWidget(), 560);

    for (int i : {0, 1})
        connect(Cmb[i], &QComboBox::currentIndexChanged, this, &ZbSet::select);
}

bool ZbSet::LoadLedgerList()
{
    Cmb[0]->clear();
    Cmb[1]->clear();
    const QStringList lines = readLines(listFile()).value_or(QStringList());
    const bool show = lines.isEmpty() || Trim(lines.first()) != u"No";
    Chk->setChecked(!show);
    for (qsizetype i = 1; i < lines.size(); i += 2) {
        Cmb[0]->addItem(lines[i]);
        if (i + 1 < lines.size())
            Cmb[1]->addItem(unpacked(lines[i + 1]));
    }
    if (Cmb[0]->count() == 0) // no list yet
        addLedger(gLedgerName, gLedgerFile);
    if (Cmb[1]->count() == 0 || lines.size() < 2) { // nothing that could be opened unseen
        select(0);
        return true;
    }
    if (!show) {
        gLedgerFile = Cmb[1]->itemText(0);
        gLedgerName = Cmb[0]->itemText(0);
    }
    select(0);
    return show;
}

void ZbSet::SaveLedgerList()
{
    const int selected = Cmb[0]->currentIndex();
    QStringList lines{Chk->isChecked() ? u"No"_s : u"Yes"_s, selectedName(), packed(selectedPath())};
    for (int i = 0; i < Cmb[0]->count(); ++i)
        if (i != selected)
            lines << Cmb[0]->itemText(i) << packed(Cmb[1]->itemText(i));
    if (!writeLines(listFile(), lines))
        MsgBox(u"无法保存帐本列表！请检查文件夹“%1”是否可以写入。"_s.arg(gAppPath), u"提示"_s, BoxIcon::Exclamation);
}

void ZbSet::setLeaveCaption(const QString& caption)
{
    Cmd[3]->setText(caption);
}

void ZbSet::OpenSelected()
{
    try {
        gDB = DBEngine::OpenDatabase(selectedPath(), ledgerConnect.toString());
    } catch (const StoreError& error) { // the form stays, so that another ledger can be chosen
        MsgBox(u"打开帐本时发现错误！系统返回如下信息：\n\n"_s + error.description() + u"\n\n请重新进行帐本设置!"_s,
               u"提示"_s, BoxIcon::Exclamation);
        return;
    }
    gLedgerFile = selectedPath();
    gLedgerName = selectedName();
    SaveLedgerList();
    closeAllowed();
}

void ZbSet::showEditMenu()
{
    QMenu menu(this);
    menu.setObjectName(u"editzb"_s);
    const auto add = [this, &menu](const QString& name, const QString& caption, void (ZbSet::*run)()) {
        QAction* action = menu.addAction(caption);
        action->setObjectName(name);
        connect(action, &QAction::triggered, this, [this, run] { runCommand([this, run] { (this->*run)(); }); });
    };
    add(u"newone"_s, u"建立新的帐本"_s, &ZbSet::newone);
    add(u"setpath"_s, u"导入已有帐本"_s, &ZbSet::setpath);
    add(u"zbrename"_s, u"当前帐本更名"_s, &ZbSet::zbrename);
    menu.exec(Cmd[1]->mapToGlobal(QPoint(0, Cmd[1]->height())));
    SaveLedgerList(); // whatever was chosen
}

void ZbSet::newone()
{
    QString offered = ledgerFolder() + localPath(u"\\新建帐本.hcn"_s);
    QString target;
    for (;;) {
        const auto chosen = saveFileDialog(u"请指定文件的存放位置及文件名"_s, ledgerFilter.toString(), offered);
        if (!chosen)
            return;
        target = localPath(*chosen);
        if (!fileExists(target))
            break;
        MsgBox(u"目标位置已存在同名文件，请更换存放位置或文件名！"_s);
        offered = target;
    }
    {
        const BusyPointer busy;
        // The source is the ledger in use: the template at first, later the books as they stand.
        DBEngine::copyDatabase(gLedgerFile, target, ledgerConnect.toString());
    }
    addLedger(askLedgerName(u"新建帐本"_s, u"新建"_s + gLedgerName), target);
}

void ZbSet::setpath()
{
    const auto chosen =
        openFileDialog(u"请选择已存在的帐本文件"_s, ledgerFilter.toString(), ledgerFolder() + localPath(u"\\*.hcn"_s));
    if (!chosen)
        return;
    const QString path = localPath(*chosen);
    try {
        DBEngine::OpenDatabase(path, ledgerConnect.toString()).Close(); // that it opens is the whole test
    } catch (const StoreError&) {                                       // told by the box
        MsgBox(u"无效的文件格式！您只能选择使用本软件建立的帐本文件或数据备份文件！"_s);
        return;
    }
    QString preset = fileNameOf(path);
    if (const qsizetype point = preset.indexOf(u'.'); point > 0)
        preset.truncate(point);
    addLedger(askLedgerName(u"导入帐本"_s, preset), path);
}

void ZbSet::zbrename()
{
    const int index = Cmb[0]->currentIndex();
    const QString before = selectedName();
    const QString name = CleanLedgerName(InputBox(u"请输入帐本的名称："_s, u"帐本更名"_s, before));
    if (name.isEmpty() || index < 0)
        return;
    Cmb[0]->setItemText(index, name);
    if (sameFile(selectedPath(), gLedgerFile)) {
        const bool shown = gDB.isOpen() || !gOperId.isEmpty();
        gLedgerName = name;
        if (shown)
            LedgerStatus();
    }
    QFile::rename(resolvedPath(backupSettingsFile(before)), backupSettingsFile(name)); // a refusal is no matter
}

void ZbSet::unlist()
{
    if (selectedPath().contains(u"vemaro.dat"_s, Qt::CaseInsensitive)) {
        MsgBox(u"您选择的是系统原始帐本，不能删除！"_s, u"提示"_s, BoxIcon::Exclamation);
        return;
    }
    if (sameFile(selectedPath(), gLedgerFile)) {
        MsgBox(u"您选择的是当前正在使用的帐本，不能删除！"_s, u"提示"_s, BoxIcon::Exclamation);
        return;
    }
    if (!askYesNo(u"此删除操作只在帐本列表中去除指定帐本，依然在硬盘上保留帐本文件。\n真的要删除["_s + selectedName() +
                  u"]吗？"_s))
        return;
    const int index = Cmb[0]->currentIndex();
    for (QComboBox* list : Cmb) {
        const QSignalBlocker quiet(list);
        list->removeItem(index);
    }
    select(0);
    SaveLedgerList();
}

void ZbSet::leave()
{
    if (Cmd[3]->text() == u"返回系统") {
        gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
        closeAllowed();
        return;
    }
    SaveLedgerList();
    closingAllowed_ = true;
    endProcess();
}

void ZbSet::openFolder()
{
    if (askYesNo(u"是否需要打开帐本文件所在的文件夹？"_s, u" 帐本文件维护"_s))
        ShellExecute(u"file://"_s + folderOf(selectedPath()));
}

QWidget* ZbSet::firstFocus()
{
    return Cmd[0];
}

void ZbSet::select(int index)
{
    for (QComboBox* list : Cmb) {
        const QSignalBlocker quiet(list);
        list->setCurrentIndex(index);
        list->setToolTip(Cmb[1]->itemText(index));
    }
}

void ZbSet::addLedger(const QString& name, const QString& path)
{
    Cmb[0]->addItem(name);
    while (Cmb[1]->count() < Cmb[0]->count() - 1) // an entry of the file that had a name only
        Cmb[1]->addItem(QString());
    Cmb[1]->addItem(path);
    select(Cmb[0]->count() - 1);
}

QString ZbSet::selectedName() const
{
    return Cmb[0]->currentText();
}

QString ZbSet::selectedPath() const
{
    return Cmb[1]->itemText(Cmb[0]->currentIndex());
}

void ZbSet::closeAllowed()
{
    closingAllowed_ = true;
    Unload();
}
