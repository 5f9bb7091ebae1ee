// Works the real document and settings forms with random commands, and after each compares the ledger with a small
// model of it that does its own arithmetic. A run that differs is shortened to the few commands that it takes.
//
// Usage: model [--steps N] [--seed N] [--spoil]
// With --spoil the ledger is falsified behind the program's back at times, which must be noticed.

#include "admin/SysFuncSet.h"
#include "admin/ledger_check.h"
#include "documents/new_goods_panel.h"
#include "headless.h"
#include "platform/base/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <random>
#include <vector>

namespace {

using std::vector;

// Numbers, worked out apart from the program's own ------------------------------------------------------------------

/// As a statement or a cell holds it: fifteen significant digits.
double told(double x)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.14e", x);
    return std::strtod(text, nullptr);
}

/// By a mask with so many decimals, halves of the told number away from zero.
double rounded(double x, int decimals)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.14e", std::abs(x));
    long long digits = 0;
    for (const char* c = text; *c != 'e'; ++c)
        if (*c != '.')
            digits = digits * 10 + (*c - '0');
    const int cut = 14 - std::atoi(std::strchr(text, 'e') + 1) - decimals; // digits behind the last one kept
    if (cut > 15)
        return 0;
    if (cut > 0) {
        long long unit = 1;
        for (int i = 0; i < cut; ++i)
            unit *= 10;
        digits = digits / unit + (digits % unit * 2 >= unit ? 1 : 0);
    }
    std::snprintf(text, sizeof text, "%lldE%d", digits, cut > 0 ? -decimals : -decimals - cut);
    const double value = std::strtod(text, nullptr);
    return x < 0 && value != 0 ? -value : value;
}

/// What the dice type, in their few digits.
QString typedText(double x)
{
    return QString::number(x, 'g', 15);
}

// Commands ------------------------------------------------------------------------------------------------------------

enum Kind { In, Return, Out, Back, Count, Kinds };
constexpr std::array kindOf = {DocumentKind::B1, DocumentKind::B3, DocumentKind::D1, DocumentKind::D3,
                               DocumentKind::C2};
constexpr std::array kindNames = {"B1", "B3", "D1", "D3", "C2"};
constexpr int goodsCount = 6;

/// One act on the lines of a document that is being entered.
struct Touch
{
    enum What { Code, Quantity, Price, Remove } what;
    int goods;
    double value;
};

struct Command
{
    enum Verb { Add, Edit, GiveUp, Delete, Audit, Unaudit, Setting, NewGoods } verb = Add;
    int kind = In;
    int pick = 0; ///< which document, among those there are
    vector<Touch> touches;
    int day = 0;           ///< of a new document, from the lock date on; negative before it
    bool confirmed = true; ///< the answer to its question
    bool onDetail = false; ///< given while the detail tab is up
    bool costHidden = false;
    int number = 0; ///< 0 the number offered, 1 a free one that is typed, 2 one that is taken
    int setting = 0;
    double value = 0;

    QString text() const;
};

QString codeOfGoods(int goods)
{
    return u"G%1"_s.arg(goods + 1, 2, 10, QChar(u'0'));
}

QString Command::text() const
{
    static const QStringList verbs{u"add"_s,   u"edit"_s,     u"give up"_s, u"delete"_s,
                                   u"audit"_s, u"un-audit"_s, u"setting"_s, u"new goods"_s};
    if (verb == Setting)
        return u"setting %1 = %2"_s.arg(QString::number(setting), QString::number(value));
    QString words = verbs[verb] + u' ' + QString::fromLatin1(kindNames[size_t(kind)]);
    if (verb != Add && verb != NewGoods)
        words += u" no. %1"_s.arg(pick);
    if (day < 0)
        words += u" before the lock date"_s;
    if (number)
        words += number == 1 ? u" under a typed number"_s : u" under a taken number"_s;
    for (const auto& [flag, word] : {std::pair(!confirmed, u", answered no"_s),
                                     {onDetail, u", from the detail tab"_s},
                                     {costHidden, u", cost not seen"_s}})
        words += flag ? word : QString();
    static const QStringList whats{u"enter"_s, u"quantity"_s, u"price"_s, u"remove"_s};
    for (const Touch& touch : touches)
        words += u"; %1 %2 %3"_s.arg(whats[touch.what], codeOfGoods(touch.goods),
                                     touch.what == Touch::Remove ? QString() : typedText(touch.value));
    return words;
}

