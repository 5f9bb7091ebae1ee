#include "reports/Query.h"

#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/dialogs.h"
#include "platform/base/number.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"

#include <QKeyEvent>
#include <QListWidget>

namespace {

constexpr QStringView startText = u"ALL";
constexpr QStringView whereText = u" Where ";
constexpr QStringView everything = u"系统中存在的所有记录";

struct Connective
{
    QStringView word;
    QStringView line; ///< begins the condition in words
    QStringView sql;
};

constexpr Connective connectives[] = {
    {u"并且", u"    并且", u" And "},
    {u"或者", u"    或者", u" Or "},
    {u"排除", u"    排除", u" AND Not "},
};
constexpr Connective firstOne = {{}, u"        ", whereText};

/// The operator is what stands between the brackets.
const QStringList& relationsOf(QueryType type)
{
    static const QStringList relations[] = {
        {u"等于(=)"_s, u"包含(like)"_s},
        {u"大于(>)"_s, u"小于(<)"_s, u"等于(=)"_s},
        {u"大于(>=)"_s, u"小于(<=)"_s, u"等于(=)"_s},
    };
    return relations[size_t(type)];
}

QString operatorOf(const QString& relation)
{
    const qsizetype from = relation.indexOf(u'(') + 1;
    return relation.mid(from, relation.indexOf(u')') - from);
}

} // namespace

QString conditionOf(const QString& pubSql)
{
    return pubSql.mid(startText.size());
}

QString bracketedConditionOf(const QString& pubSql)
{
    const QString condition = Trim(pubSql.mid(startText.size() + whereText.size()));
    return condition.isEmpty() ? QString() : u'(' + condition + u')';
}

Query::Query()
    : Form(formName(), u"查找条件"_s)
{
    Gd = new Grid(u"Gd"_s, this);
    Gd->setColumns({{u"项目"_s}, {u"字段"_s}, {u"类型"_s}});
    Gd->hide();
    LstSql = new QListWidget(this);
    LstSql->setObjectName(u"LstSql"_s);
    LstSql->hide();

    CmbLG = makeCombo(u"CmbLG"_s, -1, false);
    for (const Connective& connective : connectives)
        CmbLG->addItem(connective.word.toString());
    CmbF = makeCombo(u"CmbF"_s, -1, false);
    CmbGX = makeCombo(u"CmbGX"_s, -1, false);
    Txt = makeEdit(u"Txt"_s);
    DTP = new DatePicker(u"DTP"_s);
    DTP->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    DTP->setAccessibleName(u"值"_s);
    DTP->setText(todayText());
    CmdAdd = makeButton(u"CmdAdd"_s, u"&A.增加"_s, [this] { add(); });
    CmdRemove = makeButton(u"CmdRemove"_s, u"&D.删除"_s, [this] { remove(); });
    CmdQuery = makeButton(
        u"CmdQuery"_s, u"&Q.查找"_s, [this] { search(); }, -1, ButtonLook::Primary);
    Cmdcancel = makeButton(u"Cmdcancel"_s, u"&C.取消"_s, [this] { cancel(); });
    Lst = new QListWidget;
    Lst->setObjectName(u"Lst"_s);
    Lst->setAccessibleName(u"查询条件窗口"_s);
    Lst->setProperty("look", u"conditions"_s);
    Lst->addItem(everything.toString());

    auto* row = makePanel(u"PanelRow"_s);
    auto* fields = new FieldLayout(3);
    fields->add(makeLabel(u"LabLG"_s, u"连接"_s), CmbLG);
    fields->add(makeLabel(u"LabF"_s, u"项目"_s), CmbF);
    fields->add(makeLabel(u"LabGX"_s, u"关系"_s), CmbGX);
    fields->add(makeLabel(u"LabValue"_s, u"值"_s), {Txt, DTP, CmdAdd}, 3);
    fields->setColumnStretch(3, 2); // a field's label is longer than a connective
    row->setLayout(fields);
    auto* heading = makeLabel(u"LabLst"_s, u"查询条件窗口"_s);
    setLook(heading, LabelLook::Field);
    content()->addWidget(row);
    content()->addLayout(makeRow({heading, nullptr, CmdRemove}));
    content()->addWidget(Lst, 1);
    content()->addLayout(makeRow({nullptr, CmdQuery, Cmdcancel}));
    style::follow(
        this, [inside = content()->parentWidget()] { inside->setMinimumSize(style::scaled(600), style::scaled(340)); });

    enterMovesOn(CmbLG);
    enterMovesOn(CmbF);
    enterMovesOn(CmbGX);
    enterMovesOn(Txt);
    onFocusIn(Txt, [this] { Txt->selectAll(); });
    connect(CmbF, &QComboBox::currentIndexChanged, this, [this] { runCommand([this] { chooseField(); }); });
    QWidget* const order[] = {CmbLG, CmbF, CmbGX, Txt, DTP, CmdAdd, Lst, CmdRemove, CmdQuery, Cmdcancel};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);
}

