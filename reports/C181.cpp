#include "reports/C181.h"

#include "admin/YearEnd.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "reports/Query.h"
#include "reports/printing.h"
#include "shell/session.h"

#include <QActionGroup>
#include <QShortcut>

#include <optional>

namespace {

constexpr QStringView generateWord = u"生成报表";
constexpr QStringView openWord = u"打开报表";
constexpr QStringView saveWord = u"保存报表";
constexpr QStringView deleteWord = u"删除报表";
constexpr QStringView historyWord = u"历史报表";
constexpr QStringView overtakenText = u"网络内其它操作员已经生成了本月报表！请重新打开本窗口再查看！";
constexpr int firstGoodsRow = 2; ///< below the two header rows

const QList<QueryField> reportFields = {
    {u"货品编码"_s, u"jxc.hpbm"_s},
    {u"货品名称"_s, u"TA4.F2"_s},
    {u"货品规格"_s, u"TA4.F5"_s},
    {u"计量单位"_s, u"TA4.F4"_s},
    {u"货品类别编码"_s, u"TA4.F3"_s},
    {u"成本均价"_s, u"jxc.Gprice"_s, QueryType::Number},
    {u"年初数"_s, u"[jxc.As]"_s, QueryType::Number},
    {u"上期结存数"_s, u"jxc.Bs"_s, QueryType::Number},
    {u"本期入库数"_s, u"jxc.Cs"_s, QueryType::Number},
    {u"累计入库数"_s, u"jxc.Ds"_s, QueryType::Number},
    {u"本期出库数"_s, u"jxc.Es"_s, QueryType::Number},
    {u"累计出库数"_s, u"jxc.Fs"_s, QueryType::Number},
    {u"本期结存数"_s, u"jxc.Gs"_s, QueryType::Number},
};

/// What the two prints differ in: the eight columns that are staged, and the words over them.
struct ReportPrint
{
    QStringView title;
    QStringView label;
    QStringView blocks[4];
    int columns[8];
};

constexpr ReportPrint reportPrints[] = {
    {u"货品进出月报表",
     u"本期统计：",
     {u"上期结存", u"本期入库", u"本期出库", u"本期结存"},
     {PeriodColumn::BroughtQuantity, PeriodColumn::BroughtAmount, PeriodColumn::InQuantity, PeriodColumn::InAmount,
      PeriodColumn::OutQuantity, PeriodColumn::OutAmount, PeriodColumn::ClosingQuantity, PeriodColumn::ClosingAmount}},
    {u"货品进出年报表",
     u"累计统计：",
     {u"年初余额", u"入库累计", u"出库累计", u"本期结存"},
     {PeriodColumn::OpeningQuantity, PeriodColumn::OpeningAmount, PeriodColumn::AllInQuantity,
      PeriodColumn::AllInAmount, PeriodColumn::AllOutQuantity, PeriodColumn::AllOutAmount,
      PeriodColumn::ClosingQuantity, PeriodColumn::ClosingAmount}},
};

QString betweenDays(const QString& from, const QString& to)
{
    return u"："_s + from + u" 至 " + to;
}

QString reportedCategory(const QString& column, const QString& code)
{
    return LookupValue(gDB, u"select "_s + column + u" AS LB from TA3 left join TA4 on TA3.F1=TA4.F3 where TA4.F1="_s +
                                sqlText(code));
}

} // namespace

