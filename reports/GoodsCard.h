#pragma once

#include "reports/goods_history.h"
#include "reports/list_form.h"

class DatePicker;
class QLineEdit;
class QPushButton;

/// A goods item's card: what it is, what there is of it, and every movement since the opening of the accounting year
/// with the balance behind it. It tells whether the movements end at the present stock, and leads to their documents.
class GoodsCard : public ListForm
{
    Q_OBJECT

public:
    GoodsCard();
    static QString formName() { return u"GoodsCard"_s; }
    /// The window, with the whole card of that goods item; tells the operator when the right to the stock is missing or
    /// there is no such goods item.
    /// @throws StoreError
    static void open(const QString& code);

    void showCard();      ///< `Cmd`: the goods item and the days that the strip asks for
    void Menu_document(); ///< opens the form of the current row's document with it
    void Menu_chart();
    void Menu_print();
    void sessionChanged() override;

    QLineEdit* Txt = nullptr; ///< goods code
    DatePicker* DTP[2] = {};
    QPushButton* Cmd = nullptr;
    QLabel* Lab[9] = {};      ///< name, model, unit, category, stock, limits, cost, amount, sale price
    QLabel* LabEnd = nullptr; ///< how opening, movements and stock hang together

protected:
    void showState() override;
    QWidget* firstFocus() override;

private:
    Listing movementsListed();
    bool read(const QString& code, bool allDays);
    QString ending() const;
    bool endsWell() const;

    QString code_;
    QLabel* captions_[9] = {};
    std::optional<GoodsHistory> history_; ///< as it was read last
};
