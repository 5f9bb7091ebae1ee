#include "documents/document_form.h"

#include "documents/document_print.h"
#include "documents/line_entry.h"
#include "documents/suggesting.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "platform/base/width.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "reports/Query.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTabBar>
#include <QTimer>

#include <algorithm>
#include <tuple>

namespace {

constexpr int statusPanelOfForms = 4;
constexpr int longestNumber = 25;

/// As the number pad types it: without separators, or with points.
QString typedDate(const QString& text)
{
    QString date = Trim(plainWidth(text)).replace(u'.', u'-');
    constexpr qsizetype allDigits = 8;
    if (date.size() == allDigits && std::all_of(date.begin(), date.end(), [](QChar c) { return c.isDigit(); }))
        date.insert(6, u'-').insert(4, u'-');
    return date;
}

} // namespace

DocumentForm& documentForm(DocumentKind kind)
{
    const DocumentTraits& traits = traitsOf(kind);
    if (Form* form = Form::loaded(traits.form.toString()))
        return *static_cast<DocumentForm*>(form);
    return *new DocumentForm(traits);
}

DocumentForm::DocumentForm(const DocumentTraits& kind)
    : ListDetailForm(kind.form.toString(), kind.title.toString(), kind.documentName() + u"列表"_s,
                     kind.documentName() + u"明细"_s)
    , kind_(kind)
{
    buildCommands();
    buildList();
    buildDetail();
    addKey(Qt::Key_F2, [this] {
        if (Edstu != Viewing && lines->endEdit())
            lines->focusCode();
    });
    addKey(Qt::Key_F3, [this] {
        if (Edstu != Viewing && lines->endEdit())
            focusText(CmbLB ? static_cast<QWidget*>(CmbLB) : Txt[PartnerName]);
    });
    addKey(Qt::Key_F8, [this] {
        if (Edstu != Viewing)
            lines->ChkScan->click();
    });
    fillPartners();
    listDrafts();
    updateState();
}

void DocumentForm::buildCommands()
{
    struct Row
    {
        const char* name;
        QStringView caption;
        Shown shown;
        void (DocumentForm::*run)(); ///< none: an item that nothing shows
        bool gated = false;          ///< asks for the right of the form's menu
    };
    // clang-format off
    static constexpr Row rows[] = {
        {"Menu_Add",    u"&A.增加",     Shown::Viewing,  &DocumentForm::Menu_Add,    true},
        {"Menu_edit",   u"&E.修改",     Shown::Viewing,  &DocumentForm::Menu_edit,   true},
        {"Menu_del",    u"&D.删除",     Shown::Viewing,  &DocumentForm::Menu_del,    true},
        {"Menu_Ok",     u"&C.审核",     Shown::Viewing,  &DocumentForm::Menu_Ok,     true},
        {"Menu_noOK",   u"&X.撤销审核", Shown::Viewing,  &DocumentForm::Menu_noOK,   true},
        {"Menu_query",  u"&Q.查找",     Shown::Viewing,  &DocumentForm::Menu_query,  true},
        {"Menu_T",      u"&T.打印条码", Shown::Never,    nullptr},
        {"Menu_print",  u"&P.打印",     Shown::Viewing,  &DocumentForm::Menu_print,  true},
        {"Menu_save",   u"&S.保存",     Shown::Entering, &DocumentForm::Menu_save,   true},
        {"Menu_cancel", u"&C.取消",     Shown::Entering, &DocumentForm::Menu_cancel},
        {"Menu_Return", u"&R.返回",     Shown::Always,   &DocumentForm::Menu_Return},
        {"Menu_copy",   u"&N.复制为新单据", Shown::Viewing, &DocumentForm::Menu_copy, true},
        {"Menu_paste",  u"&V.粘贴多行", Shown::Entering, &DocumentForm::Menu_paste},
        {"Menu_again",  u"&Z.找回取消的录入", Shown::Viewing, &DocumentForm::Menu_again, true},
    };
    // clang-format on
    for (const Row& row : rows) {
        if (row.run == &DocumentForm::Menu_noOK && kind_.unaudit == Unaudit::Never)
            continue;
        if (row.run == &DocumentForm::Menu_print && !kind_.prints->items.isEmpty()) {
            addPrintItems(addModeMenu(QString::fromLatin1(row.name), row.caption.toString(), row.shown));
            continue;
        }
        std::function<void()> run;
        if (row.run)
            run = [this, &row] {
                if (!row.gated || requireRight(kind_.right))
                    (this->*row.run)();
            };
        QAction* action = addModeCommand(QString::fromLatin1(row.name), row.caption.toString(), row.shown, run);
        if (row.gated)
            gated_ += action;
    }
    if (kind_.templates == Templates::Hidden) {
        QMenu* board = addCommandMenu(u"Menu_Board"_s, u"&B.模板"_s);
        for (const auto& [name, caption] : {std::pair(u"Menu_B1"_s, u"&1.设为模板"_s),
                                            {u"Menu_B2"_s, u"&2.模板列表"_s},
                                            {u"Menu_B3"_s, u"&3.按模板开单"_s}})
            addCommand(board, name, caption, {})->setEnabled(false);
        setCommandVisible(board->menuAction(), false);
    }
}

