#include "admin/SysFuncSet.h"

#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QGroupBox>
#include <QSignalBlocker>

#include <algorithm>
#include <array>
#include <type_traits>
#include <vector>

namespace {

enum Setting { SalePriceFactor = 4, Money = 5, StockEdit = 8, Decimals = 9, OpeningEdit = 10 };
constexpr int openingBox = 9; // Chk(9) belongs to setting 10

constexpr QStringView usualDecimals = u"2";
constexpr double mostDecimals = 8;

/// How a save writes what a box says, if it is all there is to the setting. The way of the first ones is kept, since an
/// old ledger that lacks their rows shows it.
enum class Written { Updated, Replaced, ByHand };

struct SettingBox
{
    int setting;
    QStringView caption;
    Written written;
};

constexpr auto settingBoxes =
    std::to_array<SettingBox>({{0, u"禁止超出库存出库(借货功能)", Written::Updated},
                               {1, u"录入编辑单据时禁止修改实际价格", Written::Updated},
                               {2, u"禁止动态更新成本价(加权平均)", Written::Updated},
                               {3, u"禁止单据数量中存在负数", Written::Replaced},
                               {4, u"销售价与成本价同步(销售价=成本价x", Written::ByHand},
                               {5, u"系统只记数量不记价格、金额", Written::ByHand},
                               {6, u"库存数低于安全库存启动系统时自动报警", Written::Replaced},
                               {7, u"库存数高于最高库存启动系统时自动报警", Written::Replaced},
                               {8, u"允许最高权限管理员“001”直接修改库存数", Written::Replaced},
                               {10, u"允许最高权限管理员“001”修改年初余额", Written::ByHand}});
static_assert(settingBoxes.size() == std::extent_v<decltype(SysFuncSet::Chk)>);

int& settingOf(int id)
{
    return *std::ranges::find(numberSettings, id, &NumberSetting::id)->value;
}

/// All that a save may change, as it was before.
class SettingsBefore
{
public:
    SettingsBefore()
    {
        for (const NumberSetting& setting : numberSettings)
            numbers_.push_back(*setting.value);
    }
    void restore() const
    {
        for (size_t i = 0; i < numberSettings.size(); ++i)
            *numberSettings[i].value = numbers_[i];
        gSalePriceFactor = factor_;
        gPriceFormat = format_;
    }

private:
    std::vector<int> numbers_;
    double factor_ = gSalePriceFactor;
    QString format_ = gPriceFormat;
};

int valueOf(const QCheckBox* box)
{
    return box->isChecked() ? 1 : 0;
}

void deleteRow(int id)
{
    gDB.Execute(u"delete from sysinfo  where ID="_s + NumText(id));
}

void insertRow(int id, int value)
{
    gDB.Execute(u"insert into sysinfo (ID,setval) values ("_s + NumText(id) + u',' + NumText(value) + u") "_s);
}

void replaceRow(int id, int value)
{
    deleteRow(id);
    insertRow(id, value);
    settingOf(id) = value;
}

/// A setting that is its box and nothing else.
void writeBox(const SettingBox& box, int value)
{
    if (value == settingOf(box.setting))
        return;
    if (box.written == Written::Replaced)
        return replaceRow(box.setting, value);
    gDB.Execute(u"update sysinfo set setval="_s + NumText(value) + u" where ID="_s + NumText(box.setting));
    settingOf(box.setting) = value;
}

/// What may be the beginning of a number that isn't 0, such as "0." or "-".
bool mayBecomeNumber(const QString& text)
{
    return !text.isEmpty() &&
           std::ranges::all_of(text, [](QChar c) { return c.isDigit() || u".-+．－＋"_s.contains(c); });
}

} // namespace

SysFuncSet::SysFuncSet()
    : Form(formName(), u"系统功能设置"_s)
{
    build();
    load();
    listen();
}

