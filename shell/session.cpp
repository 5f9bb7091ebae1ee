#include "shell/session.h"

#include "ledger/Module1.h"
#include "platform/base/dialogs.h"

#include <array>

const QString gProgramName = u"hcn"_s;
const QString gVersion = u"9.69"_s;
QString gAppPath;
Database gDB;
QString gLedgerFile;
QString gLedgerName;

QString gOperId;
QString gOperName;
QString gCompanyName;
QString gCompanyAddr;
QString gCompanyTel;
bool gCanSeeCost = false;

QString gYearStart;

int gNoOverIssue;
int gNoPriceEdit;
int gNoAvgUpdate;
int gNoNegativeQty;
double gSalePriceFactor;
int gWithMoney;
int gLowAlarm;
int gHighAlarm;
int gStockEdit001;
int gPriceDecimals;
int gOpeningEdit001;
QString gPriceFormat;

std::bitset<rightCount> gRights;

QString rightName(OperatorRight right)
{
    static constexpr std::array<QStringView, rightCount> names{u"基础数据", u"入库管理", u"库存管理",
                                                               u"出库管理", u"成本价格", u"系统管理"};
    return names.at(size_t(right)).toString();
}

bool hasRight(OperatorRight right)
{
    return gRights.test(size_t(right));
}

bool requireRight(OperatorRight right)
{
    if (hasRight(right))
        return true;
    MsgBox(u"对不起，您没有“%1”权限，不能执行此操作！"_s.arg(rightName(right)));
    return false;
}

bool isTopAdministrator()
{
    return gOperId == u"001";
}

void resetSession()
{
    gDB = Database();
    for (QString* text :
         {&gLedgerFile, &gLedgerName, &gOperId, &gOperName, &gCompanyName, &gCompanyAddr, &gCompanyTel, &gYearStart})
        text->clear();
    gCanSeeCost = false;
    gRights.reset();
    for (const NumberSetting& setting : numberSettings)
        *setting.value = setting.preset;
    gSalePriceFactor = 0;
    gPriceFormat = PriceMask(gPriceDecimals);
}
