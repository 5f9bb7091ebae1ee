#include "masterdata/FromExcel.h"

#include "admin/safety_copy.h"
#include "admin/sysDBbak.h"
#include "ledger/Module1.h"
#include "ledger/store.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "platform/workbook/workbook.h"
#include "shell/session.h"

#include <limits>
#include <set>

namespace {

constexpr int importPanel = 4; ///< of the status bar

constexpr QStringView importCaptions[importFieldCount] = {u"货品编码：", u"货品名称：", u"类别名称：", u"单位：",
                                                          u"规格型号：", u"备注信息：", u"成本价格：", u"销售价格：",
                                                          u"类别编码：", u"数量：",     u"最低库存：", u"最高库存："};

/// By index from "A" on, whatever follows "Z": what is shown is what has to be typed.
QString columnLetter(int column)
{
    return QChar(u'A' + column);
}

enum CheckColumn {
    RowNumber,
    Outcome,
    GoodsCode,
    GoodsName,
    OldStock,
    NewStock,
    OldCost,
    NewCost,
    OldSale,
    NewSale,
    Remarks
};

QString outcomeName(ImportedRow::Fate fate)
{
    switch (fate) {
    case ImportedRow::Fate::Added:
        return u"新增"_s;
    case ImportedRow::Fate::Changed:
        return u"修改"_s;
    case ImportedRow::Fate::Unchanged:
        return u"无变化"_s;
    case ImportedRow::Fate::Skipped:
        break;
    }
    return u"跳过"_s;
}

} // namespace

FromExcel::FromExcel()
    : Form(formName(), u"导入货品基础数据"_s)
{
    buildCommands();
    build();
    fillDefaults();
    dropOutcome();
    setStatusPanel(importPanel, u"请选择Excel文件，输入工作表名，读入数据"_s);
}

void FromExcel::buildCommands()
{
    const auto addGated = [this](const QString& name, const QString& caption, std::function<void()> run) {
        gated_ += addCommand(name, caption, [run = std::move(run)] {
            if (requireRight(OperatorRight::Base))
                run();
        });
    };
    addCommand(u"Menu_back"_s, u"&B.备份系统数据"_s, [this] { Menu_back(); });
    addGated(u"Menu_Check"_s, u"&C.检查"_s, [this] { Menu_Check(); });
    addGated(u"Menu_Run"_s, u"&S.导入新数据"_s, [this] { Menu_Run(); });
    addGated(u"Menu_del"_s, u"&D.删除行"_s, [this] { Menu_del(); });
    addCommand(u"Menu_help"_s, u"&H.使用说明"_s, [this] { Menu_help(); });
    addCommand(u"Menu_R"_s, u"&R.返回系统主窗口"_s, [this] { Menu_R(); });
}

