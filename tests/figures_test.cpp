// Three periods of a warehouse, worked through the real forms, with a plain record of what was done kept beside them.
// Every column of every report must say what that record says.

#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "memory_desktop.h"
#include "modal_forms.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "reports/C1.h"
#include "reports/C15.h"
#include "reports/C18.h"
#include "reports/C181.h"
#include "reports/C3.h"
#include "reports/GoodsCard.h"
#include "reports/GoodsChart.h"
#include "reports/Lst.h"
#include "reports/Query.h"
#include "reports/Reorder.h"
#include "reports/StockChart.h"
#include "scripted_dialogs.h"
#include "session_fixture.h"

#include <QComboBox>
#include <QtTest>

#include <cmath>
#include <map>

namespace {

using enum DocumentKind;

struct Goods
{
    QString name, category, unit, model;
    double low, high, stock, cost, sale;
};

struct Item
{
    QString code;
    double quantity; ///< counted, on a stock-take
    double price = 0;
    QString remark = {};
    double book = 0;
    double leftStock = 0, leftCost = 0; ///< after the last step that moved it
};

enum class State { Draft, Audited, Undone };

struct Paper
{
    DocumentKind kind;
    QString number;
    QDate date;
    QString partner;
    QString remark;
    QList<Item> items;
    State state = State::Draft;
    QDate stepped = {}; ///< on that day it was audited, or the audit undone

    bool in() const { return kind == B1 || kind == D3; }
};

const std::map<QString, QString> categories{{u"01"_s, u"五金"_s}, {u"02"_s, u"电料"_s}};
const std::map<QString, QString> partners{
    {u"K1"_s, u"宏达五金"_s}, {u"K2"_s, u"东风电料"_s}, {u"C1"_s, u"一车间"_s}, {u"C2"_s, u"二车间"_s}};
const std::map<QString, Goods> yearOpening{{u"A1"_s, {u"六角螺栓"_s, u"01"_s, u"个"_s, u"M8"_s, 30, 0, 10, 2, 3}},
                                           {u"A2"_s, {u"平垫圈"_s, u"01"_s, u"片"_s, u"8"_s, 0, 40, 100, 0.5, 1}},
                                           {u"A3"_s, {u"电缆"_s, u"02"_s, u"米"_s, u"BVR"_s, 1, 8, 0, 4, 6}},
                                           {u"A4"_s, {u"开关"_s, u"02"_s, u"只"_s, u"10A"_s, 0, 9, 7, 1.25, 3}},
                                           {u"A5"_s, {u"插座"_s, u"02"_s, u"只"_s, u"五孔"_s, 0, 0, 0, 1, 2}},
                                           {u"A6"_s, {u"焊锡"_s, u"02"_s, u"卷"_s, u"0.8"_s, 0, 0, 0, 20, 30}},
                                           {u"A7"_s, {u"木螺钉"_s, u"01"_s, u"盒"_s, u"4x30"_s, 5, 0, 0, 1, 2}},
                                           {u"A8"_s, {u"绝缘胶带"_s, u"02"_s, u"卷"_s, u"18"_s, 0, 2, 3, 2.15, 4}}};

double rounded(double value, int places)
{
    const double unit = std::pow(10, places);
    return std::round(value * unit + std::copysign(1e-7, value)) / unit + 0.0;
}

QString withoutZeros(double value, int places)
{
    QString text = QString::number(rounded(value, places), 'f', places);
    while (text.endsWith(u'0'))
        text.chop(1);
    return text.endsWith(u'.') ? text.chopped(1) : text;
}

/// How the reports write their figures.
struct Written
{
    static QString money(double value) { return QString::number(rounded(value, 2), 'f', 2); }
    static QString fivePlaces(double value) { return withoutZeros(value, 5); }
    /// The almost nothing that binary fractions leave shows as such.
    static QString pieces(double value)
    {
        return value != 0 && std::abs(value) < 1e-5 ? u"0.000"_s : withoutZeros(value, 3);
    }
    static QString day(QDate day) { return day.toString(u"yyyy-M-d"_s); }
};

QStringList sorted(QStringList lines)
{
    lines.sort();
    return lines;
}

QStringList linesOf(const Grid* grid, int first = 1)
{
    QStringList all;
    for (int row = first; row < grid->Rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < grid->Cols(); ++column)
            cells += grid->TextMatrix(row, column);
        all += cells.join(u'|');
    }
    return all;
}

