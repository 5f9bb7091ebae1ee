#include "masterdata/record_form.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

#include <QTabBar>

#include <limits>

RecordForm::RecordForm(RecordTable table)
    : ListDetailForm(table.form, table.caption, table.listTab, table.detailTab)
    , table_(std::move(table))
{}

QAction* RecordForm::addGated(const char* name, const QString& caption, Shown shown, void (RecordForm::*run)())
{
    QAction* action = addModeCommand(QString::fromLatin1(name), caption, shown, [this, run] {
        if (requireRight(table_.right))
            (this->*run)();
    });
    gated_ += action;
    return action;
}

void RecordForm::addEditCommands()
{
    addGated("Menu_Add", u"&A.增加"_s, Shown::Viewing, &RecordForm::Menu_Add);
    addGated("Menu_edit", u"&E.修改"_s, Shown::Viewing, &RecordForm::Menu_edit);
    addGated("Menu_del", u"&D.删除"_s, Shown::Viewing, &RecordForm::Menu_del);
}

void RecordForm::addListCommands()
{
    addGated("Menu_query", u"&Q.查找"_s, Shown::Viewing, &RecordForm::Menu_query);
    addGated("Menu_print", u"&P.打印"_s, Shown::Viewing, &RecordForm::Menu_print);
}

void RecordForm::addEndCommands()
{
    addGated("Menu_save", u"&S.保存"_s, Shown::Entering, &RecordForm::Menu_save);
    addModeCommand(u"Menu_cancel"_s, u"&C.取消"_s, Shown::Entering, [this] { Menu_cancel(); });
    addModeCommand(u"Menu_Return"_s, u"&R.返回"_s, Shown::Always, [this] { Menu_Return(); });
}

void RecordForm::addField(const QString& caption, EditKind kind)
{
    const int index = int(Txt.size());
    QLineEdit* edit = makeEdit(u"Txt"_s, index, kind);
    edit->setMaxLength(std::numeric_limits<int>::max()); // the toolkit's own limit would cut a long text silently
    enterMovesOn(edit);
    Txt += edit;
    Lab += makeLabel(u"Lab"_s, caption, index);
}

void RecordForm::setListColumns(const QList<GridColumn>& columns)
{
    GD->setColumns(columns);
    GD->rememberWidths(table_.form + u"/GD"_s);
    GD->clearRows();
}

// The list ------------------------------------------------------------------------------------------------------------

void RecordForm::loadList()
{
    Recordset records = gDB.OpenRecordset(listStatement());
    listStale_ = false;
    const int columns = GD->Cols();
    QList<QStringList> rows;
    rows.reserve(records.RecordCount());
    for (; !records.isEOF(); records.MoveNext()) {
        QStringList row;
        row.reserve(columns);
        for (int column = 0; column < columns; ++column)
            row += records.Fields(column).text();
        rows += std::move(row);
    }
    fillList(std::move(rows));
}

void RecordForm::dropSearch()
{
    searched_ = false;
    condition_.clear();
    listStale_ = true;
    recordsChanged();
}

void RecordForm::refresh()
{
    loadList();
    if (onDetail())
        showRecord();
}

void RecordForm::tabChanged(Tab tab)
{
    if (tab == DetailTab)
        showRecord();
    selectListRow(listRow());
}

void RecordForm::rowChanged()
{
    const int count = listEmpty() ? 0 : GD->Rows() - 1;
    setStatusPanel(4, u"共 %1 条记录 当前为第 %2 条"_s.arg(count).arg(count == 0 ? 0 : listRow()));
}

// Modes ---------------------------------------------------------------------------------------------------------------

void RecordForm::updateState()
{
    const bool entering = Edstu != Viewing;
    const bool allowed = hasRight(table_.right);
    showMode();
    for (QAction* action : gated_)
        action->setEnabled(allowed);
    for (QLineEdit* edit : Txt)
        setLocked(edit, !entering);
    setLocked(Txt[CodeField], !entering || codeFixed_);
    setState(entering ? u"录入中"_s : QString(), BadgeLook::Warning);
    // An operator who may not see these records sees none of them, also in a form that another one opened.
    setBarred(allowed ? QString()
                      : u"当前操作员没有“%1”权限，不能查看%2。"_s.arg(rightName(table_.right), table_.caption));
}

void RecordForm::sessionChanged()
{
    updateState();
}

void RecordForm::enter(Mode mode)
{
    Edstu = mode;
    updateState();
    Txt[CodeField]->setFocus();
    Txt[CodeField]->selectAll();
}

void RecordForm::leaveEntering()
{
    Edstu = Viewing;
    codeFixed_ = false;
    updateState();
    if (listStale_)
        loadList();
    showRecord();
    TabS->setFocus();
}