void SysFuncSet::build()
{
    for (int i = 0; i < int(settingBoxes.size()); ++i) {
        Chk[i] = makeCheck(u"Chk"_s, settingBoxes[size_t(i)].caption.toString(), i);
        if (i != SalePriceFactor) // whose field makes its line high enough
            Chk[i]->setMinimumHeight(style::rowHeight());
    }
    Txt[SalePriceFactor] = makeEdit(u"Txt"_s, SalePriceFactor, EditKind::Number);
    style::fixWidth(Txt[SalePriceFactor], 80);
    Txt[SalePriceFactor]->setAccessibleName(u"销售价与成本价的比率"_s);
    Txt[Decimals] = makeEdit(u"Txt"_s, Decimals, EditKind::Number);
    Txt[Decimals]->setAccessibleName(u"价格、金额的小数位数"_s);
    Lab[SalePriceFactor] = makeLabel(u"Lab"_s, u")"_s, SalePriceFactor);
    // The caption leaves a gap for the field, which here stands between its two halves.
    const QString decimalsCaption = u"   所有价格、金额数都精确到小数点后       位"_s;
    const QStringList halves = decimalsCaption.split(u' ', Qt::SkipEmptyParts);
    Lab[Decimals] = makeLabel(u"Lab"_s, halves.first(), Decimals);
    Lab[Decimals]->setProperty("caption", decimalsCaption);
    style::fixWidth(Txt[Decimals], 40);
    for (const int i : {int(SalePriceFactor), int(Decimals)})
        enterMovesOn(Txt[i]);

    QList<QWidget*> order;
    const auto group = [&](const QString& title, std::initializer_list<QWidget*> rows) {
        auto* box = new QGroupBox(title);
        auto* lines = new QVBoxLayout(box);
        lines->setSpacing(style::spacing - 2);
        for (QWidget* row : rows) {
            lines->addWidget(row, 0, Qt::AlignLeft);
            const auto parts = QList<QWidget*>{row} + row->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
            for (QWidget* part : parts)
                if (part->focusPolicy() != Qt::NoFocus)
                    order += part;
        }
        content()->addWidget(box);
    };
    const auto line = [](std::initializer_list<QWidget*> parts) {
        auto* holder = new QWidget;
        auto* row = makeRow(parts);
        row->setSpacing(3);
        holder->setLayout(row);
        return holder;
    };
    constexpr int boxWidth = 21; // the sign of a check box: the words below stand in line with those beside the signs
    QWidget* factor = line({Chk[SalePriceFactor], Txt[SalePriceFactor], Lab[SalePriceFactor]});
    QWidget* decimals = line({Lab[Decimals], Txt[Decimals], new QLabel(halves.last())});
    decimals->layout()->setContentsMargins(boxWidth, 0, 0, 0);
    group(u"单据"_s, {Chk[0], Chk[1], Chk[3]});
    group(u"价格与金额"_s, {Chk[2], factor, Chk[Money], decimals});
    group(u"库存报警"_s, {Chk[6], Chk[7]});
    group(u"最高权限管理员"_s, {Chk[StockEdit], Chk[openingBox]});

    Cmd[0] = makeButton(
        u"Cmd"_s, u"确 定"_s, [this] { save(); }, 0, ButtonLook::Primary);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"取 消"_s, [this] { Unload(); }, 1);
    content()->addLayout(makeRow({nullptr, Cmd[0], Cmd[1]}));
    style::keepWidth(content()->parentWidget(), 460);
    order += {Cmd[0], Cmd[1]};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void SysFuncSet::load()
{
    for (int i = 0; i < int(settingBoxes.size()); ++i)
        Chk[i]->setChecked(i == SalePriceFactor ? gSalePriceFactor != 0
                           : i == Money         ? gWithMoney < 1
                                                : settingOf(settingBoxes[size_t(i)].setting) == 1);
    Txt[SalePriceFactor]->setText(NumText(gSalePriceFactor));
    if (gSalePriceFactor != 0)
        factorBefore_ = Txt[SalePriceFactor]->text();
    Txt[Decimals]->setText(NumText(gPriceDecimals));
    // The decimal places stay open here; only a tick closes them, with the rest.
    if (Chk[Money]->isChecked())
        for (QWidget* widget : std::initializer_list<QWidget*>{Chk[1], Chk[2], Chk[4], Txt[4], Lab[4]})
            widget->setEnabled(false);
}

/// After loading, so that nothing is asked or told of what only was read.
void SysFuncSet::listen()
{
    const auto onToggle = [this](int box, auto command) {
        connect(Chk[box], &QCheckBox::toggled, this, [command](bool on) { runCommand([&] { command(on); }); });
    };
    const auto warned = [this](int box, const QString& text) {
        return [this, box, text](bool on) {
            if (on && !askYesNo(text, u"警告"_s))
                Chk[box]->setChecked(false);
        };
    };
    onToggle(SalePriceFactor, [this](bool on) { factorTicked(on); });
    onToggle(Money, [this](bool on) { quantitiesOnlyTicked(on); });
    onToggle(
        StockEdit,
        warned(
            StockEdit,
            u"直接修改库存数会造成进出存报表不准确，不推荐开放此功能。\n但如果出于确实需要，此功能也会给您带来一些方便，请慎重使用。\n此功能只允许系统管理员001在[基础数据]->[货品编码资料]中操作。\n确定开放此功能吗？"_s));
    onToggle(
        openingBox,
        warned(
            openingBox,
            u"随意修改年初余额（年初数量、价格）可能造成进出存报表不准确，不推荐开放此功能，请慎重使用!\n此功能只允许系统管理员001在[基础数据]->[货品编码资料]中操作。\n确定开放此功能吗？"_s));
    connect(Txt[SalePriceFactor], &QLineEdit::textChanged, this, [this] { runCommand([this] { factorTyped(); }); });
    connect(Txt[Decimals], &QLineEdit::textChanged, this, [this] { runCommand([this] { decimalsTyped(); }); });
}