class Dice
{
public:
    explicit Dice(unsigned seed)
        : engine_(seed)
    {}
    int below(int bound) { return int(engine_() % unsigned(bound)); }
    bool once(int in) { return below(in) == 0; }
    double quantity()
    {
        static constexpr double all[] = {1, 2, 5, 10, 0.5, 0.125, 0.1, 0.3, 7.25, 100, 33, 0, -1, -2.5, 1000000.001};
        return all[below(once(4) ? 15 : 11)];
    }
    double price()
    {
        static constexpr double all[] = {1, 2, 3, 0.5, 2.675, 1.005, 0.0049, 19.99, 1234.5678, 0, -1};
        return all[below(11)];
    }

private:
    std::mt19937 engine_;
};

Command randomCommand(Dice& dice)
{
    using enum Command::Verb;
    static constexpr Command::Verb verbs[] = {Add,   Add,   Add,   Add,   Add,   Edit,    Edit,    GiveUp,  Delete,
                                              Audit, Audit, Audit, Audit, Audit, Unaudit, Unaudit, Setting, NewGoods};
    Command command;
    command.verb = verbs[dice.below(18)];
    command.kind = command.verb == NewGoods ? int(In) : dice.below(Kinds);
    command.pick = dice.below(1000);
    command.day = dice.once(12) ? -1 : dice.below(300);
    command.confirmed = !dice.once(8);
    command.onDetail = dice.once(2);
    command.costHidden = dice.once(10);
    command.number = dice.once(6) ? 1 + dice.below(2) : 0;
    if (command.verb == Setting) {
        static constexpr std::pair<int, double> settings[] = {{0, 0}, {0, 1}, {1, 0}, {1, 1},   {2, 0},    {2, 1},
                                                              {3, 0}, {3, 1}, {4, 0}, {4, 1.5}, {4, 1.27}, {5, 0},
                                                              {5, 1}, {5, 1}, {9, 0}, {9, 2},   {9, 2},    {9, 4}};
        std::tie(command.setting, command.value) = settings[dice.below(18)];
    } else if (command.verb == NewGoods) {
        command.touches = {{Touch::Code, 0, std::abs(dice.quantity()) + 1}, {Touch::Price, 0, std::abs(dice.price())}};
    } else if (command.verb == Add || command.verb == Edit || command.verb == GiveUp) {
        for (int i = 1 + dice.below(5); i > 0; --i) {
            const auto what = command.verb == Add && dice.once(3) ? Touch::Code : Touch::What(dice.below(4));
            command.touches.push_back(
                {what, dice.below(goodsCount), what == Touch::Price ? dice.price() : dice.quantity()});
        }
        if (command.verb == Add)
            command.touches.insert(command.touches.begin(), {Touch::Code, dice.below(goodsCount), dice.quantity()});
    }
    return command;
}

// The model -----------------------------------------------------------------------------------------------------------

struct Goods
{
    QString code;
    double stock, cost, sale;
};

struct Line
{
    QString code;
    double quantity, book, price;
    double amount = 0;      ///< as the grid shows it while the document is entered
    QString priceText = {}; ///< likewise: a text that is typed anew as it stands changes nothing
    std::optional<double> stockAfter = {}, costAfter = {};
    QString moment = {}; ///< of its last audit
};

struct Document
{
    QString number, day, partner;
    std::optional<QString> auditor = {};
    double total = 0;
    vector<Line> lines = {};
};

struct Model
{
    vector<Goods> goods;
    std::array<vector<Document>, Kinds> documents;
    bool noOverIssue = false, noPriceEdit = false, noAverage = false, noNegative = false, money = true;
    double factor = 0;
    int decimals = 2;

    Goods& of(const QString& code)
    {
        return *std::find_if(goods.begin(), goods.end(), [&](const Goods& g) { return g.code == code; });
    }
    bool stockCovers(int kind, const QString& code, double quantity, const QString& number);
    void touch(int kind, Document& sheet, const Touch& touch, bool costSeen);
    void load(int kind, Document& sheet) const;
    double totalOf(int kind, const Document& sheet) const;
    void move(int kind, Document& document, bool audit, const QString& operatorName);

private:
    void showPrice(Line& line) const { line.priceText = QString::number(line.price, 'f', decimals); }
    double weight(int kind, const Line& line) const
    {
        return kind == Count ? line.quantity - line.book : line.quantity;
    }
    double promised(int kind, const QString& code, const QString& except) const;
};

