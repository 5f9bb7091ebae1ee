// Lets the disk fail at each place of a command, one after the other, and looks at what is left: the ledger opens, is
// sound and holds exactly what it held before the command or what it holds after it; whoever is left with the former
// was told; and the command comes off when it is given again.
//
// Usage: write_faults [--every N] [--command NAME] [--seed N]

#include "admin/SysFuncSet.h"
#include "admin/YearEnd.h"
#include "faulty_disk.h"
#include "headless.h"
#include "ledger/engine.h"
#include "platform/base/dialogs.h"
#include "reports/C181.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <set>

namespace {

enum class Fault {
    Full,  ///< from the n-th write on there is no room
    Once,  ///< the n-th write, sync, truncation or deletion fails
    Gone,  ///< from the n-th of them on nothing answers any more, reading and locking included
    Cut,   ///< the power goes at the n-th of them: nothing that wasn't synced is left
    Chance ///< the same, and any part of what wasn't synced is left
};
constexpr Fault allFaults[] = {Fault::Full, Fault::Once, Fault::Gone, Fault::Cut, Fault::Chance};
constexpr const char* faultNames[] = {"full disk", "one failure", "gone", "power cut", "power cut, parts written"};

// Commands ------------------------------------------------------------------------------------------------------------

void trigger(DocumentKind kind, const char* name)
{
    documentForm(kind).command(QString::fromLatin1(name))->trigger();
}

void enter(DocumentKind kind)
{
    DocumentForm& form = documentForm(kind);
    for (const QString& code : {u"G01"_s, u"G02"_s, u"G03"_s})
        headless::enterLine(form, code, u"7.5"_s);
    headless::typeCell(form, 1, 4, u"3.25"_s);
}

template <DocumentKind kind>
void addDocument()
{
    trigger(kind, "Menu_Add");
    enter(kind);
    if (kind == DocumentKind::C2)
        documentForm(kind).Txt[2]->setText(u"老王"_s);
}

template <DocumentKind kind>
void saveDocument()
{
    trigger(kind, "Menu_save");
}

template <DocumentKind kind>
void addAndSave()
{
    addDocument<kind>();
    saveDocument<kind>();
}

void addForNewConsignee()
{
    addDocument<DocumentKind::D1>();
    documentForm(DocumentKind::D1).CmbLB->setEditText(u"新客户"_s);
}

template <DocumentKind kind>
void openList()
{
    documentForm(kind).listDrafts();
}

void editDocument()
{
    openList<DocumentKind::B1>();
    trigger(DocumentKind::B1, "Menu_edit");
    headless::enterLine(documentForm(DocumentKind::B1), u"G04"_s, u"3"_s);
    documentForm(DocumentKind::B1).Txt[0]->setText(u"M1"_s);
}

template <DocumentKind kind>
void auditDocument()
{
    trigger(kind, "Menu_Ok");
}

void listAudited()
{
    documentForm(DocumentKind::B3).listAll(u" where TB3.F6='管理员'"_s);
}

void unauditDocument()
{
    trigger(DocumentKind::B3, "Menu_noOK");
}

void deleteDocument()
{
    trigger(DocumentKind::B1, "Menu_del");
}

void changeSettings()
{
    auto& form = theForm<SysFuncSet>();
    form.Chk[0]->setChecked(true);
    form.Chk[3]->setChecked(true);
    form.Txt[4]->setText(u"1.5"_s);
    form.Txt[9]->setText(u"3"_s);
    form.Cmd[0]->click();
}

void generateReport()
{
    auto& form = theForm<C181>();
    form.Comb->setCurrentIndex(0);
    form.Cmd->click();
}

void saveReport()
{
    theForm<C181>().CmdDel->click();
}

void closeYear()
{
    auto& form = theForm<YearEnd>();
    form.Chk[1]->setChecked(true);
    form.Cmd[1]->click();
}

void nothing() {}

struct Command
{
    const char* name;
    void (*prepare)();
    void (*run)();
};

const Command commands[] = {
    {"save", addDocument<DocumentKind::B1>, saveDocument<DocumentKind::B1>},
    {"save-edited", editDocument, saveDocument<DocumentKind::B1>},
    {"save-for-new-consignee", addForNewConsignee, saveDocument<DocumentKind::D1>},
    {"save-stock-take", addDocument<DocumentKind::C2>, saveDocument<DocumentKind::C2>},
    {"delete", openList<DocumentKind::B1>, deleteDocument},
    {"audit", openList<DocumentKind::B1>, auditDocument<DocumentKind::B1>},
    {"audit-outbound", openList<DocumentKind::D1>, auditDocument<DocumentKind::D1>},
    {"audit-stock-take", openList<DocumentKind::C2>, auditDocument<DocumentKind::C2>},
    {"un-audit", listAudited, unauditDocument},
    {"settings", nothing, changeSettings},
    {"generate-report", nothing, generateReport},
    {"save-report", generateReport, saveReport},
    {"year-end", nothing, closeYear},
};

// What is told and what is left ---------------------------------------------------------------------------------------

/// Says yes, but to going on without a safety copy, and notes all that is told.
class Witness : public DialogHost
{
public:
    QStringList boxes; ///< questions with a mark before them

