#include "reports/C15.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/status.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "reports/five_places.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"
#include "reports/statistics_mode.h"

namespace {

const QString allPartners = u"所有单位"_s;

constexpr int firstFlowNumber = 9;
constexpr int lastFlowNumber = 15;
constexpr int flowUnused = 7; ///< of the staged text columns
constexpr int stepsOfKind = 1000;

Listing flowListing()
{
    const auto money = [](const QString& caption, const QString& field, bool summed) {
        return ListColumn{caption, 70, field, ListContent::Money, summed};
    };
    const auto quantity = [](const QString& caption, const QString& field, bool summed) {
        return ListColumn{caption, 56, field, ListContent::Quantity, summed};
    };
    return {.caption = u"货品进出流水帐"_s,
            .statusName = u"货品进出流水帐"_s,
            .totalCaption = u"合计："_s,
            .right = OperatorRight::Cost,
            .columns = {{u"单据号码"_s, 104, u"F1"_s},
                        {u"发生日期"_s, 80, u"F2"_s, ListContent::Date},
                        {u"往来单位"_s, 100, u"F3"_s},
                        {u"单据附注"_s, 62, u"F4"_s},
                        {u"类别"_s, 62, u"F5"_s},
                        {u"货品编码"_s, 82, u"F6"_s},
                        {u"货品名称"_s, 110, u"F7"_s},
                        {u"规格"_s, 62, u"F8"_s},
                        {u"单位"_s, 40, u"F9"_s},
                        money(u"价格"_s, u"F10"_s, false),
                        quantity(u"入库数"_s, u"F11"_s, true),
                        money(u"金额"_s, u"F12"_s, true),
                        quantity(u"出库数"_s, u"F13"_s, true),
                        money(u"金额"_s, u"F14"_s, true),
                        quantity(u"结存数"_s, u"F15"_s, false),
                        money(u"金额"_s, u"F16"_s, false),
                        {u"备注"_s, 60, u"F17"_s}},
            .from = u"TC15"_s,
            .condition = {},
            .filter = {},
            .orders = {u"F1"_s, u"F2"_s, u"F3"_s, u"F5"_s, u"F6"_s, u"F11 desc"_s, u"F13 desc"_s, u"F12 desc"_s,
                       u"F14 desc"_s, u"F18"_s},
            .stretched = 6,
            .numbers = NumberStyle::FivePlaces,
            .none = FlowFilter::none(false)};
}

/// The lines of one kind of document, drafts among them.
QString flowStatement(const StatisticsTraits& kind, const QString& conditions)
{
    const QString moved = u"%31.F6,%31.F6*%31.F7 AS je,"_s;
    const QString still = u"0 as CS,0 as CJ,"_s;
    const QString text =
        u"select %3.F1,%3.F2,%2.F2 AS BuMen,%3.F10,TA3.F2,%31.F1,TA4.F2,TA4.F5,TA4.F4,%31.F7,"_s +
        (kind.direction == Direction::In ? moved + still : still + moved) +
        u"%31.H6,%31.H6*%31.H7,%31.F8,%3.H8 from (%3 left join %2 on %3.F3=%2.F1) left join (%31 left Join (TA4 left "
        "join TA3 on TA4.F3=TA3.F1) on %31.F1=TA4.F1) on %31.F0=%3.F1   Where "_s;
    return QString(text).replace(u"%3"_s, kind.header.toString()).replace(u"%2"_s, kind.partners.toString()) +
           conditions;
}

/// A gathered line as it goes into the table. Numbers are kept to five places.
QString flowInsert(const StatisticsTraits& kind, const Recordset& line)
{
    constexpr int lastText = 8, lastNumber = 15, remark = 16, booked = 17;
    constexpr int usualLength = 512;
    // In the columns of the returns a name has always been written with a blank in it; the store reads it as one.
    const bool broken = kind.mode == StatisticsMode::B4;
    QString statement;
    statement.reserve(usualLength);
    statement += u"INSERT INTO TC15 (F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,"_s + (broken ? u"F1 4"_s : u"F14"_s) +
                 u",F15,F16,F17,F18) values ("_s;
    for (int i = 0; i <= lastText; ++i)
        statement += sqlText(line.Fields(i).text()) + u',';
    for (int i = lastText + 1; i <= lastNumber; ++i)
        statement += fivePlaces(line.Fields(i).number()) + u',';
    return statement + sqlText(line.Fields(remark).text()) + u',' +
           sqlText(line.Fields(booked).isNull() ? u"00-01-01"_s : line.Fields(booked).text()) + u')';
}

} // namespace

