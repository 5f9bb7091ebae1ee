#include "documents/document_opening.h"

#include "documents/document_form.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"

#include <QTabBar>

void showDocument(DocumentKind kind, const QString& number)
{
    const DocumentTraits& traits = traitsOf(kind);
    if (!requireRight(traits.right))
        return;
    const QString condition = u" where "_s + traits.header + u".F1="_s + sqlText(number);
    if (LookupValue(gDB, u"select F1 from "_s + traits.header + condition) == u"NoFound")
        return MsgBox(traits.documentName() + number + u"已经不存在，请按F5刷新。"_s);
    DocumentForm& form = documentForm(kind);
    if (form.Edstu != 0) {
        form.Show();
        return MsgBox(traits.title + u"窗口正在录入，请先保存或取消，再打开单据"_s + number + u"。"_s);
    }
    form.listAll(condition);
    form.Show();
    constexpr int detailTab = 1;
    form.TabS->setCurrentIndex(detailTab);
}
