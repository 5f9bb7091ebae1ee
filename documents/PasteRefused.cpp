#include "documents/PasteRefused.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"

#include <QShortcut>

PasteRefused::PasteRefused()
    : Form(formName(), u"粘贴多行"_s)
{
    addCommand(u"Menu_copy"_s, u"&C.全部复制"_s, [this] { GD->copyAll(); });
    addCommand(u"Menu_Return"_s, u"&R.返回"_s, [this] { Unload(); });
    LabInfo = makeLabel(u"LabInfo"_s, QString());
    GD = new Grid(u"GD"_s);
    GD->setColumns({{u"行"_s, 50, ColumnKind::Number},
                    {u"货品编码"_s, 130},
                    {u"数量"_s, 120, ColumnKind::Number},
                    {u"价格"_s, 80, ColumnKind::Number},
                    {u"备注"_s, 100},
                    {u"原因"_s, 280, ColumnKind::Text, false, true}});
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, [this] { Unload(); });
    content()->addWidget(LabInfo);
    content()->addWidget(GD, 1);
    resize(style::scaled(860), style::scaled(380));
}

void PasteRefused::tell(const QList<RefusedLine>& refused, qsizetype entered)
{
    auto& form = theForm<PasteRefused>();
    form.LabInfo->setText(u"录入了%1行。下面的行没有录入，或者没有完全照办："_s.arg(entered));
    QList<QStringList> rows;
    for (const auto& [line, reason] : refused)
        rows.append({QString::number(line.row), line.code, line.quantity, line.price, line.remark, reason});
    form.GD->setRows(std::move(rows));
    form.ShowModal();
    form.Unload();
}
