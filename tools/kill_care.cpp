// Kills the program again and again in the midst of what is done to a whole ledger, and looks at what is left: the
// ledger opens, is sound and is as before the command or as after it; every backup is sound and the newest good one is
// still there; and the command comes off when it is given again. And kills it while documents are entered: what was
// kept of the entry is offered by the next session, unless the ledger has the document.
//
// Usage: kill_care [--kills N] [--seed N] [--command NAME]

#include "admin/S32.h"
#include "admin/YearEnd.h"
#include "admin/sysDBbak.h"
#include "books.h"
#include "headless.h"
#include "ledger/Module1.h"
#include "ledger/create.h"
#include "ledger/engine.h"
#include "ledger/literal.h"
#include "masterdata/FromExcel.h"
#include "platform/base/clock.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/workbook/table_file.h"
#include "shell/MForm.h"
#include "shell/entry.h"
#include "shell/session.h"

#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <optional>
#include <random>

namespace {

const QString ledgerName = u"五金"_s;
const QString earlierBackup = u"五金2004-11-17"_s; ///< in the backup folder, under either of its extensions

/// The files of one try, in a folder of its own.
struct Place
{
    QString folder;

    QString file(const QString& name) const { return folder + u'/' + name; }
    QString ledger() const { return file(u"帐本.hcn"_s); }
    QString backups() const { return file(u"数据备份"_s); }
    QString backup(const QString& name) const { return backups() + u'/' + name; }
    QString source() const { return backup(u"备份-五金.hcn"_s); } ///< what a restore restores
    QString manual() const { return backup(u"手工.hcn"_s); }
    QString sheet() const { return file(u"货品.xlsx"_s); }
};

[[noreturn]] void giveUp(const QString& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    std::exit(2);
}

// The command that is killed, in a process of its own
// -------------------------------------------------------------------

/// Tells the other process how far the command is.
void tell(const char* word)
{
    std::puts(word);
    std::fflush(stdout);
}

/// Confirms everything and chooses one file. A failure ends the process with a status of its own.
class SureHost : public DialogHost
{
public:
    explicit SureHost(QString file)
        : file_(std::move(file))
    {}
    Answer show(const Box& box) override
    {
        const bool failed = box.kind == BoxKind::Error || box.text.contains(u"失败"_s) ||
                            box.text.contains(u"其它用户"_s) || box.text.contains(u"没有完成"_s);
        if (failed)
            giveUp(box.text);
        return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return file_; }
    void doEvents() override {}

private:
    QString file_;
};

void backUpAtExit(const Place&)
{
    MForm::get().close();
}

void backUpByHand(const Place&)
{
    theForm<sysDBbak>().Command3->click();
}

void restoreBackup(const Place&)
{
    theForm<S32>().Command1->click();
}

void closeYear(const Place&)
{
    auto& form = theForm<YearEnd>();
    form.Chk[0]->setChecked(true);
    form.Chk[1]->setChecked(true);
    form.Cmd[1]->click();
}

void importGoods(const Place& place)
{
    auto& form = theForm<FromExcel>();
    form.TxtFile->setText(place.sheet());
    form.TxtTab->setEditText(u"货品"_s);
    form.readSheetIn();
    form.CmbCol[int(ImportField::Code)]->setCurrentText(u"A"_s);
    form.CmbCol[int(ImportField::Name)]->setCurrentText(u"B"_s);
    form.CmbCol[int(ImportField::Quantity)]->setCurrentText(u"C"_s);
    tell("ready"); // reading the sheet changes nothing
    form.command(u"Menu_Run"_s)->trigger();
}

struct Command
{
    const char* name;
    void (*run)(const Place& place);
    bool tellsReady;                 ///< by itself, behind its preparations
    QString (Place::*file)() const;  ///< what its file dialog is answered
    QString (Place::*makes)() const; ///< a backup that is there once it came off
};

const Command commands[] = {
    {"exit", backUpAtExit, false, nullptr, nullptr},
    {"manual", backUpByHand, false, &Place::manual, &Place::manual},
    {"restore", restoreBackup, false, &Place::source, nullptr},
    {"year-end", closeYear, false, nullptr, nullptr},
    {"import", importGoods, true, nullptr, nullptr},
};

const Command& commandCalled(const QString& name)
{
    for (const Command& command : commands)
        if (name == QLatin1StringView(command.name))
            return command;
    giveUp(u"no command "_s + name);
}

void beginSession(const Place& place)
{
    setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
    setProgramFolder(place.folder);
    resetSession();
    gLedgerFile = place.ledger();
    gLedgerName = ledgerName;
    gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
    gOperId = u"001"_s;
    gOperName = u"管理员"_s;
    gRights.set();
    gCanSeeCost = true;
    LoadSettings();
    LoadYearStart();
}

int runCommandIn(const Command& command, const Place& place)
{
    setDialogHost(std::make_unique<SureHost>(command.file ? (place.*command.file)() : QString()));
    setDesktopHost(std::make_unique<headless::Desktop>());
    beginSession(place);
    if (!command.tellsReady)
        tell("ready");
    command.run(place);
    tell("done");
    std::_Exit(0); // the program's end runs no destructor either
}

// What is left
// ----------------------------------------------------------------------------------------------------------

/// What a ledger holds, in short; nothing when it doesn't open or isn't sound.
std::optional<QString> stateOf(const QString& path)
{
    try {
        Database ledger = DBEngine::OpenDatabase(path, ledgerConnect.toString());
        LedgerConnection& engine = ledger.connection();
        if (engine.selectOwn(u"pragma integrity_check"_s).value(0, 0).text() != u"ok")
            return {};
        QStringList state;
        const RowArena tables = engine.selectOwn(u"select name from sqlite_master where type = 'table' order by 1"_s);
        for (qsizetype i = 0; i < tables.rowCount(); ++i) {
            const QString name = tables.value(i, 0).text();
            state += name + u'=' + engine.selectOwn(u"select count(*) from ["_s + name + u']').value(0, 0).text();
        }
        for (const QStringView what : {u"select sum(F8) from TA4", u"select sum(V3) from TA4",
                                       u"select sum(V4) from TA4", u"select F7 from reginfo"})
            state += LookupValue(ledger, what.toString());
        return state.join(u' ');
    } catch (const StoreError& error) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(path), error.what());
        return {};
    }
}

