#include "shell/MForm.h"

#include "admin/AboutUS.h"
#include "admin/CheckUp.h"
#include "admin/LookSet.h"
#include "admin/S1.h"
#include "admin/S2.h"
#include "admin/S3.h"
#include "admin/S302.h"
#include "admin/S303.h"
#include "admin/S32.h"
#include "admin/SysFuncSet.h"
#include "admin/auto_backup.h"
#include "admin/frmTip.h"
#include "admin/maker.h"
#include "admin/sysDBbak.h"
#include "documents/document_form.h"
#include "ledger/Module1.h"
#include "masterdata/A4.h"
#include "masterdata/FromExcel.h"
#include "masterdata/code_table_form.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/status.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/status_panels.h"
#include "platform/widgets/style.h"
#include "reports/C1.h"
#include "reports/C15.h"
#include "reports/C18.h"
#include "reports/C181.h"
#include "reports/C3.h"
#include "reports/Lst.h"
#include "shell/BGForm.h"
#include "shell/CompanySet.h"
#include "shell/FirstSteps.h"
#include "shell/Login.h"
#include "shell/ZbSet.h"
#include "shell/entry.h"
#include "shell/rights.h"
#include "shell/session.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>
#include <QTimer>

#include <optional>

namespace {

enum Panel { MakerPanel = 1, OperatorLabelPanel, OperatorPanel, LedgerPanel };

enum class ItemKind { Menu, Command, Hidden, Separator };

struct MenuRow
{
    const char* name; ///< the action's objectName
    const char* parent;
    QStringView caption;
    ItemKind kind;
    std::optional<OperatorRight> gate;
    void (*run)() = nullptr; ///< none: a menu, a separator, or a hidden item that never had a command
};

void startCalculator(bool tellWhenMissing)
{
    const QString calculator = gAppPath + u"jisuan.exe"_s;
    if (!programPath(calculator).isEmpty())
        Shell(calculator);
    else if (tellWhenMissing)
        MsgBox(u"没找到文件 jisuan.exe ！"_s);
}

template <DocumentKind kind>
void openDocument()
{
    documentForm(kind).open();
}

template <CodeTableKind kind>
void openCodeTable()
{
    codeTableForm(kind).Show();
}

template <StatisticsMode mode>
void openStatistics()
{
    Lst::theWindow(mode).Show();
}

template <class F>
void openForm()
{
    theForm<F>().Show();
}

template <class F>
void openModal()
{
    theForm<F>().ShowModal();
}

/// From the menu and from panel 3. There is nobody to set anything for before a login.
void openPersonalSettings()
{
    if (gOperId.isEmpty())
        return MsgBox(u"请先登录系统！"_s);
    (new S2(*MForm::get().background()))->ShowModal(); // the form goes by itself when it is unloaded
}

void showSessions()
{
    if (gOperId.isEmpty())
        return MsgBox(u"请先登录系统！"_s);
    MForm::get().showSessions();
}

/// For "001" only, whatever rights the others have.
template <class F>
void openForTopAdministrator()
{
    if (!isTopAdministrator())
        return MsgBox(u"对不起，此功能仅系统最高权限管理员“001”可以使用！您无此权限！"_s);
    theForm<F>().ShowModal();
}

/// The operators of the ledger may be others afterwards.
void openRestore()
{
    auto& form = theForm<S32>();
    form.ShowModal();
    if (!form.restored())
        return;
    logOut();
    theForm<Login>().ShowModal();
}

void showService(QStringView line)
{
    auto& about = theForm<AboutUS>();
    about.setService(line.toString());
    about.ShowModal();
}

constexpr std::optional<OperatorRight> anyone;
constexpr auto menu = ItemKind::Menu;
constexpr auto command = ItemKind::Command;
constexpr auto hidden = ItemKind::Hidden;
constexpr auto separator = ItemKind::Separator;

// clang-format off
const MenuRow menuRows[] = {
    {"Menu_A",        "",         u"&A.基础数据",            menu,      OperatorRight::Base},
    {"Menu_A1",       "Menu_A",   u"&1.供货单位资料",        command,   anyone, &openCodeTable<CodeTableKind::A1>},
    {"Menu_A2",       "Menu_A",   u"&2.出货单位资料",        command,   anyone, &openCodeTable<CodeTableKind::A2>},
    {"Menu_A3",       "Menu_A",   u"&3.货品类别资料",        command,   anyone, &openCodeTable<CodeTableKind::A3>},
    {"Menu_A4",       "Menu_A",   u"&4.货品编码资料",        command,   anyone, &openForm<A4>},
    {"menu_Aline",    "Menu_A",   u"",                       separator, anyone},
    {"Menu_A5",       "Menu_A",   u"&5.从Excell导入货品资料", command,  anyone, &openForm<FromExcel>},
    {"Menu_B",        "",         u"&B.入库管理",            menu,      OperatorRight::In},
    {"Menu_B1",       "Menu_B",   u"&1.货品入库单",          command,   anyone, &openDocument<DocumentKind::B1>},
    {"Menu_B2",       "Menu_B",   u"&2.入库单统计",          command,   anyone, &openStatistics<StatisticsMode::B2>},
    {"bl",            "Menu_B",   u"",                       separator, anyone},
    {"Menu_B3",       "Menu_B",   u"&3.公司退货单",          command,   anyone, &openDocument<DocumentKind::B3>},
    {"Menu_B4",       "Menu_B",   u"&4.退货单统计",          command,   anyone, &openStatistics<StatisticsMode::B4>},
    {"Menu_C",        "",         u"&C.库存管理",            menu,      OperatorRight::Stock},
    {"Menu_C1",       "Menu_C",   u"&1.仓库存货统计",        command,   anyone, +[] { C1::theWindow().Show(); }},
    {"Menu_C15",      "Menu_C",   u"&2.货品进出流水帐",      hidden,    anyone, &openForm<C15>},
    {"Menu_C18(0)",   "Menu_C",   u"&3.货品进出存报表(一)",  hidden,    anyone, &openForm<C18>},
    {"Menu_C18(1)",   "Menu_C",   u"&4.货品进出存报表(二)",  hidden,    OperatorRight::Cost, &openForm<C181>},
    {"Menu_C19",      "Menu_C",   u"&5.库存年度结转",        hidden,    anyone},
    {"cl",            "Menu_C",   u"",                       separator, anyone},
    {"Menu_C2",       "Menu_C",   u"&2.库存货品盘点",        command,   anyone, &openDocument<DocumentKind::C2>},
    {"Menu_C3",       "Menu_C",   u"&3.库存盘点统计",        command,   anyone, &openForm<C3>},
    {"Menu_D",        "",         u"&D.出库管理",            menu,      OperatorRight::Out},
    {"Menu_D1",       "Menu_D",   u"&1.货品出库单",          command,   anyone, &openDocument<DocumentKind::D1>},
    {"Menu_D2",       "Menu_D",   u"&2.出库单统计",          command,   anyone, &openStatistics<StatisticsMode::D2>},
    {"dl",            "Menu_D",   u"",                       separator, anyone},
    {"Menu_D3",       "Menu_D",   u"&3.货品退库单",          command,   anyone, &openDocument<DocumentKind::D3>},
    {"Menu_D4",       "Menu_D",   u"&4.退库单统计",          command,   anyone, &openStatistics<StatisticsMode::D4>},
    {"Menu_E",        "",         u"&E.综合报表",            menu,      OperatorRight::Cost},
    {"Menu_E1",       "Menu_E",   u"&1.货品进出流水帐",      command,   anyone, &openForm<C15>},
    {"Menu_E2",       "Menu_E",   u"&2.货品进出存数量报表",  command,   anyone, &openForm<C18>},
    {"Menu_E3",       "Menu_E",   u"&3.货品进销存综合报表",  command,   anyone, &openForm<C181>},
    {"menu_S",        "",         u"&S.系统管理",            menu,      anyone},
    {"Menu_S1",       "menu_S",   u"&1.操作员权限分配",      command,   OperatorRight::Admin, &openForm<S1>},
    {"Menu_S2",       "menu_S",   u"&2.操作员个人设置",      command,   anyone, &openPersonalSettings},
    {"Menu_S25",      "menu_S",   u"&3.系统设置",            menu,      OperatorRight::Admin},
    {"Menu_S2501",    "Menu_S25", u"系统套帐设置",           command,   anyone, +[] { MForm::get().changeLedger(); }},
    {"Menu_S2502",    "Menu_S25", u"系统功能设置",           command,   anyone, &openForTopAdministrator<SysFuncSet>},
    {"Menu_S2503",    "Menu_S25", u"公司资料设置",           command,   anyone, &openForTopAdministrator<CompanySet>},
    {"sl",            "menu_S",   u"",                       separator, anyone},
    {"Menu_S26",      "menu_S",   u"&4.数据备份与恢复",      menu,      anyone},
    {"Menu_zbbf",     "Menu_S26", u"&B.帐本备份",            command,   anyone, &openModal<sysDBbak>},
    {"Menu_zbhf",     "Menu_S26", u"&R.帐本恢复",            command,   OperatorRight::Admin, &openRestore},
    {"Menu_S3",       "menu_S",   u"&5.帐本数据清除",        menu,      OperatorRight::Admin},
    {"MS300",         "Menu_S3",  u"数据备份与恢复",         hidden,    anyone},
    {"MS302",         "Menu_S3",  u"清除指定基础数据",       command,   anyone, &openModal<S302>},
    {"MS303",         "Menu_S3",  u"清除历史单据",           command,   anyone, &openModal<S303>},
    {"MS3",           "Menu_S3",  u"帐本数据初始化",         command,   anyone, &openModal<S3>},
    {"dddds",         "menu_S",   u"",                       separator, anyone},
    {"Relogin",       "menu_S",   u"&7.更换登录用户",        command,   anyone, &openModal<Login>},
    {"Quit",          "menu_S",   u"&8.退出本系统",          command,   anyone, +[] { MForm::get().close(); }},
    {"Menu_Who",      "menu_S",   u"&9.谁在使用帐本",        command,   anyone, &showSessions},
    {"Menu_check",    "menu_S",   u"&0.帐本体检",            command,   OperatorRight::Admin, &openForm<CheckUp>},
    {"Menu_Look",     "menu_S",   u"&D.显示设置",            command,   anyone, &openModal<LookSet>},
    {"H",             "",         u"&H.使用说明",            menu,      anyone},
    {"Menu_help",     "H",        u"&1.软件使用说明书",      command,   anyone, +[] { openManual(); }},
    {"Menu_frmtip",   "H",        u"&2.[恒仓宁]知识点滴",    command,   anyone, &openModal<frmTip>},
    {"ab",            "H",        u"&3.关于本软件",          command,   anyone, &openModal<AboutUS>},
    {"Menu_200491",   "H",        u"",                       separator, anyone},
    {"Menu_H3",       "H",        u"&4.软件升级",            command,   anyone,
     +[] { showService(u"如需升级，请访问 https://www.example.com/upgrade 或发送邮件索取新版本。"); }},
    {"Menu_H4",       "H",        u"&5.技术支持",            command,   anyone,
     +[] { showService(u"如需技术支持，请访问 https://www.example.com/support 或发送邮件说明问题。"); }},
    {"Menu_H5",       "H",        u"&6.意见反馈",            command,   anyone,
     +[] { showService(u"欢迎提出意见：请访问 https://www.example.com/feedback 或发送邮件告诉我们。"); }},
    {"Menu_H6",       "H",        u"恒仓宁软件网站",         command,   anyone, +[] { ShellExecute(makerSite.toString()); }},
    {"Menu_jishuan",  "H",        u"&8.辅助工具--计算器",    command,   anyone, +[] { startCalculator(true); }},
};
// clang-format on

/// The menus of "001" and of rights are the same rows: a row is open when its own gate and all above it are.
bool gateOpen(const MenuRow& row)
{
    return !row.gate || hasRight(*row.gate);
}

QPointer<MForm> instance;

} // namespace