C181::C181()
    : Form(formName(), u"货品进出存综合统计报表"_s)
{
    buildCommands();
    buildContent();
    const QString first = LookupValue(gDB, u"select F7 from reginfo"_s);
    showYear(IsDate(first) ? first : u"2004-1-1"_s);
    clearReport();
    listReports();
    if (Comb->count() == 0)
        MsgBox(u"今天是会计年度的第一天，不能统计报表！"_s);
    showState();
    auto* key = new QShortcut(QKeySequence(Qt::Key_F5), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(key, &QShortcut::activated, this, [this] { runCommand([this] { refresh(); }); });
}

void C181::buildCommands()
{
    addReportCommand(nullptr, u"Menu_Year"_s, u"&Y.年度结转"_s, [this] { Menu_Year(); });
    // Neither sorts nor prices are in use here; the report is in the order of codes and shows the cost.
    QMenu* sorts = addCommandMenu(u"Menu_Sort"_s, u"&S.排序"_s);
    int index = 0;
    for (const QStringView caption :
         {u"&1.按货品编码", u"&2.按货品名称", u"&3.按本期入库", u"&4.按本期出库", u"&5.按本期结存"})
        addReportCommand(sorts, controlName(u"menu_S"_s, index++), caption.toString(), [] {});
    setCommandVisible(sorts->menuAction(), false);
    QMenu* methods = addCommandMenu(u"Menu_F"_s, u"&F.统计方法"_s);
    auto* group = new QActionGroup(this);
    for (const QStringView caption :
         {u"&1.按成本价格统计结存金额", u"&2.按本期出入统计结存金额", u"&3.按累计出入统计结存金额"}) {
        const int method = int(group->actions().size());
        QAction* item = addReportCommand(methods, controlName(u"Menu_FangFa"_s, method), caption.toString(),
                                         [this, method] { Menu_FangFa(ClosingMethod(method)); });
        item->setCheckable(true);
        group->addAction(item);
        methods_[method] = item;
    }
    addReportCommand(nullptr, u"Menu_updTA4F7"_s, u"&U.更新库存均价"_s, [this] { Menu_updTA4F7(); });
    QMenu* prices = addCommandMenu(u"menu_M"_s, u"&M.价格显示"_s);
    addReportCommand(prices, u"Menu_price"_s, u"&1.成本价格"_s, [] {});
    setCommandVisible(prices->menuAction(), false);
    addReportCommand(nullptr, u"Menu_Query"_s, u"&Q.查找"_s, [this] { Menu_Query(); });
    QMenu* prints = addCommandMenu(u"Menu_Print"_s, u"&P.打印"_s);
    addReportCommand(prints, controlName(u"Menu_P"_s, 0), u"&1.打印本期进出存报表"_s,
                     [this] { Menu_P(Print::Period); });
    addReportCommand(prints, controlName(u"Menu_P"_s, 1), u"&1.打印累计进出存报表"_s,
                     [this] { Menu_P(Print::Cumulative); });
    addCommand(u"Menu_Rtn"_s, u"&R.返回"_s, [this] { Menu_Rtn(); });
}

void C181::buildContent()
{
    Labyear = makeLabel(u"Labyear"_s, QString());
    Labyear->setCursor(Qt::PointingHandCursor);
    onClick(Labyear, [] {
        MsgBox(u"如果需要改变会计年度设置，有两种方法供选择：\n   1.使用本模块菜单中[年度结转]功能；\n"
               u"   2.使用[系统管理]-->[帐本数据清除]-->[帐本数据初始化]功能。"_s);
    });
    Comb = makeCombo(u"Comb"_s, -1, false);
    style::keepWidth(Comb, 300);
    Comb->setAccessibleName(u"报表"_s);
    connect(Comb, &QComboBox::currentIndexChanged, this, [this] { runCommand([this] { chooseReport(); }); });
    Cmd = makeButton(
        u"Cmd"_s, generateWord.toString(), [this] { generateOrOpen(); }, -1, ButtonLook::Primary);
    CmdDel = makeButton(u"CmdDel"_s, saveWord.toString(), [this] { saveOrDelete(); });

    GD = new Grid(u"GD"_s);
    GD->actAsList();
    QList<GridColumn> columns = {
        {.caption = u"编码"_s, .width = 80, .group = u"货品属性"_s},
        {.caption = u"名称/规格/单位"_s, .width = 150, .stretch = true, .group = u"货品属性"_s},
        {.caption = u"成本均价"_s, .width = 64, .kind = ColumnKind::Number, .group = u"货品属性"_s}};
    for (const QStringView group :
         {u"年初余额", u"上期结存", u"本期入库", u"入库累计", u"本期出库", u"出库累计", u"本期结存"}) {
        columns += {.caption = u"数量"_s, .width = 54, .kind = ColumnKind::Number, .group = group.toString()};
        columns += {.caption = u"金额"_s, .width = 72, .kind = ColumnKind::Number, .group = group.toString()};
    }
    GD->setColumns(columns);
    GD->rememberWidths(Name() + u"/GD"_s);
    GD->setEmptyNote(u"选好一期，再按[生成报表]或[打开报表]。"_s);
    connect(GD, &Grid::currentRowChanged, this, &C181::updateStatus);

    body_ = new QWidget;
    auto* layout = new QVBoxLayout(body_);
    layout->setContentsMargins({});
    layout->addLayout(makeRow({Labyear, nullptr, Comb, Cmd, CmdDel}));
    layout->addWidget(GD, 1);
    barred_ = makeLabel(u"LabBarred"_s, QString());
    barred_->setAlignment(Qt::AlignCenter);
    content()->addWidget(body_, 1);
    content()->addWidget(barred_, 1);
}

QAction* C181::addReportCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run)
{
    const auto asked = [run = std::move(run)] {
        if (requireRight(OperatorRight::Cost))
            run();
    };
    QAction* action = menu ? addCommand(menu, name, caption, asked) : addCommand(name, caption, asked);
    reportCommands_ += action;
    return action;
}