void DocumentForm::addPrintItems(QMenu* menu)
{
    const auto add = [&](PrintItem item, const QString& caption, Shown shown) {
        gated_ += addModeCommand(menu, controlName(kind_.prints->items.toString(), item), caption, shown, [this, item] {
            if (requireRight(kind_.right))
                Menu_prn(item);
        });
    };
    add(StoredPrint, u"&1."_s + kind_.title + u"(方案一)"_s, Shown::Viewing);
    add(ShownPrint, u"&2."_s + kind_.title + u"(方案二)"_s, Shown::Viewing);
    if (!kind_.prints->purchase.isEmpty())
        add(PurchasePrint, u"&3.打印采购单"_s, Shown::Never);
}

void DocumentForm::buildList()
{
    QList<GridColumn> columns{{kind_.word + u"单号"_s, 130},
                              {kind_.word + u"日期"_s, 92},
                              {kind_.partner.toString(), 220},
                              {u"录入员"_s, 84},
                              {u"审核人"_s, 96},
                              {kind_.totals->list.toString(), 110, ColumnKind::Number},
                              {u"附注"_s, 240, ColumnKind::Text, false, true}};
    if (!kind_.lastColumn.isEmpty())
        columns.append({kind_.lastColumn.toString(), 110});
    GD->setColumns(columns);
    GD->rememberWidths(kind_.form + u"/GD"_s);
    GD->clearRows();
}

