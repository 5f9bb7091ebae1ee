#include "reports/report_rows.h"

#include "ledger/literal.h"
#include "ledger/store.h"
#include "shell/session.h"

namespace {

constexpr QStringView selectionPlace = u"{selection}";

/// The rows as they were copied out of the ledger.
class LedgerRows : public RowSource
{
public:
    explicit LedgerRows(Recordset rows)
        : rows_(std::move(rows))
    {}
    QStringList columns() const override
    {
        QStringList names;
        for (qsizetype i = 0; i < rows_.fieldCount(); ++i)
            names += rows_.fieldName(i);
        return names;
    }
    qsizetype rowCount() const override { return rows_.RecordCount(); }
    Value value(qsizetype row, int column) const override { return rows_.valueAt(row, column); }

private:
    Recordset rows_;
};

/// The operator's text is a literal in it, the names were checked when the formula was taken apart.
QString conditionOf(const ReportSelection& selection)
{
    return u"[%1].[%2]="_s.arg(selection.table, selection.column) + sqlText(selection.value);
}

/// Nothing when the layout's statement has no place for the selection: all documents would print instead of one.
std::optional<QString> statementOf(const ReportSource& source, const std::optional<ReportSelection>& selection)
{
    if (source.table.isEmpty()) {
        if (selection && !source.statement.contains(selectionPlace))
            return {};
        const QString condition = selection ? conditionOf(*selection) : u"1=1"_s;
        return QString(source.statement).replace(selectionPlace.toString(), condition);
    }
    QString statement = u"select * from ["_s + source.table + u']';
    if (selection)
        statement += u" where "_s + conditionOf(*selection);
    if (!source.order.isEmpty())
        statement += u" order by "_s + source.order;
    return statement;
}

} // namespace

ReportControl::Rows readReportRows(const QString& dataFile, const ReportLayout& layout,
                                   const std::optional<ReportSelection>& selection)
{
    const auto statement = statementOf(layout.source, selection);
    if (!statement)
        return LayoutFault{layout.file, layout.source.line, u"语句里没有 %1"_s.arg(selectionPlace)};
    Database ledger = DBEngine::OpenDatabase(dataFile, ledgerConnect.toString());
    try {
        return std::make_shared<LedgerRows>(ledger.OpenRecordset(*statement));
    } catch (const StoreError& failure) {
        // A statement that doesn't fit the ledger is the layout's fault; anything else is the ledger's own trouble.
        if (failure.kind() != StoreError::Kind::Statement)
            throw;
        const QString& words = failure.details().engineMessage;
        return LayoutFault{layout.file, layout.source.line,
                           u"数据源有误（%1）"_s.arg(words.isEmpty() ? failure.details().what : words)};
    }
}