// The list of reports -------------------------------------------------------------------------------------------------

void C181::showYear(const QString& firstDay)
{
    yearStart_ = firstDay;
    Labyear->setText(u"会计年度由 "_s + firstDay + u" 开始");
}

void C181::yearStartChanged(const QString& firstDay)
{
    auto* form = static_cast<C181*>(loaded(formName()));
    if (!form)
        return;
    form->showYear(firstDay);
    form->listReports();
}

void C181::listReports()
{
    const ReadRun reads(gDB);
    requireReadable(gDB); // a look-up that failed would let the period begin years ago
    const QSignalBlocker quiet(Comb);
    Comb->clear();
    LoadYearStart();
    const QString today = todayText();
    if (DateDiff(gYearStart, today).value_or(0) > 0)
        Comb->addItem(generateWord + betweenDays(gYearStart, today), 0);
    Recordset saved = gDB.OpenRecordset(
        u"select sortNo,Bdate,Edate from jxc  where SortNo<>0 group by SortNo,Bdate,Edate order by SortNo desc"_s);
    for (; !saved.isEOF(); saved.MoveNext())
        Comb->addItem(historyWord + betweenDays(saved.Fields(1).text(), saved.Fields(2).text()),
                      int(saved.Fields(0).number()));
    if (Comb->count() > 0)
        Comb->setCurrentIndex(0);
    chooseReport();
}

void C181::chooseReport()
{
    setCommandVisible(command(u"Menu_Query"_s), false);
    CmdDel->setEnabled(false);
    nameCommands(Comb->count() > 0 && chosenNumber() == 0);
}

void C181::nameCommands(bool toGenerate)
{
    Cmd->setText((toGenerate ? generateWord : openWord).toString());
    CmdDel->setText((toGenerate ? saveWord : deleteWord).toString());
}

int C181::chosenNumber() const
{
    return Comb->currentData().toInt();
}

void C181::generateOrOpen()
{
    if (!requireRight(OperatorRight::Cost))
        return;
    if (Comb->count() == 0)
        return MsgBox(u"电脑日期为会计年度第一天，不能生成报表！"_s);
    if (chosenNumber() == 0)
        generate();
    else
        open(chosenNumber(), {});
    if (!empty())
        GD->setFocus(); // the figures are to be read before they are saved
}

void C181::saveOrDelete()
{
    if (!requireRight(OperatorRight::Cost))
        return;
    if (CmdDel->text() == saveWord)
        save();
    else if (chosenNumber() >= 0)
        remove();
    else
        removeLastYears();
}

// Reports -------------------------------------------------------------------------------------------------------------

void C181::generate()
{
    clearReport();
    PeriodReport report;
    std::optional<QString> failure;
    {
        std::optional<BusyProgress> progress;
        try {
            generatePeriodReport(
                report, gYearStart, todayText(), method_, [&](qint64 goods) { progress.emplace(busyText, goods); },
                [&] { progress->advance(); });
        } catch (const StoreError& error) { // ends the report, not without what it had got to
            failure = error.description();
        }
        fill(report, !failure && !report.overtaken);
    }
    if (failure)
        return MsgBox(*failure);
    if (report.overtaken)
        return MsgBox(overtakenText.toString());
    if (empty())
        return MsgBox(u"尚无可统计的数据！"_s);
    CmdDel->setText(saveWord.toString());
    CmdDel->setEnabled(true);
    setCommandVisible(command(u"Menu_Query"_s), true);
}