MForm& MForm::get()
{
    return instance ? *instance : *new MForm;
}

MForm::MForm()
{
    instance = this;
    setObjectName(u"MForm"_s);
    setWindowIcon(QApplication::windowIcon());
    area_ = new QMdiArea(this);
    area_->setViewMode(QMdiArea::TabbedView);
    area_->setDocumentMode(true);
    area_->setTabsClosable(true);
    area_->setTabsMovable(true);
    setCentralWidget(area_);
    Form::setArea(area_);

    panels_ = new StatusPanels(LedgerPanel);
    statusBar()->addWidget(panels_, 1);
    statusBar()->setSizeGripEnabled(false);
    connect(panels_, &StatusPanels::clicked, this, [this](int panel) { runCommand([&] { panelClicked(panel); }); });
    setStatusHost(panels_->host());

    buildMenu();
    background_ = new BGForm(area_->viewport());
    background_->lower();
    firstSteps_ = new FirstSteps(area_->viewport());
    connect(area_, &QMdiArea::subWindowActivated, this, [this] { refreshFirstSteps(); });
    area_->viewport()->installEventFilter(this);
    background_->loadPicture(gAppPath + u"syspic.dat"_s);
    background_->show();

    setCaption(mainCaption());
    panels_->setText(MakerPanel, makerName.toString());
    panels_->setToolTip(MakerPanel, u"关于本软件"_s);
    panels_->setText(OperatorLabelPanel, u"操作员："_s);
    panels_->setToolTip(OperatorLabelPanel, u"更换登录用户"_s);
    panels_->setToolTip(OperatorPanel, u"操作员个人设置"_s);
    LedgerStatus();
    setBeforeEnd([this] { presence_.remove(); });
    auto* touch = new QTimer(this);
    connect(touch, &QTimer::timeout, this, [this] { presence_.touch(); });
    touch->start(std::chrono::seconds(PresenceMark::secondsBetweenTouches));
    Form::shareLetters(menuBar());
    applyGates();
    resize(1366, 768);
}

