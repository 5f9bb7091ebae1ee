#include "tools/fuzz/fuzz_targets.h"

#include "admin/backup_folder.h"
#include "ledger/dialect.h"
#include "ledger/literal.h"
#include "platform/base/capitals.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/base/text.h"
#include "platform/report/report.h"
#include "platform/workbook/workbook.h"
#include "shell/ZbSet.h"
#include "shell/entry.h"
#include "shell/session.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

void hold(bool truth, const char* what)
{
    if (truth)
        return;
    std::fprintf(stderr, "doesn't hold: %s\n", what);
    std::abort();
}

/// Every box is read and left.
class LeavingDialogs : public DialogHost
{
public:
    Answer show(const Box& box) override { return box.buttons == BoxButtons::YesNo ? Answer::No : Answer::Ok; }
    std::optional<QString> input(const InputRequest&) override { return std::nullopt; }
    std::optional<QString> chooseFile(const FileRequest&) override { return std::nullopt; }
    std::optional<PrintJob> print(const PrintRequest&) override { return std::nullopt; }
    void doEvents() override {}
};

/// A folder of this process, which the targets that read files have as their program folder.
const QTemporaryDir& scratch()
{
    static const QTemporaryDir folder;
    return folder;
}

QString writtenFile(const QString& name, const QByteArray& content)
{
    QFile file(scratch().filePath(name));
    hold(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "the scratch folder takes a file");
    return file.fileName();
}

void runDialect(const QByteArray& input)
{
    const QString statement = QString::fromUtf8(input);
    try {
        const dialect::Shape shape = dialect::scan(statement);
        const dialect::Translation translation = dialect::translate(statement);
        for (const dialect::Binding& binding : translation.bindings) {
            hold(binding.literal < shape.literals.size(), "a parameter stands for a literal of the statement");
            dialect::bound(binding, shape.literals);
        }
        for (const size_t place : translation.fixed)
            hold(place < shape.literals.size(), "a fixed literal is one of the statement");
    } catch (const StoreError& error) {
        hold(!error.description().isEmpty(), "a refusal has words");
    }
}

/// Whatever an operator types stays one literal and changes nothing around it.
void runValue(const QByteArray& input)
{
    const QString typed = QString::fromUtf8(input);
    const auto around = [](const QString& literal) {
        return u"select F1 from TA4 where F2="_s + literal + u" and F4="_s + sqlTexts({u"x"_s, u"y"_s}).first(3);
    };
    const dialect::Shape plain = dialect::scan(around(sqlText(u"x")));
    const dialect::Shape shape = dialect::scan(around(sqlText(typed)));
    // A placeholder tells apart what translates differently, such as a pattern that begins with a wildcard.
    qsizetype differences = 0;
    for (qsizetype i = 0; i < std::min(shape.key.size(), plain.key.size()); ++i)
        differences += shape.key[i] != plain.key[i];
    hold(shape.key.size() == plain.key.size() && differences <= 1, "a value doesn't change the statement");
    const auto* text = std::get_if<QString>(&shape.literals.at(0));
    hold(text && *text == typed, "a value arrives as it was typed");
    dialect::translate(around(sqlText(typed)));
}

void runLayout(const QByteArray& input)
{
    const auto read = parseLayout(QString::fromUtf8(input), u"x.rpt"_s);
    if (const auto* fault = std::get_if<LayoutFault>(&read)) {
        hold(!fault->text().isEmpty(), "a fault has words");
        return;
    }
    const auto& layout = std::get<ReportLayout>(read);
    const QStringList columns = {u"F0"_s, u"F1"_s, u"F2"_s, u"F8"_s, u"V1"_s};
    if (missingColumn(layout, columns))
        return;
    QList<QList<Value>> rows;
    for (int i = 0; i < 3; ++i)
        rows.append({Value(double(i)), Value(u"货品'\"<&名称"_s), Value(), Value(-1.005 * i), Value(1e15)});
    const Report report(layout, std::make_shared<RowList>(columns, rows), {{u"cpt"_s, u"标题"_s}});
    hold(report.pageCount() >= 1, "a report has a page");
    for (const QString& text : report.pageTexts(report.pageCount()))
        hold(text != u"-0.00"_s, "a zero has no sign");
}

void runDate(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input);
    const auto day = parseDate(text);
    hold(day.has_value() == IsDate(text), "one rule for what a date is");
    if (day) {
        hold(parseDate(dateText(*day)) == day, "a date's text reads as that date");
        hold(DateDiff(text, dateText(*day)) == 0, "no days lie between a date and itself");
    }
    if (const auto moment = parseMoment(text))
        hold(parseMoment(momentText(*moment)) == moment, "a moment's text reads as that moment");
}