void SysFuncSet::factorTicked(bool on)
{
    QLineEdit* factor = Txt[SalePriceFactor];
    if (!on) {
        // A number that is just being typed goes on: "0." and "." come before 0.5.
        if (!factor->hasFocus() || !mayBecomeNumber(factor->text())) {
            factor->setText(u"0"_s);
            factor->selectAll();
        }
    } else if (Val(factor->text()) == 0) {
        factor->setText(factorBefore_);
    }
}

void SysFuncSet::quantitiesOnlyTicked(bool on)
{
    for (QWidget* widget :
         std::initializer_list<QWidget*>{Chk[1], Chk[2], Chk[4], Txt[4], Lab[4], Lab[Decimals], Txt[Decimals]})
        widget->setEnabled(!on);
}

void SysFuncSet::factorTyped()
{
    Chk[SalePriceFactor]->setChecked(Val(Txt[SalePriceFactor]->text()) != 0);
}

void SysFuncSet::decimalsTyped()
{
    QLineEdit* decimals = Txt[Decimals];
    const QString typed = decimals->text();
    const double number = Val(typed);
    const bool usable = number >= 0 && number <= mostDecimals && typed == plainText(number);
    const QString whole = usable ? plainText(Fix(number)) : usualDecimals.toString();
    if (whole != typed) {
        const QSignalBlocker quiet(decimals);
        decimals->setText(whole);
        decimals->selectAll(); // the next digit takes its place
    }
    if (whole != usualDecimals)
        MsgBox(
            u"系统默认价格、金额相关数据精确到小数点后 2 位。\n你可以修改设置，使系统中价格、金额数据精确到小数点后 %1 位，\n但是部份单据及报表的打印输出依然是小数点后 2 位形式。\n要想使打印输出的价格、金额都改为 %1 位小数形式，请与软件开发商联系获得技术支持！"_s
                .arg(whole));
}

// Saving --------------------------------------------------------------------------------------------------------------

void SysFuncSet::save()
{
    const SettingsBefore before;
    bool saved = true;
    QString reason; // where it is none of the ledger's version
    try {
        writeAll();
    } catch (const StoreError& error) { // an old ledger lacks rows or columns; what was written so far stays
        saved = false;
        // A failing disk undoes it all, and the session must not go on with settings that the ledger doesn't have. They
        // can't be read anew: such a disk may refuse that too.
        if (!error.details().aftermath.isEmpty())
            before.restore();
        if (error.kind() == StoreError::Kind::Locked || error.kind() == StoreError::Kind::Disk ||
            error.kind() == StoreError::Kind::Missing)
            reason = error.description();
    }
    if (saved)
        MsgBox(u"您的设置已生效！"_s, QString());
    else
        MsgBox(u"您的帐本文件版本过旧，无法进行系统设置！"_s);
    Unload();
    if (!reason.isEmpty()) // the box above knows one reason only
        errorBox(u"系统功能设置没有保存，请稍后重新设置。没有保存的原因：\n"_s + reason);
}

/// What changed, in this order; each global follows its row, so that a failure leaves both at the same setting.
void SysFuncSet::writeAll()
{
    const WriteRun run(gDB);
    const auto writeBoxes = [this](int first, int end) {
        for (int i = first; i < end; ++i)
            if (settingBoxes[size_t(i)].written != Written::ByHand)
                writeBox(settingBoxes[size_t(i)], valueOf(Chk[i]));
    };
    writeBoxes(0, SalePriceFactor);

    const double factor = singleValue(Val(Txt[SalePriceFactor]->text()));
    if (factor != gSalePriceFactor) {
        deleteRow(SalePriceFactor);
        gDB.Execute(u"insert into sysinfo (ID,setval,setstr) values (4,"_s + sqlNumber(factor) + u',' +
                    sqlText(NumText(factor)) + u") "_s);
        gSalePriceFactor = factor;
    }

    const int quantitiesOnly = valueOf(Chk[Money]);
    if (gWithMoney == quantitiesOnly) // the box says the opposite of the setting
        replaceRow(Money, qAbs(quantitiesOnly - 1));
    writeBoxes(Money, int(settingBoxes.size()));

    if (const int value = valueOf(Chk[openingBox]); value != gOpeningEdit001) {
        deleteRow(OpeningEdit);
        gOpeningEdit001 = value;
        // The row takes the stock box: opening balances stay open beyond this session only where stock is open too.
        insertRow(OpeningEdit, valueOf(Chk[StockEdit]));
    }
    if (const int places = int(Val(Txt[Decimals]->text())); places != gPriceDecimals) {
        deleteRow(Decimals);
        gPriceDecimals = places;
        gPriceFormat = PriceMask(gPriceDecimals);
        insertRow(Decimals, places);
    }
}

QWidget* SysFuncSet::firstFocus()
{
    return Chk[0];
}