void FromExcel::build()
{
    TxtFile = makeEdit(u"TxtFile"_s);
    TxtFile->setMaxLength(std::numeric_limits<int>::max());
    CmdOpen = makeButton(
        u"CmdOpen"_s, u"…"_s, [this] { chooseFile(); }, -1, ButtonLook::Compact);
    CmdOpen->setToolTip(u"选择Excel文件"_s);
    TxtTab = makeCombo(u"TxtTab"_s);
    Cmdrst = makeButton(
        u"Cmdrst"_s, u"读入数据"_s, [this] { readSheetIn(); }, -1, ButtonLook::Primary);

    auto* source = new FieldLayout(3);
    source->add(makeLabel(u"LabFile"_s, u"Excel文件："_s), {TxtFile, CmdOpen}, 2);
    source->add(makeLabel(u"LabTab"_s, u"工作表名称："_s), {TxtTab, Cmdrst});

    constexpr int columnPairs = 6;
    auto* columns = new FieldLayout(columnPairs);
    for (int field = 0; field < importFieldCount; ++field) {
        Lab[field] = makeLabel(u"Lab"_s, importCaptions[field].toString(), field);
        CmbCol[field] = makeCombo(u"CmbCol"_s, field);
        for (QChar letter = u'A'; letter <= u'Z'; letter = QChar(letter.unicode() + 1))
            CmbCol[field]->addItem(letter);
        CmbCol[field]->setCurrentIndex(-1);
        CmbCol[field]->clearEditText();
        enterMovesOn(CmbCol[field]);
        columns->add(Lab[field], CmbCol[field]);
        connect(CmbCol[field], &QComboBox::editTextChanged, this, &FromExcel::dropOutcome);
    }
    CmbCol[int(ImportField::Remark)]->setToolTip(u"可以填写多列，例如 EF"_s);
    CmbCol[int(ImportField::CategoryCode)]->setToolTip(u"“B,2”表示取B列的前2个字符"_s);
    columns->newRow();
    const QString captions[] = {u"默认类别编码"_s, u"默认类别名称"_s};
    for (int i = 0; i < 2; ++i) {
        txtLB[i] = makeEdit(u"txtLB"_s, i);
        enterMovesOn(txtLB[i]);
        columns->add(makeLabel(u"LabLB"_s, captions[i], i), txtLB[i], i + 1);
        connect(txtLB[i], &QLineEdit::textChanged, this, &FromExcel::dropOutcome);
    }
    auto* hint = makeLabel(u"LabHint"_s, u"为每项数据选择所在的列；留空的项不导入。"_s);
    setLook(hint, LabelLook::Field);
    columns->addUnlabelled(hint, 2);

    LabTitles = makeLabel(u"LabTitles"_s, QString());
    setLook(LabTitles, LabelLook::Field);
    LabTitles->setTextFormat(Qt::PlainText);
    LabTitles->setMinimumWidth(1); // a long one is cut off, it doesn't widen the window
    Gd = new Grid(u"Gd"_s);
    auto* sheet = new QWidget;
    auto* sheetLayout = new QVBoxLayout(sheet);
    sheetLayout->setContentsMargins(0, style::spacing, 0, 0);
    sheetLayout->addWidget(LabTitles);
    sheetLayout->addWidget(Gd, 1);

    LabCheck = makeLabel(u"LabCheck"_s, QString());
    setLook(LabCheck, LabelLook::Heading);
    for (QLabel* label : {LabTitles, LabCheck})
        label->setIndent(style::spacing);
    GdCheck = new Grid(u"GdCheck"_s);
    GdCheck->setColumns({{u"行"_s, 60, ColumnKind::Number},
                         {u"结果"_s, 70, ColumnKind::Centred},
                         {u"货品编码"_s, 120},
                         {u"货品名称"_s, 200},
                         {u"原数量"_s, 84, ColumnKind::Number},
                         {u"新数量"_s, 84, ColumnKind::Number},
                         {u"原成本价"_s, 84, ColumnKind::Number},
                         {u"新成本价"_s, 84, ColumnKind::Number},
                         {u"原销售价"_s, 84, ColumnKind::Number},
                         {u"新销售价"_s, 84, ColumnKind::Number},
                         {u"说明"_s, 260, ColumnKind::Text, false, true}});
    GdCheck->rememberWidths(Name() + u"/GdCheck"_s);
    auto* check = new QWidget;
    auto* checkLayout = new QVBoxLayout(check);
    checkLayout->setContentsMargins(0, style::spacing, 0, 0);
    checkLayout->addWidget(LabCheck);
    checkLayout->addWidget(GdCheck, 1);

    TabS = makeTabs(u"TabS"_s);
    TabS->addTab(sheet, u"工作表数据"_s);
    TabS->addTab(check, u"检查结果"_s);

    body_ = new QWidget;
    auto* body = new QVBoxLayout(body_);
    body->setContentsMargins({});
    body->setSpacing(style::spacing);
    body->addLayout(source);
    body->addLayout(columns);
    body->addWidget(TabS, 1);
    barred_ = makeLabel(u"LabBarred"_s, QString());
    barred_->setAlignment(Qt::AlignCenter);
    barred_->hide();
    content()->addWidget(body_, 1);
    content()->addWidget(barred_, 1);
    // A path that was typed; it may not be one yet, so that nothing is told before the data are read.
    onFocusOut(TxtFile, [this] {
        if (TxtFile->isModified())
            offerSheets();
        TxtFile->setModified(false);
    });
}

