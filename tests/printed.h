#pragma once

#include "modal_forms.h"
#include "reports/Prnt.h"

#include <QFileInfo>

/// What a print command hands over, seen in the preview that it opens.
struct Printed
{
    QString file; ///< "" when there was no preview
    QStringList formulas;
    QString selection;
    QStringList texts; ///< of the first page
};

/// Runs a command that previews, looks at the preview and closes it.
inline Printed printed(const std::function<void()>& command)
{
    Printed seen;
    inModal<Prnt>(u"Prnt"_s, [&seen](Prnt& form) {
        seen.file = QFileInfo(form.Cry.ReportFileName).fileName();
        for (int i = 0; !form.Cry.Formulas(i).isEmpty(); ++i)
            seen.formulas += form.Cry.Formulas(i);
        seen.selection = form.Cry.SelectionFormula;
        seen.texts = openPreview()->pageTexts(1);
        form.Menu_Rtn();
    });
    command();
    return seen;
}
