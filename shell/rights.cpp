#include "shell/rights.h"

#include "admin/background.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/widgets/form.h"
#include "shell/BGForm.h"
#include "shell/MForm.h"
#include "shell/session.h"

namespace {

void LoadCompany()
{
    const Recordset company = gDB.OpenRecordset(u"select F1,F3,F4 from reginfo"_s);
    const auto field = [&company](qsizetype i) { return company.isEOF() ? QString() : company.Fields(i).text(); };
    gCompanyName = field(0);
    gCompanyAddr = field(1);
    gCompanyTel = field(2);
}

void spreadRights()
{
    gCanSeeCost = hasRight(OperatorRight::Cost);
    MForm::get().applyGates();
    for (Form* form : Form::all())
        form->sessionChanged();
}

} // namespace

QString mainCaption()
{
    return u"恒仓宁仓库管理系统 Ver:"_s + gVersion;
}

void showCompany()
{
    LoadCompany();
    MForm::get().setCaption(mainCaption() + u' ' + gCompanyName);
}

void dressBackground()
{
    BGForm& background = *MForm::get().background();
    const QString caption = LookupValue(gDB, u"select F75 from TE1 where F1="_s + sqlText(gOperId));
    background.setBigCaption(caption.isEmpty() || caption == u"NoFound" ? gCompanyName : Trim(caption));
    dressFor(background, gOperId);
}

void ApplyRights()
{
    showCompany();
    gRights.set(); // first all, so that a change of operator gives back what the one before lacked
    if (!isTopAdministrator()) {
        const Recordset row =
            gDB.OpenRecordset(u"select F61,F62,F63,F64,F65,F66 FROM TE1 WHERE F1="_s + sqlText(gOperId));
        for (size_t i = 0; i < rightCount && !row.isEOF(); ++i)
            gRights.set(i, row.Fields(qsizetype(i)).number() != 0); // a Null right is denied
    }
    // Only "001" changes the ledger by a click there, so only "001" is told.
    MForm::get().setLedgerTip(isTopAdministrator() ? u"点击此处可以更换帐本"_s : QString());
    spreadRights();
}

void logOut()
{
    gRights.reset();
    for (QString* text : {&gOperId, &gOperName, &gCompanyName, &gCompanyAddr, &gCompanyTel})
        text->clear();
    MForm& window = MForm::get();
    window.setCaption(mainCaption());
    window.setOperator({});
    window.setLedgerTip({});
    spreadRights();
}
