// A year of many operators on one ledger: several processes at once, each with its operators in turn, who log in,
// enter, edit, delete, audit and un-audit documents of all kinds, print and log out. After each month the first process
// is alone, takes the time of some commands, and makes and saves the month's report. At the end the books must be
// whole.
//
// Usage: soak [--operators N] [--processes N] [--days N] [--documents N] [--seed N]
// Days are those worked in a month, documents those of an operator on a day.

#include "admin/ledger_check.h"
#include "headless.h"
#include "ledger/literal.h"
#include "platform/base/date.h"
#include "platform/base/dialogs.h"
#include "reports/C1.h"
#include "reports/C181.h"
#include "reports/Lst.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/rights.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <ctime>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int year = 2005;
constexpr int months = 12;
constexpr int goodsCount = 300;

struct Plan
{
    QString ledger;
    int operators = 20;
    int processes = 4;
    int days = 20;
    int documents = 3;
    unsigned seed = 1;
};

[[noreturn]] void giveUp(const QString& text)
{
    std::fprintf(stderr, "soak: %s\n", qPrintable(text));
    std::exit(1);
}

/// Confirms everything. Another session in the way is a matter of course, any other failure is not.
class Host : public DialogHost
{
public:
    Answer show(const Box& box) override
    {
        told = box.text;
        if (box.text.contains(u"请稍候再试"_s))
            ++inTheWay;
        else if (box.kind == BoxKind::Error)
            giveUp(box.text);
        return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}

    int inTheWay = 0;
    QString told; ///< by the last box
};

Host* host = nullptr;

void useHost()
{
    auto made = std::make_unique<Host>();
    host = made.get();
    setDialogHost(std::move(made));
    setDesktopHost(std::make_unique<headless::Desktop>());
}

/// Of this process, in megabytes; 0 where the system doesn't tell it in a file.
double residentMegabytes()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    return 0;
}

QString accountOf(int number)
{
    return number == 0 ? u"001"_s : u"1%1"_s.arg(number, 2, 10, QChar(u'0'));
}

void writeMasters(Database& ledger, const Plan& plan)
{
    const WriteRun run(ledger);
    ledger.Execute(u"update reginfo set F1='恒达五金有限公司',F7='%1-1-1'"_s.arg(year));
    ledger.Execute(u"delete from sysinfo where ID=0"_s); // nothing may go out that isn't there
    ledger.Execute(u"insert into sysinfo (ID,setval) values (0,1)"_s);
    for (int i = 1; i < plan.operators; ++i)
        ledger.Execute(u"insert into TE1 (F1,F2,F61,F62,F63,F64,F65,F66) values ("_s +
                       sqlTexts({accountOf(i), u"操作员"_s + accountOf(i)}) + u",1,1,1,1,1,1)"_s);
    for (int i = 0; i < goodsCount; ++i)
        ledger.Execute(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8,V1,V2,V3,V4) values ("_s +
                       sqlTexts({u"G%1"_s.arg(i, 3, 10, QChar(u'0')), u"六角螺栓"_s, u"001"_s, u"个"_s, u"M8"_s}) +
                       u",%1,%2,1000,0,0,1000,%1)"_s.arg(10 + i % 90).arg(12 + i % 90));
}

// An operator's work --------------------------------------------------------------------------------------------------

/// Gives a command until nobody else is in its way.
void patiently(const std::function<void()>& command)
{
    for (int tries = 0; tries < 20; ++tries) {
        const int before = host->inTheWay;
        runCommand(command);
        if (host->inTheWay == before)
            return;
    }
    giveUp(u"twenty times another session was in the way"_s);
}

class Operator
{
public:
    Operator(const Plan& plan, std::mt19937& random)
        : plan_(plan)
        , random_(random)
    {}

    void work(const QString& account)
    {
        patiently([this] { gDB = headless::openLedger(plan_.ledger); });
        patiently([&] {
            auto& login = theForm<Login>();
            login.Txt[0]->setText(account);
            login.Cmd[0]->click();
        });
        if (gOperId != account)
            giveUp(account + u" can't log in"_s);
        for (int i = 0; i < plan_.documents; ++i)
            document();
        for (Form* form : QList<Form*>(Form::all()))
            form->Unload();
        headless::turnLoop();
        logOut();
        gDB.Close();
    }

private:
    int below(int bound) { return int(random_() % unsigned(bound)); }