/// The panel with its button stands, and nothing else can be reached, while this lives.
class C15::Gathering
{
public:
    explicit Gathering(C15& form)
        : form_(form)
        , focus_(form.focusWidget())
    {
        form_.cancelled_ = false;
        set(true);
    }
    ~Gathering()
    {
        set(false);
        if (focus_)
            focus_->setFocus();
    }
    Gathering(const Gathering&) = delete;
    Gathering& operator=(const Gathering&) = delete;

private:
    void set(bool on)
    {
        form_.gathering_ = on;
        form_.filter_->setEnabled(!on);
        form_.commandBar()->setEnabled(!on);
        form_.CmdCancel->setEnabled(on);
        form_.cancelfrm->setVisible(on);
        if (on) {
            form_.placePanel();
            form_.cancelfrm->repaint();
        }
    }

    C15& form_;
    QPointer<QWidget> focus_;
};

C15::C15()
    : ListForm(formName())
{
    filter_ = new FlowFilter(5, [this] { generate(); });
    CmbF3 = makeCombo(u"CmbF3"_s);
    CmbF3->addItem(allPartners, QString());
    for (const QString& table : {u"TA1"_s, u"TA2"_s})
        for (Recordset rows = gDB.OpenRecordset(u"select F1,F2 from "_s + table); !rows.isEOF(); rows.MoveNext())
            CmbF3->addItem(entryOf(rows.Fields(0).text(), rows.Fields(1).text()), rows.Fields(0).text());
    enterMovesOn(CmbF3);
    filter_->add(u"往来单位："_s, CmbF3);
    content()->insertWidget(0, filter_);

    cancelfrm = makePanel(u"cancelfrm"_s);
    cancelfrm->setParent(this);
    CmdCancel = makeButton(u"CmdCancel"_s, u"取消操作"_s, [this] { cancel(); });
    auto* inside = new QVBoxLayout(cancelfrm);
    inside->setContentsMargins(40, 24, 40, 24);
    inside->setSpacing(2 * style::spacing);
    inside->addWidget(makeLabel(u"LabCancel"_s, u"请稍候，正在整理数据……"_s));
    inside->addWidget(CmdCancel, 0, Qt::AlignCenter);
    CmdCancel->setEnabled(false);
    cancelfrm->hide();

    addSortMenu(0, {u"&1.按单据号码", u"&2.按单据日期", u"&3.按往来单位", u"&4.按所属类别", u"&5.按货品编码",
                    u"&6.按入库数量", u"&7.按出库数量", u"&8.按入库金额", u"&9.按出库金额", u"&0.按记帐顺序"});
    QMenu* prices = addCommandMenu(u"Menu_M"_s, u"&M.价格"_s);
    for (const auto& [index, caption] : {std::pair(0, u"&1.成本价格"_s), {1, u"&1.销售价格"_s}}) {
        priceItems_[index] = addCommand(prices, controlName(u"Menu_Price"_s, index), caption, [this, index = index] {
            for (int i : {0, 1})
                priceItems_[i]->setChecked(i == index);
        });
        priceItems_[index]->setCheckable(true);
    }
    priceItems_[0]->setChecked(true);
    setCommandVisible(prices->menuAction(), false); // a line has one price, its own
    QMenu* prints = addCommandMenu(u"Menu_P"_s, u"&P.打印"_s);
    addListCommand(prints, u"menu_P01"_s, u"&1.货品进出数量明细"_s, [this] { menu_P01(); });
    addListCommand(prints, u"menu_P02"_s, u"&2.货品进出金额明细"_s, [this] { menu_P02(); });
    addBarcodeCommand();
    addReturnCommand();
    openDocumentsOf([] { return QList{DocumentKind::B1, DocumentKind::B3, DocumentKind::D1, DocumentKind::D3}; });
    readSettings();
    shown_ = choice();
    empty(flowListing()); // the rows in the table may be another operator's
}

void C15::readSettings()
{
    const Recordset last = gDB.OpenRecordset(u"select * from c15set"_s);
    if (last.isEOF())
        return;
    filter_->DTP[0]->setText(last.Fields(u"D1").text());
    filter_->DTP[1]->setText(last.Fields(u"D2").text());
    filter_->chooseCategory(last.Fields(u"A3").text());
    if (const QString goods = last.Fields(u"A4").text(); !goods.isEmpty())
        filter_->Txt->setText(goods);
}

C15::Choice C15::choice()
{
    Choice choice{filter_->choice(), Trim(CmbF3->currentText()), {}};
    choice.partnerName = choice.partner.isEmpty() ? allPartners : PartnerName(choice.partner);
    // What is picked counts by its code, what is typed as it stands.
    if (const int item = CmbF3->findText(CmbF3->currentText(), Qt::MatchExactly | Qt::MatchCaseSensitive); item >= 0)
        choice.partner = CmbF3->itemData(item).toString();
    return choice;
}

