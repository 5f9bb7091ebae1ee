#pragma once

#include "platform/widgets/form.h"
#include "reports/period_figures.h"

class Grid;
class QComboBox;
class QLabel;
class QPushButton;

/// The comprehensive period report: quantities and amounts of all goods, from the opening to the closing of a period.
/// A report is generated into the ledger's unsaved rows, and saving it closes its period: the next one begins on the
/// day after, and documents of the days before can't be audited any more. Saved reports can be opened, searched and
/// printed; the newest can be deleted, which opens its period again.
class C181 : public Form
{
    Q_OBJECT
    Q_PROPERTY(QString PubSql MEMBER PubSql)

public:
    C181();
    static QString formName() { return u"C181"_s; }

    /// The accounting year begins on another day from now on: an open report form shows it and works its list of
    /// reports out afresh. Without one nothing is to be done.
    static void yearStartChanged(const QString& firstDay);

    void refresh();        ///< F5
    void generateOrOpen(); ///< `Cmd`
    void saveOrDelete();   ///< `CmdDel`
    void Menu_Year();
    void Menu_FangFa(ClosingMethod method);
    void Menu_updTA4F7(); ///< writes the closing unit costs of the rows in the grid to the goods
    void Menu_Query();
    enum class Print { Period, Cumulative };
    void Menu_P(Print which);
    void Menu_Rtn();

    void sessionChanged() override;
    void recordsChanged() override;

    QLabel* Labyear = nullptr;
    QComboBox* Comb = nullptr; ///< the reports; item data is the number, 0 for the one to generate
    QPushButton* Cmd = nullptr;
    QPushButton* CmdDel = nullptr;
    Grid* GD = nullptr; ///< the goods from row 2 on, then the totals
    QString PubSql;     ///< what the condition builder hands back

protected:
    void unloaded() override;
    QString notice() const override;
    QWidget* firstFocus() override;

private:
    QAction* addReportCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run);
    void buildCommands();
    void buildContent();

    void showYear(const QString& firstDay);
    void listReports();
    void chooseReport();
    void nameCommands(bool toGenerate);
    int chosenNumber() const;

    void generate();
    void open(int number, const QString& filter);
    bool mayDelete(int number, const QString& lastDay) const;
    void save();
    void remove();
    void removeLastYears();

    void clearReport();
    void fill(const PeriodReport& report, bool complete);
    bool empty() const;
    int goodsCount() const; ///< rows of the grid without headers and totals
    void updateStatus();
    void showState();

    QString yearStart_; ///< first day of the accounting year
    ClosingMethod method_ = ClosingMethod::Period;
    int shown_ = 0; ///< number of the report in the grid, 0 for the unsaved one
    QList<QAction*> reportCommands_;
    QAction* methods_[3] = {};
    QLabel* barred_ = nullptr;
    QWidget* body_ = nullptr;
};