MForm::~MForm()
{
    setBeforeEnd({});
    setStatusHost({});
    Form::setArea(nullptr);
    disconnect(area_, nullptr, this, nullptr); // it still tells of activations while its children go
}

void MForm::buildMenu()
{
    QHash<QString, QMenu*> menus;
    for (const MenuRow& row : menuRows) {
        const QString name = QString::fromLatin1(row.name);
        const QString caption = row.caption.toString();
        QMenu* parent = menus.value(QString::fromLatin1(row.parent));
        QAction* action = nullptr;
        if (row.kind == ItemKind::Menu) {
            auto* submenu = parent ? parent->addMenu(caption) : menuBar()->addMenu(caption);
            submenu->setToolTipsVisible(true);
            menus.insert(name, submenu);
            action = submenu->menuAction();
        } else if (row.kind == ItemKind::Separator) {
            action = parent->addSeparator();
        } else {
            action = parent->addAction(caption);
            action->setVisible(row.kind != ItemKind::Hidden);
            if (row.run) {
                connect(action, &QAction::triggered, this, [this, &row] {
                    // The menu may have been drawn for an operator who has left since.
                    if (const QString parentName = QString::fromLatin1(row.parent);
                        gateOpen(row) && items_.value(parentName)->isEnabled())
                        runCommand(row.run);
                });
            }
        }
        action->setObjectName(name);
        setCommandCaption(action, caption);
        items_.insert(name, action);
    }
}

