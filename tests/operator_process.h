#pragma once

#include "admin/auto_backup.h"
#include "admin/sysDBbak.h"
#include "ledger/alone.h"
#include "ledger/engine.h"
#include "memory_desktop.h"
#include "platform/base/dialogs.h"
#include "reports/C1.h"
#include "reports/C181.h"
#include "reports/Prnt.h"
#include "tools/faulty_disk.h"
#include "tools/headless.h"

#include <QProcess>
#include <QPushButton>
#include <QTimer>

#include <cstdio>
#include <iostream>

/// Says yes to everything and notes what was told.
class Clerk : public DialogHost
{
public:
    QStringList boxes;
    QString file; ///< the answer to file dialogs; "" cancels

    /// Sets one as the host; it lives until the next one is set.
    static Clerk& install()
    {
        auto host = std::make_unique<Clerk>();
        Clerk& clerk = *host;
        setDialogHost(std::move(host));
        return clerk;
    }
    Answer show(const Box& box) override
    {
        boxes += box.text;
        return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override
    {
        return file.isEmpty() ? std::nullopt : std::optional(file);
    }
    std::optional<PrintJob> print(const PrintRequest&) override { return {}; }
    void doEvents() override {}
};

inline void trigger(DocumentKind kind, const char* name)
{
    documentForm(kind).command(QString::fromLatin1(name))->trigger();
}

/// Prints the stock list and closes the preview, if one comes.
inline void printStock()
{
    QTimer::singleShot(0, qApp, [] {
        if (auto* preview = static_cast<Prnt*>(Form::loaded(u"Prnt"_s)))
            preview->Menu_Rtn();
    });
    C1& list = C1::theWindow();
    list.command(u"Menu_print"_s)->trigger();
    QCoreApplication::processEvents(); // the closing of a preview that didn't come
}

inline void generateReport()
{
    auto& form = theForm<C181>();
    form.Comb->setCurrentIndex(0);
    form.Cmd->click();
}

/// An operator as a process of its own, with the real forms, told what to do a line at a time. Each line is answered by
/// one: what was asked for, then the boxes that were shown.
///
///     Operator other(ledger, u"李建国"_s);
///     other.ask(u"fill B1 3 A1 5"_s);
class Operator
{
public:
    /// @param patience how long it waits for a lock, in milliseconds
    Operator(const QString& ledger, const QString& name, const QString& programFolder, int patience = 5000)
    {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(QCoreApplication::applicationFilePath(),
                       {u"--operator"_s, ledger, name, programFolder, QString::number(patience)});
        answer();
    }
    ~Operator()
    {
        process_.closeWriteChannel(); // ends it
        if (!process_.waitForFinished(patience_))
            kill();
    }
    Operator(const Operator&) = delete;
    Operator& operator=(const Operator&) = delete;

    void tell(const QString& line)
    {
        process_.write(line.toUtf8() + '\n');
        process_.waitForBytesWritten();
    }
    QStringList answer()
    {
        while (!process_.canReadLine())
            if (!process_.waitForReadyRead(patience_))
                return {u"no answer"_s};
        return QString::fromUtf8(process_.readLine()).chopped(1).split(u'\t');
    }
    QStringList ask(const QString& line)
    {
        tell(line);
        return answer();
    }
    void kill()
    {
        process_.kill();
        process_.waitForFinished(patience_);
    }
    bool isRunning() const { return process_.state() == QProcess::Running; }

private:
    static constexpr int patience_ = 120'000;
    QProcess process_;
};

/// The other end of `Operator`.
class OperatorAtWork
{
public:
    explicit OperatorAtWork(const QStringList& arguments)
        : ledger_(arguments.value(0))
    {
        setBusyTimeout(arguments.value(3).toInt());
        MemoryDesktop::install();
        headless::beginSession(ledger_);
        gOperName = arguments.value(1);
        gAppPath = withSeparator(arguments.value(2));
    }
    ~OperatorAtWork()
    {
        sqlite3_finalize(reading_);
        headless::endSession();
        setDialogHost(nullptr);
    }

