#include "reports/printing.h"

#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "reports/Prnt.h"
#include "shell/session.h"

bool requireReportFile(const QString& tested, const QString& missing)
{
    if (fileExists(gAppPath + tested))
        return true;
    MsgBox(missing);
    return false;
}

QString formula(QStringView name, QStringView value)
{
    return name.toString() + u"='" + value + u"'";
}

void stageRows(const QString& table, const QString& columns, const QList<QStringList>& rows)
{
    WriteRun run(gDB);
    gDB.Execute(u"delete from "_s + table);
    const QString insert = u"Insert into "_s + table + u" (" + columns + u") VALUES(";
    for (const QStringList& row : rows)
        gDB.Execute(insert + row.join(u',') + u')');
}

void preview(const PrintOrder& order)
{
    DoEvents();
    auto& form = theForm<Prnt>();
    struct Unloader
    {
        Prnt& form;
        ~Unloader() { form.Unload(); }
    } unloader{form};
    form.Cry.DataFiles(0) = gLedgerFile;
    form.Cry.ReportFileName = gAppPath + order.reportFile;
    for (int i = 0; i < order.formulas.size(); ++i)
        form.Cry.Formulas(i) = order.formulas[i];
    form.Cry.SelectionFormula = order.selectionFormula;
    form.Cry.Pictures = order.pictures;
    form.Cry.Destination = ReportControl::toWindow;
    if (const QString fault = form.run(); !fault.isEmpty())
        return errorBox(fault);
    form.ShowModal();
}