/// A report as it should be: lines, and below them the sums of some columns.
struct Expected
{
    using Write = QString (*)(double);

    Expected& texts(const QStringList& cells)
    {
        line += cells;
        return *this;
    }
    Expected& numbers(Write write, std::initializer_list<double> values)
    {
        for (const double value : values) {
            sums[line.size()].first += value;
            sums[line.size()].second = write;
            line += write(value);
        }
        return *this;
    }
    void end()
    {
        width = line.size();
        lines += std::exchange(line, {}).join(u'|');
    }
    QStringList withSums(const QString& caption, const QList<int>& columns, int captionColumn = 0)
    {
        QStringList total(width);
        for (const int column : columns)
            total[column] = sums.at(column).second(sums.at(column).first);
        total[captionColumn] = caption;
        return lines + QStringList(total.join(u'|'));
    }

    QStringList line, lines;
    qsizetype width = 0;
    std::map<qsizetype, std::pair<double, Write>> sums; ///< by column
};

} // namespace

class FiguresTest : public QObject
{
    Q_OBJECT

private:
    using C = PeriodColumn;
    using PeriodRows = std::map<QString, std::array<double, C::Count>>;

    std::unique_ptr<LedgerFixture> ledger_;
    std::unique_ptr<ScriptedDialogs> boxes_;
    std::map<QString, Goods> goods_ = yearOpening;
    QList<Paper> papers_;
    QDate today_;
    PeriodRows newest_;                                 ///< of each goods the row saved last
    QList<std::pair<QStringList, QStringList>> closed_; ///< what each saved report showed, and should have

    // What is done, and what the record says of it --------------------------------------------------------------------

    void begin(QDate day)
    {
        today_ = day;
        setClock(QDateTime(day, QTime(9, 0)));
    }

    static void write(Grid& grid, int column, const QString& text)
    {
        grid.edit(grid.Rows() - 2, column); // above the empty row
        grid.TxtEnter->setText(text);
        QVERIFY(grid.endEdit());
    }

    /// @param items in the order of their codes, as an audit takes them
    /// @return the place of the document in the record
    qsizetype enter(QDate day, DocumentKind kind, const QString& partner, QList<Item> items, QDate dated = {})
    {
        begin(day);
        DocumentForm& form = documentForm(kind);
        form.command(u"Menu_Add"_s)->trigger();
        Paper paper{kind, form.Txt[0]->text(), dated.isValid() ? dated : day, partner, {}, {}};
        paper.remark = u"附注%1"_s.arg(papers_.size());
        form.Txt[1]->setText(Written::day(paper.date));
        form.Txt[6]->setText(paper.remark);
        kind == C2 ? form.Txt[2]->setText(partner) : form.CmbLB->setEditText(partner);
        for (Item& item : items) {
            form.lines->TxtHPBM->setText(item.code);
            form.lines->TxtSL->setText(QString::number(item.quantity));
            form.lines->AddGoodsLine();
            if (kind != C2) {
                write(*form.lines->GdMx, 4, QString::number(item.price));
            } else { // both as the line shows them
                item.book = rounded(goods_[item.code].stock, 9);
                item.price = rounded(goods_[item.code].cost, 2);
            }
            write(*form.lines->GdMx, 6, item.remark);
        }
        paper.items = items;
        papers_ += paper;
        boxes_->expectStart(u"单据保存成功！"_s);
        form.command(u"Menu_save"_s)->trigger();
        return papers_.size() - 1;
    }