double Model::promised(int kind, const QString& code, const QString& except) const
{
    double sum = 0;
    for (const Document& document : documents[size_t(kind)])
        if (!document.auditor && document.number != except)
            for (const Line& line : document.lines)
                sum += line.code == code ? line.quantity : 0;
    return told(sum);
}

bool Model::stockCovers(int kind, const QString& code, double quantity, const QString& number)
{
    if (!noOverIssue || quantity == 0 || (kind != Out && kind != Return))
        return true;
    const double stock = told(of(code).stock);
    const double free = stock - promised(Out, code, number);
    return stock >= quantity && free >= quantity && free - promised(Return, code, number) >= quantity;
}

void Model::touch(int kind, Document& sheet, const Touch& touch, bool costSeen)
{
    const QString code = codeOfGoods(touch.goods);
    const auto at = std::find_if(sheet.lines.begin(), sheet.lines.end(), [&](const Line& l) { return l.code == code; });
    const bool there = at != sheet.lines.end();
    const auto showAmount = [&](Line& line) { line.amount = rounded(weight(kind, line) * line.price, decimals); };
    switch (touch.what) {
    case Touch::Code:
        if (touch.value <= 0)
            return;
        if (there) {
            if (!stockCovers(kind, code, at->quantity + touch.value, sheet.number))
                return;
            at->quantity = told(at->quantity + touch.value);
            showAmount(*at);
        } else if (stockCovers(kind, code, touch.value, sheet.number)) {
            const Goods& item = of(code);
            const double offered = kind == Out || kind == Back ? item.sale : kind == In && !costSeen ? 0 : item.cost;
            sheet.lines.push_back({code, told(touch.value), told(item.stock), rounded(offered, decimals)});
            showAmount(sheet.lines.back());
            showPrice(sheet.lines.back());
        }
        return;
    case Touch::Quantity:
        if (const double value = noNegative ? std::abs(touch.value) : touch.value;
            there && told(touch.value) != at->quantity && stockCovers(kind, code, value, sheet.number)) {
            at->quantity = told(value);
            showAmount(*at);
        }
        return;
    case Touch::Price:
        if (there && !noPriceEdit && money && kind != Count && at->priceText != typedText(touch.value)) {
            at->price = noNegative ? std::abs(touch.value) : touch.value;
            at->priceText = typedText(at->price);
            showAmount(*at);
        }
        return;
    case Touch::Remove:
        if (there)
            sheet.lines.erase(at);
    }
}

/// As the detail shows a stored document.
void Model::load(int kind, Document& sheet) const
{
    std::sort(sheet.lines.begin(), sheet.lines.end(), [](const Line& a, const Line& b) { return a.code < b.code; });
    for (Line& line : sheet.lines) {
        line.amount = rounded(weight(kind, line) * line.price, decimals);
        line.price = rounded(line.price, decimals);
        showPrice(line);
    }
}

double Model::totalOf(int kind, const Document& sheet) const
{
    double total = 0;
    for (const Line& line : sheet.lines)
        total += money ? line.amount : weight(kind, line);
    return money ? rounded(total, decimals) : told(total);
}

/// Audit and un-audit by the rules of the books.
void Model::move(int kind, Document& document, bool audit, const QString& operatorName)
{
    for (Line& line : document.lines) {
        Goods& item = of(line.code);
        const double q = line.quantity;
        const double p = rounded(line.price, decimals);
        if (kind == Count) {
            item.stock += told(q - line.book);
            continue;
        }
        const bool up = (kind == In || kind == Back) == audit;
        const double stock = up ? item.stock + q : item.stock - q;
        if ((kind == In || kind == Return) && !noAverage && stock != 0) {
            const double worth = up ? item.cost * item.stock + p * q : item.cost * item.stock - p * q;
            if (factor != 0)
                item.sale = worth * factor / stock;
            item.cost = worth / stock;
        }
        item.stock = stock;
        line.stockAfter = told(item.stock);
        line.costAfter = told(item.cost);
        line.moment = audit ? nowText() : u"00-00-00"_s;
    }
    document.auditor = operatorName;
}

