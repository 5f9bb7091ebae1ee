#pragma once

#include "reports/list_form.h"

/// Gains and losses of the audited stock-takes, today's at first.
class C3 : public ListForm
{
    Q_OBJECT

public:
    C3();
    static QString formName() { return u"C3"_s; }

    void Menu_print1(); ///< the lines one by one
    void Menu_print2(); ///< by goods

private:
    enum Column {
        NumberCell,
        DateCell,
        TakerCell,
        GoodsCell,
        NameCell,
        ModelCell,
        UnitCell,
        GainCell,
        PriceCell,
        AmountCell
    };

    bool printable() const;
    void print(const QString& reportFile, const QString& title, QList<QStringList> rows);
};