struct States
{
    QString before;
    QString after;
    QString earlier; ///< the backup of the day before
    QString source;
};

/// What is wrong with that place; nothing when all is well.
QStringList faultsIn(const Place& place, const States& states, bool cameOff)
{
    QStringList faults;
    const auto ledger = stateOf(place.ledger());
    if (!ledger)
        faults += u"the ledger is lost"_s;
    else if (*ledger != states.after && (cameOff || *ledger != states.before))
        faults += u"the ledger is neither as before nor as after: "_s + *ledger;
    int earlier = 0;
    QDirIterator files(place.backups(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        if (file.completeBaseName() != earlierBackup && file.suffix() != u"hcn")
            continue; // what was broken off has no such name
        const auto state = stateOf(file.filePath());
        if (!state || !QStringList{states.before, states.after, states.earlier, states.source}.contains(*state))
            faults += u"no good backup: "_s + file.fileName();
        if (file.completeBaseName() == earlierBackup && state == states.earlier)
            ++earlier;
    }
    if (earlier != 1)
        faults += u"the newest good backup is gone"_s;
    return faults;
}

// The tries
// -------------------------------------------------------------------------------------------------------------

/// A small ledger of books, different for each number.
void makeBooks(const QString& path, int goods, int documents)
{
    createLedger(path, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
    Database ledger = DBEngine::OpenDatabase(path, ledgerConnect.toString());
    writeBooks(
        ledger,
        {.goods = goods, .documents = documents, .lines = 5 * documents, .stockTakes = 2, .firstDay = {2004, 1, 1}});
}

void prepare(const Place& place)
{
    QDir().mkpath(place.backups());
    makeBooks(place.ledger(), 800, 1600);
    makeBooks(place.source(), 700, 1200);
    makeBooks(place.backup(earlierBackup + u".hcn"_s), 300, 200);
    writeLines(place.file(ledgerName + u"bak.set"_s), {u"0"_s, u"2004-11-17"_s});
    TableContent sheet = {
        .sheet = u"货品"_s, .captions = {u"编码"_s, u"名称"_s, u"数量"_s}, .numeric = {false, false, true}, .rows = {}};
    for (int i = 0; i < 1500; ++i)
        sheet.rows += {u"IMP%1"_s.arg(i), u"新货品%1"_s.arg(i), QString::number(i)};
    if (const QString trouble = writeTable(place.sheet(), sheet); !trouble.isEmpty())
        giveUp(trouble);
}

void copyPlace(const Place& from, const Place& to)
{
    QDir().mkpath(to.backups());
    QDirIterator files(from.folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!QFile::copy(path, to.folder + path.sliced(from.folder.size())))
            giveUp(u"can't copy "_s + path);
    }
}

constexpr int patience = 120'000; ///< in milliseconds

/// The command in a process of its own, killed after so many milliseconds; not at all without them.
struct Try
{
    bool cameOff = false;
    qint64 took = 0; ///< milliseconds from its beginning to its end
    QString trouble;
};

Try attempt(const Command& command, const Place& place, std::optional<int> killAfter)
{
    Try result;
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {u"--child"_s, QString::fromLatin1(command.name), place.folder});
    if (!process.waitForReadyRead(patience)) {
        result.trouble = u"never began: "_s + QString::fromUtf8(process.readAllStandardError());
        return result;
    }
    QElapsedTimer timer;
    timer.start();
    if (!process.waitForFinished(killAfter.value_or(patience))) {
        process.kill();
        process.waitForFinished(patience);
    }
    result.took = timer.elapsed();
    result.cameOff = process.readAllStandardOutput().contains("done");
    if (process.exitStatus() == QProcess::NormalExit && !result.cameOff)
        result.trouble = QString::fromUtf8(process.readAllStandardError());
    return result;
}

