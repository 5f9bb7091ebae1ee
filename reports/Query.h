#pragma once

#include "platform/widgets/form.h"

class DatePicker;
class Grid;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;

enum class QueryType { Text, Number, Date };

/// A field that a condition may be about.
struct QueryField
{
    QString label;
    QString expression; ///< as it stands in the statement: `jxc.Gs`, `[jxc.As]`, `TB11.F6*TB11.F7`
    QueryType type = QueryType::Text;
};

/// Composes a condition from rows of field, relation and value. It knows no table: a form hands it fields and gets SQL
/// text back in its property `PubSql`. Shown modally, empty at each opening.
///
///     if (Query::ask(*this, {{u"货品编码"_s, u"TA4.F1"_s}, {u"数量"_s, u"TA4.F8"_s, QueryType::Number}}))
///         list(conditionOf(PubSql));
class Query : public Form
{
    Q_OBJECT

public:
    Query();
    static QString formName() { return u"Query"_s; }

    /// Lets the operator compose a condition over at least one field, and returns when they have done so or cancelled.
    /// Afterwards the caller's `PubSql` is "ALL" and the condition with " Where " before it, "ALL" alone for no
    /// condition, or "" when the operator cancelled and nothing is to change.
    /// @param caller has a QString property `PubSql`
    /// @return false when the operator cancelled
    static bool ask(Form& caller, const QList<QueryField>& fields, const QString& caption = u"查找条件"_s);

    void add();    ///< the row as one more condition
    void remove(); ///< the condition selected in `Lst`
    void search();
    void cancel();

    Grid* Gd = nullptr;         ///< hidden: label, expression and type ("0", "1", "2") of each field
    QComboBox* CmbF = nullptr;  ///< fields, in the order of `Gd`
    QComboBox* CmbGX = nullptr; ///< relations of the chosen field
    QComboBox* CmbLG = nullptr; ///< connectives
    QLineEdit* Txt = nullptr;
    DatePicker* DTP = nullptr;
    QListWidget* Lst = nullptr;    ///< the conditions in words
    QListWidget* LstSql = nullptr; ///< hidden: each as SQL, its connective in front
    QPushButton* CmdAdd = nullptr;
    QPushButton* CmdRemove = nullptr;
    QPushButton* CmdQuery = nullptr;
    QPushButton* Cmdcancel = nullptr;

protected:
    QWidget* firstFocus() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void offer(const QList<QueryField>& fields);
    void chooseField();
    QueryType type() const;
    QString sqlOfRow() const;
    void handBack(const QString& text);

    QPointer<Form> caller_;
};

/// What a form appends to a select without a condition of its own: " Where ..." as the builder returned it, or "".
QString conditionOf(const QString& pubSql);

/// The operator's conditions in brackets, for a form that joins them to a condition of its own, so that an "或者"
/// among them doesn't let in what the form leaves out; "" if there are none.
QString bracketedConditionOf(const QString& pubSql);