    void document()
    {
        using enum DocumentKind;
        constexpr std::array kinds{B1, D1, B1, D1, B1, D1, D1, B3, D3, C2};
        const DocumentKind kind = kinds[size_t(below(int(kinds.size())))];
        patiently([kind] { documentForm(kind).listDrafts(); });
        DocumentForm& form = documentForm(kind);
        patiently([&] { form.Menu_Add(); });
        if (!form.CmbLB)
            form.Txt[2]->setText(u"老王"_s);
        fill(form, 1 + below(6));
        if (form.lines->isEmpty()) // nothing of it is in stock any more
            return patiently([&] { form.Menu_cancel(); });
        save(form);
        const int fate = below(20);
        if (fate < 3) {
            patiently([&] { form.Menu_edit(); });
            fill(form, 1);
            save(form);
        }
        if (fate == 3)
            return patiently([&] { form.Menu_del(); });
        const QString number = form.GD->TextMatrix(form.GD->Row(), 0);
        if (fate == 4)
            print(form);
        patiently([&] { form.Menu_Ok(); });
        if (gOperId != u"001" || fate > 9 || form.command(u"Menu_noOK"_s) == nullptr)
            return;
        const QString header = traitsOf(form.Name()).headerTable();
        patiently([&] { form.listAll(u" Where "_s + header + u".F1="_s + sqlText(number)); });
        patiently([&] { form.Menu_noOK(); });
        patiently([&] { form.Menu_Ok(); });
    }

    void fill(DocumentForm& form, int lines)
    {
        for (int i = 0; i < lines; ++i)
            patiently([&form, code = u"G%1"_s.arg(below(goodsCount), 3, 10, QChar(u'0')),
                       quantity = QString::number((1 + below(80)) * 0.125, 'g', 15)] {
                headless::enterLine(form, code, quantity);
            });
    }

    void save(DocumentForm& form)
    {
        patiently([&] { form.Menu_save(); });
        if (form.Edstu != 0)
            giveUp(u"a document can't be saved in %1: %2"_s.arg(form.Name(), host->told));
    }

    void print(DocumentForm& form)
    {
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, &closer, [] {
            if (auto* preview = qobject_cast<Form*>(QApplication::activeModalWidget()))
                preview->Unload();
        });
        closer.start(1);
        patiently([&] {
            if (traitsOf(form.Name()).prints->items.isEmpty())
                form.Menu_print();
            else
                form.Menu_prn(1); // the lines as they are shown, staged
        });
    }

    static const DocumentTraits& traitsOf(const QString& form)
    {
        using enum DocumentKind;
        for (const DocumentKind kind : {B1, B3, D1, D3, C2})
            if (::traitsOf(kind).form == form)
                return ::traitsOf(kind);
        giveUp(u"no such kind of document: "_s + form);
    }

    const Plan& plan_;
    std::mt19937& random_;
};

/// A process's operators through one month.
void workMonth(const Plan& plan, int process, int month, std::mt19937& random)
{
    for (int day = 1; day <= plan.days; ++day)
        for (int number = process; number < plan.operators; number += plan.processes) {
            setClock(QDateTime(QDate(year, month, day), QTime(9, number % 60, day)));
            Operator(plan, random).work(accountOf(number));
        }
}

void setPlace(const Plan& plan)
{
    gLedgerFile = plan.ledger;
    gLedgerName = u"五金"_s;
    gAppPath = withSeparator(QFileInfo(plan.ledger).path());
}

/// A process that lives through the year: works a month when it is told to, and tells when it is through.
int runWorker(const Plan& plan, int process)
{
    useHost();
    resetSession();
    setPlace(plan);
    std::mt19937 random(plan.seed * 1000 + unsigned(process));
    for (std::string line; std::getline(std::cin, line);) {
        workMonth(plan, process, std::stoi(line), random);
        std::printf("%.1f %d\n", residentMegabytes(), host->inTheWay);
        std::fflush(stdout);
    }
    return 0;
}

// The process that measures -------------------------------------------------------------------------------------------

constexpr std::array measured{"save", "audit", "drafts", "day list", "stock list", "month report"};

/// What one month came to: milliseconds of the commands, and the file.
struct Month
{
    std::array<double, measured.size()> times;
    double fileMegabytes = 0;
    double workersMegabytes = 0; ///< the largest of them
};