class Campaign
{
public:
    explicit Campaign(unsigned seed)
        : random_(seed)
    {
        prepare(model_);
    }

    /// False when something was lost.
    bool run(const Command& command, int kills);
    /// The same for entries of documents.
    bool runEntries(int kills);

private:
    bool oneKill(const Command& command, const States& states, qint64 duration);
    /// Tells the faults and keeps the place to be looked at.
    bool tellFaults(const Command& command, const Place& place, const QStringList& faults);

    QTemporaryDir folder_;
    Place model_{folder_.filePath(u"model"_s)};
    std::mt19937 random_;
    int next_ = 0;
    int cameOff_ = 0;
    int asBefore_ = 0;
};

bool Campaign::run(const Command& command, int kills)
{
    const Place whole{folder_.filePath(u"whole-"_s + QString::fromLatin1(command.name))};
    copyPlace(model_, whole);
    const Try undisturbed = attempt(command, whole, {});
    if (!undisturbed.cameOff)
        return tellFaults(command, whole, {u"doesn't come off undisturbed: "_s + undisturbed.trouble});
    const States states = {.before = stateOf(model_.ledger()).value(),
                           .after = stateOf(whole.ledger()).value(),
                           .earlier = stateOf(model_.backup(earlierBackup + u".hcn"_s)).value(),
                           .source = stateOf(model_.source()).value()};
    if (const QStringList faults = faultsIn(whole, states, true); !faults.isEmpty())
        return tellFaults(command, whole, faults);
    cameOff_ = asBefore_ = 0;
    for (int i = 0; i < kills; ++i)
        if (!oneKill(command, states, undisturbed.took))
            return false;
    std::printf("%-9s %4d kills within %lld ms: %d before the ledger was another, %d behind that, %d came too late; "
                "nothing lost\n",
                command.name, kills, static_cast<long long>(undisturbed.took), asBefore_, kills - asBefore_ - cameOff_,
                cameOff_);
    std::fflush(stdout);
    return true;
}

