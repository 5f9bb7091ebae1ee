#pragma once

#include "reports/list_form.h"

/// Gains and losses of the audited stock-takes, today's at first.
class C3 : public ListForm
{
    Q_OBJECT

public:
    C3();
    static QString formName() { return u"C3"_s; }
};
