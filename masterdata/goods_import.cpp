#include "masterdata/goods_import.h"

#include "ledger/literal.h"
#include "ledger/store.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <utility>

namespace {

/// What the store answers when it has no such row; also the name of a category that only its code is known of.
constexpr QStringView notFound = u"NoFound";

int columnOf(const QString& choice)
{
    return choice.isEmpty() ? -1 : choice[0].unicode() - u'A';
}

/// Whether that is a number and nothing else, as `Val` reads it whole.
bool isWholeNumber(QStringView text)
{
    int points = 0;
    bool plain = !text.isEmpty() && text.front() != u'.';
    for (const QChar c : text) {
        points += c == u'.';
        plain = plain && ((c >= u'0' && c <= u'9') || (c == u'.' && points == 1));
    }
    if (plain) // nearly all
        return true;
    bool number = false;
    Trim(text).toDouble(&number);
    return number;
}

bool isBlank(QStringView text)
{
    return text.isEmpty() || Trim(text).isEmpty();
}

bool sameValue(const Value& stored, const Value& value)
{
    return value.isNumber() ? stored.number() == value.number() : stored.text() == value.text();
}

} // namespace

QString ImportChoice::columnBeyond(int sheetColumns) const
{
    for (int field = 0; field < importFieldCount; ++field) {
        const QString& choice = columns[field];
        const bool several = ImportField(field) == ImportField::Remark;
        for (const QChar letter : several ? choice : Left(choice, 1))
            if (const int column = columnOf(letter); column < 0 || column >= sheetColumns)
                return letter;
    }
    return {};
}

const QString GoodsImport::names[] = {u"F1"_s,  u"F2"_s, u"F3"_s, u"F4"_s, u"F5"_s, u"F6"_s, u"F7"_s,
                                      u"F71"_s, u"F8"_s, u"V1"_s, u"V2"_s, u"V3"_s, u"V4"_s};

struct GoodsImport::Row
{
    const QStringList& cells;
    bool exists = false;
    Fields fields; ///< to be written
    ImportedRow result;

    QString cell(int column) const { return cells.value(column); }
};

GoodsImport::GoodsImport(const ImportChoice& choice, Mode mode)
    : mode_(mode)
    , default_{choice.defaultCategory, choice.defaultCategoryName}
{
    for (int field = 0; field < importFieldCount; ++field)
        columns_[field] = columnOf(choice.columns[field]);
    for (const QChar letter : choice.columns[int(ImportField::Remark)])
        remarkColumns_ += columnOf(letter);
    const QString& category = choice.columns[int(ImportField::CategoryCode)];
    if (const qsizetype comma = category.indexOf(u','); comma > 0)
        codeLength_ = qMax(int(Val(category.mid(comma + 1))), 0);
    for (Recordset all = gDB.OpenRecordset(u"select F1,F2 from TA3"_s); !all.isEOF(); all.MoveNext())
        categories_ += {all.Fields(0).text(), all.Fields(1).text()};
}

ImportedRow GoodsImport::take(int number, const QStringList& cells)
{
    Row row{cells, false, {}, {}};
    ImportedRow& result = row.result;
    // Found by the code as it stands, stored in capitals.
    const QString code = row.cell(column(ImportField::Code));
    result.code = code.toUpper();
    result.name = chosen(ImportField::Name) ? row.cell(column(ImportField::Name)) : QString();
    if (isBlank(code)) {
        result.remarks += u"没有货品编码"_s;
        return result;
    }
    if (chosen(ImportField::Name) && isBlank(result.name)) {
        result.remarks += u"没有货品名称"_s;
        return result;
    }
    if (Trim(code).size() != code.size())
        result.remarks += u"编码前后有空格"_s;
    if (const int before = std::exchange(seen_[result.code], number); before > 0) {
        result.doubled = true;
        result.remarks += u"编码与第 %1 行重复，以本行为准"_s.arg(before);
    }

    const std::optional<Fields> old = stored(code);
    row.exists = old.has_value();
    row.fields[F1] = result.code;
    if (chosen(ImportField::CategoryName) || chosen(ImportField::CategoryCode) || !row.exists) {
        const Category category = categoryOf(row);
        if (!categoryByCode(category.code)) {
            makeCategory(category);
            result.newCategory = entryOf(category.code, category.name);
        }
        row.fields[F3] = category.code;
    }
    if (chosen(ImportField::Name))
        row.fields[F2] = result.name;
    else if (row.exists)
        result.name = old->at(F2)->text();
    setTexts(row);
    setNumbers(row);

    result.fate = row.exists ? ImportedRow::Fate::Unchanged : ImportedRow::Fate::Added;
    for (size_t field = 0; row.exists && field < ColumnCount; ++field)
        if (row.fields[field] && !sameValue(*(*old)[field], *row.fields[field]))
            result.fate = ImportedRow::Fate::Changed;
    for (const auto& [column, amount] : {std::pair(F8, &ImportedRow::Amounts::stock),
                                         {F7, &ImportedRow::Amounts::cost},
                                         {F71, &ImportedRow::Amounts::sale}}) {
        const std::optional<Value>& now = row.fields[column];
        if (old)
            result.before.*amount = (*old)[column]->text();
        result.after.*amount = !now || (old && (*old)[column] == now) ? result.before.*amount : now->text();
    }
    if (mode_ == Mode::Writing) {
        write(row, code);
        return result;
    }
    Fields& after = rehearsed_[result.code];
    for (size_t field = 0; field < ColumnCount; ++field)
        after[field] = row.fields[field] ? row.fields[field] : old ? (*old)[field] : Value();
    return result;
}

// The row's fields ----------------------------------------------------------------------------------------------------