    /// Audits, or undoes an audit.
    void step(qsizetype place, State state)
    {
        Paper& paper = papers_[place];
        const bool audited = state == State::Audited;
        DocumentForm& form = documentForm(paper.kind);
        form.listAll({});
        form.TabS->setCurrentIndex(0);
        int row = 1;
        while (row < form.GD->Rows() && form.GD->TextMatrix(row, 0) != paper.number)
            ++row;
        QVERIFY(row < form.GD->Rows());
        form.GD->select(row);
        boxes_->expectQuestionStart(audited            ? u"审核操作将"_s
                                    : paper.kind == B1 ? u"如果这批"_s
                                                       : u"撤销审核"_s,
                                    Answer::Yes);
        form.command(audited ? u"Menu_Ok"_s : u"Menu_noOK"_s)->trigger();
        QVERIFY2(boxes_->finished(), qPrintable(boxes_->report()));

        paper.state = state;
        paper.stepped = today_;
        for (Item& item : paper.items) {
            Goods& goods = goods_[item.code];
            if (paper.kind == C2) {
                goods.stock += item.quantity - item.book;
                continue;
            }
            const double change = paper.in() == audited ? item.quantity : -item.quantity;
            const double after = goods.stock + change;
            if ((paper.kind == B1 || paper.kind == B3) && after != 0) {
                goods.cost = (goods.cost * goods.stock + item.price * change) / after;
                goods.sale = goods.cost * 1.5;
            }
            item.leftStock = goods.stock = after;
            item.leftCost = goods.cost;
        }
    }

    void book(QDate day, DocumentKind kind, const QString& partner, const QList<Item>& items, QDate dated = {})
    {
        step(enter(day, kind, partner, items, dated), State::Audited);
    }

    static C181& periodForm()
    {
        if (Form* form = Form::loaded(C181::formName()))
            form->Unload();
        return theForm<C181>();
    }

    void closePeriod(QDate from, QDate to)
    {
        begin(to);
        const PeriodRows rows = periodRows(from, ClosingMethod::Period);
        C181& form = periodForm();
        form.generateOrOpen();
        closed_.append({linesOf(form.GD, 2), periodLines(rows)});
        boxes_->expect(u"保存成功！"_s);
        form.saveOrDelete();
        for (const auto& [code, row] : rows)
            newest_[code] = row;
    }