void C181::open(int number, const QString& filter)
{
    Recordset rows = gDB.OpenRecordset(
        u"select JXC.Hpbm,(TA4.F2+'/'+TA4.F5+'/'+TA4.F4) AS "
        "MC,JXC.Gprice,[JXC.As],JXC.Aj,JXC.Bs,JXC.Bj,JXC.Cs,JXC.Cj,JXC.Ds,JXC.Dj,JXC.Es,JXC.Ej,JXC.Fs,JXC.Fj,JXC.Gs,"
        "JXC.Gj,Edate from jxc left join Ta4 on TA4.F1=jxc.hpbm where jxc.SortNo="_s +
        NumText(number) + filter + u" order by jxc.hpbm"_s);
    if (rows.isEOF())
        return MsgBox(u"没有找到相关数据！"_s);
    const QString lastDay = rows.Fields(PeriodColumn::Count).text();
    PeriodReport report;
    report.rows.reserve(rows.RecordCount());
    for (; !rows.isEOF(); rows.MoveNext()) {
        QStringList row{rows.Fields(PeriodColumn::Code).text(), rows.Fields(PeriodColumn::Name).text(),
                        Format(rows.Fields(PeriodColumn::Price).number(), gPriceFormat)};
        for (int column = PeriodColumn::OpeningQuantity; column < PeriodColumn::Count; ++column)
            row += NumText(rows.Fields(column).number());
        report.add(std::move(row));
    }
    fill(report, true);
    shown_ = number;
    setCommandVisible(command(u"Menu_Query"_s), true);
    const bool deletable = mayDelete(number, lastDay);
    if (deletable)
        CmdDel->setText(deleteWord.toString());
    CmdDel->setEnabled(deletable && filter.isEmpty());
}

/// The newest saved report, whose deletion opens its period again, and those of last year, which go all together.
bool C181::mayDelete(int number, const QString& lastDay) const
{
    if (number < 0)
        return true;
    if (DateDiff(lastDay, yearStart_).value_or(0) > 0)
        return false;
    const int place = Comb->currentIndex();
    return place == 0 || Comb->itemText(place - 1).startsWith(generateWord);
}

void C181::save()
{
    if (empty())
        return MsgBox(u"请先[生成报表]再保存！"_s);
    if (shown_ != 0)
        return MsgBox(u"当前报表不需要重新保存！"_s);
    int number = 0;
    {
        const WriteRun run(gDB);
        // Another operator has generated and saved this period: what this one generated is gone from the ledger.
        if (LookupValue(gDB, u"select top 1 SortNo from jxc where SortNo=0"_s) == u"NoFound")
            return MsgBox(overtakenText.toString());
        // On from the numbers of last year, which are negative, so that no number comes twice.
        const double lowest = Val(LookupValue(gDB, u"select top 1 SortNo from jxc order by SortNo"_s));
        const double highest = Val(LookupValue(gDB, u"select top 1 SortNo from jxc order by SortNo desc"_s));
        number = int(qMax(qAbs(lowest) + 1, highest + 1));
        gDB.Execute(u"update jxc set SortNo="_s + NumText(number) + u" where SortNo=0"_s);
    }
    if (Comb->count() > 0 && Comb->itemData(0).toInt() == 0) {
        Comb->setItemData(0, number);
        Comb->setItemText(0, historyWord + Comb->itemText(0).sliced(generateWord.size()));
        nameCommands(false);
    }
    shown_ = number;
    LoadYearStart();
    setCommandVisible(command(u"Menu_Query"_s), true);
    MsgBox(u"保存成功！"_s);
    GD->setFocus(); // the button that was pressed deletes from now on
}

void C181::remove()
{
    const int number = chosenNumber();
    if (!askYesNo(u"真的要删除下面的统计报表吗？"_s))
        return;
    clearReport();
    gDB.Execute(u"delete * from jxc where SortNo="_s + NumText(number));
    listReports();
}