void DocumentForm::buildDetail()
{
    const QString captions[] = {kind_.word + u"单号"_s,
                                kind_.word + u"日期"_s,
                                kind_.partner.toString(),
                                u"录入员"_s,
                                u"审核人"_s,
                                kind_.totals->detail.toString(),
                                u"附注"_s};
    for (int i = 0; i <= Remark; ++i) {
        Txt[i] = makeEdit(u"Txt"_s, i, i == Total ? EditKind::Number : EditKind::Text);
        Lab[i] = makeLabel(u"Lab"_s, captions[i], i);
        enterMovesOn(Txt[i]);
        onFocusIn(Txt[i], [this] {
            if (Edstu == Viewing)
                TabS->setFocus();
        });
    }
    Txt[Number]->setMaxLength(longestNumber);
    if (kind_.partnerRule != Partner::TypedName) {
        CmbLB = makeCombo(u"CmbLB"_s);
        enterMovesOn(CmbLB);
        suggestPartners(CmbLB, kind_.partners.toString());
    }
    DTP1 = new DatePicker(u"DTP1"_s);
    DTP1->showAsButton();

    auto* fields = new FieldLayout(4);
    fields->add(Lab[Number], Txt[Number]);
    fields->add(Lab[Date], {Txt[Date], DTP1});
    fields->add(Lab[PartnerName], CmbLB ? static_cast<QWidget*>(CmbLB) : Txt[PartnerName], 2);
    fields->add(Lab[Clerk], Txt[Clerk]);
    fields->add(Lab[Auditor], Txt[Auditor]);
    fields->add(Lab[Remark], Txt[Remark], 2);

    lines = new LineEntry(kind_);
    count_ = makeLabel(u"LabCount"_s, QString());
    for (QLabel* label : {count_, Lab[Total]})
        setLook(label, LabelLook::Field);
    LabKept = makeLabel(u"LabKept"_s, u"这份录入没能存到本机备用（磁盘满了或不能写入），请尽早[保存]。"_s);
    LabLeftOut = makeLabel(u"LabLeftOut"_s, QString());
    for (QLabel* label : {LabKept, LabLeftOut}) {
        label->setProperty("look", u"warning"_s);
        label->setMargin(style::spacing / 2);
        label->hide();
    }
    keeping_ = new QTimer(this);
    connect(keeping_, &QTimer::timeout, this, &DocumentForm::keepEntry);
    showAsTotal(Txt[Total]);
    style::fixWidth(Txt[Total], 160);

    detailPage()->addWidget(LabKept);
    detailPage()->addWidget(LabLeftOut);
    detailPage()->addLayout(fields);
    detailPage()->addWidget(lines, 1);
    detailPage()->addLayout(makeRow({count_, nullptr, Lab[Total], Txt[Total]}));
    if (CmbLB) { // the partner's name; on screen it stands in the list entry
        Txt[PartnerName]->setParent(this);
        Txt[PartnerName]->hide();
    }

    onFocusIn(Txt[Date], [this] {
        if (Edstu != Viewing) {
            DTP1->setText(Txt[Date]->text());
            DTP1->dropDownFor(Txt[Date]);
        }
    });
    connect(DTP1, &DatePicker::picked, this, [this] {
        if (Edstu != Viewing)
            Txt[Date]->setText(DTP1->text());
    });
    connect(lines, &LineEntry::changed, this, [this] {
        Txt[Total]->setText(lines->totalText());
        updateStatus();
    });
    connect(lines, &LineEntry::rowReached, this, &DocumentForm::updateStatus);
}

void DocumentForm::fillPartners()
{
    if (!CmbLB)
        return;
    CmbLB->clear();
    Recordset partners = gDB.OpenRecordset(u"select * from "_s + kind_.partners + u" order by F1"_s);
    for (; !partners.isEOF(); partners.MoveNext())
        CmbLB->addItem(entryOf(partners.Fields(u"F1").text(), partners.Fields(u"F2").text()));
}

// The list ------------------------------------------------------------------------------------------------------------

void DocumentForm::listDrafts()
{
    allDocuments_ = false;
    condition_.clear();
    loadList();
}

void DocumentForm::listAll(const QString& condition)
{
    const auto before = std::pair(allDocuments_, condition_);
    allDocuments_ = true;
    condition_ = condition;
    showTab(ListTab);
    try {
        loadList();
    } catch (const StoreError&) { // what can't be listed must not stand behind the list when it is read anew
        std::tie(allDocuments_, condition_) = before;
        throw;
    }
}

QString DocumentForm::listStatement() const
{
    const QStringView header = kind_.header;
    if (kind_.partnerRule == Partner::TypedName) {
        const QString columns = u"select %1.F1,%1.F2,%1.F3,%1.F5,%1.F6,%1.F9,%1.F10,%1.F3 from %1  "_s.arg(header);
        // Only a Null counts as draft here.
        return columns + (allDocuments_ ? condition_ : u" WHERE  "_s + header + u".F6 is Null"_s) + u" order by "_s +
               header + u".F1"_s;
    }
    const QString columns = u"select %1.F1,%1.F2,%2.F2 AS LB,%1.F5,%1.F6,%1.F9,%1.F10,%1.F3 from "_s;
    // The inner join leaves out a document whose partner is gone; a search shows it.
    const QString drafts = columns + u"%1,%2 WHERE %1.F3=%2.F1 and (%1.F6 is Null or %1.F6='')  order by %1.H8 desc "_s;
    const QString all = columns + u"%1 left join %2 on %1.F3=%2.F1  "_s;
    return allDocuments_ ? all.arg(header, kind_.partners) + condition_ + u" order by "_s + header + u".H8 desc "_s
                         : drafts.arg(header, kind_.partners);
}