// Gathering -----------------------------------------------------------------------------------------------------------

void C15::generate()
{
    if (gathering_ || !requireRight(listing().right))
        return;
    BusyProgress progress(busyText, stepsOfKind * qint64(statisticsTraits.size()));
    Choice asked;
    {
        const Gathering gathering(*this);
        gDB.Execute(u"delete from TC15"_s);
        DoEvents(); // the only moment at which the cancel button can be reached
        asked = choice();
        const WriteRun run(gDB);
        gather(asked, progress);
        gDB.Execute(u"DELETE FROM C15SET"_s);
        gDB.Execute(
            u"INSERT INTO c15set (D1,D2,A3,A4) values ("_s +
            sqlTexts({asked.from, asked.to, asked.categoryWords, asked.goods.isEmpty() ? allGoods : asked.goods}) +
            u')');
    }
    Listing next = flowListing();
    next.order = listing().order;
    next.none = FlowFilter::none(true);
    list(std::move(next));
    shown_ = asked;
    goToList();
}

void C15::cancel()
{
    cancelfrm->hide();
    CmdCancel->setEnabled(false);
    cancelled_ = true;
}

void C15::gather(const Choice& choice, BusyProgress& progress)
{
    for (const StatisticsTraits& kind : statisticsTraits) {
        const QString header = kind.header.toString();
        QString conditions = u"datediff('d',%1,%3.F2 ) >= 0 and  datediff('d',%2,%3.F2 ) <= 0 "_s.arg(
            sqlText(choice.from), sqlText(choice.to), header);
        if (!choice.category.isEmpty())
            conditions += u" and TA4.F3="_s + sqlText(choice.category) + u' ';
        if (!choice.goods.isEmpty())
            conditions += u" and "_s + header + u"1.F1 like "_s + sqlText(choice.goods) + u' ';
        if (!choice.partner.isEmpty())
            conditions += u"and "_s + header + u".F3 like "_s + sqlText(choice.partner) + u' ';
        Recordset lines = gDB.OpenRecordset(flowStatement(kind, conditions));
        const qint64 count = lines.RecordCount();
        qint64 told = 0;
        for (qint64 row = 1; !lines.isEOF(); lines.MoveNext(), ++row) {
            gDB.Execute(flowInsert(kind, lines));
            if (cancelled_)
                break; // the rows so far stay, and each of the other documents still gives its first
            const qint64 done = stepsOfKind * row / count;
            progress.advance(done - told);
            told = done;
        }
    }
}

// Printing ------------------------------------------------------------------------------------------------------------

void C15::menu_P01()
{
    print(u"Plstsl.rpt"_s);
}

void C15::menu_P02()
{
    print(u"Plstje.rpt"_s);
}

void C15::print(const QString& reportFile)
{
    // Both layouts hang on this file, which stands for their installation.
    if (!requireRecords(u"没有数据可打印！"_s) || !requireReportFile(u"prntc15.rpt"_s, u"报表文件prntc15.rpt丢失！"_s))
        return;
    QList<int> texts;
    QList<int> numbers;
    for (int column = 0; column < GD->Cols(); ++column)
        (column >= firstFlowNumber && column <= lastFlowNumber ? numbers : texts) += column;
    QList<QStringList> rows = gridRows(*GD, count(), texts, numbers);
    const QStringList unused(flowUnused, u"''"_s);
    for (QStringList& row : rows)
        row = row.mid(0, texts.size()) + unused + row.mid(texts.size());
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8,F9,F10,F11,F12,F13,F14,F15,M1,M2,V1,V2,V3,V4,V5,V6,V7"_s,
              numberedRows(std::move(rows), u"#0000000"));
    preview({reportFile,
             {formula(u"RQ", u"报表周期："_s + shown_.from + u"至"_s + shown_.to),
              formula(u"LB", u"货品类别："_s + shown_.categoryWords), formula(u"cpt", u"货品进出流水帐"),
              formula(u"kh", u"往来单位："_s + shown_.partnerName)},
             {}});
}

// The window ----------------------------------------------------------------------------------------------------------

void C15::showState()
{
    ListForm::showState();
    filter_->setVisible(hasRight(listing().right));
}

void C15::placePanel()
{
    cancelfrm->adjustSize();
    cancelfrm->move((width() - cancelfrm->width()) / 2, (height() - cancelfrm->height()) / 2);
    cancelfrm->raise();
}

void C15::resizeEvent(QResizeEvent* event)
{
    ListForm::resizeEvent(event);
    placePanel();
}

QWidget* C15::firstFocus()
{
    return filter_->DTP[0];
}