// The program ---------------------------------------------------------------------------------------------------------

/// Answers what the command says, and keeps what must not come.
class Host : public DialogHost
{
public:
    Answer answer = Answer::Yes;
    QString trouble;

    Answer show(const Box& box) override
    {
        if (box.kind == BoxKind::Error)
            trouble = u"error box: "_s + box.text;
        return box.buttons == BoxButtons::YesNo ? answer : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}
};

/// One life of a ledger: commands go to the forms and to the model.
class Life
{
public:
    Life(const QString& pristine, bool spoil);
    ~Life();

    /// What differs afterwards; "" for nothing.
    QString run(const Command& command);
    /// What the program's own check of the ledger finds wrong in a ledger that only was lived in.
    QString examine();

private:
    DocumentForm& form(int kind) { return documentForm(kindOf[size_t(kind)]); }
    void add(const Command& command);
    void edit(const Command& command);
    void remove(const Command& command);
    void audit(const Command& command);
    void unaudit(const Command& command);
    void change(const Command& command);
    void addWithNewGoods(const Command& command);

    void enterLines(const Command& command, Document& sheet);
    bool typeNumber(const Command& command, Document& sheet, const QString& before);
    void save(const Command& command, Document& sheet, int replaced);
    /// A document in one of two states, by the command's choice, current in its list; nothing when there is none.
    std::optional<int> choose(const Command& command, bool audited);
    void trigger(int kind, const char* name);
    void differ(const QString& what) { differences_ += what; }
    void compare();
    void compareDocuments(int kind);

    QTemporaryDir folder_;
    Database eye_; ///< a second session
    Host* host_;
    Model model_;
    QStringList differences_;
    int typed_ = 0;
    bool spoil_;
};

Life::Life(const QString& pristine, bool spoil)
    : spoil_(spoil)
{
    auto host = std::make_unique<Host>();
    host_ = host.get();
    setDialogHost(std::move(host));
    const QString path = folder_.filePath(u"帐本.hcn"_s);
    QFile::copy(pristine, path);
    headless::beginSession(path);
    eye_ = headless::openLedger(path);
    const WriteRun run(gDB);
    for (int i = 0; i < goodsCount; ++i) {
        const Goods item{codeOfGoods(i), i % 3 * 10.0, 1.0 + i * 0.75, 2.0 + i};
        model_.goods.push_back(item);
        gDB.Execute(
            u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8,V3,V4) values ('%1','货品','001','个','M',%2,%3,%4,%4,%2)"_s
                .arg(item.code, plainText(item.cost), plainText(item.sale), plainText(item.stock)));
    }
}

Life::~Life()
{
    headless::endSession();
    eye_ = Database();
    setDialogHost(nullptr);
}

void Life::trigger(int kind, const char* name)
{
    QAction* action = form(kind).command(QString::fromLatin1(name));
    if (!action || !action->isEnabled())
        return differ(u"no command "_s + QString::fromLatin1(name));
    action->trigger();
}

QString Life::run(const Command& command)
{
    setClock(Now().addSecs(61));
    differences_.clear();
    host_->trouble.clear();
    host_->answer = command.confirmed ? Answer::Yes : Answer::No;
    using enum Command::Verb;
    switch (command.verb) {
    case Add:
        add(command);
        break;
    case Edit:
    case GiveUp:
        edit(command);
        break;
    case Delete:
        remove(command);
        break;
    case Audit:
        audit(command);
        break;
    case Unaudit:
        unaudit(command);
        break;
    case Setting:
        change(command);
        break;
    case NewGoods:
        addWithNewGoods(command);
        break;
    }
    headless::turnLoop();
    if (!host_->trouble.isEmpty())
        differ(host_->trouble);
    compare();
    return differences_.join(u"\n    "_s);
}

QString dayOf(const Command& command)
{
    const QDate day = QDate(2004, 1, 1).addDays(command.day);
    return u"%1-%2-%3"_s.arg(day.year()).arg(day.month()).arg(day.day());
}

