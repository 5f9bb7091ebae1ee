#pragma once

#include "platform/report/preview_probe.h"
#include "platform/report/report_control.h"
#include "platform/widgets/form.h"

class PageView;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The print host: every printed form and list is looked at here first, and goes to the printer, into a PDF or a
/// workbook from here. Loaded by `preview` (printing.h), shown modally.
class Prnt : public Form, private PreviewProbe
{
    Q_OBJECT

public:
    Prnt();
    ~Prnt() override;
    static QString formName() { return u"Prnt"_s; }

    ReportControl Cry;

    /// Runs the report that `Cry` was told of and shows its first page.
    /// @return "" or what keeps it from being shown; then there is no preview
    /// @throws StoreError when the ledger can't be read
    QString run();

    void Menu_prnt(); ///< at once, on the chosen printer
    void Menu_Rtn();
    void Menu_set(); ///< printer, pages, copies and paper, then prints
    void Menu_pdf();
    void Menu_xls();
    void help();

    void findNext();
    void findPrevious();

    QPushButton* Cmd = nullptr;
    QLabel* L = nullptr;       ///< shown where no printer is installed
    QLabel* LabDone = nullptr; ///< where the pages have gone to, once they have
    PageView* View = nullptr;
    QPushButton* CmdFirst = nullptr;
    QPushButton* CmdPrev = nullptr;
    QLineEdit* TxtPage = nullptr;
    QLabel* LabPages = nullptr;
    QPushButton* CmdNext = nullptr;
    QPushButton* CmdLast = nullptr;
    QPushButton* CmdOut = nullptr;
    QComboBox* CmbZoom = nullptr;
    QPushButton* CmdIn = nullptr;
    QPushButton* CmdWidth = nullptr;
    QPushButton* CmdPage = nullptr;
    QLineEdit* TxtFind = nullptr;
    QPushButton* CmdFindPrev = nullptr;
    QPushButton* CmdFindNext = nullptr;
    QLabel* LabFind = nullptr; ///< what the search came to

protected:
    QWidget* firstFocus() override;
    void unloaded() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int pageCount() const override;
    QStringList pageTexts(int page) const override;
    bool savePdf(const QString& path) const override;

    void buildBar();
    void showState();
    void goToPage();
    void chooseZoom();
    void find(int step);
    void loadZoom();
    void tellDone(const QString& text);
    void writeTo(const std::optional<QString>& path, const std::function<QString(const QString&)>& write);
    std::optional<QString> exportPath(const QString& title, const QString& filter, QStringView extension);

    struct Hit
    {
        int page = 0;
        int index = -1; ///< among the page's texts
    };
    Hit hit_;
    QString hitText_;
};
