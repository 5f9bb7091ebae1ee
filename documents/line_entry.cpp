#include "documents/line_entry.h"

#include "documents/PasteRefused.h"
#include "documents/goods_lookup.h"
#include "documents/line_paste.h"
#include "documents/new_goods_panel.h"
#include "documents/sufficiency.h"
#include "documents/suggesting.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/width.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "platform/widgets/suggestions.h"

#include <QApplication>
#include <QClipboard>
#include <QFrame>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

namespace {

const QString codeCaption = u"货品编码"_s;
const QString scanSection = u"Scan"_s; ///< of the user's settings, by operator

double cellNumber(const Grid& grid, int row, int column)
{
    return Val(grid.TextMatrix(row, column));
}

/// The keys in one line. Where the fields leave too little room, the last ones go as a whole.
class KeyHint : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QString shown = text();
        while (fontMetrics().horizontalAdvance(shown) > width())
            shown = shown.section(gap, 0, -2);
        QPainter painter(this);
        style()->drawItemText(&painter, rect(), alignment().toInt(), palette(), isEnabled(), shown, foregroundRole());
    }

private:
    static constexpr QChar gap = u'\u3000';
};

} // namespace

LineEntry::LineEntry(const DocumentTraits& kind)
    : kind_(kind)
{
    build();
    GdMx->mayEdit = [this](int row, int column) { return mayEdit(row, column); };
    GdMx->endEditing = [this](int row, int column, const QString& before, const QString& after) {
        return finishCell(row, column, before, after);
    };
    GdMx->nextCell = [this](int row, int column) { return cellAfter(row, column); };
    connect(GdMx, &Grid::cellReached, this, [this](int row, int) { runCommand([&] { followCell(row); }); });
    connect(GdMx, &Grid::currentRowChanged, this, &LineEntry::rowReached);

    connectCode();
    connectScan();
    onFocusIn(TxtSL, [this] {
        if (Val(TxtSL->text()) == 0)
            TxtSL->setText(u"1"_s);
        TxtSL->selectAll();
    });
    onFocusOut(TxtSL, [this] {
        if (Val(TxtSL->text()) < 0)
            TxtSL->setText(u"0"_s);
    });
    connect(TxtSL, &QLineEdit::returnPressed, this, [this] {
        runCommand([this] {
            if (Trim(TxtHPBM->text()).isEmpty())
                TxtHPBM->setFocus();
            else
                AddGoodsLine();
        });
    });
    connect(lookup, &GoodsLookup::chosen, this, &LineEntry::takeGoods);
    connect(lookup, &GoodsLookup::left, TxtHPBM, qOverload<>(&QWidget::setFocus));
    if (newGoods) {
        connect(lookup, &GoodsLookup::newGoodsWanted, this, [this] {
            lookup->hide(); // both would leave no room for the lines
            newGoods->open(TxtHPBM->text());
        });
        connect(newGoods, &NewGoodsPanel::left, TxtHPBM, qOverload<>(&QWidget::setFocus));
        connect(newGoods, &NewGoodsPanel::added, this, [this](const QString& code, const QString& quantity) {
            TxtHPBM->setText(code);
            TxtSL->setText(quantity);
            AddGoodsLine();
        });
    }
    followSettings();
    setEntering(false);
}

void LineEntry::connectCode()
{
    connect(TxtHPBM, &QLineEdit::returnPressed, this, [this] { runCommand([this] { enterCode(); }); });
    for (QWidget* widget : {static_cast<QWidget*>(TxtHPBM), static_cast<QWidget*>(TxtSL), static_cast<QWidget*>(GdMx),
                            static_cast<QWidget*>(GdMx->TxtEnter)})
        widget->installEventFilter(this);
    const QString stockCaption = kind_.sheet->stockCaption.toString();
    suggestGoods(TxtHPBM, stockCaption);
    Suggestions* inCell = suggestGoods(GdMx->TxtEnter, stockCaption, u"GdCellSuggest"_s);
    inCell->find = [this, all = inCell->find](const QString& typed) {
        return GdMx->Col() == Code ? all(typed) : QList<QStringList>();
    };
}

