#include "platform/report/report_control.h"

#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/report/printers.h"

#include <QPagedPaintDevice>
#include <QRegularExpression>

namespace {

/// What stands between the first `='` and the last `'`, and the text before it.
std::optional<std::pair<QString, QString>> splitAtValue(const QString& formula)
{
    const qsizetype at = formula.indexOf(u"='"_s);
    const qsizetype end = formula.lastIndexOf(u'\'');
    if (at < 0 || end < at + 2)
        return {};
    return std::pair(formula.left(at).trimmed(), formula.mid(at + 2, end - at - 2));
}

} // namespace

std::optional<ReportSelection> parseSelection(const QString& formula)
{
    static const QRegularExpression field(u"^\\{(\\w+)\\.(\\w+)\\}$"_s, QRegularExpression::UseUnicodePropertiesOption);
    const auto parts = splitAtValue(formula);
    const auto match = parts ? field.match(parts->first) : QRegularExpressionMatch();
    if (!match.hasMatch())
        return {};
    return ReportSelection{match.captured(1), match.captured(2), parts->second};
}

std::optional<std::pair<QString, QString>> parseFormula(const QString& formula)
{
    auto parts = splitAtValue(formula);
    if (!parts || parts->first.isEmpty())
        return {};
    return parts;
}

ReportControl::ReportControl(ReadRows readRows)
    : readRows_(std::move(readRows))
{}

QString ReportControl::setAction(int action)
{
    if (action != 1)
        return {};
    if (Destination == toPrinter)
        return print();
    report_.reset();
    return load();
}

QString ReportControl::load()
{
    const QString file = fileNameOf(ReportFileName);
    if (!fileExists(ReportFileName))
        return LayoutFault{file, 0, u"文件不存在"_s}.text();
    auto read = readLayout(resolvedPath(ReportFileName));
    if (const auto* fault = std::get_if<LayoutFault>(&read))
        return fault->text();
    auto& layout = std::get<ReportLayout>(read);

    QHash<QString, QString> texts;
    for (const auto& [index, formula] : formulas_) {
        const auto parts = parseFormula(formula);
        if (!parts)
            return LayoutFault{file, 0, u"公式“%1”不是“名称='内容'”的形式"_s.arg(formula)}.text();
        texts.insert(parts->first, parts->second);
    }
    const auto selection = parseSelection(SelectionFormula);
    if (!selection && !SelectionFormula.isEmpty())
        return LayoutFault{file, 0, u"选择公式“%1”不是“{表.列}='内容'”的形式"_s.arg(SelectionFormula)}.text();

    const Rows answer = readRows_(dataFiles_[0], layout, selection);
    if (const auto* fault = std::get_if<LayoutFault>(&answer))
        return fault->text();
    const auto& rows = std::get<std::shared_ptr<const RowSource>>(answer);
    if (const auto fault = missingColumn(layout, rows->columns()))
        return fault->text();
    if (layout.printersPaper)
        printersPaper_ = Job.paper.isEmpty() ? printers().paperOf(Job.printer) : Job.paper;
    report_ = std::make_shared<Report>(std::move(layout), rows, texts, printersPaper_, Pictures);
    return {};
}

QString ReportControl::print()
{
    if (report_ && report_->takesPrintersPaper() && !Job.paper.isEmpty() && Job.paper != printersPaper_)
        report_ = std::make_shared<Report>(*report_, Job.paper);
    if (!report_)
        if (const QString fault = load(); !fault.isEmpty())
            return fault;
    const auto device = printers().open(Job, report_->title());
    if (!device)
        return u"没有可用的打印机。请检查打印机是否已安装并打开。"_s;
    const int last = Job.last > 0 ? std::min(Job.last, report_->pageCount()) : report_->pageCount();
    if (!report_->print(*device, std::clamp(Job.first, 1, last), last, Job.paper))
        return Job.file.isEmpty() ? u"打印机没有接受打印任务。请检查打印机是否已打开。"_s : notWritten(Job.file);
    return {};
}