    void threePeriods()
    {
        using enum State;
        const auto on = [](int month, int day) { return QDate(2004, month, day); };
        book(on(1, 5), B1, u"K1"_s, {{u"A1"_s, 30, 3, u"加急"_s}, {u"A2"_s, 12.5, 0.85}});
        book(on(1, 9), D1, u"C1"_s, {{u"A1"_s, 12, 4.5}, {u"A4"_s, 2, 3, u"样品"_s}});
        book(on(1, 9), B3, u"K1"_s, {{u"A1"_s, 5, 3.2}});
        book(on(2, 2), B1, u"K2"_s, {{u"A6"_s, 0.1, 20}});
        book(on(2, 2), B1, u"K2"_s, {{u"A6"_s, 0.2, 21.5}});
        book(on(2, 10), D1, u"C2"_s, {{u"A3"_s, 5, 6}}); // of which there is nothing
        book(on(2, 11), B1, u"K2"_s, {{u"A3"_s, 8, 4.4}});
        const qsizetype mistaken = enter(on(2, 11), B1, u"K2"_s, {{u"A3"_s, 100, 9}});
        step(mistaken, Audited);
        book(on(2, 11), D1, u"C1"_s, {{u"A3"_s, 1, 6.25}});
        step(mistaken, Undone);
        const qsizetype count = enter(on(2, 20), C2, u"老王"_s, {{u"A2"_s, 100}, {u"A3"_s, 4}});
        book(on(2, 20), D1, u"C2"_s, {{u"A2"_s, 10, 1}}); // while they are counting
        step(count, Audited);
        book(on(3, 1), D3, u"C1"_s, {{u"A1"_s, 2, 4.5}}, on(2, 27));
        enter(on(3, 15), D1, u"C1"_s, {{u"A1"_s, 3, 5}});
        book(on(3, 30), B1, u"K1"_s, {{u"A1"_s, 6, 3.1}}, on(4, 2)); // moves stock now, counts in the next period
        closePeriod(on(1, 1), on(3, 31));

        book(on(4, 1), D1, u"C1"_s, {{u"A4"_s, 5, 3}});
        book(on(4, 20), B3, u"K2"_s, {{u"A2"_s, 120, 0.7}}); // below nothing
        book(on(5, 6), B1, u"K2"_s, {{u"A2"_s, 30, 0.9}});   // exactly nothing
        book(on(5, 7), B1, u"K2"_s, {{u"A2"_s, 50, 0.75}});
        const qsizetype twice = enter(on(5, 20), D1, u"C2"_s, {{u"A1"_s, 4, 5}});
        step(twice, Audited);
        step(twice, Undone);
        book(on(5, 20), D3, u"C2"_s, {{u"A1"_s, 1, 5}});
        step(twice, Audited);
        const qsizetype kept = enter(on(6, 2), B3, u"K2"_s, {{u"A1"_s, 2, 2.5}});
        step(kept, Audited);
        step(kept, Undone);
        book(on(6, 10), C2, u"老李"_s, {{u"A1"_s, 20}, {u"A6"_s, 0.3}});
        enter(on(6, 10), C2, u"老李"_s, {{u"A2"_s, 1}});
        book(on(6, 29), D1, u"C2"_s, {{u"A6"_s, 0.3, 30}}); // leaves almost nothing, which the next report leaves out
        closePeriod(on(4, 1), on(6, 30));

        book(on(7, 15), D3, u"C2"_s, {{u"A3"_s, 1.5, 6}});
        enter(on(7, 15), B1, u"K1"_s, {{u"A7"_s, 10, 1}});
        book(on(8, 1), B1, u"K2"_s, {{u"A5"_s, 9, 2}});
        book(on(8, 1), B3, u"K2"_s, {{u"A5"_s, 9, 2}});
        book(on(9, 20), B1, u"K1"_s, {{u"A1"_s, 5, 2.9}, {u"A3"_s, 7.125, 4.15}});
        book(on(9, 20), B3, u"K2"_s, {{u"A2"_s, 1, 0.85}});
        const qsizetype unbooked = enter(on(9, 20), D3, u"C1"_s, {{u"A3"_s, 1, 4}});
        step(unbooked, Audited);
        step(unbooked, Undone);
        book(on(9, 20), D1, u"C1"_s, {{u"A1"_s, 3, 4.35}, {u"A2"_s, 2.5, 1.15}});
        book(on(9, 20), D3, u"C2"_s, {{u"A2"_s, 0.5, 1.15}});
        book(on(9, 20), C2, u"老王"_s, {{u"A2"_s, 45}, {u"A3"_s, 10}, {u"A4"_s, 1}});
    }

    // What the reports must say ---------------------------------------------------------------------------------------

    void eachLine(const std::function<void(const Paper&, const Item&, const Goods&)>& visit) const
    {
        for (const Paper& paper : papers_)
            for (const Item& item : paper.items)
                visit(paper, item, goods_.at(item.code));
    }