void LineEntry::connectScan()
{
    connect(ChkScan, &QCheckBox::clicked, this, [this](bool on) {
        runCommand([&] {
            SaveSetting(gProgramName, scanSection, gOperId, on ? u"1"_s : u"0"_s);
            QGuiApplication::inputMethod()->update(Qt::ImEnabled);
            if (GdMx->endEdit())
                focusCode();
        });
    });
}

void LineEntry::build()
{
    TxtHPBM = makeEdit(u"TxtHPBM"_s, -1, EditKind::Code);
    style::fixWidth(TxtHPBM, 150);
    TxtSL = makeEdit(u"TxtSL"_s, -1, EditKind::Number);
    style::fixWidth(TxtSL, 90);
    CmdQuery = makeButton(
        u"CmdQuery"_s, u"?"_s, [this] { lookUp(); }, -1, ButtonLook::Compact);
    CmdQuery->setToolTip(u"查找货品编码资料"_s);
    CmdEnter = makeButton(
        u"CmdEnter"_s, u"增加货品"_s, [this] { AddGoodsLine(); }, -1, ButtonLook::Primary);
    CmdDel = makeButton(u"CmdDel"_s, u"删除货品"_s, [this] { deleteLine(); });
    ChkScan = makeCheck(u"ChkScan"_s, u"连续扫码(F8)"_s);
    ChkScan->setToolTip(u"扫一次编码，加一件"_s);
    auto* hint = new KeyHint(u"回车：下一格　Esc：放弃本格　↓：改明细　F2：货品编码　F3："_s + kind_.partner +
                             u"　F4：查找货品"_s);
    hint->setObjectName(u"LabHint"_s);
    auto* codeLabel = makeLabel(u"LabHPBM"_s, codeCaption);
    auto* quantityLabel = makeLabel(u"LabSL"_s, u"数量"_s);
    for (QLabel* label : {static_cast<QLabel*>(hint), codeLabel, quantityLabel})
        setLook(label, LabelLook::Field);
    hint->setMinimumWidth(1); // with a large font it gives way before the fields do
    auto* row = makeRow({codeLabel, TxtHPBM, CmdQuery, quantityLabel, TxtSL, CmdEnter, CmdDel, ChkScan, nullptr, hint});

    lookup = new GoodsLookup(kind_.sheet->stockCaption.toString(), kind_.newGoods == NewGoods::Panel);
    PicLRQ = makePanel(u"PicLRQ"_s);
    auto* panel = new QVBoxLayout(PicLRQ);
    panel->setContentsMargins(style::spacing, style::spacing - 2, style::spacing, style::spacing - 2);
    panel->addLayout(row);
    panel->addWidget(lookup);
    if (kind_.newGoods == NewGoods::Panel) {
        newGoods = new NewGoodsPanel;
        panel->addWidget(newGoods);
    }

    const LineSheet& sheet = *kind_.sheet;
    const auto captionOf = [this](QStringView word, QStringView what) {
        return (word.isEmpty() ? kind_.word : word) + what.toString();
    };
    GdMx = new Grid(u"GdMx"_s);
    GdMx->setColumns({{codeCaption, 130},
                      {u"货品名称/规格"_s, 330},
                      {sheet.thirdCaption.toString(), sheet.counted ? 100 : 76,
                       sheet.counted ? ColumnKind::Number : ColumnKind::Centred},
                      {captionOf(sheet.quantityWord, u"数量"), 100, ColumnKind::Number},
                      {captionOf(sheet.priceWord, u"价格"), 100, ColumnKind::Number},
                      {sheet.amountCaption.toString(), 120, ColumnKind::Number},
                      {u"备注"_s, 160, ColumnKind::Text, false, true}});
    GdMx->rememberWidths(kind_.form + u"/GdMx"_s);
    GdMx->clearRows();
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(style::spacing);
    all->addWidget(PicLRQ);
    all->addWidget(GdMx, 1);
}

void LineEntry::followSettings()
{
    for (const int column : {Price, Amount})
        GdMx->setColumnVisible(column, gWithMoney != 0);
}

