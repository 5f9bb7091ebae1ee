#pragma once

#include "masterdata/code_table_kind.h"
#include "masterdata/record_form.h"

/// Suppliers, consignees and categories of goods. Which of the three it is comes from one CodeTableTraits row.
class CodeTableForm final : public RecordForm
{
    Q_OBJECT

public:
    explicit CodeTableForm(const CodeTableTraits& kind);

protected:
    bool queryUnload() override;

private:
    void buildDetail();

    QString listStatement() const override;
    QList<QueryField> queryFields() const override;
    RecordPrint printed() const override;
    void showRecord() override;
    bool deletable(const QString& code) override;
    void insert() override;
    QStringList savedRow() const override;

    const CodeTableTraits& kind_;
};

/// The form of that kind, made at first use.
CodeTableForm& codeTableForm(CodeTableKind kind);