void Life::enterLines(const Command& command, Document& sheet)
{
    DocumentForm& f = form(command.kind);
    host_->answer = Answer::Yes; // a line that is to go goes
    for (const Touch& touch : command.touches) {
        const QString code = codeOfGoods(touch.goods);
        int row = f.lines->GdMx->Rows() - 1;
        while (row > 0 && f.lines->GdMx->TextMatrix(row, 0) != code)
            --row;
        if (touch.what == Touch::Code)
            headless::enterLine(f, code, typedText(touch.value));
        else if (touch.what == Touch::Remove) {
            f.lines->TxtHPBM->setText(code);
            f.lines->CmdDel->click();
        } else if (row > 0)
            headless::typeCell(f, row, touch.what == Touch::Quantity ? 3 : 4, typedText(touch.value));
        model_.touch(command.kind, sheet, touch, gCanSeeCost);
    }
}

/// Whether the number can be saved.
bool Life::typeNumber(const Command& command, Document& sheet, const QString& before)
{
    const vector<Document>& others = model_.documents[size_t(command.kind)];
    if (command.number == 0)
        return true;
    if (command.number == 1)
        sheet.number = u"M%1"_s.arg(++typed_);
    else if (!others.empty())
        sheet.number = others[size_t(command.pick) % others.size()].number;
    form(command.kind).Txt[0]->setText(sheet.number);
    return sheet.number == before || command.number == 1 || others.empty();
}

void Life::save(const Command& command, Document& sheet, int replaced)
{
    DocumentForm& f = form(command.kind);
    vector<Document>& documents = model_.documents[size_t(command.kind)];
    const QString before = sheet.number;
    const bool free = typeNumber(command, sheet, before);
    trigger(command.kind, "Menu_save");
    if (!free || sheet.lines.empty()) {
        if (f.Edstu == 0)
            return differ(u"saved what had to be refused"_s);
        return trigger(command.kind, "Menu_cancel");
    }
    if (f.Edstu != 0) {
        differ(u"refused to save"_s);
        return trigger(command.kind, "Menu_cancel");
    }
    sheet.total = model_.totalOf(command.kind, sheet);
    sheet.auditor.reset();
    for (Line& line : sheet.lines) {
        line.stockAfter.reset();
        line.costAfter.reset();
        line.moment.clear();
    }
    if (replaced >= 0)
        documents.erase(documents.begin() + replaced);
    documents.push_back(sheet);
}

void Life::add(const Command& command)
{
    gCanSeeCost = !command.costHidden;
    DocumentForm& f = form(command.kind);
    trigger(command.kind, "Menu_Add");
    Document sheet{f.Txt[0]->text(), dayOf(command),
                   command.kind == Out     ? u"K%1"_s.arg(command.pick % 5)
                   : command.kind == Count ? u"老王"_s
                                           : u"001"_s};
    for (const Document& document : model_.documents[size_t(command.kind)])
        if (document.number == sheet.number)
            differ(u"the number "_s + sheet.number + u" was given twice"_s);
    f.Txt[1]->setText(sheet.day);
    if (f.CmbLB)
        f.CmbLB->setEditText(sheet.partner);
    else
        f.Txt[2]->setText(sheet.partner);
    enterLines(command, sheet);
    save(command, sheet, -1);
    gCanSeeCost = true;
}

std::optional<int> Life::choose(const Command& command, bool audited)
{
    vector<int> places;
    const vector<Document>& documents = model_.documents[size_t(command.kind)];
    for (size_t i = 0; i < documents.size(); ++i)
        if (!documents[i].auditor.value_or(QString()).isEmpty() == audited)
            places.push_back(int(i));
    if (places.empty())
        return {};
    const int place = places[size_t(command.pick) % places.size()];
    const QString number = documents[size_t(place)].number;
    DocumentForm& f = form(command.kind);
    f.TabS->setCurrentIndex(0);
    if (audited)
        f.listAll(u" where %1.F1='%2'"_s.arg(traitsOf(kindOf[size_t(command.kind)]).headerTable(), number));
    int row = f.GD->Rows() - 1;
    while (row > 0 && f.GD->TextMatrix(row, 0) != number)
        --row;
    if (row == 0) {
        differ(u"not in the list: "_s + number);
        return {};
    }
    f.GD->select(row);
    if (command.onDetail)
        f.TabS->setCurrentIndex(1);
    return place;
}

