#pragma once

#include "platform/base/dialogs.h"

#include <QStringList>

#include <memory>

class QPagedPaintDevice;

/// The printers of the machine. One replaceable host stands behind them: the system's in the program, a test's own.
class PrinterHost
{
public:
    virtual ~PrinterHost() = default;
    virtual QStringList names() = 0;
    /// The system's default printer, "" for none.
    virtual QString standard() = 0;
    /// What lies in that printer, in millimetres; empty if it is unknown.
    virtual QSizeF paperOf(const QString& printer) = 0;
    /// A device that a job can be drawn on, or null.
    virtual std::unique_ptr<QPagedPaintDevice> open(const PrintJob& job, const QString& title) = 0;
};

/// Null brings the system's printers back.
void setPrinterHost(std::unique_ptr<PrinterHost> host);
PrinterHost& printers();
