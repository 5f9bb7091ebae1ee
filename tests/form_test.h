#pragma once

#include "ledger_fixture.h"
#include "memory_desktop.h"
#include "platform/base/status.h"
#include "scripted_dialogs.h"
#include "session_fixture.h"

#include <QApplication>

#include <memory>

/// The base of the tests that work the real forms: each of their functions has a ledger of its own with "001" at work
/// in it, an operator's answers, and a desktop in memory.
class FormTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<LedgerFixture> ledger_;
    std::unique_ptr<ScriptedDialogs> boxes_;
    QString operator_ = u"管理员"_s;

    /// What a test puts into its ledger before the session begins.
    virtual void furnish() {}
    /// What it looks at when its forms are still open.
    virtual void inspect() {}

private slots:
    void init()
    {
        QApplication::setQuitOnLastWindowClosed(false);
        MemoryDesktop::install();
        ledger_ = std::make_unique<LedgerFixture>();
        boxes_ = std::make_unique<ScriptedDialogs>();
        furnish();
        beginSession(*ledger_, operator_);
    }
    void cleanup()
    {
        inspect();
        endSession();
        setStatusHost({});
        boxes_.reset();
        ledger_.reset();
    }
};