/// The category that the row names, by name, by code or not at all.
GoodsImport::Category GoodsImport::categoryOf(Row& row)
{
    Category category;
    if (chosen(ImportField::CategoryName)) {
        category.name = row.cell(column(ImportField::CategoryName));
        if (const Category* known = categoryByName(category.name))
            category.code = known->code;
    }
    if (chosen(ImportField::CategoryCode)) {
        category.code = row.cell(column(ImportField::CategoryCode));
        if (codeLength_ > 0)
            category.code = Left(category.code, codeLength_);
        if (category.name.isEmpty() && !category.code.isEmpty()) {
            const Category* known = categoryByCode(category.code);
            category.name = known ? known->name : notFound.toString(); // it can be renamed later
        }
    } else if (category.code.isEmpty() && !category.name.isEmpty()) {
        row.result.remarks += u"没有名为“%1”的类别，归入默认类别"_s.arg(category.name);
    }
    if (category.code.isEmpty())
        category.code = default_.code;
    if (category.name.isEmpty())
        category.name = default_.name;
    return category;
}

void GoodsImport::setTexts(Row& row)
{
    const QString blank = u" "_s; // an empty cell stores one, as goods without such a column have it
    for (const auto& [field, name] : {std::pair(ImportField::Unit, F4), {ImportField::Model, F5}}) {
        if (chosen(field)) {
            const QString cell = row.cell(column(field));
            row.fields[name] = cell.isEmpty() ? blank : cell;
        } else if (!row.exists) {
            row.fields[name] = blank;
        }
    }
    if (remarkColumns_.isEmpty())
        return;
    QString remark;
    for (const int column : remarkColumns_)
        remark += u"  "_s + row.cell(column);
    row.fields[F6] = remark;
}

void GoodsImport::setNumbers(Row& row)
{
    struct NumberField
    {
        ImportField field;
        QStringView caption;
        Column column;
        std::optional<Column> opening; ///< of the opening balance, which gets the same
        bool always;                   ///< new goods have it in any case
    };
    static constexpr NumberField numbers[] = {
        {ImportField::Cost, u"成本价格", F7, V4, true},     {ImportField::Sale, u"销售价格", F71, {}, true},
        {ImportField::Quantity, u"数量", F8, V3, true},     {ImportField::Lowest, u"最低库存", V1, {}, false},
        {ImportField::Highest, u"最高库存", V2, {}, false},
    };
    for (const NumberField& number : numbers) {
        double value = 0;
        if (chosen(number.field)) {
            const QString cell = row.cell(column(number.field));
            value = Val(cell);
            if (!isWholeNumber(cell) && !isBlank(cell))
                row.result.remarks += u"%1“%2”不是数字，按 %3 导入"_s.arg(number.caption, cell, plainText(value));
        } else if (row.exists || !number.always) {
            continue;
        }
        row.fields[number.column] = value;
        if (number.opening)
            row.fields[*number.opening] = value;
    }
}

// The ledger, or what a rehearsal has in its place --------------------------------------------------------------------

std::optional<GoodsImport::Fields> GoodsImport::stored(const QString& code) const
{
    if (mode_ == Mode::Rehearsal)
        if (const auto known = rehearsed_.constFind(code.toUpper()); known != rehearsed_.cend())
            return *known;
    static const QString statement =
        u"select "_s + QStringList(std::begin(names), std::end(names)).join(u',') + u" from TA4 where F1="_s;
    const Recordset found = gDB.OpenRecordset(statement + sqlText(code));
    if (found.isEOF())
        return {};
    Fields fields;
    for (qsizetype field = 0; field < ColumnCount; ++field)
        fields[size_t(field)] = found.Fields(field);
    return fields;
}

void GoodsImport::write(const Row& row, const QString& code)
{
    constexpr int usualLength = 512;
    QString statement = row.exists ? u"update TA4 set "_s : u"insert into TA4 ("_s;
    statement.reserve(usualLength);
    // The numbers that the outcome tells are texts already, and the opening balance has the same.
    const ImportedRow::Amounts& amounts = row.result.after;
    const QString* const known[ColumnCount] = {nullptr, nullptr,        nullptr,       nullptr,        nullptr,
                                               nullptr, &amounts.cost,  &amounts.sale, &amounts.stock, nullptr,
                                               nullptr, &amounts.stock, &amounts.cost};
    const auto appendValue = [&](size_t field) {
        const Value& value = *row.fields[field];
        statement += known[field] ? *known[field] : value.isNumber() ? sqlNumber(value) : sqlText(value.text());
    };
    const auto forAll = [&](const auto& append) {
        bool first = true;
        for (size_t field = 0; field < ColumnCount; ++field)
            if (row.fields[field]) {
                if (!std::exchange(first, false))
                    statement += u',';
                append(field);
            }
    };
    if (row.exists) {
        forAll([&](size_t field) {
            statement += names[field];
            statement += u'=';
            appendValue(field);
        });
        statement += u" where F1=";
        statement += sqlText(code);
    } else {
        forAll([&](size_t field) { statement += names[field]; });
        statement += u") values (";
        forAll(appendValue);
        statement += u')';
    }
    gDB.Execute(statement);
}

const GoodsImport::Category* GoodsImport::categoryByName(const QString& name) const
{
    for (const Category& category : categories_)
        if (sameText(category.name, name))
            return &category;
    return nullptr;
}

const GoodsImport::Category* GoodsImport::categoryByCode(const QString& code) const
{
    for (const Category& category : categories_)
        if (sameText(category.code, code))
            return &category;
    return nullptr;
}

void GoodsImport::makeCategory(const Category& category)
{
    if (mode_ == Mode::Writing)
        gDB.Execute(u"insert into TA3 (F1,F2) values("_s + sqlTexts({category.code, category.name}) + u')');
    categories_ += category;
}