void DocumentForm::loadList()
{
    Recordset documents = gDB.OpenRecordset(listStatement());
    QList<QStringList> rows;
    rows.reserve(documents.RecordCount());
    for (; !documents.isEOF(); documents.MoveNext()) {
        QStringList row;
        row.reserve(GD->Cols());
        for (int column = 0; column < GD->Cols(); ++column) {
            const Value& field = documents.Fields(column);
            const bool money = column == Total && gWithMoney != 0 && !field.isNull();
            row += money ? Format(field.number(), u"#0.00") : field.text();
        }
        rows += row;
    }
    fillList(std::move(rows));
}

void DocumentForm::refresh()
{
    loadList();
    if (onDetail())
        loadDetail();
}

void DocumentForm::rowChanged()
{
    updateStatus();
    updateBadge();
}

/// The saved document as a row of the list, in the place of its old one.
void DocumentForm::listSaved(const QString& partnerCode)
{
    if (Edstu == Editing)
        removeListRow(listRow());
    const QString total = gWithMoney != 0 ? Format(Val(Txt[Total]->text()), u"#0.00") : Txt[Total]->text();
    addListRow({Txt[Number]->text(), Txt[Date]->text(), Txt[PartnerName]->text(), Txt[Clerk]->text(), QString(), total,
                Txt[Remark]->text(), partnerCode});
}

// The detail ----------------------------------------------------------------------------------------------------------

void DocumentForm::tabChanged(Tab tab)
{
    if (tab == DetailTab)
        loadDetail();
    else
        selectListRow(listRow());
    updateStatus();
}

void DocumentForm::loadDetail()
{
    LabLeftOut->hide();
    if (listEmpty())
        return clearDetail();
    for (int i = 0; i <= Remark; ++i)
        if (i != Total) // made from the lines
            Txt[i]->setText(listCell(i));
    if (CmbLB)
        CmbLB->setEditText(entryOf(listCell(PartnerCode), listCell(PartnerName)));
    lines->load(listCell(Number));
    updateBadge();
}

void DocumentForm::clearDetail()
{
    for (QLineEdit* edit : Txt)
        edit->clear();
    if (CmbLB) {
        CmbLB->setCurrentIndex(-1);
        CmbLB->clearEditText();
    }
    lines->clear();
    updateBadge();
}

// Modes ---------------------------------------------------------------------------------------------------------------

void DocumentForm::enter(Mode mode)
{
    Edstu = mode;
    LabLeftOut->hide();
    lines->setEntering(true, ReservedNo);
    updateState();
    beginKeeping();
}

void DocumentForm::leaveEntering()
{
    endKeeping();
    Edstu = Viewing;
    lines->setEntering(false);
    updateState();
    loadDetail();
    updateStatus();
    TabS->setFocus(); // from here the letters of the command bar begin the next document
}

void DocumentForm::updateState()
{
    const bool entering = Edstu != Viewing;
    const bool allowed = hasRight(kind_.right);
    showMode();
    for (QAction* action : gated_)
        action->setEnabled(allowed);
    if (QAction* shown = command(controlName(kind_.prints->items.toString(), ShownPrint)))
        shown->setEnabled(allowed && gWithMoney != 0); // it is ruled for prices
    if (QAction* unaudit = command(u"Menu_noOK"_s); unaudit && !isTopAdministrator())
        setCommandVisible(unaudit, false);
    if (!cancelled_)
        setCommandVisible(command(u"Menu_again"_s), false);
    for (const int i : {Number, Date, Remark})
        setLocked(Txt[i], !entering);
    for (const int i : {Clerk, Auditor, Total}) {
        setLocked(Txt[i], true);
        Txt[i]->setFocusPolicy(entering ? Qt::ClickFocus
                                        : Qt::StrongFocus); // Enter goes from one open field to the next
    }
    setLocked(Txt[PartnerName], !entering || CmbLB);
    if (CmbLB)
        CmbLB->setEnabled(entering);
    setCaption(entering ? kind_.title + kind_.warning.toString() : kind_.title.toString());
    DTP1->setEnabled(entering);
    // An operator who may not see these documents sees none of them, also in a form that another one opened.
    setBarred(allowed ? QString() : u"当前操作员没有“%1”权限，不能查看%2。"_s.arg(rightName(kind_.right), kind_.title));
    const bool prices = gWithMoney != 0;
    const TotalCaptions& totals = *kind_.totals;
    GD->SetTextMatrix(0, Total, (prices ? totals.list : totals.listQuantity).toString());
    Lab[Total]->setText((prices ? totals.detail : totals.detailQuantity).toString());
    lines->followSettings();
    updateBadge();
}