void LineEntry::load(const QString& number)
{
    const QString columns = u"select %1.F1,TA4.F2+'/'+TA4.F5 AS MC,"_s + kind_.sheet->storedThird + u",%1.F6,%1.F7,"_s +
                            kind_.sheet->storedAmount + u" AS JE,%1.F8 FROM %1,TA4 WHERE %1.F1=TA4.F1 AND %1.F0="_s;
    const QString lines = kind_.lineTable();
    Recordset rows = gDB.OpenRecordset(columns.arg(lines) + sqlText(number) + u" ORDER BY "_s + lines + u".F1"_s);
    QList<QStringList> cells;
    for (; !rows.isEOF(); rows.MoveNext()) {
        QStringList row;
        for (int column = Code; column <= Remark; ++column) {
            const Value& field = rows.Fields(column);
            const bool money = (column == Price || column == Amount) && !field.isNull();
            row += money ? Format(field.number(), gPriceFormat) : field.text();
        }
        cells += row;
    }
    if (cells.isEmpty())
        GdMx->clearRows();
    else
        GdMx->setRows(std::move(cells));
    emit changed();
}

void LineEntry::clear()
{
    GdMx->clearRows();
    TxtHPBM->clear();
    TxtSL->clear();
    emit changed();
}

void LineEntry::setEntering(bool entering, const QString& storedNumber)
{
    entering_ = entering;
    storedNumber_ = storedNumber;
    PicLRQ->setVisible(entering);
    if (entering) {
        showPanelTexts({}, {}); // what another entry left there
        ChkScan->setChecked(GetSetting(gProgramName, scanSection, gOperId) == u"1");
    }
    lookup->hide();
    if (newGoods)
        newGoods->drop();
}

void LineEntry::openNextRow()
{
    keepEmptyRow();
    if (ChkScan->isChecked()) {
        GdMx->select(GdMx->Rows() - 1, Code);
        return focusCode();
    }
    GdMx->setFocus();
    GdMx->edit(GdMx->Rows() - 1, Code);
}

void LineEntry::focusCode()
{
    focusText(TxtHPBM);
}

bool LineEntry::endEdit()
{
    return GdMx->endEdit();
}

void LineEntry::cancelEdit()
{
    GdMx->cancelEdit();
}

bool LineEntry::isEmpty() const
{
    return Trim(GdMx->TextMatrix(1, Code)).isEmpty();
}

QList<DocumentLine> LineEntry::lines() const
{
    QList<DocumentLine> result;
    for (int row = 1; row < GdMx->Rows(); ++row)
        if (const QString code = GdMx->TextMatrix(row, Code); !Trim(code).isEmpty())
            result.append({code, cellNumber(*GdMx, row, Quantity), cellNumber(*GdMx, row, Third),
                           cellNumber(*GdMx, row, Price), GdMx->TextMatrix(row, Remark)});
    return result;
}

int LineEntry::count() const
{
    int count = 0;
    for (int row = 1; row < GdMx->Rows(); ++row)
        count += Trim(GdMx->TextMatrix(row, Code)).isEmpty() ? 0 : 1;
    return count;
}

int LineEntry::currentRow() const
{
    return GdMx->Row();
}

QString LineEntry::totalText() const
{
    double total = 0;
    for (int row = 1; row < GdMx->Rows(); ++row)
        total += gWithMoney != 0 ? cellNumber(*GdMx, row, Amount) : weight(row);
    return gWithMoney != 0 ? Format(total, gPriceFormat) : NumText(total);
}

void LineEntry::AddGoodsLine()
{
    if (!GdMx->endEdit())
        return;
    const QString code = Trim(TxtHPBM->text());
    const double quantity = qMax(Val(TxtSL->text()), 0.0);
    if (code.isEmpty())
        return TxtHPBM->setFocus();
    if (quantity == 0)
        return TxtSL->selectAll();
    if (!meantAsQuantity(TxtSL->text()))
        return focusText(TxtSL);
    const int present = findRow(code);
    if (const Refusal refusal = place(code, quantity)) {
        if (ChkScan->isChecked())
            Beep(); // who scans doesn't look at the screen
        MsgBox(refusal.text, refusal.title);
        return focusText(refusal.unknown ? TxtHPBM : TxtSL);
    }
    if (present) {
        GdMx->select(present, Quantity);
        emit changed();
        focusCode(); // the next code overwrites it
        return;
    }
    GdMx->select(findRow(code), Code);
    emit changed();
    TxtHPBM->clear();
    TxtHPBM->setFocus();
}