void FromExcel::fillDefaults()
{
    const Recordset first = gDB.OpenRecordset(u"select top 1 * from TA3 "_s);
    txtLB[0]->setText(first.isEOF() ? u"001"_s : first.Fields(u"F1").text());
    txtLB[1]->setText(first.isEOF() ? u"其它货品"_s : first.Fields(u"F2").text());
}

// The workbook --------------------------------------------------------------------------------------------------------

void FromExcel::chooseFile()
{
    // The patterns are those of ledgers by an old mistake that operators know; the name begins as "*.xls" all the same.
    const auto path =
        openFileDialog(u"请选择货品编码文件"_s, u"Excel文件(*.xls)|*.hcn|所有文件(*.*)|*.*"_s, gAppPath + u"*.xls"_s);
    if (!path)
        return;
    TxtFile->setText(*path);
    offerSheets();
}

void FromExcel::offerSheets()
{
    const BusyPointer busy;
    const SheetNames sheets = sheetNames(TxtFile->text());
    const QString typed = TxtTab->currentText();
    TxtTab->clear();
    TxtTab->addItems(sheets.names);
    const int known = TxtTab->findText(typed, Qt::MatchFixedString);
    if (known >= 0 || !sheets.names.isEmpty())
        TxtTab->setCurrentIndex(qMax(known, 0));
    else
        TxtTab->setEditText(typed);
    if (!sheets.refusal.isEmpty())
        setStatusPanel(importPanel, sheets.refusal);
}

void FromExcel::readSheetIn()
{
    if (TxtFile->text().isEmpty())
        return;
    const BusyPointer busy;
    setStatusPanel(importPanel, u"正在读入数据……"_s);
    SheetRows sheet = readSheet(TxtFile->text(), TxtTab->currentText());
    if (!sheet.refusal.isEmpty()) {
        setStatusPanel(importPanel, u"没有读入数据"_s);
        return errorBox(sheet.refusal);
    }
    QList<QStringList>& rows = sheet.rows;
    while (!rows.isEmpty() && rows.constFirst().isEmpty()) // a table may begin further down
        rows.removeFirst();
    const QStringList titles = rows.isEmpty() ? QStringList() : rows.takeFirst();
    qsizetype count = titles.size();
    for (const QStringList& row : rows)
        count = qMax(count, row.size());
    QList<GridColumn> columns;
    for (int column = 0; column < count; ++column)
        columns += {columnLetter(column), 110};
    Gd->setColumns(columns);
    Gd->setRows(std::move(rows));
    Gd->select(1);
    showTitles(titles);
    dropOutcome();
    showCount();
}

void FromExcel::showTitles(const QStringList& titles)
{
    QStringList parts;
    for (int column = 0; column < titles.size(); ++column)
        if (!titles[column].isEmpty())
            parts += columnLetter(column) + u' ' + titles[column];
    LabTitles->setText(parts.isEmpty() ? QString() : u"首行标题：  "_s + parts.join(u"　"_s));
    LabTitles->setToolTip(parts.join(u'\n'));
}

void FromExcel::showCount()
{
    setStatusPanel(importPanel, u"共有：%1行，%2列"_s.arg(Gd->Rows() - 1).arg(Gd->Cols()));
}

void FromExcel::Menu_del()
{
    if (Gd->Rows() <= 1 || !askYesNo(u"确实要删除选中的数据吗？"_s))
        return;
    std::set<int> chosen;
    for (const QModelIndex& index : Gd->selectionModel()->selectedRows())
        chosen.insert(index.row() + 1);
    QList<QStringList> kept;
    for (int row = 1; row < Gd->Rows(); ++row)
        if (!chosen.contains(row))
            kept += Gd->rowTexts(row);
    Gd->setRows(std::move(kept));
    if (!chosen.empty())
        Gd->select(qMin(*chosen.begin(), Gd->Rows() - 1));
    dropOutcome();
    showCount();
}

