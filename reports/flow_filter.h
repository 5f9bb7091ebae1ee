#pragma once

#include "platform/base/text.h"

#include <QFrame>

#include <functional>

class DatePicker;
class FieldLayout;
class QComboBox;
class QLineEdit;
class QPushButton;

/// What goods and days a report is asked for.
struct FlowChoice
{
    QString from;
    QString to;
    QString categoryWords; ///< as the list shows it
    QString category;      ///< code; "" for all
    QString goods;         ///< pattern as it was typed; "" for all
};

/// The strip above a report of the goods' movements: days, category, goods, and the button that makes the report.
class FlowFilter : public QFrame
{
    Q_OBJECT

public:
    /// Reads the categories.
    /// @param columns fields in a row
    FlowFilter(int columns, std::function<void()> run);

    /// A further field, behind the others.
    void add(const QString& caption, QWidget* field);

    /// An empty field for the goods asks for all, and says so from then on.
    FlowChoice choice();
    /// What a report without rows says, before and after it was asked for.
    static QString none(bool asked);
    /// The category whose list entry reads so, or all.
    void chooseCategory(const QString& words);

    DatePicker* DTP[2] = {};
    QComboBox* Comb = nullptr;
    QLineEdit* Txt = nullptr; ///< goods code, a pattern, or the words for all
    QPushButton* Cmd = nullptr;

private:
    FieldLayout* fields_ = nullptr;
};

extern const QString allGoods;
extern const QString allCategories;