LineEntry::Refusal LineEntry::place(const QString& code, double quantity)
{
    const auto shortage = [&](double wanted) {
        return kind_.entry == Entry::Free ? QString() : stockShortage(code, wanted, storedNumber_);
    };
    if (const int row = findRow(code)) {
        const double sum = cellNumber(*GdMx, row, Quantity) + quantity;
        if (const QString missing = shortage(sum); !missing.isEmpty())
            return {missing, {}};
        setNumber(row, Quantity, sum);
        return {};
    }
    // The quantity stands in the select list, so that the record has the grid's columns in order.
    const Recordset goods =
        gDB.OpenRecordset(u"select F1,(F2+'/'+F5) AS MC,"_s + kind_.sheet->third + u',' + NumText(quantity) +
                          u" as sl,"_s + kind_.newLinePrice + u" from TA4 where F1="_s + sqlText(code));
    if (goods.isEOF())
        return {
            u"货品资料库中不存在“%1”这个%1！\n请点击“？”按钮查找系统中存在的%1，\n或在基础数据中增加新的货品资料！"_s
                .arg(codeCaption),
            u"提示"_s, u"货品资料库中没有这个编码"_s, true};
    if (const QString missing = shortage(quantity); !missing.isEmpty())
        return {missing, {}};
    keepEmptyRow();
    const int row = GdMx->Rows() - 1;
    for (int column = Code; column <= Quantity; ++column)
        GdMx->SetTextMatrix(row, column, goods.Fields(column).text());
    GdMx->SetTextMatrix(row, Price, offeredPrice(goods.Fields(Price)));
    updateAmount(row);
    keepEmptyRow();
    return {};
}

/// What Enter does in the code box: a scanner types a code and presses it.
void LineEntry::enterCode()
{
    if (!ChkScan->isChecked())
        return TxtSL->setFocus();
    TxtSL->setText(u"1"_s);
    AddGoodsLine();
    focusCode();
}

/// The name of the goods whose code stands where a quantity should, as a scanner leaves it that meets that field;
/// nothing for a text that is a quantity.
std::optional<QString> LineEntry::scannedName(const QString& text)
{
    constexpr qsizetype shortestScanned = 8;
    const QString code = Trim(plainWidth(text));
    if (code.size() < shortestScanned || !std::all_of(code.begin(), code.end(), [](QChar c) { return c.isDigit(); }))
        return std::nullopt;
    const Recordset goods = gDB.OpenRecordset(u"select F2 from TA4 where F1="_s + sqlText(code));
    return goods.isEOF() ? std::nullopt : std::optional(goods.Fields(0).text());
}

bool LineEntry::meantAsQuantity(const QString& text)
{
    const auto name = scannedName(text);
    return !name || askYesNo(u"数量“"_s + Trim(text) + u"”是货品“"_s + *name +
                                 u"”的编码，可能是扫码时光标在数量栏。\n\n真的要把它作为数量吗？"_s,
                             u"提示"_s, Answer::No);
}

// Lines from a spreadsheet --------------------------------------------------------------------------------------------

void LineEntry::pasteLines(const QString& text)
{
    if (!entering_ || !GdMx->endEdit())
        return;
    const QList<PastedLine> pasted = pastedLines(text);
    if (pasted.isEmpty())
        return MsgBox(
            u"剪贴板中没有可以录入的行。\n\n请先在电子表格中复制货品编码、数量、价格、备注各列，再来粘贴。"_s);
    QList<QStringList> before;
    for (int row = 1; row < GdMx->Rows(); ++row)
        before += GdMx->rowTexts(row);
    QList<RefusedLine> refused;
    qsizetype entered = 0;
    try {
        const ReadRun reads(gDB);
        for (const PastedLine& line : pasted) {
            QString note;
            const QString reason = placePasted(line, note);
            entered += reason.isEmpty();
            if (!reason.isEmpty() || !note.isEmpty())
                refused.append({line, reason.isEmpty() ? note : reason});
        }
    } catch (...) {
        GdMx->setRows(before); // so that pasting again enters nothing twice
        throw;
    }
    GdMx->select(GdMx->Rows() - 1, Code);
    emit changed();
    TxtHPBM->clear();
    TxtHPBM->setFocus();
    if (!refused.isEmpty())
        PasteRefused::tell(refused, entered);
}