    Answer show(const Box& box) override
    {
        boxes += (box.buttons == BoxButtons::YesNo ? u"?"_s : QString()) + box.text;
        if (box.text.contains(u"没有安全备份"_s))
            return Answer::No;
        return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}
};

/// All rows of all tables; a line that says so when it isn't sound.
QString contentOf(const QString& path)
{
    try {
        Database ledger = headless::openLedger(path);
        LedgerConnection& engine = ledger.connection();
        QStringList lines{u"integrity "_s + engine.selectOwn(u"pragma integrity_check"_s).value(0, 0).text()};
        const RowArena tables = engine.selectOwn(u"select name from sqlite_master where type = 'table' order by 1"_s);
        for (qsizetype i = 0; i < tables.rowCount(); ++i) {
            const QString name = tables.value(i, 0).text();
            const RowArena rows = engine.selectOwn(u"select * from ["_s + name + u']');
            QStringList found;
            for (qsizetype row = 0; row < rows.rowCount(); ++row) {
                QStringList cells{name};
                for (qsizetype column = 0; column < rows.columns.size(); ++column) {
                    const Value value = rows.value(row, column);
                    cells += value.isNull()     ? u"Null"_s
                             : value.isNumber() ? QString::number(value.number(), 'g', 17)
                                                : u'\'' + value.text();
                }
                found += cells.join(u'|');
            }
            found.sort(); // rows that were written anew stand elsewhere
            lines += found;
        }
        return lines.join(u'\n');
    } catch (const StoreError& error) {
        return u"doesn't open: "_s + error.description();
    }
}

/// The first lines that only one of two contents has.
QString difference(const QString& a, const QString& b)
{
    const QStringList left = a.split(u'\n');
    const QStringList right = b.split(u'\n');
    QStringList result;
    for (const QString& line : left)
        if (!right.contains(line))
            result += u"- "_s + line;
    for (const QString& line : right)
        if (!left.contains(line))
            result += u"+ "_s + line;
    return result.mid(0, 8).join(u"\n      "_s);
}

// The tries -----------------------------------------------------------------------------------------------------------

class Campaign
{
public:
    Campaign(int every, unsigned seed)
        : every_(every)
        , chance_(seed)
    {
        auto witness = std::make_unique<Witness>();
        witness_ = witness.get();
        setDialogHost(std::move(witness));
        makeLedger();
    }
    ~Campaign() { setDialogHost(nullptr); }

    /// False when something was lost.
    bool run(const Command& command);

private:
    void makeLedger();
    void begin(const Command& command);
    bool run(const Command& command, Fault fault);
    /// What is wrong after the command met that fault; "" when all is well. `met` tells whether there was one.
    QString attempt(const Command& command, Fault fault, int place, bool& met);