void DocumentForm::updateStatus()
{
    const QString name = kind_.statusName.toString();
    QString text;
    if (onDetail()) {
        const int count = lines->count();
        count_->setText(u"货品 %1 种"_s.arg(count));
        text = count == 0
                   ? name + u"明细：无货品信息"_s
                   : u"%1明细：共 %2 条记录 当前为第 %3 条"_s.arg(name).arg(count).arg(qMax(lines->currentRow(), 1));
    } else {
        text = listEmpty() ? u"无单据信息"_s
                           : u"%1列表：共 %2 条记录 当前为第 %3 条"_s.arg(name).arg(GD->Rows() - 1).arg(listRow());
    }
    setStatusPanel(statusPanelOfForms, text);
}

void DocumentForm::updateBadge()
{
    if (Edstu != Viewing)
        setState(u"录入中"_s, BadgeLook::Warning);
    else if (listEmpty())
        setState(QString(), BadgeLook::Warning);
    else if (Trim(listCell(Auditor)).isEmpty())
        setState(u"未审核"_s, BadgeLook::Warning);
    else
        setState(u"已审核"_s, BadgeLook::Good);
}

void DocumentForm::sessionChanged()
{
    cancelled_.reset(); // another operator's
    updateState();
}

bool DocumentForm::queryUnload()
{
    if (Edstu == Viewing)
        return true;
    EditingNotice();
    return false;
}

QString DocumentForm::notice() const
{
    const QString doubt = clockDoubt();
    return doubt.isEmpty() || damaged_.isEmpty() ? doubt + damaged_ : doubt + u'\n' + damaged_;
}

void DocumentForm::unloaded()
{
    LedgerStatus();
}

// Commands ------------------------------------------------------------------------------------------------------------

void DocumentForm::Menu_Add()
{
    beginAdding(numberAgain({}));
    lines->openNextRow();
}

/// @param number reserved
void DocumentForm::beginAdding(const QString& number)
{
    ReservedNo = number;
    fillPartners();
    clearDetail();
    if (CmbLB && CmbLB->count() > 0)
        CmbLB->setCurrentIndex(0);
    Txt[Number]->setText(ReservedNo);
    Txt[Clerk]->setText(gOperName);
    Txt[Date]->setText(todayText());
    enter(Adding);
}

void DocumentForm::Menu_edit()
{
    if (!listCell(Auditor).isEmpty())
        return MsgBox(u"此单据已经审核，不可修改！"_s);
    if (listCell(Number).isEmpty())
        return MsgBox(u"没有数据可修改！"_s);
    fillPartners();
    loadDetail();
    ReservedNo = listCell(Number);
    enter(Editing);
    lines->openNextRow();
}

void DocumentForm::Menu_del()
{
    if (listEmpty())
        return MsgBox(u"无单据可删除！"_s);
    if (!listCell(Auditor).isEmpty())
        return MsgBox(u"该单据已审核，不能删除！"_s);
    const QString number = listCell(Number);
    if (!askYesNo(u"真的要删除编码为"_s + number + u"的单据吗？"_s))
        return;
    {
        const WriteRun run(gDB);
        gDB.Execute(u"delete from "_s + kind_.header + u" WHERE F1="_s + sqlText(number));
        gDB.Execute(u"delete from "_s + kind_.lineTable() + u" WHERE F0="_s + sqlText(number));
    }
    removeListRow(listRow());
    selectListRow(listRow());
    showTab(ListTab);
}

void DocumentForm::Menu_cancel()
{
    if (KeptEntry entry = entryNow(); untouched_.isEmpty() || entry.content() != untouched_)
        cancelled_ = std::move(entry);
    lines->cancelEdit();
    if (Edstu == Adding)
        DanNoRelease(ReservedNo);
    leaveEntering();
}

