#pragma once

#include "documents/entry_panel.h"
#include "platform/widgets/controls.h"

/// `FrmNewGoods`: enters a goods record and the document's line for it in one step. The record starts without stock;
/// the document's audit brings it.
class NewGoodsPanel : public EntryPanel
{
    Q_OBJECT

public:
    NewGoodsPanel();

    /// Offers that code in empty fields, and shows the panel; what was typed for that code and left comes back.
    void open(const QString& code);
    /// What stands in the fields of an open panel, in their order; empty when it is closed.
    QStringList texts() const;
    void show(const QStringList& texts);
    using EntryPanel::show;
    /// Closes the panel and forgets what was typed.
    void drop();
    /// @throws StoreError
    void save();
    void choosePicture();

    /// Code, name, category code (behind `CmbHPLB`), unit, model, cost, sale price, remark, picture, quantity.
    QLineEdit* TxtN[10] = {};
    QLabel* LabN[10] = {};
    QComboBox* CmbHPLB = nullptr;
    QPushButton* CmdOpenPic = nullptr;
    QPushButton* CmdNew[2] = {};

signals:
    void added(const QString& code, const QString& quantity);

private:
    enum GoodsField { Code, Name, Category, Unit, Model, InPrice, SalePrice, Remark, Picture, Quantity, FieldCount };

    static EditKind editKindOf(int field);
    void refuse(const QString& text, QWidget* where);
};
