#pragma once

#include "documents/document_form.h"
#include "documents/line_entry.h"
#include "ledger/Module1.h"
#include "ledger/create.h"
#include "platform/base/clock.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/grid.h"
#include "shell/session.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

/// A session without windows, login and desktop, for the tools that work the real forms in great numbers.
namespace headless {

/// Keeps no settings and opens nothing. Without a folder of the user's, nothing is kept there either.
class Desktop : public DesktopHost
{
public:
    explicit Desktop(QString userFolder = {})
        : userFolder_(std::move(userFolder))
    {}
    QString userFolder(const QString&) override { return userFolder_; }
    QString setting(const QString&, const QString&, const QString&, const QString& preset) override { return preset; }
    void saveSetting(const QString&, const QString&, const QString&, const QString&) override {}
    void open(const QString&) override {}
    void run(const QString&) override {}
    void registerClass(const QString&, const QString&, const QString&) override {}
    void endProcess() override {}

private:
    QString userFolder_;
};

/// An operator who says yes. A box that tells a failure ends the program.
class Agreeing : public DialogHost
{
public:
    Answer show(const Box& box) override
    {
        if (box.kind == BoxKind::Error)
            qFatal("%s", qPrintable(box.text));
        return box.buttons == BoxButtons::YesNo ? Answer::Yes : Answer::Ok;
    }
    std::optional<QString> input(const InputRequest&) override { return {}; }
    std::optional<QString> chooseFile(const FileRequest&) override { return {}; }
    void doEvents() override {}
};

inline Database openLedger(const QString& path)
{
    return DBEngine::OpenDatabase(path, ledgerConnect.toString());
}

/// "001" at work in that ledger, on the morning of 18 November 2004.
inline void beginSession(const QString& path)
{
    setClock(QDateTime(QDate(2004, 11, 18), QTime(9, 5, 3)));
    resetSession();
    gDB = openLedger(path);
    gLedgerFile = path;
    gAppPath = withSeparator(QFileInfo(path).path());
    gLedgerName = u"五金"_s;
    gOperId = u"001"_s;
    gOperName = u"管理员"_s;
    gRights.set();
    gCanSeeCost = true;
    LoadSettings();
    LoadYearStart();
}

/// What the message loop does between two commands: posted events are delivered, closed forms go. Without it the events
/// pile up, and each widget that goes looks through all of them for its own.
inline void turnLoop()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Closes all forms, entries that are open included, and the ledger.
inline void endSession()
{
    for (Form* form : QList<Form*>(Form::all())) {
        form->setProperty("Edstu", 0);
        form->Unload();
    }
    turnLoop();
    resetSession();
}

/// A code and a quantity in the panel above the lines, entered with "增加货品".
inline void enterLine(DocumentForm& form, const QString& code, const QString& quantity)
{
    form.lines->TxtHPBM->setText(code);
    form.lines->TxtSL->setText(quantity);
    form.lines->CmdEnter->click();
}

/// Types over a cell of the lines and leaves it. One that doesn't open stays as it is, and so does one whose text is
/// refused.
inline void typeCell(DocumentForm& form, int row, int column, const QString& text)
{
    Grid& grid = *form.lines->GdMx;
    grid.edit(row, column);
    if (!grid.editing())
        return;
    grid.TxtEnter->setText(text);
    if (!grid.endEdit())
        grid.cancelEdit();
}

} // namespace headless