void DocumentForm::Menu_query()
{
    QList<QueryField> fields;
    const auto offer = [&](ListColumn column, QStringView field, QueryType type = QueryType::Text) {
        fields.append({GD->TextMatrix(0, column), kind_.headerTable() + u'.' + field, type});
    };
    offer(Number, u"F1");
    offer(Date, u"F2", QueryType::Date);
    offer(PartnerName, u"F3"); // compares the partner's code
    offer(Clerk, u"F5");
    offer(Auditor, u"F6");
    offer(Total, u"F9", QueryType::Number);
    offer(Remark, u"F10");
    if (Query::ask(*this, fields))
        listAll(conditionOf(PubSql));
}

void DocumentForm::Menu_print()
{
    Menu_prn(StoredPrint);
}

void DocumentForm::Menu_prn(int index)
{
    if (index == PurchasePrint)
        return printStored(kind_, kind_.prints->purchase, listCell(Number));
    if (index == StoredPrint)
        return printStored(kind_, kind_.prints->report, listCell(Number));
    if (!onDetail())
        loadDetail();
    const bool tenRows = gOutboundFlagB != 0 && !kind_.prints->tenRows.isEmpty();
    const auto text = [this](ListColumn column) { return Txt[column]->text(); };
    printShown(kind_, {text(Number), text(Date), text(PartnerName), text(Clerk), text(Auditor), text(Total)},
               *lines->GdMx, tenRows ? CompactForm::TenRows : CompactForm::Plain);
}

void DocumentForm::Menu_paste()
{
    lines->pasteLines(QGuiApplication::clipboard()->text());
}

void DocumentForm::Menu_Return()
{
    Unload();
}

// Saving --------------------------------------------------------------------------------------------------------------

void DocumentForm::Menu_save()
{
    if (!lines->endEdit() || !headerComplete())
        return;
    const QString partnerCode = enteredPartner();
    QString number = Txt[Number]->text();
    const bool typed = number != ReservedNo;
    // Under the number as the test below trims it. A sync of the local disk, for which nobody else shall wait.
    noteSaving(Trim(number), partnerCode);
    {
        // From the test of the number on, so that nobody else takes it meanwhile; and a consignee who is added comes
        // with the document or not at all.
        const WriteRun run(gDB);
        if (!findPartner(partnerCode))
            return;
        if (lines->isEmpty())
            return MsgBox(u"不能保存空的单据！请录入"_s + kind_.word + u"货品！"_s);
        if (!numberFree(number, typed))
            return;
        write(number, partnerCode);
        if (typed) {
            DanNoRelease(ReservedNo);
            DanNoReserve(number, 1);
        }
    }
    const QString leftOut = lines->codeWithoutLine();
    LabLeftOut->setText(u"单据已经保存，但是“货品编码”栏里的 "_s + leftOut +
                        u" 没有录入：输入数量以后还要按回车。需要的话请按[修改]补录。"_s);
    listSaved(partnerCode);
    try {
        leaveEntering();
    } catch (const StoreError&) { // it is saved and on screen; the next command tells what keeps the ledger away
        TabS->setFocus();
    }
    LabLeftOut->setVisible(!leftOut.isEmpty());
    SavedNotice();
}

bool DocumentForm::headerComplete()
{
    Txt[Number]->setText(Trim(plainWidth(Txt[Number]->text())).toUpper());
    for (const int i : {Number, Date})
        if (Trim(Txt[i]->text()).isEmpty()) {
            refuse(Lab[i]->text() + u"不能为空！"_s, Txt[i]);
            return false;
        }
    QWidget* partner = CmbLB ? static_cast<QWidget*>(CmbLB) : Txt[PartnerName];
    if (Trim(CmbLB ? CmbLB->currentText() : Txt[PartnerName]->text()).isEmpty()) {
        refuse(Lab[PartnerName]->text() + u"不能为空！"_s, partner);
        return false;
    }
    const auto date = parseDate(typedDate(Txt[Date]->text()));
    if (!date) {
        refuse(u"“"_s + Txt[Date]->text() + u"”不是有效的日期！"_s, Txt[Date]);
        return false;
    }
    Txt[Date]->setText(dateText(*date));
    return true;
}

