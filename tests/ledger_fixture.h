#pragma once

#include "ledger/create.h"
#include "ledger/store.h"
#include "platform/base/files.h"
#include "platform/base/text.h"
#include "shell/session.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A ledger of a test's own, in a folder of its own, and a second session that looks at it behind the program's back.
class LedgerFixture
{
public:
    LedgerFixture()
    {
        if (!QFile::copy(pristine(), path()))
            qFatal("no ledger to test with");
    }

    QString folder() const { return folder_.path(); }
    QString path() const { return folder_.filePath(u"帐本.hcn"_s); }
    Database open() const { return DBEngine::OpenDatabase(path(), ledgerConnect.toString()); }

    /// Statements of the dialect through the second session, which sees what the program has committed.
    void run(const QString& statement) { second().Execute(statement); }
    QString value(const QString& statement) { return LookupValue(second(), statement); }
    /// The fields of the first row, joined by "|"; a Null reads "Null", no row "NoRow".
    QString row(const QString& statement)
    {
        const QStringList found = rows(statement);
        return found.isEmpty() ? u"NoRow"_s : found.first();
    }
    QStringList rows(const QString& statement)
    {
        QStringList all;
        for (Recordset set = second().OpenRecordset(statement); !set.isEOF(); set.MoveNext()) {
            QStringList fields;
            for (qsizetype i = 0; i < set.fieldCount(); ++i)
                fields += set.Fields(i).isNull() ? u"Null"_s : set.Fields(i).text();
            all += fields.join(u'|');
        }
        return all;
    }
    /// The second session: made at first use, and again after `letGo`.
    Database& second()
    {
        if (!second_.isOpen())
            second_ = open();
        return second_;
    }
    /// Closes the second session, for commands that need the ledger alone or replace its file.
    void letGo() { second_ = Database(); }
    QStringList files() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }

    /// The empty ledger that all copies are made of; made once a process.
    static QString pristine()
    {
        static const QTemporaryDir folder;
        static const QString path = [] {
            const QString made = folder.filePath(u"vemaro.dat"_s);
            createLedger(made, readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'), ledgerConnect.toString());
            return made;
        }();
        return path;
    }

private:
    QTemporaryDir folder_;
    Database second_;
};