void MForm::applyGates()
{
    for (const MenuRow& row : menuRows)
        if (row.gate && (row.run || row.kind == ItemKind::Menu))
            items_.value(QString::fromLatin1(row.name))->setEnabled(gateOpen(row));
    refreshFirstSteps();
}

/// Queued: a form that goes is still the active one while it is told of.
void MForm::refreshFirstSteps()
{
    QMetaObject::invokeMethod(firstSteps_, &FirstSteps::refresh, Qt::QueuedConnection);
}

void MForm::setCaption(const QString& caption)
{
    caption_ = caption;
    setProperty("caption", caption);
    setWindowTitle(caption);
}

void MForm::setOperator(const QString& name)
{
    panels_->setText(OperatorPanel, name);
    Grid::setOperator(gOperId);
    if (name.isEmpty())
        presence_.remove();
    else
        presence_.place(gLedgerFile, name);
}

void MForm::showSessions() const
{
    const QList<PresentSession> sessions = presence_.sessions();
    if (sessions.isEmpty()) // not even our own mark
        return MsgBox(u"现在读不到帐本所在的文件夹，不知道谁在使用帐本。请检查网络连接后再试。"_s);
    QString text = u"正在使用帐本“"_s + gLedgerName + u"”的操作员：\n"_s;
    for (const PresentSession& session : sessions)
        text += u"\n"_s + session.operatorName + u"，电脑 "_s + session.host + u"，"_s + session.since + u" 登录"_s +
                (session.ours ? u"（本窗口）"_s : QString());
    MsgBox(text + u"\n\n电脑断电或死机的操作员，几分钟后不再列出。"_s);
}

