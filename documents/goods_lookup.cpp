#include "documents/goods_lookup.h"

#include "ledger/literal.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QHBoxLayout>

#include <algorithm>

namespace {
constexpr qsizetype mostGoods = 500; // as the statement caps it
constexpr int fewestRows = 4;
constexpr int mostRows = 8;
constexpr int rowsElsewhere = 18; ///< about what the rest of the form needs, the document's first lines among it
} // namespace

GoodsLookup::GoodsLookup(const QString& stockCaption, bool withNewGoods)
{
    setObjectName(u"FrmLookup"_s);
    GdQuery = new Grid(u"GdQuery"_s);
    GdQuery->setColumns({{u"货品编码"_s, 150},
                         {u"货品名称/规格"_s, 360, ColumnKind::Text, false, true},
                         {stockCaption, 140, ColumnKind::Number}});
    LabInfo = makeLabel(u"LabInfo"_s, QString());
    CmdBox[0] = makeButton(
        u"CmdBox"_s, u"选 定"_s, [this] { choose(); }, 0, ButtonLook::Primary);
    CmdBox[1] = makeButton(
        u"CmdBox"_s, u"返 回"_s, [this] { leave(); }, 1);
    if (withNewGoods)
        CmdBox[2] = makeButton(
            u"CmdBox"_s, u"新 增"_s, [this] { emit newGoodsWanted(); }, 2);

    auto* foot = makeRow({LabInfo, nullptr, CmdBox[0], CmdBox[1]});
    if (CmdBox[2])
        foot->addWidget(CmdBox[2]);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, style::spacing / 2, 0, 0);
    all->addWidget(GdQuery);
    all->addLayout(foot);

    connect(GdQuery, &Grid::activatedRow, this, [this](int) { runCommand([this] { choose(); }); });
}

void GoodsLookup::fill(const QString& code)
{
    Recordset goods = gDB.OpenRecordset(u"select top 500 F1,F2,F5,F8,F4 from TA4 where F1 like "_s +
                                        sqlText(code + u'*') + u"  order by F1"_s);
    QList<QStringList> rows;
    for (; !goods.isEOF(); goods.MoveNext())
        rows.append({goods.Fields(0).text(), goods.Fields(1).text() + u'/' + goods.Fields(2).text(),
                     goods.Fields(3).text() + u' ' + goods.Fields(4).text()});
    const qsizetype found = rows.size();
    if (code.isEmpty())
        LabInfo->setText(found == 0          ? u"货品资料库中没有任何编码资料"_s
                         : found < mostGoods ? u"所有货品编码资料"_s
                                             : u"货品资料库中前500条记录"_s);
    else
        LabInfo->setText(found == 0          ? u"没有以“%1”开头的货品编码"_s.arg(code)
                         : found < mostGoods ? u"所有货品编码以“%1”开头的记录"_s.arg(code)
                                             : u"货品编码以“%1”开头的前500条记录"_s.arg(code));
    if (found == 0)
        GdQuery->clearRows();
    else
        GdQuery->setRows(std::move(rows));
    const int shownRows = std::clamp(window()->height() / style::rowHeight() - rowsElsewhere, fewestRows, mostRows);
    GdQuery->setFixedHeight(style::headerHeight() + shownRows * style::rowHeight() + 2);
    show();
    GdQuery->select(1);
    // With nothing to choose, Enter does what comes next.
    QWidget* next = CmdBox[2] ? CmdBox[2] : CmdBox[1];
    (found > 0 ? static_cast<QWidget*>(GdQuery) : next)->setFocus();
}

void GoodsLookup::choose()
{
    const QString code = GdQuery->TextMatrix(GdQuery->Row(), 0);
    if (code.isEmpty())
        return;
    hide();
    emit chosen(code);
}