void C181::removeLastYears()
{
    if (!isTopAdministrator())
        return MsgBox(u"您选择的是上一年度的报表，您无权删除！\n只有最高权限帐户“001”才可以执行本操作！"_s);
    if (!askYesNo(u"您选择的是上一年度的报表，不能单个删除！\n只能同时删除 "_s + yearStart_ +
                      u" 之前的所有报表！\n\n确认要执行此操作吗？ ",
                  u"警告"_s, Answer::No) ||
        !askYesNo(u"您选择了删除 "_s + yearStart_ + u" 之前的所有报表！\n\n请最后确认真的要执行此操作吗？ ", u"警告"_s,
                  Answer::No))
        return;
    clearReport();
    gDB.Execute(u"delete * from jxc where SortNo<0"_s);
    listReports();
}

// The grid ------------------------------------------------------------------------------------------------------------

void C181::clearReport()
{
    GD->clearRows();
    shown_ = 0;
    CmdDel->setEnabled(false);
    setCommandVisible(command(u"Menu_Query"_s), false);
    updateStatus();
}

void C181::fill(const PeriodReport& report, bool complete)
{
    if (report.rows.isEmpty()) {
        GD->clearRows();
    } else {
        QList<QStringList> rows = report.rows;
        if (complete)
            rows += report.totalRow();
        GD->setRows(std::move(rows));
        if (complete)
            GD->pinTotals();
        GD->select(firstGoodsRow);
    }
    updateStatus();
}

bool C181::empty() const
{
    return GD->TextMatrix(firstGoodsRow, PeriodColumn::Code).isEmpty();
}

int C181::goodsCount() const
{
    const int rows = GD->Rows() - firstGoodsRow;
    const bool totals = !GD->TextMatrix(GD->Rows() - 1, PeriodColumn::OpeningAmount).isEmpty() &&
                        GD->TextMatrix(GD->Rows() - 1, PeriodColumn::Code).isEmpty();
    return empty() ? 0 : rows - (totals ? 1 : 0);
}

void C181::updateStatus()
{
    const int count = goodsCount();
    const int row = qBound(1, GD->Row() - firstGoodsRow + 1, qMax(count, 1));
    setStatusPanel(busyPanel,
                   count == 0 ? u"无信息"_s : u"货品进出存报表：共 %1 条记录 当前为第 %2 条"_s.arg(count).arg(row));
}

void C181::showState()
{
    methods_[int(method_)]->setChecked(true);
    const bool allowed = hasRight(OperatorRight::Cost);
    for (QAction* action : reportCommands_)
        action->setEnabled(allowed);
    body_->setVisible(allowed);
    barred_->setVisible(!allowed);
    barred_->setText(
        allowed ? QString() : u"当前操作员没有“%1”权限，不能查看%2。"_s.arg(rightName(OperatorRight::Cost), Caption()));
}

void C181::sessionChanged()
{
    showState();
}

/// F5: what others have saved or deleted. Generated figures go, since they are of an earlier moment; a saved report
/// that is shown is read anew.
void C181::refresh()
{
    if (!requireRight(OperatorRight::Cost))
        return;
    requireReadable(gDB); // what is on screen stays while the ledger can't be read
    const int number = empty() ? 0 : shown_;
    recordsChanged();
    if (const int place = Comb->findData(number); number != 0 && place >= 0) {
        Comb->setCurrentIndex(place);
        open(number, {});
    }
}

void C181::recordsChanged()
{
    clearReport();
    const QString first = LookupValue(gDB, u"select F7 from reginfo"_s);
    showYear(IsDate(first) ? first : u"2004-1-1"_s);
    listReports();
}

// Commands ------------------------------------------------------------------------------------------------------------

void C181::Menu_Year()
{
    if (Comb->count() == 0)
        return;
    if (Comb->itemText(0).startsWith(generateWord))
        return MsgBox(u"今天是 "_s + todayText() + u" ，请首先生成本期报表并保存，之后才可以进行年度结转操作！");
    theForm<YearEnd>().ShowModal();
}

void C181::Menu_FangFa(ClosingMethod method)
{
    method_ = method;
    showState();
    MsgBox(u"点击“生成报表”，系统就会"_s + Mid(commandCaption(methods_[int(method)]), 4) + u'!');
    Cmd->setFocus();
}