// The import ----------------------------------------------------------------------------------------------------------

ImportChoice FromExcel::choice() const
{
    ImportChoice choice;
    for (int field = 0; field < importFieldCount; ++field) {
        QString text = Trim(CmbCol[field]->currentText());
        text.replace(u'，', u',');
        if (ImportField(field) == ImportField::Remark)
            text.remove(u',').remove(u' ');
        if (Gd->Cols() <= u'a' - u'A') // no column has a small letter, so a capital one is meant
            text = text.toUpper();
        choice.columns[field] = text;
    }
    choice.defaultCategory = Trim(txtLB[0]->text());
    choice.defaultCategoryName = Trim(txtLB[1]->text());
    return choice;
}

/// Whether there is all that an import needs; tells what isn't there.
bool FromExcel::complete()
{
    const auto refuse = [](const QString& text, QWidget* where) {
        MsgBox(text);
        where->setFocus();
        return false;
    };
    if (!isTopAdministrator()) {
        MsgBox(u"本操作仅系统最高权限用户001可以执行！"_s, u"提示"_s, BoxIcon::Exclamation);
        return false;
    }
    if (Gd->Rows() <= 1)
        return refuse(u"请选择Excel文件，填写工作表名称，读入数据，之后再执行导入！"_s, TxtFile);
    const ImportChoice chosen = choice();
    if (chosen.defaultCategory.isEmpty() || chosen.defaultCategoryName.isEmpty())
        return refuse(u"请输入默认的类列编码及名称，如果Excel数据中类别栏为空，则按默认类列处理。"_s,
                      txtLB[chosen.defaultCategory.isEmpty() ? 0 : 1]);
    if (chosen.columns[int(ImportField::Code)].isEmpty())
        return refuse(u"必须指定哪一列为货品编码数据！"_s, CmbCol[int(ImportField::Code)]);
    if (const QString column = chosen.columnBeyond(Gd->Cols()); !column.isEmpty())
        return refuse(u"读入的数据中没有“%1”列，请重新指定！"_s.arg(column), CmbCol[int(ImportField::Code)]);
    return true;
}

void FromExcel::Menu_Check()
{
    if (!complete())
        return;
    run(GoodsImport::Mode::Rehearsal);
    setStatusPanel(importPanel, u"检查完毕，没有写入任何数据"_s);
}

void FromExcel::Menu_Run()
{
    if (!complete() || !askYesNo(u"此操作危险！可能会改变系统内存在的部份信息。建议您先备份现有数据，再导入新数据！\n"
                                 u"现在就开始导入新数据吗？"_s))
        return;
    if (!safetyCopy(u"导入"))
        return;
    run(GoodsImport::Mode::Writing);
    MsgBox(u"数据导入成功！"_s);
    setStatusPanel(importPanel, u"数据已成功导入系统"_s);
}

/// What has become of the rows, as it is shown.
struct FromExcel::Outcome
{
    QList<QStringList> lines;
    int fates[4] = {};
    int doubled = 0;
    int categories = 0;

    void add(ImportedRow&& row)
    {
        ++fates[int(row.fate)];
        doubled += row.doubled;
        if (!row.newCategory.isEmpty()) {
            ++categories;
            row.remarks += u"新建类别 "_s + row.newCategory;
        }
        lines += {QString::number(lines.size() + 1),
                  outcomeName(row.fate),
                  std::move(row.code),
                  std::move(row.name),
                  std::move(row.before.stock),
                  std::move(row.after.stock),
                  std::move(row.before.cost),
                  std::move(row.after.cost),
                  std::move(row.before.sale),
                  std::move(row.after.sale),
                  row.remarks.isEmpty() ? QString() : row.remarks.join(u"；"_s)};
    }
    int count(ImportedRow::Fate fate) const { return fates[int(fate)]; }
};