bool Campaign::oneKill(const Command& command, const States& states, qint64 duration)
{
    const Place place{folder_.filePath(QString::number(next_++))};
    copyPlace(model_, place);
    // Every other one near the end, where the files get their names and the commits are.
    const int earliest = next_ % 2 == 0 ? 0 : int(duration * 2 / 3);
    const int delay = std::uniform_int_distribution<int>(earliest, int(duration))(random_);
    const Try killed = attempt(command, place, delay);
    if (!killed.trouble.isEmpty())
        return tellFaults(command, place, {killed.trouble});
    if (const QStringList faults = faultsIn(place, states, killed.cameOff); !faults.isEmpty())
        return tellFaults(command, place, faults);
    if (killed.cameOff)
        ++cameOff_;
    else if (stateOf(place.ledger()) == states.before)
        ++asBefore_;
    if (command.makes && QFile::exists((place.*command.makes)())) {
        QDir(place.folder).removeRecursively();
        return true; // by the rule an existing file is asked about for ever
    }
    const Try again = attempt(command, place, {});
    QStringList faults;
    if (!again.cameOff)
        faults += u"doesn't come off afterwards: "_s + again.trouble;
    if (command.makes && !stateOf((place.*command.makes)()))
        faults += u"has made no backup"_s;
    if (stateOf(place.ledger()) != states.after)
        faults += u"the ledger isn't as after the command"_s;
    if (!faults.isEmpty())
        return tellFaults(command, place, faults);
    QDir(place.folder).removeRecursively();
    return true;
}

// Documents that are being entered
// -----------------------------------------------------------------------------------------------

constexpr int linesOfEntry = 8;

/// Enters one document after the other without an end; every fourth is given up. Tells each line once it is kept, as
/// "kept NUMBER LINES", and what is no entry any more, as "over".
[[noreturn]] void enterForEver(const Place& place)
{
    setDialogHost(std::make_unique<SureHost>(QString()));
    setDesktopHost(std::make_unique<headless::Desktop>(place.folder));
    beginSession(place);
    DocumentForm& form = documentForm(DocumentKind::B1);
    for (int document = 1;; ++document) {
        form.Menu_Add();
        for (int line = 1; line <= linesOfEntry; ++line) {
            headless::enterLine(form, u"G%1"_s.arg(line, 5, 10, QChar(u'0')), u"3"_s);
            QMetaObject::invokeMethod(form.findChild<QTimer*>(), "timeout");
            tell(qPrintable(u"kept %1 %2"_s.arg(form.ReservedNo).arg(line)));
        }
        tell("over");
        if (document % 4 == 0)
            form.Menu_cancel();
        else
            form.Menu_save();
    }
}

/// Takes the entry that it is offered.
class TakingHost : public SureHost
{
public:
    explicit TakingHost(QStringList& questions)
        : SureHost(QString())
        , questions_(questions)
    {}
    Answer show(const Box& box) override
    {
        questions_ += box.text;
        return SureHost::show(box);
    }

private:
    QStringList& questions_;
};

