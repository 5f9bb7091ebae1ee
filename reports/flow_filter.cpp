#include "reports/flow_filter.h"

#include "platform/base/clock.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

const QString allGoods = u"所有货品"_s;
const QString allCategories = u"所有类别"_s;

FlowFilter::FlowFilter(int columns, std::function<void()> run)
{
    setObjectName(u"PanelFilter"_s);
    setProperty("look", u"panel"_s);
    DTP[0] = new DatePicker(u"DTP"_s, 0);
    DTP[1] = new DatePicker(u"DTP"_s, 1);
    Comb = makeCombo(u"Comb"_s, -1, false);
    Txt = makeEdit(u"Txt"_s);
    Cmd = makeButton(u"Cmd"_s, u"生成报表"_s, std::move(run), -1, ButtonLook::Primary);
    for (DatePicker* day : DTP)
        day->setText(todayText());
    Comb->addItem(allCategories, QString());
    for (Recordset rows = gDB.OpenRecordset(u"select * from TA3"_s); !rows.isEOF(); rows.MoveNext()) {
        const QString code = rows.Fields(u"F1").text();
        Comb->addItem(entryOf(code, rows.Fields(u"F2").text()), code);
    }
    Txt->setText(allGoods);
    enterMovesOn(Comb);
    enterMovesOn(Txt);

    fields_ = new FieldLayout(columns);
    auto* row = new QHBoxLayout(this);
    row->setSpacing(2 * style::spacing);
    row->addLayout(fields_, 1);
    row->addWidget(Cmd);
    fields_->add(u"统计日期由"_s, DTP[0]);
    fields_->add(u"至"_s, DTP[1]);
    fields_->add(u"类别："_s, Comb);
    fields_->add(u"编码："_s, Txt);
}

void FlowFilter::add(const QString& caption, QWidget* field)
{
    fields_->add(caption, field);
    setTabOrder(field, Cmd);
}

FlowChoice FlowFilter::choice()
{
    if (Trim(Txt->text()).isEmpty())
        Txt->setText(allGoods);
    return {DTP[0]->text(), DTP[1]->text(), Comb->currentText(), Comb->currentData().toString(),
            Txt->text() == allGoods ? QString() : Txt->text()};
}

QString FlowFilter::none(bool asked)
{
    return asked ? u"这段日期、这些条件下没有数据。换一个条件，再按[生成报表]。"_s
                 : u"选好日期和条件，再按[生成报表]。"_s;
}

void FlowFilter::chooseCategory(const QString& words)
{
    Comb->setCurrentIndex(qMax(Comb->findText(words, Qt::MatchExactly | Qt::MatchCaseSensitive), 0));
}
