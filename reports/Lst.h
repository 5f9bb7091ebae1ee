#pragma once

#include "reports/list_form.h"
#include "reports/statistics_mode.h"

/// The audited lines of one kind of document, today's at first.
class Lst : public ListForm
{
    Q_OBJECT

public:
    explicit Lst(StatisticsMode mode);
    static QString formName() { return u"Lst"_s; }
    /// The one window of the four kinds; opened for another kind it begins anew with that one.
    static Lst& theWindow(StatisticsMode mode);

    void Menu_print1(); ///< the lines one by one
    void Menu_print2(); ///< their sums

private:
    void print(const QString& reportFile, const QString& title);
    void start(StatisticsMode mode);

    StatisticsMode mode_;
};
