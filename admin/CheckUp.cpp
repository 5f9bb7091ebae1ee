#include "admin/CheckUp.h"

#include "admin/ledger_check.h"
#include "platform/base/clock.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/grid_rows.h"
#include "reports/printing.h"

#include <QLabel>

CheckUp::CheckUp()
    : ListForm(formName())
{
    LabSum = makeLabel(u"LabSum"_s, QString());
    content()->insertWidget(0, LabSum);
    addListCommand(nullptr, u"Menu_run"_s, u"&S.重新检查"_s, [this] { Menu_run(); });
    addListCommand(nullptr, u"Menu_print"_s, u"&P.打印"_s, [this] { Menu_print(); });
    addReturnCommand();
    Menu_run();
}

void CheckUp::Menu_run()
{
    list({.caption = u"帐本体检"_s,
          .statusName = u"帐本体检"_s,
          .totalCaption = {},
          .right = OperatorRight::Admin,
          .columns = {{u"问题"_s, 110, {}}, {u"所在"_s, 200, {}}, {u"情况"_s, 400, {}}, {u"处理办法"_s, 440, {}}},
          .from = {},
          .condition = {},
          .filter = {},
          .orders = {QString()},
          .stretched = 3,
          .compute = [this](const Listing&) {
              QList<QList<Value>> records;
              if (!hasRight(OperatorRight::Admin))
                  return records;
              toldCosts_ = gCanSeeCost;
              const LedgerExamination examination = examineLedger();
              for (const LedgerFinding& finding : examination.findings)
                  records.append(
                      {Value(finding.kind), Value(finding.where), Value(finding.what), Value(finding.advice)});
              goods_ = examination.goods;
              documents_ = examination.documents;
              return records;
          }});
}

void CheckUp::Menu_print()
{
    if (!requireRecords() || !requireReportFile(u"Ptijian.rpt"_s, u"报表文件Ptijian.rpt丢失！"_s))
        return;
    stageRows(u"Plist"_s, u"F0,F1,F2,F3,F4"_s, numberedRows(gridRows(*GD, count(), {0, 1, 2, 3})));
    preview({u"Ptijian.rpt"_s,
             {formula(u"Cpt", u"帐本体检报告"_s), formula(u"regname", gCompanyName),
              formula(u"rq", u"检查时间："_s + nowText()), formula(u"LB", LabSum->text())},
             {}});
}

void CheckUp::sessionChanged()
{
    if (hasRight(OperatorRight::Admin) && toldCosts_ && !gCanSeeCost)
        Menu_run(); // what names a cost is told in other words
    ListForm::sessionChanged();
}

void CheckUp::showState()
{
    ListForm::showState();
    const bool allowed = hasRight(listing().right);
    LabSum->setText(!allowed ? QString()
                             : u"检查了 %1 种货品、%2 张单据，"_s.arg(goods_).arg(documents_) +
                                   (count() == 0 ? u"没有发现问题。"_s : u"发现 %1 处问题。"_s.arg(count())));
}