    /// From that day to today: what documents moved that are audited, stock-takes never.
    PeriodRows periodRows(QDate from, ClosingMethod method) const
    {
        PeriodRows rows;
        for (const auto& [code, goods] : goods_) {
            std::array<double, C::Count> row{};
            if (const auto before = newest_.find(code); before != newest_.end()) {
                row = before->second;
                row[C::InQuantity] = row[C::InAmount] = row[C::OutQuantity] = row[C::OutAmount] = 0;
            } else {
                const Goods& opening = yearOpening.at(code);
                row[C::OpeningQuantity] = row[C::ClosingQuantity] = opening.stock;
                row[C::OpeningAmount] = row[C::ClosingAmount] = opening.stock * opening.cost;
            }
            row[C::Price] = goods.cost;
            row[C::BroughtQuantity] = row[C::ClosingQuantity];
            row[C::BroughtAmount] = row[C::ClosingAmount];
            eachLine([&](const Paper& paper, const Item& item, const Goods&) {
                if (item.code != code || paper.kind == C2 || paper.state != State::Audited || paper.date < from ||
                    paper.date > today_)
                    return;
                for (const int column :
                     {paper.in() ? C::InQuantity : C::OutQuantity, paper.in() ? C::AllInQuantity : C::AllOutQuantity}) {
                    row[column] += item.quantity;
                    row[column + 1] += item.quantity * item.price;
                }
            });
            for (int column = C::OpeningAmount; column < C::Count; column += 2)
                row[column] = rounded(row[column], 2);
            row[C::ClosingQuantity] = rounded(goods.stock, 3);
            row[C::ClosingAmount] = method == ClosingMethod::Cost ? rounded(goods.stock * goods.cost, 2)
                                    : method == ClosingMethod::Period
                                        ? row[C::BroughtAmount] + row[C::InAmount] - row[C::OutAmount]
                                        : row[C::OpeningAmount] + row[C::AllInAmount] - row[C::AllOutAmount];
            if (row[C::ClosingQuantity] != 0 || row[C::BroughtQuantity] != 0 || row[C::OutQuantity] != 0)
                rows[code] = row;
        }
        return rows;
    }

    QStringList periodLines(const PeriodRows& rows) const
    {
        Expected expected;
        for (const auto& [code, row] : rows) {
            const Goods& goods = goods_.at(code);
            expected.texts({code, goods.name + u'/' + goods.model + u'/' + goods.unit})
                .numbers(Written::money, {row[C::Price]});
            for (int column = C::OpeningQuantity; column < C::Count; ++column)
                expected.numbers(Written::pieces, {rounded(row[column], 9)});
            expected.end();
        }
        return expected.withSums(u"合计："_s, {5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}, 4);
    }

    /// Of all days, or of today.
    QStringList statistics(DocumentKind kind, bool all) const
    {
        Expected expected;
        eachLine([&](const Paper& paper, const Item& item, const Goods& goods) {
            if (paper.kind != kind || paper.state != State::Audited || (!all && paper.date != today_))
                return;
            const double moved = item.quantity - item.book;
            expected.texts({paper.number, Written::day(paper.date), paper.partner});
            if (kind != C2)
                expected.texts({partners.at(paper.partner), paper.remark});
            expected.texts({item.code, goods.name, goods.model});
            if (kind != C2)
                expected.texts({goods.category, categories.at(goods.category)});
            expected.texts({goods.unit})
                .numbers(Written::pieces, {moved})
                .numbers(Written::money, {item.price, moved * item.price});
            if (kind != C2)
                expected.texts({item.remark});
            expected.end();
        });
        return kind == C2 ? expected.withSums(u"盈亏额合计："_s, {9}) : expected.withSums(u"合计："_s, {11, 13});
    }

    QStringList stockList(double Goods::*price, const std::function<bool(const Goods&)>& listed) const
    {
        Expected expected;
        for (const auto& [code, goods] : goods_)
            if (listed(goods))
                expected.texts({code, goods.name, categories.at(goods.category), goods.unit, goods.model})
                    .numbers(Written::pieces, {goods.stock})
                    .numbers(Written::money, {goods.*price, goods.stock * goods.*price})
                    .end();
        return expected.withSums(u"合计："_s, {5, 7});
    }

    /// Backwards from today's stock. An audit that was undone counts here too, a stock-take doesn't.
    QStringList quantities(double Goods::*price, QDate from, QDate to) const
    {
        Expected expected;
        for (const auto& [code, goods] : goods_) {
            std::map<DocumentKind, double> during, later;
            eachLine([&, &code = code](const Paper& paper, const Item& item, const Goods&) {
                if (item.code == code && paper.state != State::Draft && paper.date >= from)
                    (paper.date > to ? later : during)[paper.kind] += item.quantity;
            });
            const double closing = rounded(goods.stock, 6) - later[B1] + later[B3] + later[D1] - later[D3];
            const double opening = closing - during[B1] + during[B3] + during[D1] - during[D3];
            if (rounded(closing + during[B1] + during[B3] + during[D1] + during[D3], 9) == 0)
                continue;
            expected.texts({code, goods.name + u'/' + goods.model})
                .numbers(Written::money, {goods.*price})
                .texts({goods.unit});
            expected.numbers(Written::pieces, {opening, during[B1], during[B3], during[D1], during[D3], closing}).end();
        }
        return expected.withSums(u"合计："_s, {4, 5, 6, 7, 8, 9});
    }