/// @param note what of a line that was entered could not be heeded
/// @return why the line wasn't entered, or ""
QString LineEntry::placePasted(const PastedLine& line, QString& note)
{
    if (line.code.isEmpty())
        return u"没有货品编码"_s;
    const auto quantity = pastedNumber(line.quantity);
    if (!quantity)
        return line.quantity.isEmpty() ? u"没有数量"_s : u"“"_s + line.quantity + u"”不是数量"_s;
    if (*quantity <= 0)
        return u"数量必须大于0"_s;
    if (const auto name = scannedName(line.quantity))
        return u"数量“%1”是货品“%2”的编码"_s.arg(line.quantity, *name);
    const auto price = pastedNumber(line.price);
    if (!line.price.isEmpty() && !price)
        return u"“"_s + line.price + u"”不是价格"_s;
    if (const int row = findRow(line.code)) {
        // What stands there belongs to other pieces.
        const bool otherPrice =
            price && Format(*price, gPriceFormat) != Format(cellNumber(*GdMx, row, Price), gPriceFormat);
        if (otherPrice || (!line.remark.isEmpty() && line.remark != GdMx->TextMatrix(row, Remark)))
            return u"这个编码已经在第%1行，价格或备注不同"_s.arg(row);
    }
    if (const Refusal refusal = place(line.code, *quantity))
        return refusal.listed;
    const int row = findRow(line.code);
    if (!line.remark.isEmpty())
        GdMx->SetTextMatrix(row, Remark, line.remark);
    if (!price || gWithMoney == 0)
        return {};
    if (mayEdit(row, Price))
        setNumber(row, Price, gNoNegativeQty == 1 ? qAbs(*price) : *price);
    else if (Format(*price, gPriceFormat) != GdMx->TextMatrix(row, Price))
        note = u"已经录入，但是价格不能修改，没有采用“%1”"_s.arg(line.price);
    return {};
}

/// Several rows on the clipboard are lines; one is a text like any other.
bool LineEntry::pasteKey(const QKeyEvent& key)
{
    if (!entering_ || !key.matches(QKeySequence::Paste))
        return false;
    const QString text = QGuiApplication::clipboard()->text();
    if (!Trim(text).contains(u'\n') || pastedLines(text).isEmpty())
        return false;
    runCommand([&] { pasteLines(text); });
    return true;
}

QString LineEntry::takeOver(const QString& code, double quantity, const QString& remark)
{
    if (const Refusal refusal = place(code, gNoNegativeQty == 1 ? qAbs(quantity) : quantity))
        return refusal.listed.contains(code) ? refusal.listed : code + u"："_s + refusal.listed;
    if (!remark.isEmpty())
        GdMx->SetTextMatrix(findRow(code), Remark, remark);
    return {};
}

QList<QStringList> LineEntry::shownLines() const
{
    QList<QStringList> rows;
    for (int row = 1; row < GdMx->Rows(); ++row) {
        if (Trim(GdMx->TextMatrix(row, Code)).isEmpty())
            continue;
        QStringList cells;
        for (int column = Code; column <= Remark; ++column)
            cells += GdMx->TextMatrix(row, column);
        rows += cells;
    }
    return rows;
}

void LineEntry::showLines(QList<QStringList> rows, bool withPrices)
{
    if (!withPrices)
        for (QStringList& cells : rows)
            cells[Price] = cells[Amount] = Format(0, gPriceFormat);
    if (rows.isEmpty())
        GdMx->clearRows();
    else
        GdMx->setRows(std::move(rows));
    emit changed();
}

std::pair<QString, QString> LineEntry::panelTexts() const
{
    const std::pair texts(TxtHPBM->text(), TxtSL->text());
    return texts.first == GdMx->TextMatrix(GdMx->Row(), Code) ? std::pair<QString, QString>() : texts;
}

QString LineEntry::codeWithoutLine() const
{
    const QString code = Trim(TxtHPBM->text());
    return code.isEmpty() || findRow(code) ? QString() : code;
}

void LineEntry::showPanelTexts(const QString& code, const QString& quantity)
{
    TxtHPBM->setText(code);
    TxtSL->setText(quantity);
}

std::optional<LineEntry::OpenCell> LineEntry::openCell() const
{
    const int row = GdMx->Row();
    if (!GdMx->editing() || GdMx->TxtEnter->text() == GdMx->TextMatrix(row, GdMx->Col()))
        return std::nullopt;
    return OpenCell{Trim(GdMx->TextMatrix(row, Code)), GdMx->Col(), GdMx->TxtEnter->text()};
}