bool Campaign::runEntries(int kills)
{
    const Place place{folder_.filePath(u"entries"_s)};
    copyPlace(model_, place);
    int offered = 0;
    for (int i = 0; i < kills; ++i) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {u"--child"_s, u"entry"_s, place.folder});
        if (!process.waitForReadyRead(patience))
            giveUp(u"never began: "_s + QString::fromUtf8(process.readAllStandardError()));
        QThread::msleep(std::uniform_int_distribution<unsigned long>(0, 150)(random_));
        const QString drafts = place.file(u"drafts"_s);
        const QString ledger = QFileInfo(place.ledger()).canonicalFilePath();
        QStringList faults;
        if (!KeptSearch(drafts, u"B1"_s, ledger, u"001"_s).found.empty())
            faults += u"the entry of a process that lives is offered"_s;
        process.kill();
        process.waitForFinished(patience);
        QStringList told = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        const QStringList last = told.last().split(u' ');

        QStringList questions;
        setDialogHost(std::make_unique<TakingHost>(questions));
        setDesktopHost(std::make_unique<headless::Desktop>(place.folder));
        beginSession(place);
        if (!KeptSearch(drafts, u"B1"_s, ledger, u"001"_s).damaged.isEmpty())
            faults += u"a damaged entry"_s;
        DocumentForm& form = documentForm(DocumentKind::B1);
        form.open();
        const int lines = form.lines->count();
        const QString number = form.ReservedNo;
        static const QRegularExpression offeredNumber(u"单号 (\\w+)"_s);
        const QString asked = offeredNumber.match(questions.join(QString())).captured(1);
        const bool stored =
            !asked.isEmpty() && LookupValue(gDB, u"select F1 from TB1 where F1="_s + sqlText(asked)) == asked;
        if (form.Edstu == 0 && last[0] == u"kept")
            faults += u"the entry is gone: "_s + told.last();
        else if (last[0] == u"kept" && (number != last[1] || lines < last[2].toInt()))
            faults += u"kept was %1, offered is %2 with %3"_s.arg(told.last(), number).arg(lines);
        if (stored)
            faults += u"a stored document is offered: "_s + asked;
        if (form.Edstu != 0) {
            ++offered;
            form.Menu_cancel();
        }
        headless::endSession();
        if (const QStringList left = QDir(drafts).entryList({u"*.entry"_s}); !left.isEmpty())
            faults += u"left behind: "_s + left.join(u' ');
        if (!faults.isEmpty()) {
            folder_.setAutoRemove(false);
            std::fprintf(stderr, "entry, see %s:\n  %s\n", qPrintable(place.folder),
                         qPrintable(faults.join(u"\n  "_s)));
            return false;
        }
    }
    std::printf("%-9s %4d kills: %d entries offered, %d at a moment with none\n", "entry", kills, offered,
                kills - offered);
    return true;
}

bool Campaign::tellFaults(const Command& command, const Place& place, const QStringList& faults)
{
    folder_.setAutoRemove(false);
    std::fprintf(stderr, "%s, see %s:\n  %s\n", command.name, qPrintable(place.folder),
                 qPrintable(faults.join(u"\n  "_s)));
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() == 4 && arguments[1] == u"--child") {
        try {
            if (arguments[2] == u"entry")
                enterForEver(Place{arguments[3]});
            return runCommandIn(commandCalled(arguments[2]), Place{arguments[3]});
        } catch (const StoreError& error) {
            giveUp(error.description());
        }
    }
    int kills = 200;
    unsigned seed = std::random_device()();
    QString only;
    for (qsizetype i = 1; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == u"--kills")
            kills = arguments[i + 1].toInt();
        else if (arguments[i] == u"--seed")
            seed = arguments[i + 1].toUInt();
        else if (arguments[i] == u"--command")
            only = arguments[i + 1];
        else
            giveUp(u"no option "_s + arguments[i]);
    }
    std::printf("seed %u\n", seed);
    Campaign campaign(seed);
    const int each = only.isEmpty() ? kills / int(std::size(commands) + 1) + 1 : kills;
    for (const Command& command : commands)
        if ((only.isEmpty() || only == QLatin1StringView(command.name)) && !campaign.run(command, each))
            return 1;
    return (only.isEmpty() || only == u"entry") && !campaign.runEntries(each) ? 1 : 0;
}