    /// Drafts among them, which have left no stock; of the others the stock that the last step left, an undoing too.
    QStringList flow() const
    {
        Expected expected;
        eachLine([&](const Paper& paper, const Item& item, const Goods& goods) {
            if (paper.kind == C2)
                return;
            const double in = paper.in() ? item.quantity : 0, out = paper.in() ? 0 : item.quantity;
            expected.texts({paper.number, Written::day(paper.date), partners.at(paper.partner), paper.remark})
                .texts({categories.at(goods.category), item.code, goods.name, goods.model, goods.unit})
                .numbers(Written::fivePlaces, {item.price, in, in * item.price, out, out * item.price})
                .numbers(Written::fivePlaces, {item.leftStock, item.leftStock * item.leftCost})
                .texts({item.remark})
                .end();
        });
        return expected.withSums(u"合计："_s, {10, 11, 12, 13});
    }

    /// What moved that goods item, in the order of its card: a count keeps no moment and ends its day.
    QList<std::pair<const Paper*, double>> movements(const QString& code) const
    {
        QList<std::pair<const Paper*, double>> moved;
        for (const Paper& paper : papers_)
            for (const Item& item : paper.items)
                if (item.code == code && paper.state == State::Audited)
                    moved.append({&paper, paper.kind == C2 ? item.quantity - item.book
                                                           : (paper.in() ? item.quantity : -item.quantity)});
        std::stable_sort(moved.begin(), moved.end(), [](const auto& a, const auto& b) {
            const auto place = [](const Paper& p) {
                return std::tuple(p.date, p.kind == C2, p.kind == C2 ? QDate() : p.stepped, p.number);
            };
            return place(*a.first) < place(*b.first);
        });
        return moved;
    }

    static void ask(const Form& form, QDate from, QDate to)
    {
        form.findChild<DatePicker*>(u"DTP(0)"_s)->setText(Written::day(from));
        form.findChild<DatePicker*>(u"DTP(1)"_s)->setText(Written::day(to));
    }

    /// Opened on today's documents, then searched for those of all days.
    void compare(ListForm& form, DocumentKind kind, const QString& field)
    {
        QCOMPARE(sorted(linesOf(form.GD)), sorted(statistics(kind, false)));
        inModal<Query>(u"Query"_s, [field](Query& query) {
            query.CmbF->setCurrentText(field);
            query.CmbGX->setCurrentText(u"大于(>)"_s);
            query.Txt->setText(u"0"_s);
            query.add();
            query.search();
        });
        form.command(u"Menu_query"_s)->trigger();
        QCOMPARE(sorted(linesOf(form.GD)), sorted(statistics(kind, true)));
    }

private slots:
    void initTestCase()
    {
        MemoryDesktop::install();
        QApplication::setQuitOnLastWindowClosed(false);
        ledger_ = std::make_unique<LedgerFixture>();
        boxes_ = std::make_unique<ScriptedDialogs>();
        const auto insert = [this](const QString& into, const QStringList& texts, const QList<double>& numbers = {}) {
            QString values = u'\'' + texts.join(u"','"_s) + u'\'';
            for (const double number : numbers)
                values += u',' + QString::number(number);
            ledger_->run(u"insert into "_s + into + u" values ("_s + values + u')');
        };
        for (const auto& [code, name] : categories)
            insert(u"TA3 (F1,F2)"_s, {code, name});
        for (const auto& [code, name] : partners)
            insert(code.startsWith(u'K') ? u"TA1 (F1,F2)"_s : u"TA2 (F1,F2)"_s, {code, name});
        for (const auto& [code, goods] : yearOpening)
            insert(u"TA4 (F1,F2,F3,F4,F5,V1,V2,F8,F7,F71,V3,V4)"_s,
                   {code, goods.name, goods.category, goods.unit, goods.model},
                   {goods.low, goods.high, goods.stock, goods.cost, goods.sale, goods.stock, goods.cost});
        beginSession(*ledger_);
        gNoOverIssue = 0;
        gNoAvgUpdate = 0;
        gSalePriceFactor = 1.5f;
        threePeriods();
    }
    void cleanupTestCase()
    {
        endSession();
        boxes_.reset();
    }

