#pragma once

#include "platform/base/dialogs.h"
#include "platform/report/report.h"

#include <functional>
#include <map>

/// A selection formula, `{TB1.F1}='K04...'`, taken apart. The value is data: it runs from the first `='` to the last
/// `'`, with whatever quotes stand in it.
struct ReportSelection
{
    QString table;
    QString column;
    QString value;
};

/// Nothing for a text of another form. Table and column are plain names: letters, digits, underscores.
std::optional<ReportSelection> parseSelection(const QString& formula);
/// Name and value of `name='value'`, the value likewise; nothing for a text of another form.
std::optional<std::pair<QString, QString>> parseFormula(const QString& formula);

/// The report control, with the operations that its callers know: they set the file, the data, the named texts and the
/// destination, then the action. It has no window: whoever has one shows `report`.
class ReportControl
{
public:
    using Rows = std::variant<std::shared_ptr<const RowSource>, LayoutFault>;
    /// Reads what the layout's source asks for. May raise what its store raises.
    using ReadRows = std::function<Rows(const QString& dataFile, const ReportLayout& layout,
                                        const std::optional<ReportSelection>& selection)>;

    static constexpr int toWindow = 0;
    static constexpr int toPrinter = 1;

    explicit ReportControl(ReadRows readRows);

    QString ReportFileName; ///< full path, found without regard to case
    QString SelectionFormula;
    int Destination = toWindow;
    PrintJob Job; ///< printer, pages and copies for the printer

    QString& DataFiles(int index) { return dataFiles_[index]; }
    QString& Formulas(int index) { return formulas_[index]; } ///< name='value', from 0
    QHash<QString, QImage> Pictures;                          ///< by the name that the layout has for them
    /// 1 runs the report: reads it for the window, or prints the one that the window has.
    /// @return "" or what is wrong with layout, texts or printer, for the operator
    QString setAction(int action);

    /// The report that was read last, or null.
    std::shared_ptr<const Report> report() const { return report_; }

private:
    QString load();
    QString print();

    ReadRows readRows_;
    std::map<int, QString> dataFiles_;
    std::map<int, QString> formulas_;
    std::shared_ptr<const Report> report_;
    QSizeF printersPaper_;
};