    int run()
    {
        answer(u"ready"_s);
        for (std::string line; std::getline(std::cin, line);) {
            clerk_.boxes.clear();
            QString result;
            try {
                result = obey(QString::fromStdString(line).split(u' '));
            } catch (const StoreError& error) {
                clerk_.boxes += error.description();
            }
            answer(result);
        }
        return 0;
    }

private:
    void answer(const QString& result) const
    {
        QString line = (QStringList{result} + clerk_.boxes).join(u'\t');
        line.replace(u'\n', u' ');
        std::puts(line.toUtf8().constData());
        std::fflush(stdout);
    }

    QString obey(const QStringList& words)
    {
        const QString& command = words[0];
        const DocumentKind kind = words.value(1) == u"D1" ? DocumentKind::D1 : DocumentKind::B1;
        if (command == u"fill") { // KIND COUNT CODE QUANTITY: so many documents, entered and saved
            for (int i = 0; i < words[2].toInt(); ++i) {
                enter(kind, words[3], words[4]);
                trigger(kind, "Menu_save");
            }
        } else if (command == u"enter") { // KIND CODE QUANTITY
            enter(kind, words[2], words[3]);
        } else if (command == u"save") { // KIND
            trigger(kind, "Menu_save");
            return QString::number(documentForm(kind).Edstu);
        } else if (command == u"list") { // KIND: F5
            documentForm(kind).recordsChanged();
        } else if (command == u"audit") { // KIND WHAT: the documents on the list with that number or clerk
            return QString::number(audit(documentForm(kind), words[2]));
        } else if (command == u"generate") {
            generateReport();
        } else if (command == u"keep") {
            theForm<C181>().CmdDel->click();
        } else if (command == u"print") {
            printStock();
        } else if (command == u"backup") { // FILE
            clerk_.file = words[1];
            theForm<sysDBbak>().Command3->click();
        } else if (command == u"exit") {
            AutoBackup();
        } else if (command == u"alone") {
            const LedgerAlone alone(ledger_);
        } else if (command == u"hold") { // write, commit, read: a lock of that kind
            if (words[1] == u"read") {
                sqlite3_prepare_v2(handle(), "select F1 from TE1", -1, &reading_, nullptr);
                return sqlite3_step(reading_) == SQLITE_ROW ? u"held"_s : u"refused"_s;
            }
            return sql(words[1] == u"write" ? "begin immediate" : "begin exclusive") ? u"held"_s : u"refused"_s;
        } else if (command == u"release") {
            sqlite3_finalize(std::exchange(reading_, nullptr));
            sql("rollback");
        } else if (command == u"halt") { // N COMMAND: stands still before its n-th operation on the disk
            const int place = disk_.operations + words[1].toInt();
            disk_.before = [place](int operation) {
                if (operation < place)
                    return;
                std::puts("halted");
                std::fflush(stdout);
                std::getchar(); // until this process is killed
            };
            const QString result = obey(words.mid(2));
            disk_.before = {};
            return u"passed "_s + result;
        }
        return {};
    }

    static void enter(DocumentKind kind, const QString& code, const QString& quantity)
    {
        DocumentForm& form = documentForm(kind);
        if (form.Edstu == 0)
            trigger(kind, "Menu_Add");
        headless::enterLine(form, code, quantity);
    }

    static int audit(DocumentForm& form, const QString& what)
    {
        int count = 0;
        form.TabS->setCurrentIndex(0);
        for (int row = 1; row < form.GD->Rows();) {
            const int rows = form.GD->Rows();
            const QString number = form.GD->TextMatrix(row, 0);
            if (number != what && form.GD->TextMatrix(row, 3) != what) {
                ++row;
                continue;
            }
            form.GD->select(row);
            form.command(u"Menu_Ok"_s)->trigger();
            if (form.GD->Rows() == rows && form.GD->TextMatrix(row, 0) == number)
                break; // not done, as the boxes tell
            ++count;
        }
        return count;
    }

    static sqlite3* handle() { return gDB.connection().handle(); }
    static bool sql(const char* text) { return sqlite3_exec(handle(), text, nullptr, nullptr, nullptr) == SQLITE_OK; }

    FaultyDisk disk_;
    Clerk& clerk_ = Clerk::install();
    QString ledger_;
    sqlite3_stmt* reading_ = nullptr;
};