/// Of processor time, so that other work on the machine doesn't count.
double millisecondsOf(const std::function<void()>& command, int times = 5)
{
    std::vector<double> all;
    for (int i = 0; i < times; ++i) {
        const std::clock_t start = std::clock();
        command();
        all.push_back(double(std::clock() - start) * 1000 / CLOCKS_PER_SEC);
    }
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

/// On the last day of the month, alone; the report that is saved at its end locks the month.
std::array<double, measured.size()> measure(const Plan& plan, int month)
{
    const QDate day(year, month, QDate(year, month, 1).daysInMonth());
    headless::beginSession(plan.ledger);
    setClock(QDateTime(day, QTime(18, 0, 0)));
    const auto unload = [](Form& form) {
        form.Unload();
        headless::turnLoop();
    };
    std::array<double, measured.size()> times{};
    std::vector<double> audits;
    DocumentForm& form = documentForm(DocumentKind::D1);
    std::vector<double> saves;
    for (int i = 0; i < 5; ++i) {
        form.Menu_Add();
        for (int line = 0; line < 10; ++line)
            headless::enterLine(form, u"G%1"_s.arg(i * 10 + line, 3, 10, QChar(u'0')), u"1"_s);
        saves.push_back(millisecondsOf([&] { form.Menu_save(); }, 1));
        audits.push_back(millisecondsOf([&] { form.Menu_Ok(); }, 1));
    }
    std::sort(saves.begin(), saves.end());
    std::sort(audits.begin(), audits.end());
    times[0] = saves[2];
    times[1] = audits[2];
    unload(form);
    times[2] = millisecondsOf([&] { unload(documentForm(DocumentKind::B1)); });
    times[3] = millisecondsOf([&] { unload(Lst::theWindow(StatisticsMode::D2)); });
    times[4] = millisecondsOf([&] { unload(C1::theWindow()); });
    auto& report = theForm<C181>();
    times[5] = millisecondsOf([&] { report.generateOrOpen(); }, 3);
    report.saveOrDelete();
    unload(report);
    headless::endSession();
    return times;
}

/// Stock of each goods item is its opening and what the documents moved, to the last bit: all quantities are eighths.
QStringList faultsOf(const Plan& plan)
{
    headless::beginSession(plan.ledger);
    QStringList faults = integrityFaults(gDB);
    for (const LedgerFinding& finding : examineLedger().findings)
        faults += finding.kind + u' ' + finding.where + u": "_s + finding.what;
    QHash<QString, double> expected;
    for (Recordset rows = gDB.OpenRecordset(u"select F1,V3 from TA4"_s); !rows.isEOF(); rows.MoveNext())
        expected[rows.Fields(0).text()] = rows.Fields(1).number();
    for (const auto& [header, moved] : {std::pair(u"TB1"_s, u"%11.F6"_s),
                                        {u"TB3"_s, u"-%11.F6"_s},
                                        {u"TD1"_s, u"-%11.F6"_s},
                                        {u"TD3"_s, u"%11.F6"_s},
                                        {u"TC2"_s, u"%11.F6-%11.F5"_s}}) {
        const QString statement = u"select %11.F1,"_s + moved + u" from %1,%11 where %11.F0=%1.F1 and %1.F6<>''"_s;
        for (Recordset rows = gDB.OpenRecordset(QString(statement).replace(u"%1"_s, header)); !rows.isEOF();
             rows.MoveNext())
            expected[rows.Fields(0).text()] += rows.Fields(1).number();
    }
    for (Recordset rows = gDB.OpenRecordset(u"select F1,F8 from TA4"_s); !rows.isEOF(); rows.MoveNext())
        if (const QString code = rows.Fields(0).text(); rows.Fields(1).number() != expected.value(code))
            faults += u"stock of %1: %2 instead of %3"_s.arg(code, NumText(rows.Fields(1).number()),
                                                             NumText(expected.value(code)));
    headless::endSession();
    return faults;
}

int countDocuments(const Plan& plan)
{
    Database ledger = headless::openLedger(plan.ledger);
    double count = 0;
    for (const QString& table : {u"TB1"_s, u"TB3"_s, u"TD1"_s, u"TD3"_s, u"TC2"_s})
        count += Val(LookupValue(ledger, u"select count(*) from "_s + table));
    return int(count);
}

int liveTheYear(Plan plan, const QStringList& arguments)
{
    const QTemporaryDir folder;
    plan.ledger = folder.filePath(u"帐本.hcn"_s);
    createLedger(plan.ledger, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
    for (const QFileInfo& layout : QDir(QStringLiteral(LAYOUTS)).entryInfoList({u"*.rpt"_s}))
        QFile::copy(layout.filePath(), folder.filePath(layout.fileName()));
    useHost();
    {
        Database ledger = headless::openLedger(plan.ledger);
        writeMasters(ledger, plan);
    }
    std::vector<std::unique_ptr<QProcess>> workers;
    for (int i = 0; i < plan.processes; ++i) {
        workers.push_back(std::make_unique<QProcess>());
        workers.back()->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        workers.back()->start(QCoreApplication::applicationFilePath(),
                              QStringList{u"--worker"_s, QString::number(i), plan.ledger} + arguments);
    }
    std::vector<Month> all;
    int inTheWay = 0;
    for (int month = 1; month <= months; ++month) {
        Month figures;
        for (const auto& worker : workers)
            worker->write(QByteArray::number(month) + '\n');
        inTheWay = 0;
        for (const auto& worker : workers) {
            while (!worker->canReadLine())
                if (!worker->waitForReadyRead(-1))
                    giveUp(u"a process has ended in month %1: %2"_s.arg(month).arg(worker->errorString()));
            const QList<QByteArray> told = worker->readLine().simplified().split(' ');
            figures.workersMegabytes = std::max(figures.workersMegabytes, told.value(0).toDouble());
            inTheWay += told.value(1).toInt();
        }
        figures.times = measure(plan, month);
        figures.fileMegabytes = double(QFileInfo(plan.ledger).size()) / (1 << 20);
        all.push_back(figures);
        std::printf("month %2d: file %.2f MB, largest process %.1f MB\n", month, figures.fileMegabytes,
                    figures.workersMegabytes);
        std::fflush(stdout);
    }
    for (const auto& worker : workers) {
        worker->closeWriteChannel();
        if (!worker->waitForFinished(60'000) || worker->exitCode() != 0)
            giveUp(u"a process has ended badly"_s);
    }
    const Month& first = all.front();
    const Month& last = all.back();
    std::printf("%d documents; %d times another session was in the way and the command was given again\n",
                countDocuments(plan), inTheWay);
    std::printf("file grows by %.3f MB a month\n", (last.fileMegabytes - first.fileMegabytes) / (months - 1));
    for (size_t i = 0; i < measured.size(); ++i)
        std::printf("%-12s %7.2f ms in the first month, %7.2f ms in the last: %.2f\n", measured[i], first.times[i],
                    last.times[i], last.times[i] / first.times[i]);
    std::printf("%-12s %7.1f MB in the first month, %7.1f MB in the last: %.2f\n", "memory", first.workersMegabytes,
                last.workersMegabytes, last.workersMegabytes / std::max(first.workersMegabytes, 1.0));
    const QStringList faults = faultsOf(plan);
    for (const QString& fault : faults)
        std::fprintf(stderr, "fault: %s\n", qPrintable(fault));
    std::puts(faults.isEmpty() ? "the books are whole" : "the books are NOT whole");
    return faults.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QStringList arguments = QApplication::arguments().mid(1);
    Plan plan;
    int process = -1;
    if (arguments.value(0) == u"--worker") {
        process = arguments.value(1).toInt();
        plan.ledger = arguments.value(2);
        arguments = arguments.mid(3);
    }
    for (qsizetype i = 0; i + 1 < arguments.size(); i += 2) {
        const int value = arguments[i + 1].toInt();
        if (arguments[i] == u"--operators")
            plan.operators = value;
        else if (arguments[i] == u"--processes")
            plan.processes = value;
        else if (arguments[i] == u"--days")
            plan.days = std::min(value, 27);
        else if (arguments[i] == u"--documents")
            plan.documents = value;
        else if (arguments[i] == u"--seed")
            plan.seed = unsigned(value);
        else
            giveUp(u"no option "_s + arguments[i]);
    }
    try {
        return process < 0 ? liveTheYear(plan, arguments) : runWorker(plan, process);
    } catch (const StoreError& error) {
        giveUp(error.description());
    }
}