void MForm::setLedgerTip(const QString& tip)
{
    panels_->setToolTip(LedgerPanel, tip);
}

void MForm::panelClicked(int panel)
{
    const bool idle = panels_->text(LedgerPanel) == gLedgerName; // any other text there means a form is at work
    switch (panel) {
    case MakerPanel:
        theForm<AboutUS>().ShowModal();
        break;
    case OperatorLabelPanel:
        if (idle)
            theForm<Login>().ShowModal();
        break;
    case OperatorPanel:
        openPersonalSettings();
        break;
    case LedgerPanel:
        // Everybody else, and "001" while something runs, gets the calculator here.
        if (isTopAdministrator() && idle)
            changeLedger();
        else
            startCalculator(false);
        break;
    default:
        break;
    }
}

void MForm::changeLedger()
{
    const QString fileBefore = gLedgerFile;
    const QString nameBefore = gLedgerName;
    auto& directory = theForm<ZbSet>();
    directory.LoadLedgerList();
    gLedgerFile = fileBefore; // the list's first entry is for starts; who chooses nothing keeps the ledger in use
    gLedgerName = nameBefore;
    gDB.Close();
    directory.setLeaveCaption(u"返回系统"_s);
    directory.ShowModal();
    LedgerStatus(); // the same file may have been opened under another name
    if (gLedgerFile == fileBefore)
        return;
    logOut();
    theForm<Login>().ShowModal();
}

bool MForm::mayEnd()
{
    // Only the form in front is asked, and one that edits nothing has no such member.
    const Form* child = Form::activeChild();
    if (child && child->property("Edstu").toInt() != 0) {
        EditingNotice();
        return false;
    }
    return askYesNo(u"真的要退出系统吗？"_s);
}

void MForm::endOrderly()
{
    setEnabled(false); // what was clicked meanwhile would find no ledger
    AutoBackup();
    setEnabled(true);
    const QString application = u"Vemaroware"_s;
    const QString section = u"CangKu"_s;
    const QString program = gAppPath + programFileName();
    if (GetSetting(application, section, u"MainFile"_s) != program)
        SaveSetting(application, section, u"MainFiLe"_s, program); // the store doesn't heed case
    if (GetSetting(application, section, u"Ver"_s) != gVersion)
        SaveSetting(application, section, u"Ver"_s, gVersion);
    RegisterFileType();
    endProcess();
}

void MForm::closeEvent(QCloseEvent* event)
{
    event->ignore(); // the process ends here or goes on; the window never closes by itself
    runCommand([this] {
        if (mayEnd())
            endOrderly();
    });
}

/// A form in front takes F1 itself; here is who has none.
void MForm::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier)
        runCommand([] { openManual(); });
    else
        QMainWindow::keyPressEvent(event);
}

void MForm::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fitBackground();
}

void MForm::fitBackground()
{
    background_->fitTo(area_->viewport()->size());
    firstSteps_->place();
}

void MForm::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refreshFirstSteps(); // a modal form may have done one of them
}

bool MForm::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == area_->viewport() && event->type() == QEvent::Resize)
        fitBackground();
    return QMainWindow::eventFilter(watched, event);
}