void LineEntry::reopenCell(const OpenCell& cell)
{
    const int row = cell.code.isEmpty() ? GdMx->Rows() - 1 : findRow(cell.code);
    if (row == 0)
        return;
    GdMx->edit(row, cell.column);
    if (GdMx->editing())
        GdMx->TxtEnter->setText(cell.text);
}

void LineEntry::deleteLine()
{
    if (!GdMx->endEdit())
        return;
    const QString code = Trim(TxtHPBM->text());
    const int row = code.isEmpty() ? 0 : findRow(code);
    if (code.isEmpty())
        MsgBox(u"请输入要删除的货品编码或点击要删除的行！"_s);
    else if (!row)
        MsgBox(u"此"_s + kind_.statusName + u"中没有指定的货品编码："_s + code + u"！"_s);
    else if (askYesNo(u"真的要删除货品["_s + code + u"]吗？"_s))
        removeRow(row);
    focusCode();
}

void LineEntry::lookUp()
{
    if (const auto cell = openCell(); cell && cell->column == Code && !Trim(cell->text).isEmpty()) {
        TxtHPBM->setText(plainWidth(cell->text).toUpper()); // a part of a code, which the cell would refuse
        GdMx->cancelEdit();
    }
    if (!GdMx->endEdit())
        return;
    if (newGoods)
        newGoods->hide();
    lookup->fill(TxtHPBM->text());
}

bool LineEntry::goToLines()
{
    if (!codeWithoutLine().isEmpty())
        return false;
    const QString code = Trim(TxtHPBM->text());
    const int row = code.isEmpty() ? qMax(GdMx->Row(), 1) : findRow(code);
    followCell(row);
    GdMx->setFocus();
    GdMx->edit(row, Trim(GdMx->TextMatrix(row, Code)).isEmpty() ? Code : Quantity);
    return true;
}

void LineEntry::takeGoods(const QString& code)
{
    TxtHPBM->setText(code);
    enterCode();
}

bool LineEntry::mayEdit(int row, int column) const
{
    if (!entering_)
        return false;
    switch (column) {
    case Code:
        return true;
    case Price:
        if (gNoPriceEdit == 1 || kind_.sheet->counted)
            return false;
        [[fallthrough]];
    case Quantity:
    case Remark:
        return !Trim(GdMx->TextMatrix(row, Code)).isEmpty();
    default:
        return false;
    }
}

QPoint LineEntry::cellAfter(int row, int column) const
{
    switch (column) {
    case Code:
        return {Trim(GdMx->TextMatrix(row, Code)).isEmpty() ? Code : Quantity, row};
    case Quantity:
        return {mayEdit(row, Price) && gWithMoney != 0 ? Price : Remark, row};
    case Price:
        return {Remark, row};
    default:
        return {Code, row + 1};
    }
}

void LineEntry::followCell(int row)
{
    if (!entering_)
        return;
    TxtHPBM->setText(GdMx->TextMatrix(row, Code));
    TxtSL->setText(GdMx->TextMatrix(row, Quantity));
}

bool LineEntry::finishCell(int row, int column, const QString& before, const QString& after)
{
    bool accepted = true;
    if (column == Code)
        accepted = finishCode(row, before, after);
    else if (column == Remark)
        GdMx->SetTextMatrix(row, Remark, after);
    else
        accepted = finishNumber(row, column, after);
    if (accepted)
        emit changed();
    return accepted;
}