QString DocumentForm::enteredPartner() const
{
    return CmbLB ? Trim(codeOf(CmbLB->currentText())).toUpper() : Txt[PartnerName]->text();
}

bool DocumentForm::findPartner(const QString& code)
{
    if (!CmbLB)
        return true;
    const QString name = LookupValue(gDB, u"select F2 from "_s + kind_.partners + u" where F1="_s + sqlText(code));
    if (name == u"NoFound" && kind_.partnerRule == Partner::AddedIfUnknown && gOutboundFlagA == 1 && !code.isEmpty()) {
        gDB.Execute(u"insert into "_s + kind_.partners + u" (F1,F2) values ("_s + sqlText(code) + u',' + sqlText(code) +
                    u')');
        if (CmbLB->findText(entryOf(code, code)) < 0) // the next document finds the new consignee in the list
            CmbLB->addItem(entryOf(code, code));
        CmbLB->setEditText(code);
        Txt[PartnerName]->setText(code);
        return true;
    }
    if (name.isEmpty() || name == u"NoFound") {
        refuse(Lab[PartnerName]->text() + u"编码输入错误！"_s, CmbLB);
        return false;
    }
    Txt[PartnerName]->setText(name);
    return true;
}

bool DocumentForm::numberFree(QString& number, bool typed)
{
    if (typed && !DanNoFree(number)) {
        refuse(u"系统内已经有其它单据使用了 "_s + number + u" 这个单号!"_s, Txt[Number]);
        return false;
    }
    const QString used = LookupValue(gDB, u"select F1 from "_s + kind_.header + u" where F1="_s + sqlText(number));
    if (used == u"NoFound" || (Edstu == Editing && sameText(used, listCell(Number))))
        return true;
    // The bracket of the first text faces the wrong way; operators know it so.
    refuse(u"已经存在["_s + number + (Edstu == Adding ? u"["_s : u"]"_s) + u"这个编码，请重新设置编码!"_s, Txt[Number]);
    return false;
}

/// A draft is written whole: the old rows go, lines first, then header and lines are inserted afresh.
void DocumentForm::write(const QString& number, const QString& partnerCode)
{
    const QString header = kind_.headerTable();
    const QString lineTable = kind_.lineTable();
    if (Edstu == Editing) {
        const QString oldNumber = sqlText(listCell(Number));
        gDB.Execute(u"delete from "_s + lineTable + u" where F0="_s + oldNumber);
        gDB.Execute(u"delete from "_s + header + u" where F1="_s + oldNumber);
    }
    const bool stamped = kind_.stamp == Stamp::SaveTime;
    QStringList headerTexts{number, Txt[Date]->text(), partnerCode, Txt[Clerk]->text()};
    if (stamped)
        headerTexts.prepend(nowText());
    gDB.Execute(u"insert into "_s + header + (stamped ? u" (H8,F1,F2,F3,F5,F9,F10)"_s : u" (F1,F2,F3,F5,F9,F10)"_s) +
                u" VALUES ("_s + sqlTexts(headerTexts) + u',' + sqlNumber(Val(Txt[Total]->text())) + u',' +
                sqlText(Txt[Remark]->text()) + u')');
    const bool counted = kind_.sheet->counted;
    for (const DocumentLine& line : lines->lines())
        gDB.Execute(u"insert into "_s + lineTable + (counted ? u" (F0,F1,F5,F6,F7,F8)"_s : u" (F0,F1,F6,F7,F8)"_s) +
                    u" VALUES ("_s + sqlTexts({number, line.code}) + u',' +
                    (counted ? sqlNumber(line.book) + u',' : QString()) + sqlNumber(line.quantity) + u',' +
                    sqlNumber(line.price) + u',' + sqlText(line.remark) + u')');
}

// Audit ---------------------------------------------------------------------------------------------------------------

void DocumentForm::Menu_Ok()
{
    if (listEmpty())
        return MsgBox(u"没有供审核的单据！"_s);
    if (!Trim(listCell(Auditor)).isEmpty()) // as the list shows it; the ledger isn't asked again
        return MsgBox(u"该单据已审核，不需要再次审核！"_s);
    if (!auditable() || !move(AuditStep::Audit))
        return;
    listAfterAudit();
}

