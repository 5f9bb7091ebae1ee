// Makes the demonstration ledger: a year of a small hardware shop, entered, saved and audited through the real forms,
// so that its stock, costs and snapshots are what the program makes of such a year. Usage: make_demo OUTPUT.hcn

#include "demo_catalogue.h"
#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "headless.h"
#include "ledger/Module1.h"
#include "ledger/create.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/date.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/grid.h"
#include "shell/session.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>

#include <cstdio>
#include <map>
#include <random>

namespace {

const QDate firstDay(2025, 1, 2);
const QDate lastDay(2025, 12, 31);

/// The same numbers on every machine, which the library's distributions don't promise.
class Dice
{
public:
    int below(int n) { return int(engine_() % unsigned(n)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool once(int in) { return below(in) == 0; }

private:
    std::mt19937 engine_{20250102};
};

struct Line
{
    QString code;
    int quantity;
    double price;
};

class Year
{
public:
    void fillMasterData();
    void live();

private:
    void workDay(QDate day);
    void issue(QDate day);
    void takeBack();
    void restock();
    void sendBack();
    void leaveDrafts();
    DocumentForm& enter(DocumentKind kind, const QString& partner, const QList<Line>& lines, const QString& remark);
    void document(DocumentKind kind, const QString& partner, const QList<Line>& lines, const QString& remark = {});
    const demo::Partner& supplierOf(const demo::Goods& goods) const;
    double pieces(const QString& code) const;

    Dice dice_;
    std::vector<demo::Goods> goods_ = demo::goods();
    std::vector<demo::Partner> suppliers_ = demo::suppliers();
    std::vector<demo::Partner> consignees_ = demo::consignees();
};

void Year::fillMasterData()
{
    const WriteRun run(gDB);
    gDB.Execute(u"update reginfo set F1=%1,F3=%2,F4=%3,F7='2025-1-1'"_s.arg(
        sqlText(demo::companyName), sqlText(demo::companyAddress), sqlText(demo::companyTelephone)));
    for (const demo::Category& category : demo::categories)
        gDB.Execute(u"insert into TA3 (F1,F2) values ("_s +
                    sqlTexts({category.code.toString(), category.name.toString()}) + u')');
    for (const auto& [table, partners] : {std::pair(u"TA1"_s, &suppliers_), {u"TA2"_s, &consignees_}})
        for (const demo::Partner& p : *partners)
            gDB.Execute(u"insert into "_s + table + u" (F1,F2,F3,F4,F5,F6,F7) values ("_s +
                        sqlTexts({p.code, p.name, p.address, p.telephone, p.fax, p.mail,
                                  p.contact.isEmpty() ? QString() : u"联系人："_s + p.contact}) +
                        u')');
    for (const demo::Operator& person : demo::operators)
        gDB.Execute(u"insert into TE1 (F1,F2,F3,F61,F62,F63,F64,F65,F66) values (%1,'',%2,%3,%4,%5,%6,%7)"_s
                        .arg(sqlTexts({person.account.toString(), person.name.toString()}))
                        .arg(int(person.base))
                        .arg(int(person.inbound))
                        .arg(int(person.stock))
                        .arg(int(person.outbound))
                        .arg(int(person.cost))
                        .arg(int(person.administration)));
    constexpr double markUp = 1.35;
    for (const demo::Goods& item : goods_) {
        const double opening = item.minimum + dice_.below(int(item.maximum - item.minimum));
        const QString sale = Format(item.cost * markUp, u"#0.00");
        gDB.Execute(u"insert into TA4 (F1,F2,F3,F4,F5,F6,F9,F11,F7,F71,F8,V1,V2,V3,V4) values ("_s +
                    sqlTexts({item.code, item.name, item.category, item.unit, item.specification, QString(),
                              u"无图片"_s, item.code}) +
                    u",%1,%2,%3,%4,%5,%3,%1)"_s.arg(NumText(item.cost), sale, NumText(opening), NumText(item.minimum),
                                                    NumText(item.maximum)));
    }
}

double Year::pieces(const QString& code) const
{
    return Val(LookupValue(gDB, u"select F8 from TA4 where F1="_s + sqlText(code)));
}

/// Each category is bought from one or two houses.
const demo::Partner& Year::supplierOf(const demo::Goods& goods) const
{
    const auto family = qHash(QStringView(goods.code).first(4), 7);
    return suppliers_[family % suppliers_.size()];
}

DocumentForm& Year::enter(DocumentKind kind, const QString& partner, const QList<Line>& lines, const QString& remark)
{
    DocumentForm& form = documentForm(kind);
    form.Menu_Add();
    form.CmbLB->setEditText(partner);
    form.Txt[6]->setText(remark);
    for (const Line& line : lines) {
        form.lines->TxtHPBM->setText(line.code);
        form.lines->TxtSL->setText(NumText(line.quantity));
        form.lines->AddGoodsLine();
        Grid& grid = *form.lines->GdMx;
        grid.edit(grid.Rows() - 2, 4);
        grid.TxtEnter->setText(Format(line.price, u"#0.00"));
        grid.endEdit();
    }
    return form;
}

void Year::document(DocumentKind kind, const QString& partner, const QList<Line>& lines, const QString& remark)
{
    if (lines.isEmpty())
        return;
    gOperName = kind == DocumentKind::B1 || kind == DocumentKind::B3 ? u"王小敏"_s : u"李建国"_s;
    DocumentForm& form = enter(kind, partner, lines, remark);
    form.Menu_save();
    gOperName = u"管理员"_s;
    setClock(Now().addSecs(60 * dice_.between(3, 12)));
    form.Menu_Ok();
}

void Year::issue(QDate day)
{
    static const QStringList remarks{{}, {}, {}, {}, u"送货上门"_s, u"自提"_s, u"月结"_s, u"急件"_s};
    for (int n = dice_.between(1, day.dayOfWeek() == 6 ? 4 : 3); n > 0; --n) {
        std::map<QString, Line> lines;
        for (int i = dice_.between(2, 7); i > 0; --i) {
            const demo::Goods& item = goods_[size_t(dice_.below(int(goods_.size())))];
            const int wanted = qMax(1, int(item.minimum) * dice_.between(5, 60) / 100);
            const int quantity = qMin(wanted, int(pieces(item.code)));
            if (quantity > 0)
                lines.insert({item.code,
                              {item.code, quantity, Val(Format(item.cost * dice_.between(125, 150) / 100, u"#0.00"))}});
        }
        QList<Line> ordered;
        for (const auto& [code, line] : lines)
            ordered += line;
        document(DocumentKind::D1, consignees_[size_t(dice_.below(int(consignees_.size())))].code, ordered,
                 remarks[dice_.below(int(remarks.size()))]);
    }
}

void Year::takeBack()
{
    const demo::Goods& item = goods_[size_t(dice_.below(int(goods_.size())))];
    document(DocumentKind::D3, consignees_[size_t(dice_.below(int(consignees_.size())))].code,
             {{item.code, dice_.between(1, 3), item.cost * 1.35}}, u"规格不符，退回"_s);
}

/// What has fallen below its safety stock is bought, one document a supplier.
void Year::restock()
{
    std::map<QString, QList<Line>> orders;
    for (const demo::Goods& item : goods_) {
        const double stock = pieces(item.code);
        if (stock >= item.minimum)
            continue;
        const int quantity = int(demo::roundedLimit((item.maximum - stock) * dice_.between(60, 95) / 100));
        const double price = Val(Format(item.cost * dice_.between(94, 108) / 100, u"#0.00"));
        orders[supplierOf(item).code] += Line{item.code, quantity, price};
    }
    for (const auto& [supplier, lines] : orders)
        document(DocumentKind::B1, supplier, lines, dice_.once(6) ? u"分批到货，余下次补齐"_s : QString());
}

void Year::sendBack()
{
    const demo::Goods& item = goods_[size_t(dice_.below(int(goods_.size())))];
    const int quantity = qMin(int(pieces(item.code)), dice_.between(1, 5));
    if (quantity > 0)
        document(DocumentKind::B3, supplierOf(item).code, {{item.code, quantity, item.cost}}, u"质量问题，退供货方"_s);
}

void Year::leaveDrafts()
{
    setClock(QDateTime(lastDay, QTime(16, 20)));
    gOperName = u"王小敏"_s;
    enter(DocumentKind::B1, u"G003"_s, {{u"LS0206"_s, 500, 0.52}, {u"DQ0103"_s, 1000, 0.06}}, u"待点收"_s).Menu_save();
    gOperName = u"李建国"_s;
    for (const QString& consignee : {u"K004"_s, u"K012"_s})
        enter(DocumentKind::D1, consignee, {{u"LS0206"_s, 60, 0.8}, {u"SG0101"_s, 2, 28}}, u"明日送货"_s).Menu_save();
}

void Year::workDay(QDate day)
{
    setClock(QDateTime(day, QTime(8, dice_.between(10, 50))));
    if (day.dayOfWeek() == 1 || dice_.once(6))
        restock();
    issue(day);
    if (dice_.once(15))
        takeBack();
    if (dice_.once(25))
        sendBack();
}

void Year::live()
{
    for (QDate day = firstDay; day <= lastDay; day = day.addDays(1))
        if (day.dayOfWeek() != 7)
            workDay(day);
    leaveDrafts();
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: make_demo OUTPUT.hcn\n", stderr);
        return 2;
    }
    const QString output = QApplication::arguments().at(1);
    setDialogHost(std::make_unique<headless::Agreeing>());
    setDesktopHost(std::make_unique<headless::Desktop>());
    try {
        QFile::remove(output);
        createLedger(output, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
        resetSession();
        gDB = DBEngine::OpenDatabase(output, ledgerConnect.toString());
        gOperId = u"001"_s;
        gOperName = u"管理员"_s;
        gRights.set();
        gCanSeeCost = true;
        LoadSettings();
        Year year;
        year.fillMasterData();
        LoadYearStart();
        year.live();
    } catch (const StoreError& error) {
        std::fprintf(stderr, "make_demo: %s\n", error.what());
        return 1;
    }
    for (Form* form : QList<Form*>(Form::all()))
        form->Unload();
    resetSession();
    return 0;
}