    void c181()
    {
        for (qsizetype i = 0; i < closed_.size(); ++i) {
            QCOMPARE(closed_[i].first, closed_[i].second);
            C181& form = periodForm();
            form.Comb->setCurrentIndex(form.Comb->findData(int(i) + 1));
            form.generateOrOpen();
            QCOMPARE(linesOf(form.GD, 2), closed_[i].second); // whatever came after it
        }
        for (const ClosingMethod method : {ClosingMethod::Cost, ClosingMethod::Period, ClosingMethod::Cumulative}) {
            C181& form = periodForm();
            boxes_->expectStart(u"点击“生成报表”"_s);
            form.Menu_FangFa(method);
            form.generateOrOpen();
            QCOMPARE(linesOf(form.GD, 2), periodLines(periodRows(QDate(2004, 7, 1), method)));
        }
    }

    void c18()
    {
        const QDate from(2004, 2, 11), to(2004, 5, 6);
        C18& form = theForm<C18>();
        ask(form, from, to);
        form.generate();
        QCOMPARE(linesOf(form.GD), quantities(&Goods::sale, from, to));
        form.Menu_price(C18::Price::Cost);
        QCOMPARE(linesOf(form.GD), quantities(&Goods::cost, from, to));
    }

    void c15()
    {
        C15& form = theForm<C15>();
        ask(form, QDate(2004, 1, 1), QDate(2004, 12, 31));
        form.generate();
        QCOMPARE(sorted(linesOf(form.GD)), sorted(flow()));
    }

    void c1()
    {
        C1& form = C1::theWindow();
        QCOMPARE(linesOf(form.GD), stockList(&Goods::sale, [](const Goods& goods) { return goods.stock != 0; }));
        form.Menu_Price(C1::Price::Cost);
        QCOMPARE(linesOf(form.GD), stockList(&Goods::cost, [](const Goods&) { return true; }));
        form.Menu_Bellow();
        QCOMPARE(linesOf(form.GD), stockList(&Goods::sale, [](const Goods& goods) { return goods.stock < goods.low; }));
        form.Menu_Morethan();
        QCOMPARE(linesOf(form.GD), stockList(&Goods::sale, [](const Goods& goods) {
                     return goods.high != 0 && goods.stock > goods.high;
                 }));
    }

    void lst()
    {
        for (const auto& [mode, kind] : {std::pair(StatisticsMode::B2, B1),
                                         {StatisticsMode::B4, B3},
                                         {StatisticsMode::D2, D1},
                                         {StatisticsMode::D4, D3}})
            compare(Lst::theWindow(mode), kind, u"数量"_s);
    }