/// Lock date and question, in the order that each kind has.
bool DocumentForm::auditable()
{
    const auto lockDate = [this] { return afterLockDate(u"单据日期不能在 "_s, u" 之前！"_s); };
    const auto question = [this] {
        return askYesNo(kind_.auditWarning + u"\n\n审核后单据将不可修改！\n\n真的要继续吗？"_s);
    };
    return kind_.firstCheck == FirstCheck::LockDate ? lockDate() && question() : question() && lockDate();
}

bool DocumentForm::afterLockDate(const QString& before, const QString& behind)
{
    {
        const ReadRun reads(gDB);
        requireReadable(gDB); // a look-up that failed would open the days of saved reports again
        LoadYearStart();
    }
    const auto days = DateDiff(gYearStart, listCell(Date));
    if (!days)
        MsgBox(u"“"_s + listCell(Date) + u"”不是有效的日期！"_s);
    else if (*days < 0)
        MsgBox(before + gYearStart + behind, QString());
    return days && *days >= 0;
}

/// Goods records one by one, the header last: a document is audited only when all its lines are.
bool DocumentForm::move(AuditStep step)
{
    const WriteRun run(gDB);
    if (!onDetail())
        loadDetail();
    const QString number = Trim(Txt[Number]->text());
    for (int row = 1; row < lines->GdMx->Rows(); ++row) {
        const QString code = lines->GdMx->TextMatrix(row, 0);
        const double quantity = Val(lines->GdMx->TextMatrix(row, 3));
        const double price = Val(lines->GdMx->TextMatrix(row, 4));
        if (kind_.stock == Stock::ByDifference) {
            postDifference(gDB, code, quantity - Val(lines->GdMx->TextMatrix(row, 2)));
        } else if (!moveLine(gDB, kind_, step, number, code, quantity, price)) {
            // The lines before it stay applied, and an audit after the code is restored applies them again: so it was
            // agreed, and only the operator can say what has really moved.
            MsgBox(u"货品编码资料丢失！"_s, QString(), BoxIcon::Exclamation);
            return false;
        }
    }
    const QString auditor = step == AuditStep::Audit ? gOperName : QString();
    gDB.Execute(u"update "_s + kind_.header + u" set F6="_s + sqlText(auditor) +
                (kind_.stamp == Stamp::SaveTime ? u",H8="_s + sqlText(nowText()) : QString()) + u" where F1="_s +
                sqlText(number));
    return true;
}

void DocumentForm::listAfterAudit()
{
    if (allDocuments_) {
        GD->SetTextMatrix(listRow(), Auditor, gOperName);
        Txt[Auditor]->setText(gOperName);
        updateBadge();
        return;
    }
    removeListRow(listRow());
    selectListRow(listRow());
    if (onDetail())
        loadDetail(); // another document is current now
}

void DocumentForm::Menu_noOK()
{
    if (!isTopAdministrator()) // hidden for everybody else, and asked again for who came in by another way
        return;
    const bool inbound = kind_.wording == Wording::Inbound;
    if (listEmpty())
        return MsgBox(inbound ? u"请选择要操作的数据行！"_s : u"请选择要操作的行！"_s);
    if (Trim(listCell(Auditor)).isEmpty())
        return MsgBox(inbound ? u"该单据未审核，不能执行撤销审核！"_s : u"该单据未审核，不能做撤销审核操作！"_s);
    if (!afterLockDate(u"单据日期在 "_s, u" 之前，不能撤销审核！"_s))
        return;
    const QString warning =
        inbound ? u"如果这批已审核入库的货品已经出库，\n\n撤销审核操作可能会造成库存货品数据出现负数！"_s
                : u"撤销审核操作将对库存货品进行更新，\n\n请小心操作！"_s;
    if (!askYesNo(warning + u"\n\n真的要继续吗？"_s) || !move(AuditStep::Unaudit))
        return;
    Txt[Auditor]->clear();
    GD->SetTextMatrix(listRow(), Auditor, QString());
    updateBadge();
}