void Life::edit(const Command& command)
{
    const auto place = choose(command, false);
    if (!place)
        return;
    Document sheet = model_.documents[size_t(command.kind)][size_t(*place)];
    model_.load(command.kind, sheet);
    trigger(command.kind, "Menu_edit");
    enterLines(command, sheet);
    if (command.verb == Command::GiveUp)
        return trigger(command.kind, "Menu_cancel");
    save(command, sheet, *place);
}

void Life::remove(const Command& command)
{
    const auto place = choose(command, false);
    if (!place)
        return;
    trigger(command.kind, "Menu_del");
    vector<Document>& documents = model_.documents[size_t(command.kind)];
    if (command.confirmed)
        documents.erase(documents.begin() + *place);
}

void Life::audit(const Command& command)
{
    const auto place = choose(command, false);
    if (!place)
        return;
    trigger(command.kind, "Menu_Ok");
    Document& document = model_.documents[size_t(command.kind)][size_t(*place)];
    if (!command.confirmed || document.day.startsWith(u"2003"))
        return;
    model_.move(command.kind, document, true, gOperName);
    if (spoil_ && command.kind == Out && document.lines.size() > 2)
        gDB.Execute(u"update TA4 set F8=F8+0.001 where F1='%1'"_s.arg(document.lines[0].code));
}

void Life::unaudit(const Command& command)
{
    if (command.kind == Count) // a stock-take stays
        return;
    const auto place = choose(command, true);
    if (place) {
        trigger(command.kind, "Menu_noOK");
        if (command.confirmed)
            model_.move(command.kind, model_.documents[size_t(command.kind)][size_t(*place)], false, QString());
    }
    form(command.kind).TabS->setCurrentIndex(0);
    form(command.kind).listDrafts();
}

void Life::change(const Command& command)
{
    host_->answer = Answer::Yes;
    auto& settings = theForm<SysFuncSet>();
    const bool on = command.value != 0;
    const bool open = model_.money || command.setting > 4 || command.setting == 0 || command.setting == 3;
    switch (open ? command.setting : -1) {
    case 0:
    case 1:
    case 2:
    case 3: {
        bool* const flags[] = {&model_.noOverIssue, &model_.noPriceEdit, &model_.noAverage, &model_.noNegative};
        *flags[command.setting] = on;
        settings.Chk[command.setting]->setChecked(on);
        break;
    }
    case 4:
        model_.factor = command.value;
        settings.Txt[4]->setText(plainText(command.value));
        break;
    case 5:
        model_.money = on;
        settings.Chk[5]->setChecked(!on);
        break;
    case 9:
        model_.decimals = int(command.value);
        settings.Txt[9]->setText(plainText(command.value));
        break;
    default:
        break;
    }
    settings.Cmd[0]->click();
    for (int kind = In; kind < Kinds; ++kind) // what is open keeps what it read when it was opened
        if (Form* open = Form::loaded(traitsOf(kindOf[size_t(kind)]).form.toString()))
            open->Unload();
}

void Life::addWithNewGoods(const Command& command)
{
    DocumentForm& f = form(In);
    trigger(In, "Menu_Add");
    Document sheet{f.Txt[0]->text(), dayOf(command), u"001"_s};
    f.Txt[1]->setText(sheet.day);
    f.CmbLB->setEditText(sheet.partner);
    const double quantity = command.touches[0].value;
    const double price = command.touches[1].value;
    const QString code = u"N%1"_s.arg(model_.goods.size());
    NewGoodsPanel& panel = *f.lines->newGoods;
    panel.open(code);
    const std::pair<int, QString> fields[] = {{1, u"新货品"_s}, {5, plainText(price)}, {9, plainText(quantity)}};
    for (const auto& [field, text] : fields)
        panel.TxtN[field]->setText(text);
    panel.CmbHPLB->setCurrentIndex(0);
    panel.CmdNew[0]->click();
    model_.goods.push_back({code, 0, price, 0});
    Line line{code, told(quantity), 0, rounded(price, model_.decimals)};
    line.amount = rounded(line.quantity * line.price, model_.decimals);
    sheet.lines.push_back(line);
    save(command, sheet, -1);
}

// Comparing -----------------------------------------------------------------------------------------------------------

