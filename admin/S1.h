#pragma once

#include "masterdata/record_form.h"

/// The operators and their six rights; a right takes effect at the next login. An edit empties the operator's password,
/// big caption and memo, which is how a forgotten password is taken away.
class S1 final : public RecordForm
{
    Q_OBJECT
    // The main window's close guard finds nothing to guard here: an entry that is left is dropped without a word.
    Q_PROPERTY(int Edstu READ guarded CONSTANT)

public:
    S1();
    static QString formName() { return u"S1"_s; }

    QCheckBox* Chk[rightCount] = {}; ///< in the order of OperatorRight

private:
    void buildDetail();
    void couple();
    int guarded() const { return Viewing; }

    QString listStatement() const override { return u"select * from TE1 order by F1"_s; }
    void showRecord() override;
    void clearRecord() override;
    void updateState() override;
    bool codeFixed(const QString& code) override;
    bool deletable(const QString& code) override;
    QString tidyCode(const QString& text) const override { return Trim(text); }
    void insert() override;
    QStringList savedRow() const override;

    QLabel* note_ = nullptr;
};