    QTemporaryDir folder_;
    const QString model_ = folder_.filePath(u"model.hcn"_s);
    const QString ledger_ = folder_.filePath(u"帐本/帐本.hcn"_s);
    Witness* witness_;
    int every_;
    std::mt19937 chance_;
    QString before_, after_;
    std::set<QString> usualBoxes_;
    QString lastBox_; ///< of a command that came off
};

/// A small ledger that was worked in, with drafts of all kinds.
void Campaign::makeLedger()
{
    using enum DocumentKind;
    createLedger(model_, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
    headless::beginSession(model_);
    for (int i = 1; i <= 60; ++i)
        gDB.Execute(
            u"insert into TA4 (F1,F2,F3,F4,F5,F7,F71,F8,V3,V4) values ('G%1','货品','001','个','M',2,3,%2,%2,2)"_s.arg(
                QString::number(i).rightJustified(2, u'0'), QString::number(i)));
    addAndSave<B3>();
    trigger(B3, "Menu_Ok");
    addAndSave<B1>();
    trigger(B1, "Menu_Ok");
    addAndSave<B1>();
    addAndSave<D1>();
    addAndSave<C2>();
    headless::endSession();
}

void Campaign::begin(const Command& command)
{
    QDir(QFileInfo(ledger_).path()).removeRecursively();
    QDir().mkpath(QFileInfo(ledger_).path());
    QFile::copy(model_, ledger_);
    headless::beginSession(ledger_);
    command.prepare();
    witness_->boxes.clear();
}

bool Campaign::run(const Command& command)
{
    begin(command);
    headless::endSession();
    before_ = contentOf(ledger_);
    begin(command);
    command.run();
    headless::endSession();
    after_ = contentOf(ledger_);
    usualBoxes_ = {witness_->boxes.begin(), witness_->boxes.end()};
    lastBox_ = witness_->boxes.value(witness_->boxes.size() - 1);
    if (before_ == after_ || !after_.startsWith(u"integrity ok")) {
        std::fprintf(stderr, "%s doesn't come off undisturbed: %s\n%s\n", command.name, qPrintable(lastBox_),
                     qPrintable(difference(before_, after_)));
        return false;
    }
    bool well = true;
    for (const Fault fault : allFaults)
        well &= run(command, fault);
    return well;
}

bool Campaign::run(const Command& command, Fault fault)
{
    const int start = every_ == 1 ? 0 : int(chance_() % unsigned(every_));
    int tries = 0;
    for (int place = start;; place += every_, ++tries) {
        bool met = false;
        const QString trouble = attempt(command, fault, place, met);
        if (!trouble.isEmpty()) {
            std::fprintf(stderr, "%s, %s at %d: %s\n", command.name, faultNames[int(fault)], place,
                         qPrintable(trouble));
            return false;
        }
        if (!met)
            break;
    }
    std::printf("%-24s %-26s %4d places\n", command.name, faultNames[int(fault)], tries);
    std::fflush(stdout);
    return true;
}

QString Campaign::attempt(const Command& command, Fault fault, int place, bool& met)
{
    const bool cut = fault == Fault::Cut || fault == Fault::Chance;
    QStringList boxes;
    QString trouble;
    {
        FaultyDisk disk;
        begin(command);
        const int writes = disk.writes;
        const int operations = disk.operations;
        if (fault == Fault::Full)
            disk.failFrom = writes + place;
        else if (fault == Fault::Once)
            disk.failOnce = operations + place;
        else if (fault == Fault::Gone)
            disk.goneFrom = operations + place;
        else
            disk.cutPowerAt(operations + place);
        command.run();
        boxes = witness_->boxes;
        met = fault == Fault::Gone   ? disk.missed
              : fault == Fault::Full ? disk.writes > writes + place
                                     : disk.operations > operations + place;
        if (!cut)
            disk.heal();
        else if (!met)
            disk.cutPower(); // right behind the command
        headless::endSession();
        if (cut)
            disk.losePower(fault == Fault::Chance ? &chance_ : nullptr);
    }
    const QString left = contentOf(ledger_);
    const bool told =
        std::any_of(boxes.begin(), boxes.end(), [this](const QString& box) { return !usualBoxes_.contains(box); });
    const bool praised = !told && !lastBox_.startsWith(u'?') && !boxes.isEmpty() && boxes.last() == lastBox_;
    if (left != before_ && left != after_)
        trouble = u"what is left is neither the state before nor the one after:\n      "_s + difference(after_, left);
    else if (left == before_ && praised)
        trouble = u"the success was told, but nothing was kept"_s;
    else if (left == before_ && !met)
        trouble = u"nothing failed, but nothing was kept"_s;
    else if (left == before_ && !cut && !told)
        trouble = u"nothing was kept, and nobody was told"_s;
    else if (left == after_ && !cut && told)
        trouble = u"a failure was told, but all was kept: "_s + boxes.join(u" / "_s);
    if (!trouble.isEmpty() || cut || !met || left == after_)
        return trouble;

    // Once more in the same session: forms and session must not believe in what was undone.
    FaultyDisk disk;
    begin(command);
    (fault == Fault::Full   ? disk.failFrom
     : fault == Fault::Gone ? disk.goneFrom
                            : disk.failOnce) = (fault == Fault::Full ? disk.writes : disk.operations) + place;
    command.run();
    disk.heal();
    command.run();
    headless::endSession();
    const QString again = contentOf(ledger_);
    return again == after_ ? QString()
                           : u"given again it doesn't come off: "_s + witness_->boxes.join(u" / "_s) + u"\n      "_s +
                                 difference(after_, again);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    int every = 1;
    unsigned seed = std::random_device()();
    QString only;
    const QStringList arguments = QApplication::arguments();
    for (qsizetype i = 1; i < arguments.size(); i += 2) {
        const QString value = arguments.value(i + 1);
        if (arguments[i] == u"--every" && value.toInt() > 0) {
            every = value.toInt();
        } else if (arguments[i] == u"--seed" && !value.isEmpty()) {
            seed = value.toUInt();
        } else if (arguments[i] == u"--command" && !value.isEmpty()) {
            only = value;
        } else {
            std::fprintf(stderr, "usage: write_faults [--every N] [--command NAME] [--seed N]\n");
            return 2;
        }
    }
    std::printf("seed %u\n", seed);
    setDesktopHost(std::make_unique<headless::Desktop>());
    Campaign campaign(every, seed);
    bool well = true;
    for (const Command& command : commands)
        if (only.isEmpty() || only == QLatin1StringView(command.name))
            well &= campaign.run(command);
    return well ? 0 : 1;
}
