#include "masterdata/code_table_form.h"

#include "ledger/Module1.h"
#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/style.h"
#include "reports/printing.h"

#include <numeric>

namespace {

RecordTable recordTableOf(const CodeTableTraits& kind)
{
    QStringList tests;
    for (const DocumentTables& documents : documentTables)
        if (documents.partners == kind.table)
            tests += u"select F3 from %1 where F3="_s.arg(documents.header);
    if (tests.isEmpty())
        tests += u"select F3 from TA4 where F3="_s;
    return {kind.form.toString(),
            kind.caption.toString(),
            kind.word + u"列表"_s,
            kind.word + u"明细"_s,
            kind.table.toString(),
            OperatorRight::Base,
            tests};
}

} // namespace

CodeTableForm& codeTableForm(CodeTableKind kind)
{
    const CodeTableTraits& traits = traitsOf(kind);
    if (Form* form = Form::loaded(traits.form.toString()))
        return *static_cast<CodeTableForm*>(form);
    return *new CodeTableForm(traits);
}

CodeTableForm::CodeTableForm(const CodeTableTraits& kind)
    : RecordForm(recordTableOf(kind))
    , kind_(kind)
{
    addEditCommands();
    addListCommands();
    addEndCommands();
    QList<GridColumn> columns;
    for (const CodeTableField& field : kind_.fields)
        columns += {field.caption.toString(), field.width, ColumnKind::Text, false, field.stretched};
    setListColumns(columns);
    buildDetail();
    loadList();
    updateState();
}

void CodeTableForm::buildDetail()
{
    constexpr int widest = 860; // wider fields would only part the captions from what stands in them
    auto* fields = new FieldLayout(2);
    for (const CodeTableField& field : kind_.fields) {
        addField(field.label.toString(), Txt.isEmpty() ? EditKind::Code : EditKind::Text);
        fields->add(Lab.last(), Txt.last(), field.span);
    }
    auto* block = new QWidget;
    style::follow(block, [block] { block->setMaximumWidth(style::scaled(widest)); });
    fields->setContentsMargins(0, 0, 0, 0);
    block->setLayout(fields);
    auto* row = makeRow({block, nullptr});
    row->setStretch(0, widest);
    detailPage()->addLayout(row);
    detailPage()->addStretch(1);
}

QString CodeTableForm::listStatement() const
{
    if (!searched())
        return kind_.list.toString();
    return u"Select %1.* from %1 "_s.arg(kind_.table) + condition() + u" order by "_s + kind_.table + u".F1"_s;
}

QList<QueryField> CodeTableForm::queryFields() const
{
    QList<QueryField> fields;
    for (int column = 0; column < GD->Cols(); ++column)
        fields += {GD->TextMatrix(0, column), u"%1.F%2"_s.arg(kind_.table).arg(column + 1)};
    return fields;
}

RecordPrint CodeTableForm::printed() const
{
    QList<int> columns(GD->Cols());
    std::iota(columns.begin(), columns.end(), 0);
    return {kind_.report.toString(),
            kind_.tested.toString(),
            u"报表文件%1丢失！"_s.arg(kind_.missing),
            {formula(u"Cpt", kind_.printTitle)},
            columns};
}

void CodeTableForm::showRecord()
{
    for (int column = 0; column < Txt.size(); ++column)
        Txt[column]->setText(listCell(column));
}

bool CodeTableForm::deletable(const QString& code)
{
    if (!RecordForm::deletable(code))
        return false;
    if (GD->Rows() > 2)
        return true;
    // The list may show only one of many that a search has found.
    const QString other = LookupValue(gDB, u"select F1 from "_s + kind_.table + u" WHERE F1<>"_s + sqlText(code));
    if (!other.isEmpty() && other != u"NoFound")
        return true;
    MsgBox(kind_.lastOne.toString());
    return false;
}

void CodeTableForm::insert()
{
    QStringList columns;
    for (int column = 1; column <= Txt.size(); ++column)
        columns += u"F%1"_s.arg(column);
    gDB.Execute(u"insert into "_s + kind_.table + u" ("_s + columns.join(u',') + u") VALUES ("_s +
                sqlTexts(savedRow()) + u')');
}

QStringList CodeTableForm::savedRow() const
{
    QStringList row;
    for (const QLineEdit* edit : Txt)
        row += edit->text();
    return row;
}

bool CodeTableForm::queryUnload()
{
    if (Edstu == Viewing)
        return true;
    EditingNotice();
    return false;
}
