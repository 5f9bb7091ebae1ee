#include "reports/Prnt.h"

#include "platform/base/clock.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/report/page_view.h"
#include "platform/report/printers.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/look.h"
#include "platform/widgets/style.h"
#include "reports/PrntHelp.h"
#include "reports/report_rows.h"
#include "shell/session.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QStandardPaths>

#include <climits>

namespace {

constexpr QStringView settingsSection = u"Prnt";
constexpr QStringView zoomKey = u"Zoom"; ///< "width", "page" or a percentage
constexpr QStringView printerKey = u"Printer";
constexpr QStringView folderKey = u"Folder"; ///< that of the last export
constexpr int percents[] = {50, 75, 100, 125, 150, 200, 300};
constexpr QSize roomForWindow(40, 60); ///< the caller's window shows around the preview

QString percentText(int percent)
{
    return plainText(percent) + u'%';
}

} // namespace

Prnt::Prnt()
    : Form(formName(), u"打印"_s)
    , Cry(readReportRows)
{
    addCommand(u"Menu_prnt"_s, u"&P.打印"_s, [this] { Menu_prnt(); });
    addCommand(u"Menu_Rtn"_s, u"&R.返回"_s, [this] { Menu_Rtn(); });
    addCommand(u"Menu_set"_s, u"&S.打印设置"_s, [this] { Menu_set(); });
    addCommand(u"Menu_pdf"_s, u"&D.导出PDF"_s, [this] { Menu_pdf(); });
    addCommand(u"Menu_xls"_s, u"&X.导出Excel"_s, [this] { Menu_xls(); });
    View = new PageView(u"Cry"_s);
    connect(View, &PageView::changed, this, [this] { showState(); });
    keepFontKeys(this);
    buildBar();
    content()->addWidget(View, 1);
    const QStringList names = printers().names();
    L->setVisible(names.isEmpty());
    Cry.Job.printer = GetSetting(gProgramName, settingsSection.toString(), printerKey.toString());
    if (!names.contains(Cry.Job.printer))
        Cry.Job.printer = printers().standard();
    loadZoom();
    const QWidget* front = QApplication::activeWindow();
    resize(front ? (front->size() - roomForWindow).expandedTo({900, 600}) : QSize(1200, 700));
}

Prnt::~Prnt()
{
    previewClosed(this);
}

void Prnt::buildBar()
{
    const auto tool = [](const QString& name, const QString& caption, const QString& hint, std::function<void()> run) {
        auto* button = makeButton(name, caption, std::move(run), -1, ButtonLook::Compact);
        button->setToolTip(hint);
        button->setFocusPolicy(Qt::TabFocus); // a click leaves the keys with the page
        return button;
    };
    CmdFirst = tool(u"CmdFirst"_s, u"首页"_s, u"第一页 (Home)"_s, [this] { View->setPage(1); });
    CmdPrev = tool(u"CmdPrev"_s, u"上页"_s, u"上一页 (PgUp)"_s, [this] { View->setPage(View->page() - 1); });
    CmdNext = tool(u"CmdNext"_s, u"下页"_s, u"下一页 (PgDn)"_s, [this] { View->setPage(View->page() + 1); });
    CmdLast = tool(u"CmdLast"_s, u"末页"_s, u"最后一页 (End)"_s, [this] { View->setPage(View->pageCount()); });
    TxtPage = makeEdit(u"TxtPage"_s, -1, EditKind::Number);
    style::fixWidth(TxtPage, 56);
    TxtPage->setAccessibleName(u"页码"_s);
    LabPages = makeLabel(u"LabPages"_s, {});
    connect(TxtPage, &QLineEdit::returnPressed, this, [this] { runCommand([this] { goToPage(); }); });

    CmdOut = tool(u"CmdOut"_s, u"－"_s, u"缩小 (Ctrl+-)"_s, [this] { View->zoomBy(-1); });
    CmdIn = tool(u"CmdIn"_s, u"＋"_s, u"放大 (Ctrl++)"_s, [this] { View->zoomBy(1); });
    CmdWidth = tool(u"CmdWidth"_s, u"适合页宽"_s, u"页宽与窗口相同"_s, [this] { View->setFit(PageView::Fit::Width); });
    CmdPage = tool(u"CmdPage"_s, u"适合整页"_s, u"显示整页"_s, [this] { View->setFit(PageView::Fit::Page); });
    for (QPushButton* button : {CmdWidth, CmdPage})
        button->setCheckable(true);
    CmbZoom = makeCombo(u"CmbZoom"_s);
    for (const int percent : percents)
        CmbZoom->addItem(percentText(percent));
    style::fixWidth(CmbZoom, 84);
    CmbZoom->setAccessibleName(u"显示比例"_s);
    connect(CmbZoom, &QComboBox::activated, this, [this] { runCommand([this] { chooseZoom(); }); });
    connect(CmbZoom->lineEdit(), &QLineEdit::returnPressed, this, [this] { runCommand([this] { chooseZoom(); }); });

    TxtFind = makeEdit(u"TxtFind"_s);
    style::fixWidth(TxtFind, 150);
    TxtFind->setPlaceholderText(u"查找 (Ctrl+F)"_s);
    TxtFind->setAccessibleName(u"查找"_s);
    connect(TxtFind, &QLineEdit::returnPressed, this, [this] { runCommand([this] { findNext(); }); });
    CmdFindPrev = tool(u"CmdFindPrev"_s, u"上一处"_s, u"Shift+F3"_s, [this] { findPrevious(); });
    CmdFindNext = tool(u"CmdFindNext"_s, u"下一处"_s, u"F3"_s, [this] { findNext(); });
    LabFind = makeLabel(u"LabFind"_s, {});
    setLook(LabFind, LabelLook::Field);

    Cmd = makeButton(
        u"Cmd"_s, u"<- 帮 助"_s, [this] { help(); }, -1, ButtonLook::Compact);
    L = makeBadge(u"L"_s);
    setBadge(L, u"对不起，您的电脑没有安装打印机!"_s, BadgeLook::Warning);
    LabDone = makeBadge(u"LabDone"_s);
    LabDone->hide();

    const auto gap = [] {
        auto* widget = new QWidget;
        widget->setFixedWidth(style::spacing);
        return widget;
    };
    content()->addLayout(makeRow({CmdFirst,    CmdPrev,     makeLabel(u"LabPage"_s, u"第"_s),
                                  TxtPage,     LabPages,    CmdNext,
                                  CmdLast,     gap(),       CmdOut,
                                  CmbZoom,     CmdIn,       CmdWidth,
                                  CmdPage,     gap(),       TxtFind,
                                  CmdFindPrev, CmdFindNext, LabFind,
                                  nullptr,     Cmd}));
    content()->addWidget(L);
    content()->addWidget(LabDone);
}