void RecordForm::unloaded()
{
    LedgerStatus();
}

// Commands ------------------------------------------------------------------------------------------------------------

void RecordForm::clearRecord()
{
    for (QLineEdit* edit : Txt)
        edit->clear();
}

void RecordForm::Menu_Add()
{
    clearRecord();
    codeFixed_ = false;
    enter(Adding);
}

void RecordForm::Menu_edit()
{
    if (listEmpty())
        return MsgBox(u"没有数据可修改！"_s);
    showRecord();
    beginEdit();
    codeFixed_ = codeFixed(listCell(CodeField));
    enter(Editing);
}

bool RecordForm::inUse(const QString& code) const
{
    const ReadRun run(gDB);
    for (const QString& test : table_.useTests)
        if (LookupValue(gDB, test + sqlText(code)) != u"NoFound") // a failed look-up protects the record
            return true;
    return false;
}

bool RecordForm::deletable(const QString& code)
{
    if (!inUse(code))
        return true;
    MsgBox(u"本编码已经在系统中采用，不可以删除！"_s);
    return false;
}

void RecordForm::Menu_del()
{
    if (listEmpty())
        return MsgBox(u"没有数据可删除！"_s);
    const QString code = listCell(CodeField);
    {
        const ReadRun reads(gDB);
        requireReadable(gDB); // a look-up that failed would answer that the code is in use
        if (!deletable(code))
            return;
    }
    if (!askYesNo(u"真的要删除"_s + listCell(NameField) + u"的资料吗？"_s))
        return;
    gDB.Execute(u"delete from "_s + table_.table + u" WHERE F1="_s + sqlText(code));
    removeListRow(listRow());
    selectListRow(listRow());
    if (onDetail())
        showRecord();
}

void RecordForm::Menu_query()
{
    if (!Query::ask(*this, queryFields()))
        return;
    searched_ = true;
    condition_ = conditionOf(PubSql);
    refresh();
}

void RecordForm::Menu_print()
{
    if (listEmpty())
        return MsgBox(u"没有数据可打印！"_s);
    const RecordPrint print = printed();
    if (!requireReportFile(print.tested, print.missing))
        return;
    QStringList columns;
    for (qsizetype i = 1; i <= print.columns.size(); ++i)
        columns += u"F%1"_s.arg(i);
    stageRows(u"PrTA1"_s, columns.join(u','), gridRows(*GD, GD->Rows() - 1, print.columns));
    preview({print.report, print.formulas, {}});
}

void RecordForm::Menu_cancel()
{
    leaveEntering();
}

void RecordForm::Menu_Return()
{
    Unload();
}

// Saving --------------------------------------------------------------------------------------------------------------

QString RecordForm::tidyCode(const QString& text) const
{
    QString code = text;
    code.remove(u'\n').remove(u'\r'); // a code that was copied from a sheet's cell brings them along
    return Trim(code).toUpper();
}

bool RecordForm::complete()
{
    for (const RecordField field : {CodeField, NameField})
        if (Trim(Txt[field]->text()).isEmpty()) {
            refuse(Lab[field]->text() + u"不能为空！"_s, Txt[field]);
            return false;
        }
    return true;
}

bool RecordForm::codeFree()
{
    const QString code = Txt[CodeField]->text();
    const QString name = LookupValue(gDB, u"select F2 from "_s + table_.table + u" where F1="_s + sqlText(code));
    if (name == u"NoFound" || (Edstu == Editing && sameText(code, listCell(CodeField))))
        return true;
    refuse(u'[' + name + u"]已经使用了"_s + code + u"这个编码，请重新设置编码!"_s, Txt[CodeField]);
    return false;
}

void RecordForm::Menu_save()
{
    Txt[CodeField]->setText(tidyCode(Txt[CodeField]->text()));
    if (!complete())
        return;
    {
        const WriteRun run(gDB); // from the test of the code on, so that nobody else takes it meanwhile
        if (!codeFree())
            return;
        if (Edstu == Editing) {
            keepChanges(listCell(CodeField));
            gDB.Execute(u"delete from "_s + table_.table + u" where F1="_s + sqlText(listCell(CodeField)));
        }
        insert();
    }
    // Only now: after a failure the fields still hold the record, and a second save must know what it replaces.
    const QStringList row = savedRow();
    if (Edstu == Editing)
        removeListRow(listRow());
    addListRow(row);
    try {
        leaveEntering();
    } catch (const StoreError&) { // it is saved and on screen; the next command tells what keeps the ledger away
        TabS->setFocus();
    }
}