bool LineEntry::finishCode(int row, const QString& before, const QString& after)
{
    if (after.isEmpty()) {
        if (!askYesNo(u"真的要删除货品["_s + before + u']' + kind_.sheet->removal))
            return false;
        removeRow(row);
        return true;
    }
    const QString code = plainWidth(after).toUpper();
    if (findRow(code, row)) {
        MsgBox(u"相同的"_s + codeCaption + u"已经存在！"_s);
        return false;
    }
    const Recordset goods = gDB.OpenRecordset(u"select F1,(F2+'/'+F5) AS MC ,"_s + kind_.sheet->third + u',' +
                                              kind_.newLinePrice + u" from TA4 where F1="_s + sqlText(code));
    if (goods.isEOF()) {
        if (kind_.wording == Wording::Inbound)
            MsgBox(
                u"货品资料库中不存在这个%1！\n请在顶部“货品编码”栏输入模糊查找条件，并点击“？”按钮查找系统中存在的%1，\n或在基础数据中增加新的货品资料！"_s
                    .arg(codeCaption));
        else
            MsgBox(u"无效的"_s + codeCaption + u"!"_s);
        return false;
    }
    const QString present = GdMx->TextMatrix(row, Quantity);
    const QString quantity = present.isEmpty() ? u"1"_s : present;
    if (!stockCovers(code, Val(quantity)))
        return false;
    GdMx->SetTextMatrix(row, Code, code);
    GdMx->SetTextMatrix(row, Name, goods.Fields(1).text());
    GdMx->SetTextMatrix(row, Third, goods.Fields(2).text());
    GdMx->SetTextMatrix(row, Quantity, quantity);
    GdMx->SetTextMatrix(row, Price, offeredPrice(goods.Fields(3)));
    updateAmount(row);
    followCell(row);
    keepEmptyRow();
    return true;
}

bool LineEntry::finishNumber(int row, int column, const QString& after)
{
    double number = Val(after);
    if (gNoNegativeQty == 1)
        number = qAbs(number);
    if (column == Quantity && (!meantAsQuantity(after) || !stockCovers(GdMx->TextMatrix(row, Code), number)))
        return false;
    setNumber(row, column, number);
    followCell(row);
    return true;
}

void LineEntry::setNumber(int row, int column, double number)
{
    GdMx->SetTextMatrix(row, column, NumText(number));
    updateAmount(row);
}

int LineEntry::findRow(const QString& code, int except) const
{
    for (int row = 1; row < GdMx->Rows(); ++row)
        if (row != except && sameText(Trim(GdMx->TextMatrix(row, Code)), Trim(code)))
            return row;
    return 0;
}

void LineEntry::removeRow(int row)
{
    if (GdMx->Rows() > 2) {
        GdMx->RemoveItem(row);
    } else {
        for (int column = Code; column <= Remark; ++column)
            GdMx->SetTextMatrix(1, column, QString());
    }
    keepEmptyRow();
    followCell(GdMx->Row());
    emit changed();
}

void LineEntry::keepEmptyRow()
{
    const int last = GdMx->Rows() - 1;
    if (last < 1 || !Trim(GdMx->TextMatrix(last, Code)).isEmpty())
        GdMx->AddItem(QString());
}

double LineEntry::weight(int row) const
{
    return cellNumber(*GdMx, row, Quantity) - (kind_.sheet->counted ? cellNumber(*GdMx, row, Third) : 0);
}

void LineEntry::updateAmount(int row)
{
    const double amount = weight(row) * cellNumber(*GdMx, row, Price);
    GdMx->SetTextMatrix(row, Amount, Format(amount, gPriceFormat));
}

bool LineEntry::stockCovers(const QString& code, double quantity) const
{
    return kind_.entry == Entry::Free || CheckStockEnough(code, quantity, storedNumber_);
}

QString LineEntry::offeredPrice(const Value& price) const
{
    const bool shown = kind_.priceOffer == PriceOffer::Everybody || gCanSeeCost;
    return Format(shown ? price.number() : 0, gPriceFormat);
}

bool LineEntry::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (watched != TxtSL && pasteKey(*key))
            return true;
        if (watched != TxtSL && entering_ && key->key() == Qt::Key_F4) {
            runCommand([this] { lookUp(); });
            return true;
        }
        if (key->key() == Qt::Key_Down && (watched == TxtHPBM || watched == TxtSL)) {
            bool went = false;
            runCommand([&] { went = goToLines(); });
            return went;
        }
    } else if (event->type() == QEvent::InputMethodQuery && watched == TxtHPBM && ChkScan->isChecked()) {
        // An input method would make words of what a scanner types. Only this answer keeps it away.
        auto* query = static_cast<QInputMethodQueryEvent*>(event);
        for (uint bit = 1; bit != 0; bit <<= 1)
            if (const auto one = Qt::InputMethodQuery(uint(query->queries()) & bit); one != 0)
                query->setValue(one, one == Qt::ImEnabled ? QVariant(false) : TxtHPBM->inputMethodQuery(one));
        query->accept();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
