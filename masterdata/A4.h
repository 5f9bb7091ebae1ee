#pragma once

#include "masterdata/record_form.h"

class PictureBox;

/// The goods master: categories, units, prices, limits, pictures. Under two settings "001" also edits the stock and the
/// opening balance here; all other movements of stock are the documents'.
class A4 final : public RecordForm
{
    Q_OBJECT

public:
    A4();
    static QString formName() { return u"A4"_s; }

    void choosePicture(); ///< while a record is entered
    void Menu_card();     ///< of the current goods
    void Menu_flow();     ///< their in and out, as a chart

    void sessionChanged() override;

    /// `Txt`: code, name, category's name, unit, model, cost, remark, sale price, lowest and highest stock, opening
    /// quantity and price.
    QComboBox* CmbLB = nullptr; ///< categories; stands in the place of `Txt(2)` while a record is entered
    QComboBox* CmbDW = nullptr; ///< units; likewise for `Txt(3)`
    QLineEdit* TxtSL = nullptr; ///< the stock, also while it is hidden
    QLabel* LabSL = nullptr;
    QLabel* LabPrice = nullptr; ///< how cost and sale price hang together
    QLabel* LabInfo = nullptr;  ///< the picture's path, or a note in its place; stored as it reads
    QFrame* Frame = nullptr;    ///< where stock that is entered shows up
    PictureBox* Img = nullptr;

protected:
    bool queryUnload() override;

private:
    enum Field {
        Category = 2,
        Unit,
        Model,
        CostPrice,
        Remark,
        SalePrice,
        LowestStock,
        HighestStock,
        OpeningQuantity,
        OpeningPrice
    };
    enum ListColumn {
        CodeColumn,
        NameColumn,
        CategoryColumn,
        UnitColumn,
        ModelColumn,
        CostColumn,
        RemarkColumn,
        CategoryCodeColumn,
        SaleColumn
    };

    void buildList();
    void buildDetail();
    void fillCategories();
    void fillUnits();
    void followSettings();
    bool stockEditable() const;
    bool openingEditable() const;
    QString priceNote() const;

    QString listStatement() const override;
    QList<QueryField> queryFields() const override;
    RecordPrint printed() const override;
    void refresh() override;
    void rereadRow();
    void showRecord() override;
    void showPicture();
    void clearRecord() override;
    void beginEdit() override;
    void updateState() override;

    bool complete() override;
    bool findCategory();
    void keepChanges(const QString& oldCode) override;
    void insert() override;
    QStringList savedRow() const override;

    QString categoryCode_; ///< of the record being saved
    bool sawCost_ = gCanSeeCost;
};

/// The composite key `F11`: from the category entry as it stands in the list and the code, both with their lengths.
/// That a code of more than 8 characters puts its beginning in the category's place is meant: keys in older ledgers are
/// made so.
QString compositeKey(const QString& category, const QString& code);
