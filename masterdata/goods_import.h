#pragma once

#include "platform/base/value.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <array>
#include <optional>

/// The choices that say where a sheet's row holds what, in the order of the form's combos.
enum class ImportField {
    Code,
    Name,
    CategoryName,
    Unit,
    Model,
    Remark,
    Cost,
    Sale,
    CategoryCode,
    Quantity,
    Lowest,
    Highest
};
inline constexpr int importFieldCount = 12;

/// Which columns of a sheet hold which fields, as the operator chose them.
struct ImportChoice
{
    /// Texts of the combos: a column's letter, several for the remark, for the category's code also "B,2": the first
    /// two characters. "" where a field is not imported.
    QString columns[importFieldCount];
    QString defaultCategory; ///< code of the category for rows that name none
    QString defaultCategoryName;

    /// A column that was chosen, but isn't among the sheet's; "" if there is none.
    QString columnBeyond(int sheetColumns) const;
};

/// What has become of a row, or would.
struct ImportedRow
{
    enum class Fate { Added, Changed, Unchanged, Skipped };
    Fate fate = Fate::Skipped;
    QString code;
    QString name;
    /// Stock, cost and sale price; nothing before for new goods.
    struct Amounts
    {
        QString stock;
        QString cost;
        QString sale;
    };
    Amounts before;
    Amounts after;
    QString newCategory; ///< entry of the category that was made for it
    bool doubled = false;
    QStringList remarks; ///< why it was skipped, and what the operator should know
};

/// Goods from the rows of a sheet, one after the other. A rehearsal goes the same way, but writes nothing: what rows
/// before it would have written it keeps in mind. The categories are read once, so a write run or a read run must be
/// open over all of it.
class GoodsImport
{
public:
    enum class Mode { Rehearsal, Writing };

    GoodsImport(const ImportChoice& choice, Mode mode);
    /// @param number  of the row, for remarks about rows that are doubled
    /// @throws StoreError; nothing of the row's goods is stored then, though a category may have been made for it
    ImportedRow take(int number, const QStringList& cells);

private:
    /// The columns of the goods that an import may touch.
    enum Column { F1, F2, F3, F4, F5, F6, F7, F71, F8, V1, V2, V3, V4, ColumnCount };
    /// Fields of a record, or those of them that are to be written.
    using Fields = std::array<std::optional<Value>, ColumnCount>;

    struct Category
    {
        QString code;
        QString name;
    };

    struct Row; ///< what `take` works on

    int column(ImportField field) const { return columns_[int(field)]; }
    bool chosen(ImportField field) const { return column(field) >= 0; }

    std::optional<Fields> stored(const QString& code) const;
    void write(const Row& row, const QString& code);
    Category categoryOf(Row& row);
    void setTexts(Row& row);
    void setNumbers(Row& row);
    const Category* categoryByName(const QString& name) const;
    const Category* categoryByCode(const QString& code) const;
    void makeCategory(const Category& category);

    static const QString names[ColumnCount];

    Mode mode_;
    int columns_[importFieldCount];
    QList<int> remarkColumns_;
    int codeLength_ = 0; ///< characters of the category's code in its cell; 0 for all
    Category default_;
    QList<Category> categories_;       ///< the ledger's, and those made meanwhile
    QHash<QString, int> seen_;         ///< codes in capitals, and the row that had them last
    QHash<QString, Fields> rehearsed_; ///< by code in capitals
};