QString shown(double x)
{
    return QString::number(x, 'g', 17);
}

bool same(const Value& stored, const std::optional<double>& expected)
{
    return expected ? stored.isNumber() && stored.number() == *expected : stored.isNull();
}

void Life::compare()
{
    Recordset rows = eye_.OpenRecordset(u"select F1,F8,F7,F71 from TA4 order by F1"_s);
    qsizetype found = 0;
    for (; !rows.isEOF(); rows.MoveNext(), ++found) {
        const Goods& item = model_.of(rows.Fields(0).text());
        const std::tuple<int, const char*, double> expected[] = {
            {1, "stock", item.stock}, {2, "cost", item.cost}, {3, "sale price", item.sale}};
        for (const auto& [column, what, number] : expected)
            if (rows.Fields(column).number() != number)
                differ(u"%1 of %2 is %3, should be %4"_s.arg(QString::fromLatin1(what), item.code,
                                                             shown(rows.Fields(column).number()), shown(number)));
    }
    if (found != qsizetype(model_.goods.size()))
        differ(u"%1 goods, should be %2"_s.arg(found).arg(model_.goods.size()));
    for (int kind = In; kind < Kinds; ++kind)
        compareDocuments(kind);
}

void Life::compareDocuments(int kind)
{
    const QString header = traitsOf(kindOf[size_t(kind)]).headerTable();
    std::map<QString, const Document*> expected;
    std::map<std::pair<QString, QString>, const Line*> lines;
    for (const Document& document : model_.documents[size_t(kind)]) {
        expected[document.number] = &document;
        for (const Line& line : document.lines)
            lines[{document.number, line.code}] = &line;
    }
    Recordset headers = eye_.OpenRecordset(u"select F1,F2,F3,F6,F9 from "_s + header);
    if (size_t(headers.RecordCount()) != expected.size())
        differ(u"%1 documents in %2, should be %3"_s.arg(headers.RecordCount()).arg(header).arg(expected.size()));
    for (; !headers.isEOF(); headers.MoveNext()) {
        const auto at = expected.find(headers.Fields(0).text());
        if (at == expected.end()) {
            differ(u"unknown document "_s + headers.Fields(0).text());
            continue;
        }
        const Document& document = *at->second;
        const Value& auditor = headers.Fields(3);
        if (headers.Fields(1).text() != document.day || headers.Fields(2).text() != document.partner ||
            auditor.isNull() == document.auditor.has_value() || auditor.text() != document.auditor.value_or(QString()))
            differ(u"the header of "_s + document.number);
        if (headers.Fields(4).number() != document.total)
            differ(u"the total of %1 is %2, should be %3"_s.arg(document.number, shown(headers.Fields(4).number()),
                                                                shown(document.total)));
    }
    Recordset stored = eye_.OpenRecordset(
        (kind == Count ? u"select F0,F1,F6,F7,F5 from %11"_s : u"select F0,F1,F6,F7,H6,H7,H8 from %11"_s)
            .replace(u"%1"_s, header));
    if (size_t(stored.RecordCount()) != lines.size())
        differ(u"%1 lines in %2, should be %3"_s.arg(stored.RecordCount()).arg(header).arg(lines.size()));
    for (; !stored.isEOF(); stored.MoveNext()) {
        const auto at = lines.find({stored.Fields(0).text(), stored.Fields(1).text()});
        const bool right = at != lines.end() && same(stored.Fields(2), at->second->quantity) &&
                           same(stored.Fields(3), at->second->price) &&
                           (kind == Count ? same(stored.Fields(4), at->second->book)
                                          : same(stored.Fields(4), at->second->stockAfter) &&
                                                same(stored.Fields(5), at->second->costAfter) &&
                                                stored.Fields(6).text() == at->second->moment);
        if (!right)
            differ(u"the line %1 of %2"_s.arg(stored.Fields(1).text(), stored.Fields(0).text()));
    }
    // What the operator sees of it, wherever the list was only kept up to date.
    auto* open = static_cast<DocumentForm*>(Form::loaded(traitsOf(kindOf[size_t(kind)]).form.toString()));
    if (!open)
        return;
    QStringList listed;
    for (int row = 1; row < open->GD->Rows(); ++row)
        if (const QString number = open->GD->TextMatrix(row, 0); !number.isEmpty())
            listed += number;
    QStringList drafts;
    for (const auto& [number, document] : expected)
        if (kind == Count ? !document->auditor : document->auditor.value_or(QString()).isEmpty())
            drafts += number;
    listed.sort();
    drafts.sort();
    if (listed != drafts)
        differ(u"the list of %1 shows %2, should show %3"_s.arg(header, listed.join(u' '), drafts.join(u' ')));
}