void FromExcel::run(GoodsImport::Mode mode)
{
    constexpr int progressStep = 500; // rows
    const bool writing = mode == GoodsImport::Mode::Writing;
    const QString busyText = writing ? u"正在把数据导入到系统中……"_s : u"正在检查数据……"_s;
    const BusyPointer busy;
    setStatusPanel(importPanel, busyText);
    dropOutcome();
    Outcome outcome;
    outcome.lines.reserve(Gd->Rows());
    const auto takeAll = [&] {
        GoodsImport import(choice(), mode);
        for (int row = 1; row < Gd->Rows(); ++row) {
            try {
                outcome.add(import.take(row, Gd->rowTexts(row)));
            } catch (const StoreError& error) {
                const QString where = u"第 %1 行"_s.arg(row);
                setStatusPanel(importPanel, where + u"失败，到此停止"_s);
                error.setAftermath(writing ? where + u"没有导入，导入到此停止；前面的 %1 行已经保存。"_s.arg(row - 1)
                                           : where + u"不能检查。"_s);
                throw;
            }
            if (row % progressStep == 0)
                setStatusPanel(importPanel, busyText + u"%1/%2"_s.arg(row).arg(Gd->Rows() - 1));
        }
    };
    if (writing) {
        const WriteRun together(gDB);
        takeAll();
    } else {
        const ReadRun together(gDB);
        takeAll();
    }
    showOutcome(std::move(outcome), mode);
}

void FromExcel::showOutcome(Outcome&& outcome, GoodsImport::Mode mode)
{
    for (const CheckColumn column : {OldCost, NewCost, OldSale, NewSale})
        GdCheck->setColumnVisible(column, gWithMoney != 0);
    GdCheck->setRows(std::move(outcome.lines));
    GdCheck->select(1);
    const QString words = mode == GoodsImport::Mode::Writing ? u"已经导入："_s : u"将要导入（尚未写入）："_s;
    LabCheck->setText(words + u"新增 %1，修改 %2，无变化 %3，跳过 %4；编码重复 %5，新建类别 %6"_s
                                  .arg(outcome.count(ImportedRow::Fate::Added))
                                  .arg(outcome.count(ImportedRow::Fate::Changed))
                                  .arg(outcome.count(ImportedRow::Fate::Unchanged))
                                  .arg(outcome.count(ImportedRow::Fate::Skipped))
                                  .arg(outcome.doubled)
                                  .arg(outcome.categories));
    TabS->setCurrentIndex(1);
}

/// What was shown is of other data, or for another operator.
void FromExcel::dropOutcome()
{
    if (!GdCheck)
        return; // the form is being built
    GdCheck->clearRows();
    LabCheck->setText(u"还没有检查。检查不写入任何数据，可以看到导入会新增、修改和跳过哪些货品。"_s);
    TabS->setCurrentIndex(0);
}

// The rest ------------------------------------------------------------------------------------------------------------

void FromExcel::Menu_back()
{
    theForm<sysDBbak>().ShowModal();
}

void FromExcel::Menu_help()
{
    MsgBox(u"打开帮助文件后，在左侧选择[从Excel文件中导入货品基础数据]。"_s);
    Shell(u"hh.exe "_s + gAppPath + u"使用说明.chm"_s);
}

void FromExcel::Menu_R()
{
    Unload();
}

void FromExcel::sessionChanged()
{
    if (!isTopAdministrator())
        dropOutcome(); // it tells costs
    const bool allowed = hasRight(OperatorRight::Base);
    for (QAction* action : gated_)
        action->setEnabled(allowed);
    body_->setVisible(allowed);
    barred_->setVisible(!allowed);
    barred_->setText(
        allowed ? QString() : u"当前操作员没有“%1”权限，不能查看%2。"_s.arg(rightName(OperatorRight::Base), Caption()));
}

void FromExcel::unloaded()
{
    LedgerStatus();
}

QWidget* FromExcel::firstFocus()
{
    return TxtFile;
}