QString Prnt::run()
{
    const BusyPointer busy;
    const QString fault = Cry.setAction(1);
    if (!fault.isEmpty())
        return fault;
    View->setReport(Cry.report());
    previewOpened(this);
    return {};
}

// Commands ------------------------------------------------------------------------------------------------------------

void Prnt::Menu_prnt()
{
    Cry.Destination = ReportControl::toPrinter;
    Cry.setAction(1); // a printer that fails is the system's to tell: the operator goes on with the caller
    Unload();
}

void Prnt::Menu_Rtn()
{
    Unload();
}

void Prnt::Menu_set()
{
    const auto job =
        printDialog({u"打印设置"_s, Cry.report()->title(), Cry.Job, View->pageCount(), Cry.report()->paperSize()});
    if (!job)
        return;
    if (job->file.isEmpty()) {
        Cry.Job.printer = job->printer;
        SaveSetting(gProgramName, settingsSection.toString(), printerKey.toString(), job->printer);
    }
    tellDone({});
    const PrintJob kept = std::exchange(Cry.Job, *job);
    Cry.Destination = ReportControl::toPrinter;
    const QString failure = Cry.setAction(1);
    Cry.Job = kept;
    if (!failure.isEmpty())
        return MsgBox(failure, u"提示"_s, BoxIcon::Exclamation);
    tellDone(job->file.isEmpty() ? u"已送往打印机“"_s + job->printer + u"”。"_s : u"已保存到："_s + job->file);
}

/// The dialogs leave nothing behind that would tell whether it came off. "" for a command that has only begun.
void Prnt::tellDone(const QString& text)
{
    setBadge(LabDone, text, BadgeLook::Good);
    LabDone->setVisible(!text.isEmpty());
}

std::optional<QString> Prnt::exportPath(const QString& title, const QString& filter, QStringView extension)
{
    const QString name = Trim(Cry.report()->title());
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString folder = GetSetting(gProgramName, settingsSection.toString(), folderKey.toString(), documents);
    return askFileToWrite(title, filter,
                          withSeparator(folder) + (name.isEmpty() ? u"报表"_s : name) + u' ' + todayText() + extension);
}

/// @param write gives why it failed, or ""
void Prnt::writeTo(const std::optional<QString>& path, const std::function<QString(const QString&)>& write)
{
    if (!path)
        return;
    tellDone({});
    QString failure;
    {
        const BusyPointer busy;
        failure = write(*path);
    }
    if (!failure.isEmpty())
        return MsgBox(failure, u"提示"_s, BoxIcon::Exclamation);
    SaveSetting(gProgramName, settingsSection.toString(), folderKey.toString(), folderOf(*path));
    tellDone(u"已保存到："_s + *path);
}

void Prnt::Menu_pdf()
{
    writeTo(exportPath(u"导出PDF"_s, u"PDF文件(*.pdf)|*.pdf"_s, u".pdf"),
            [this](const QString& path) { return Cry.report()->toPdf(path) ? QString() : notWritten(path); });
}

void Prnt::Menu_xls()
{
    writeTo(exportPath(u"导出Excel"_s, u"Excel工作簿(*.xlsx)|*.xlsx|逗号分隔的文本(*.csv)|*.csv"_s, u".xlsx"),
            [this](const QString& path) { return writeTable(path, Cry.report()->table()); });
}

