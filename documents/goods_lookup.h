#pragma once

#include "documents/entry_panel.h"
#include "platform/base/text.h"

class Grid;
class QLabel;
class QPushButton;

/// The goods look-up panel of the documents: the first goods whose code begins as typed. It is filled only when asked.
class GoodsLookup : public EntryPanel
{
    Q_OBJECT

public:
    /// @param stockCaption of the column that shows what is in stock
    GoodsLookup(const QString& stockCaption, bool withNewGoods);

    /// Shows the goods whose code begins with that text, at most the first 500 by code.
    /// @throws StoreError
    void fill(const QString& code);

    Grid* GdQuery = nullptr;
    QLabel* LabInfo = nullptr;
    QPushButton* CmdBox[3] = {}; ///< 选定, 返回, 新增 (where there is a new-goods panel)

signals:
    void chosen(const QString& code);
    void newGoodsWanted();

private:
    void choose();
};
