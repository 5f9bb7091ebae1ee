#include "documents/document_print.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/number.h"
#include "platform/widgets/grid.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

namespace {

constexpr qsizetype linesOfSheet = 10;

enum PrintedColumn { CodeCell, NameCell, UnitCell, QuantityCell, PriceCell, AmountCell, RemarkCell };

/// The sheet has columns of its own for name and model, which the grid shows in one.
QList<QStringList> sheetRows(const Grid& lines)
{
    QList<QStringList> rows =
        gridRows(lines, lines.Rows() - 1, {CodeCell, UnitCell, QuantityCell, PriceCell, AmountCell, RemarkCell});
    for (QStringList& row : rows) {
        const QString& code = row.first();
        const QString name = LookupValue(gDB, u"select F2 from TA4 where F1="_s + code);
        const QString model = LookupValue(gDB, u"select F5 from TA4 where F1="_s + code);
        row.insert(1, sqlText(name));
        row.insert(2, sqlText(model));
    }
    while (rows.size() % linesOfSheet != 0)
        rows += QStringList(rows.first().size(), sqlText(u" "));
    return numberedRows(std::move(rows));
}

QString sumOfQuantities(const Grid& lines)
{
    double sum = 0;
    for (int row = 1; row < lines.Rows(); ++row)
        sum += Val(lines.TextMatrix(row, QuantityCell));
    return plainText(sum);
}

} // namespace

void printStored(const DocumentTraits& kind, QStringView report, const QString& number)
{
    const DocumentPrints& prints = *kind.prints;
    if (Trim(number).isEmpty())
        return MsgBox(u"无数据可打印！"_s);
    const QString tested = prints.tested.isEmpty() ? report.toString() : prints.tested.toString();
    const QString missing = prints.missing.toString();
    if (!requireReportFile(tested, missing.contains(u"%1") ? missing.arg(tested) : missing))
        return;
    QStringList formulas;
    if (prints.letterhead == Letterhead::Company)
        formulas = {formula(u"regname", gCompanyName), formula(u"regaddr", u"地址："_s + gCompanyAddr),
                    formula(u"regtel", u"电话："_s + gCompanyTel)};
    preview({report.toString(), formulas, u"{"_s + kind.header + u".F1}='"_s + Trim(number) + u'\''});
}

void printShown(const DocumentTraits& kind, const PrintedHeader& header, const Grid& lines, CompactForm form)
{
    if (lines.TextMatrix(1, CodeCell).isEmpty())
        return MsgBox(u"无数据可打印！"_s);
    const DocumentPrints& prints = *kind.prints;
    const bool tenRows = form == CompactForm::TenRows;
    if (tenRows)
        stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4,F5,F6,F7,F8"_s, sheetRows(lines));
    else
        stageRows(
            u"Plist"_s, u"F0,F1,F6,F7,F8,F9,V1,V2"_s,
            numberedRows(gridRows(lines, lines.Rows() - 1, {CodeCell, QuantityCell, PriceCell, AmountCell, RemarkCell},
                                  {QuantityCell, PriceCell})));
    QStringList formulas{formula(u"Cpt", prints.title),     formula(u"danNo", header.number),
                         formula(u"rq", header.date),       formula(u"gys", prints.partner + header.partner),
                         formula(u"regname", gCompanyName), formula(u"sumje", Format(Val(header.total), gPriceFormat))};
    const QStringView signature = tenRows ? u"制单:%1       审核:%2" : prints.signature;
    if (!signature.isEmpty())
        formulas += formula(u"qianming", signature.toString().arg(header.clerk, header.auditor));
    if (tenRows)
        formulas += formula(u"sumsl", sumOfQuantities(lines));
    formulas += formula(u"shenhe", header.auditor); // without one the layout says so
    preview({tenRows ? prints.tenRows.toString() : u"Pdan.rpt"_s, formulas, {}});
}