void Prnt::help()
{
    PrntHelp::explain(*Cmd);
}

// Pages and zoom ------------------------------------------------------------------------------------------------------

void Prnt::showState()
{
    const int page = View->page();
    TxtPage->setText(plainText(page));
    LabPages->setText(u"/ %1 页"_s.arg(View->pageCount()));
    for (QPushButton* button : {CmdFirst, CmdPrev})
        button->setEnabled(page > 1);
    for (QPushButton* button : {CmdNext, CmdLast})
        button->setEnabled(page < View->pageCount());
    CmdWidth->setChecked(View->fit() == PageView::Fit::Width);
    CmdPage->setChecked(View->fit() == PageView::Fit::Page);
    CmbZoom->setEditText(percentText(View->percent()));
}

void Prnt::goToPage()
{
    if (const int page = int(Val(TxtPage->text())); page > 0)
        View->setPage(page);
    showState(); // what was no page number becomes the current one again
    View->setFocus();
}

void Prnt::chooseZoom()
{
    if (const double percent = Val(CmbZoom->currentText()); percent > 0)
        View->setPercent(int(std::min(percent, double(PageView::largestPercent))));
    showState();
    View->setFocus();
}

void Prnt::loadZoom()
{
    const QString zoom = GetSetting(gProgramName, settingsSection.toString(), zoomKey.toString(), u"width"_s);
    if (const int percent = int(Val(zoom)); percent > 0)
        View->setPercent(percent);
    else
        View->setFit(zoom == u"page" ? PageView::Fit::Page : PageView::Fit::Width);
}

void Prnt::unloaded()
{
    previewClosed(this);
    const PageView::Fit fit = View->fit();
    SaveSetting(gProgramName, settingsSection.toString(), zoomKey.toString(),
                fit == PageView::Fit::Width  ? u"width"_s
                : fit == PageView::Fit::Page ? u"page"_s
                                             : plainText(View->percent()));
}

// Search --------------------------------------------------------------------------------------------------------------

void Prnt::findNext()
{
    find(1);
}

void Prnt::findPrevious()
{
    find(-1);
}

/// From the last hit, or from the page in sight, round the whole report.
void Prnt::find(int step)
{
    const QString wanted = TxtFind->text();
    const Report& report = *Cry.report();
    const int pages = report.pageCount();
    if (wanted.isEmpty()) {
        LabFind->clear();
        return View->mark({});
    }
    const BusyPointer busy;
    const bool goesOn = hit_.page == View->page() && hitText_ == wanted;
    int page = View->page();
    int index = goesOn ? hit_.index + step : step > 0 ? 0 : INT_MAX;
    for (int seen = 0; seen <= pages; ++seen) {
        const auto texts = report.placedTexts(page);
        const int count = int(texts.size());
        for (index = step > 0 ? index : std::min(index, count - 1); index >= 0 && index < count; index += step) {
            if (!texts[size_t(index)].text.contains(wanted, Qt::CaseInsensitive))
                continue;
            View->setPage(page);
            View->mark(texts[size_t(index)].place);
            hit_ = {page, index};
            hitText_ = wanted;
            return LabFind->setText(u"第 %1 页"_s.arg(page));
        }
        page = (page - 1 + step + pages) % pages + 1;
        index = step > 0 ? 0 : INT_MAX;
    }
    hit_ = {};
    View->mark({});
    LabFind->setText(u"没有找到"_s);
}

// Keys ----------------------------------------------------------------------------------------------------------------

QWidget* Prnt::firstFocus()
{
    return View;
}

void Prnt::keyPressEvent(QKeyEvent* event)
{
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    switch (event->key()) {
    case Qt::Key_Escape:
        if (TxtFind->hasFocus() || TxtPage->hasFocus())
            return View->setFocus();
        runCommand([this] { Menu_Rtn(); });
        return;
    case Qt::Key_PageUp:
        return View->setPage(View->page() - 1);
    case Qt::Key_PageDown:
        return View->setPage(View->page() + 1);
    case Qt::Key_F1:
        runCommand([this] { help(); });
        return;
    case Qt::Key_F3:
        runCommand([&] { find(event->modifiers() & Qt::ShiftModifier ? -1 : 1); });
        return;
    case Qt::Key_F:
        if (!ctrl)
            break;
        TxtFind->setFocus();
        return TxtFind->selectAll();
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        if (ctrl)
            return View->zoomBy(1);
        break;
    case Qt::Key_Minus:
        if (ctrl)
            return View->zoomBy(-1);
        break;
    default:
        break;
    }
    Form::keyPressEvent(event);
}

// For those who test the preview --------------------------------------------------------------------------------------

int Prnt::pageCount() const
{
    return View->pageCount();
}

QStringList Prnt::pageTexts(int page) const
{
    return Cry.report()->pageTexts(page);
}

bool Prnt::savePdf(const QString& path) const
{
    return Cry.report()->toPdf(path);
}