void runNumber(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input);
    const double number = Val(text);
    hold(std::isfinite(number), "a number is one");
    const QString plain = plainText(number);
    hold(plainText(Val(plain)) == plain, "a number's text reads as that number");
    for (const char16_t* mask : {u"#0", u"#0.00", u"#0.###", u"#00000"})
        hold(!Format(number, mask).startsWith(u"-0.00000"_s), "a zero has no sign");
    hold(!capitals(number).isEmpty(), "an amount has words");
}

void runWorkbook(const QByteArray& input)
{
    const QString path = writtenFile(u"book.xls"_s, input);
    const SheetNames sheets = sheetNames(path);
    hold(sheets.names.isEmpty() != sheets.refusal.isEmpty(), "sheets or a reason");
    for (const QString& sheet : sheets.names.first(std::min<qsizetype>(sheets.names.size(), 3)))
        readSheet(path, sheet);
}

void runCommandLine(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input);
    ledgerOf(text);
    const QString path = Trim(text);
    if (!path.isEmpty() && !path.contains(u'"') && path == text)
        hold(ledgerOf(commandLineOf({path})) == path, "a ledger named by an argument is that ledger");
}

void runTextFile(const QByteArray& input)
{
    const auto lines = readLines(writtenFile(u"Learn.dat"_s, input));
    hold(lines.has_value(), "a file that is there can be read");
    const QString copy = scratch().filePath(u"copy.dat"_s);
    hold(writeLines(copy, *lines) && readLines(copy) == lines, "lines come back as they were written");
}

void runLedgerList(const QByteArray& input)
{
    writtenFile(u"dbsetup.dat"_s, input);
    auto& directory = theForm<ZbSet>();
    directory.LoadLedgerList();
    directory.allowClosing();
    directory.Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void runBackupSettings(const QByteArray& input)
{
    gLedgerName = u"帐本"_s;
    writtenFile(u"帐本bak.set"_s, input);
    const auto settings = BackupSettings::read();
    hold(settings.has_value(), "a settings file that is there can be read");
    hold(settings->days() >= 0 && settings->days() == std::floor(settings->days()), "whole days");
    settings->dueOn(QDate(2004, 1, 5));
}

} // namespace

const QList<FuzzTarget>& fuzzTargets()
{
    static const QList<FuzzTarget> targets = [] {
        setProgramFolder(scratch().path());
        setDialogHost(std::make_unique<LeavingDialogs>());
        return QList<FuzzTarget>{
            {"dialect",
             runDialect,
             {"select ",
              " from TB1 ",
              " left join ",
              " on ",
              " where ",
              "datediff('d','2004-1-1',",
              " like 'A*' ",
              "'",
              "[",
              "]",
              "(",
              ")",
              " order by ",
              " desc",
              "insert into ",
              " values (",
              "update ",
              " set ",
              "delete from ",
              "is null",
              " in (select F0 from TB11)",
              "top 10 ",
              "+",
              "''",
              "#",
              ",",
              "0.5",
              "1E+15",
              "<>",
              " as "}},
            {"value", runValue, {"'", "''", "\\", "%", "*", "?", ";", "--", "/*", "\"", "[", "|", "' or '1'='1"}},
            {"layout",
             runLayout,
             {"<report>",
              "</report>",
              "<paper size=\"A4\"/>",
              "<detail height=\"6\">",
              "</detail>",
              "<field name=\"F1\" ",
              "<sum field=\"F8\" ",
              "x=\"0\" ",
              "w=\"50\" ",
              "height=\"0\"",
              "rows=\"10\"",
              "fill=\"yes\"",
              "format=\"capitals\"",
              "<group by=\"F1\">",
              "</group>",
              "<page>{page}/{pages}</page>",
              "frame=\"yes\"",
              "-1",
              "1e9",
              "&amp;",
              "<!--"}},
            {"date", runDate, {"2004", "-", "/", "1", "29", " ", ":", "00-00-00", "9:05:03", "．", "２００４"}},
            {"number", runNumber, {"1", "0", "-", ".", "E", "e+", "９", "－", "．", ",", " ", "999999999999999"}},
            {"workbook",
             runWorkbook,
             {"PK\x03\x04", "<row r=\"1\">", "<c r=\"A1\" t=\"s\">", "</c>", "<v>", "</v>", "\xff\xff"}},
            {"commandline", runCommandLine, {"\"", " ", ".hcn", "\\", "/", "-"}},
            {"textfile", runTextFile, {"\r\n", "\n", "\xEF\xBB\xBF", "\xB0\xA1", "\x81\x30\x81\x30"}},
            {"dbsetup", runLedgerList, {"\n", "|", "帐本", "C:\\", "..", "vemaro.dat", "\"", ",", "\t"}},
            {"bakset", runBackupSettings, {"\n", "-7", "2004-1-5", "还没有备份记录", "1E+15", "0.5"}},
        };
    }();
    return targets;
}