    void cardsAndCharts()
    {
        const auto pieces = [](double value) { return Written::pieces(rounded(value, 6)); };
        for (const auto& [code, goods] : goods_) {
            double balance = yearOpening.at(code).stock, in = 0, out = 0;
            std::map<int, std::array<double, 3>> months; // in, out, counted
            std::map<int, double> closing;
            QStringList expected{u"2004-1-1|年初结存|||||"_s + pieces(balance)};
            for (const auto& [paper, change] : movements(code)) {
                const bool comes = paper->kind == C2 ? change > 0 : paper->in();
                const QString who = paper->kind == C2 ? paper->partner : partners.at(paper->partner);
                balance += change;
                (comes ? in : out) += std::abs(change);
                (paper->kind == C2 ? months[paper->date.month()][2] += change
                                   : months[paper->date.month()][comes ? 0 : 1] += std::abs(change));
                const bool nothing = change == 0;
                expected += QStringList{Written::day(paper->date),
                                        traitsOf(paper->kind).documentName(),
                                        paper->number,
                                        who,
                                        comes && !nothing ? pieces(std::abs(change)) : QString(),
                                        comes || nothing ? QString() : pieces(std::abs(change)),
                                        pieces(balance)}
                                .join(u'|');
            }
            expected += u"合计：||||"_s + pieces(in) + u'|' + pieces(out) + u'|';
            QCOMPARE(pieces(balance), pieces(goods.stock)); // else the record is wrong itself
            GoodsCard::open(code);
            auto& card = theForm<GoodsCard>();
            QStringList shown;
            for (const QString& line : linesOf(card.GD))
                shown += line.section(u'|', 0, 6);
            QCOMPARE(shown, expected);
            QVERIFY2(card.LabEnd->text().endsWith(u"与现存数量一致。"_s), qPrintable(card.LabEnd->text()));

            GoodsChart::open(code);
            QStringList table;
            double left = yearOpening.at(code).stock;
            for (int month = 1; month <= 9; ++month) {
                const auto& [came, went, counted] = months[month];
                const double before = left;
                left += came - went + counted;
                table += QStringList{u"2004-0%1"_s.arg(month), pieces(before), pieces(came), pieces(went),
                                     pieces(counted),          pieces(left)}
                             .join(u'|');
            }
            QCOMPARE(linesOf(theForm<GoodsChart>().GD).mid(3, 9), table);
        }

        StockChart chart;
        std::map<QString, std::array<double, 3>> shares; // by category: goods, pieces, money
        double whole = 0;
        for (const auto& [code, goods] : goods_)
            if (goods.stock != 0) {
                auto& [kinds, stock, money] = shares[goods.category];
                kinds += 1;
                stock += goods.stock;
                money += goods.stock * goods.cost;
                whole += goods.stock * goods.cost;
            }
        QStringList table;
        for (const auto& [category, share] : shares)
            table += QStringList{category,         categories.at(category),  pieces(share[0]),
                                 pieces(share[1]), Written::money(share[2]), withoutZeros(100 * share[2] / whole, 1)}
                         .join(u'|');
        QCOMPARE(sorted(linesOf(chart.GD).first(2)), sorted(table));
        QCOMPARE(linesOf(chart.GD)[2].section(u'|', 4, 4), Written::money(whole));

        Reorder reorder;
        table.clear();
        for (const auto& [code, goods] : goods_) {
            double drafts = 0;
            const Paper* last = nullptr;
            double price = 0;
            eachLine([&, &code = code](const Paper& paper, const Item& item, const Goods&) {
                if (item.code != code || paper.kind != B1)
                    return;
                drafts += paper.state == State::Draft ? item.quantity : 0;
                if (paper.state == State::Audited && (!last || paper.date >= last->date)) {
                    last = &paper;
                    price = item.price;
                }
            });
            if (goods.stock >= goods.low)
                continue;
            const double has = goods.stock + drafts;
            table += QStringList{code,
                                 pieces(goods.stock),
                                 drafts == 0 ? QString() : pieces(drafts),
                                 pieces(goods.low),
                                 goods.high == 0 ? QString() : pieces(goods.high),
                                 pieces(std::max(goods.low - has, 0.0)),
                                 goods.high == 0 ? QString() : pieces(std::max(goods.high - has, 0.0)),
                                 last ? partners.at(last->partner) : QString(),
                                 last ? Written::day(last->date) : QString(),
                                 last ? Written::money(price) : QString()}
                         .join(u'|');
        }
        QVERIFY(!table.isEmpty());
        QStringList listed;
        for (const QString& line : linesOf(reorder.GD))
            listed += line.section(u'|', 0, 0) + u'|' + line.section(u'|', 5);
        QCOMPARE(sorted(listed), sorted(table));
    }

    void c3() { compare(theForm<C3>(), C2, u"核算价格"_s); }
};

QTEST_MAIN(FiguresTest)
#include "figures_test.moc"
