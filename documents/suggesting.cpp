#include "documents/suggesting.h"

#include "ledger/change_mark.h"
#include "ledger/literal.h"
#include "platform/base/finding.h"
#include "platform/widgets/suggestions.h"
#include "shell/session.h"

#include <QComboBox>

#include <functional>
#include <map>
#include <string_view>

namespace {

constexpr int mostShown = 12;

class RecordIndex
{
public:
    explicit RecordIndex(const QString& table)
        : statement_(table == u"TA4" ? u"select F1,F2,F5 from TA4"_s : u"select F1,F2 from "_s + table)
        , texts_(table == u"TA4" ? 3 : 2)
    {}

    QStringList codes(const QString& typed, int most)
    {
        refresh();
        QStringList codes;
        for (const qsizetype record : index_.find(typed, most))
            codes += index_.code(record);
        return codes;
    }

private:
    /// Most of what is written into a ledger leaves these texts as they are: then a look at them is enough.
    void refresh()
    {
        const ChangeMark now = changeMark(gDB);
        if (now == mark_)
            return;
        const ReadRun reads(gDB); // both ways through the table meet the same rows
        const size_t there = digest();
        if (mark_ == ChangeMark() || there != digest_) {
            mark_ = {}; // until it is whole
            index_.clear();
            read();
            digest_ = there;
        }
        mark_ = now;
    }

    /// Without an order, which is faster by far: the rows stand as they were written.
    size_t digest() const
    {
        size_t digest = 0;
        gDB.walk(statement_, [&](const PassingRow& row) {
            for (int column = 0; column < texts_; ++column)
                digest =
                    digest * 31 + std::hash<std::string_view>()(row.text(column)); // the toolkit's takes thrice as long
        });
        return digest;
    }

    void read()
    {
        gDB.walk(statement_ + u" order by F1"_s, [&](const PassingRow& row) {
            const auto text = [&](int column) {
                const std::string_view utf8 = column < texts_ ? row.text(column) : std::string_view();
                return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
            };
            index_.add(text(0), text(1), text(2));
        });
    }

    QString statement_;
    int texts_;
    FindIndex index_;
    ChangeMark mark_;
    size_t digest_ = 0;
};

QList<QStringList> suggestedRows(const QString& table, const QString& columns, const QString& typed)
{
    const ReadRun reads(gDB);
    QList<QStringList> rows;
    for (const QString& code : codesFor(table, typed, mostShown)) {
        const Recordset record =
            gDB.OpenRecordset(u"select "_s + columns + u" from "_s + table + u" where F1="_s + sqlText(code));
        if (record.isEOF())
            continue;
        QStringList& row = rows.emplaceBack();
        for (qsizetype field = 0; field < record.fieldCount(); ++field)
            row += record.Fields(field).text();
    }
    return rows;
}

} // namespace

QStringList codesFor(const QString& table, const QString& typed, int most)
{
    static std::map<QString, RecordIndex> indexes;
    return indexes.try_emplace(table, table).first->second.codes(typed, most);
}

Suggestions* suggestGoods(QLineEdit* field, const QString& stockCaption, const QString& name)
{
    auto* suggestions = new Suggestions(field, name,
                                        {{u"货品编码"_s, 130},
                                         {u"货品名称"_s, 240, ColumnKind::Text, false, true},
                                         {u"规格型号"_s, 150},
                                         {u"单位"_s, 60, ColumnKind::Centred},
                                         {stockCaption, 90, ColumnKind::Number}});
    suggestions->find = [](const QString& typed) { return suggestedRows(u"TA4"_s, u"F1,F2,F5,F4,F8"_s, typed); };
    suggestions->take = [field](const QStringList& row) { field->setText(row[0]); };
    return suggestions;
}

Suggestions* suggestPartners(QComboBox* box, const QString& table)
{
    auto* suggestions = new Suggestions(box->lineEdit(), u"GdPartner"_s,
                                        {{u"编码"_s, 100}, {u"名称"_s, 300, ColumnKind::Text, false, true}});
    suggestions->find = [table](const QString& typed) { return suggestedRows(table, u"F1,F2"_s, typed); };
    suggestions->take = [box](const QStringList& row) {
        const QString entry = entryOf(row[0], row[1]);
        if (const int listed = box->findText(entry, Qt::MatchExactly | Qt::MatchCaseSensitive); listed >= 0)
            box->setCurrentIndex(listed);
        box->setEditText(entry); // also one that came after the list was filled
    };
    return suggestions;
}
