#pragma once

#include "masterdata/goods_import.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"

class Grid;

/// Goods from a worksheet: reads it into a grid, lets the operator say which column holds what, and adds or changes the
/// goods. Before that the same steps can be gone through without writing. Importing is for "001" only.
class FromExcel : public Form
{
    Q_OBJECT

public:
    FromExcel();
    static QString formName() { return u"FromExcel"_s; }

    void chooseFile();
    /// Reads the worksheet into the grid; its first row holds the names of the columns.
    void readSheetIn();
    void Menu_back();
    void Menu_Run();
    void Menu_Check(); ///< shows what `Menu_Run` would do
    void Menu_del();
    void Menu_help();
    void Menu_R();
    /// Takes all rows through the import, asking nothing, and shows what became of them.
    /// @throws StoreError, which then tells the row
    void run(GoodsImport::Mode mode);
    void sessionChanged() override;

    QLineEdit* TxtFile = nullptr;
    QComboBox* TxtTab = nullptr; ///< the worksheet's name; offers those of the file
    QComboBox* CmbCol[importFieldCount] = {};
    QLabel* Lab[importFieldCount] = {};
    QLineEdit* txtLB[2] = {}; ///< code and name of the category for rows that name none
    QPushButton* CmdOpen = nullptr;
    QPushButton* Cmdrst = nullptr;
    QTabWidget* TabS = nullptr;
    Grid* Gd = nullptr;      ///< the sheet's rows as text, below the columns' letters
    Grid* GdCheck = nullptr; ///< what has become of each row, or would
    QLabel* LabCheck = nullptr;
    QLabel* LabTitles = nullptr; ///< the sheet's own names of the columns

protected:
    void unloaded() override;
    QWidget* firstFocus() override;

private:
    struct Outcome;

    void build();
    void buildCommands();
    void fillDefaults();
    void offerSheets();
    void showCount();
    void showTitles(const QStringList& titles);

    ImportChoice choice() const;
    bool complete();
    void showOutcome(Outcome&& outcome, GoodsImport::Mode mode);
    void dropOutcome();

    QList<QAction*> gated_;    ///< commands that ask for the right of the form's menu
    QWidget* body_ = nullptr;  ///< all but the command bar
    QLabel* barred_ = nullptr; ///< stands in its place for an operator without the right
};