bool Query::ask(Form& caller, const QList<QueryField>& fields, const QString& caption)
{
    auto& form = theForm<Query>();
    form.setCaption(caption);
    form.caller_ = &caller;
    form.handBack({}); // as the close box leaves it
    form.offer(fields);
    form.ShowModal();
    form.Unload();
    return !caller.property("PubSql").toString().isEmpty();
}

void Query::offer(const QList<QueryField>& fields)
{
    QList<QStringList> rows;
    QStringList labels;
    for (const QueryField& field : fields) {
        rows += {field.label, field.expression, QString(QChar(u'0' + int(field.type)))};
        labels += field.label;
    }
    Gd->setRows(rows);
    CmbF->addItems(labels); // the first becomes current
    chooseField();
}

QueryType Query::type() const
{
    return QueryType(Gd->TextMatrix(CmbF->currentIndex() + 1, 2).toInt());
}

void Query::chooseField()
{
    CmbGX->clear();
    CmbGX->addItems(relationsOf(type()));
    DTP->setVisible(type() == QueryType::Date);
    Txt->setVisible(type() != QueryType::Date);
}

// Commands ------------------------------------------------------------------------------------------------------------

void Query::add()
{
    if (Lst->count() > 0 && Lst->item(0)->text() == everything)
        delete Lst->takeItem(0);
    const Connective& connective = Lst->count() > 0 ? connectives[qMax(CmbLG->currentIndex(), 0)] : firstOne;
    const QString value = type() == QueryType::Date ? DTP->text() : Txt->text();
    Lst->addItem(connective.line + CmbF->currentText() + u"  "_s + CmbGX->currentText() + u' ' + value);
    Lst->setCurrentRow(Lst->count() - 1);
    LstSql->addItem(connective.sql + sqlOfRow());
    CmbLG->setFocus(); // where a further condition begins
}

QString Query::sqlOfRow() const
{
    const QString expression = Gd->TextMatrix(CmbF->currentIndex() + 1, 1);
    const QString comparison = operatorOf(CmbGX->currentText());
    switch (type()) {
    case QueryType::Number:
        return expression + comparison + sqlNumber(Val(Txt->text()));
    case QueryType::Date:
        return u"datediff('d',"_s + sqlText(DTP->text()) + u',' + expression + u" )"_s + comparison + u"0 "_s;
    case QueryType::Text:
        break;
    }
    if (comparison == u"like")
        return expression + u" like "_s + sqlText(u'*' + Txt->text() + u'*') + u"  "_s;
    return expression + u"   "_s + comparison + sqlText(Txt->text()) + u"  "_s;
}

void Query::remove()
{
    const int row = Lst->currentRow();
    if (row < 0 || row >= LstSql->count()) // none, or the line that stands for no condition
        return;
    delete Lst->takeItem(row);
    delete LstSql->takeItem(row);
    if (row > 0 || LstSql->count() == 0)
        return;
    // The new first one follows nothing, so its connective goes, a negation too.
    for (const Connective& connective : connectives)
        if (const QString sql = LstSql->item(0)->text(); sql.startsWith(connective.sql)) {
            LstSql->item(0)->setText(whereText + sql.mid(connective.sql.size()));
            Lst->item(0)->setText(u"  "_s + Lst->item(0)->text().mid(connective.line.size()));
            return;
        }
}

void Query::search()
{
    const bool dated = type() == QueryType::Date;
    if (LstSql->count() == 0 && (dated || !Trim(Txt->text()).isEmpty()))
        return MsgBox(
            u"必须首先点击[增加]按钮，把查询条件添加到兰色条件窗口中，再点击[查找]按钮！\n"_s +
            (dated ? u"如果要让系统无条件列出所有数据，请把“项目”切换到非日期项，保持“值”内容为空，再按[查找]。"_s
                   : u"如果要让系统无条件列出所有数据，请保持“值”一栏中内容为空，再按[查找]按钮。"_s) +
            u"\n如果想中止查找操作，请点击[取消]按钮！"_s);
    QString text = startText.toString();
    for (int row = 0; row < LstSql->count(); ++row)
        text += LstSql->item(row)->text();
    handBack(text);
    hide();
}

void Query::cancel()
{
    handBack({});
    hide();
}

void Query::handBack(const QString& text)
{
    if (caller_)
        caller_->setProperty("PubSql", text);
}

QWidget* Query::firstFocus()
{
    return CmbF;
}

void Query::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        runCommand([this] { cancel(); });
    else if (focusWidget() == DTP && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        focusNextChild();
    else
        Form::keyPressEvent(event);
}