QString Life::examine()
{
    for (const LedgerFinding& finding : examineLedger().findings)
        if (finding.kind != u"负库存" && finding.kind != u"成本异常") // the dice know no good business
            return u"the check of the ledger: %1, %2, %3"_s.arg(finding.kind, finding.where, finding.what);
    return {};
}

// Runs ----------------------------------------------------------------------------------------------------------------

struct Failure
{
    size_t at;
    QString what;
};

std::optional<Failure> live(const QString& pristine, const vector<Command>& commands, bool spoil)
{
    Life life(pristine, spoil);
    for (size_t i = 0; i < commands.size(); ++i)
        if (const QString what = life.run(commands[i]); !what.isEmpty())
            return Failure{i, what};
    if (const QString what = life.examine(); !what.isEmpty())
        return Failure{commands.size() - 1, what};
    return {};
}

/// Leaves out commands, and acts within them, for as long as it still fails.
vector<Command> shortened(const QString& pristine, vector<Command> commands, bool spoil)
{
    const auto fails = [&](vector<Command>& tried) {
        const auto failure = live(pristine, tried, spoil);
        if (failure)
            tried.resize(failure->at + 1);
        return failure.has_value();
    };
    fails(commands);
    for (size_t chunk = std::max<size_t>(commands.size() / 2, 1); chunk > 0; chunk /= 2)
        for (size_t from = 0; from < commands.size();) {
            vector<Command> tried = commands;
            tried.erase(tried.begin() + ptrdiff_t(from),
                        tried.begin() + ptrdiff_t(std::min(from + chunk, tried.size())));
            if (!tried.empty() && fails(tried))
                commands = std::move(tried);
            else
                from += chunk;
        }
    for (size_t i = 0; i < commands.size(); ++i)
        for (size_t j = 0; i < commands.size() && j < commands[i].touches.size();) {
            vector<Command> tried = commands;
            tried[i].touches.erase(tried[i].touches.begin() + ptrdiff_t(j));
            if (commands[i].verb != Command::NewGoods && fails(tried))
                commands = std::move(tried);
            else
                ++j;
        }
    return commands;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    int steps = 20000;
    unsigned seed = std::random_device()();
    bool spoil = false;
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == u"--spoil")
            spoil = true;
        else if (arguments[i] == u"--steps" && i + 1 < arguments.size())
            steps = arguments[++i].toInt();
        else if (arguments[i] == u"--seed" && i + 1 < arguments.size())
            seed = arguments[++i].toUInt();
        else {
            std::fprintf(stderr, "usage: model [--steps N] [--seed N] [--spoil]\n");
            return 2;
        }
    }
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    setDesktopHost(std::make_unique<headless::Desktop>());
    const QTemporaryDir folder;
    const QString pristine = folder.filePath(u"vemaro.dat"_s);
    createLedger(pristine, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
    constexpr int stepsOfLife = 150;
    Dice dice(seed);
    for (int done = 0; done < steps; done += stepsOfLife) {
        vector<Command> commands;
        for (int i = 0; i < std::min(stepsOfLife, steps - done); ++i)
            commands.push_back(randomCommand(dice));
        if (!live(pristine, commands, spoil))
            continue;
        std::printf("they differ after %d commands of other ledgers; shortening\n", done);
        std::fflush(stdout);
        const vector<Command> few = shortened(pristine, commands, spoil);
        const auto failure = live(pristine, few, spoil);
        std::printf("It takes these %zu:\n", few.size());
        for (const Command& command : few)
            std::printf("  %s\n", qPrintable(command.text()));
        std::printf("and then:\n    %s\n", failure ? qPrintable(failure->what) : "nothing, when it is tried again");
        return 1;
    }
    std::printf("%d commands, %d ledgers: no difference\n", steps, (steps + stepsOfLife - 1) / stepsOfLife);
    return 0;
}