void C181::Menu_updTA4F7()
{
    if (method_ == ClosingMethod::Cost)
        return MsgBox(u"当前报表的是按照成本均价统计的,没有必要再按照统计报表更新成本价!"_s);
    if (!askYesNo(u"确定要更新货品库存均价吗?"_s))
        return;
    {
        const int end = firstGoodsRow + goodsCount();
        BusyProgress progress(u"正在更新货品库存均价……"_s, goodsCount());
        const WriteRun run(gDB);
        int current = 0;
        for (int row = firstGoodsRow; row < end; ++row, progress.advance()) {
            const double quantity = Val(GD->TextMatrix(row, PeriodColumn::ClosingQuantity));
            if (quantity == 0)
                continue;
            const QString cost = Format(Val(GD->TextMatrix(row, PeriodColumn::ClosingAmount)) / quantity, gPriceFormat);
            gDB.Execute(u"update TA4 set F7="_s + cost + u" where F1="_s +
                        sqlText(GD->TextMatrix(row, PeriodColumn::Code)));
            GD->SetTextMatrix(row, PeriodColumn::Price, cost);
            current = row;
        }
        GD->select(current);
    }
    setStatusPanel(busyPanel, u"更新货品库存均价完成！"_s);
    MsgBox(u"报表中所有货品的库存均价(成本价)更新完成！"_s);
    updateStatus();
}

void C181::Menu_Query()
{
    if (!Query::ask(*this, reportFields))
        return;
    const QString conditions = bracketedConditionOf(PubSql);
    open(shown_, conditions.isEmpty() ? QString() : u" And "_s + conditions);
}

void C181::Menu_P(Print which)
{
    if (empty())
        return MsgBox(u"没有数据可打印！"_s);
    if (!requireReportFile(u"pjxc02.rpt"_s, u"报表文件pjxc02.rpt丢失！"_s))
        return;
    const ReportPrint& print = reportPrints[int(which)];
    const int count = goodsCount();
    QList<QStringList> rows;
    rows.reserve(count);
    {
        const ReadRun lookUps(gDB);
        for (int i = 0; i < count; ++i) {
            const auto cell = [&](int column) { return GD->TextMatrix(firstGoodsRow + i, column); };
            QStringList row{sqlText(Format(i + 1, u"#00000")),
                            sqlTexts({cell(PeriodColumn::Code), cell(PeriodColumn::Name), cell(PeriodColumn::Price)})};
            for (const int column : print.columns)
                row += sqlText(cell(column));
            row += sqlTexts({reportedCategory(u"TA3.F1"_s, cell(PeriodColumn::Code)),
                             reportedCategory(u"TA3.F2"_s, cell(PeriodColumn::Code))});
            rows += std::move(row);
        }
    }
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13"_s, rows);

    const QString chosen = Comb->currentText();
    const QString days = which == Print::Period ? chosen.sliced(chosen.indexOf(u'：') + 1)
                                                : u"截止到 "_s + chosen.sliced(chosen.indexOf(u'至') + 1) + u' ';
    QStringList formulas{formula(u"cpt", print.title), formula(u"rq", days), formula(u"LB", print.label)};
    for (size_t i = 0; i < std::size(print.blocks); ++i)
        formulas += formula(QString(QChar(u'a' + char16_t(i))), print.blocks[i]);
    formulas += formula(u"regname", gCompanyName);
    int number = 0;
    for (const int column : print.columns) {
        QString total = GD->TextMatrix(firstGoodsRow + count, column);
        if (column < PeriodColumn::BroughtQuantity) { // on paper the year's opening has one too
            double sum = 0;
            for (int i = 0; i < count; ++i)
                sum += Val(GD->TextMatrix(firstGoodsRow + i, column));
            total = periodTotalText(column, sum);
        }
        formulas += formula(u's' + plainText(++number), total);
    }
    preview({.reportFile = u"Pjxc02.rpt"_s, .formulas = formulas, .selectionFormula = {}});
}

void C181::Menu_Rtn()
{
    Unload();
}

void C181::unloaded()
{
    LedgerStatus();
}

QString C181::notice() const
{
    return clockDoubt();
}

QWidget* C181::firstFocus()
{
    return Comb;
}
