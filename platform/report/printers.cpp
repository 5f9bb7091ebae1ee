#include "platform/report/printers.h"

#include <QPrinter>
#include <QPrinterInfo>

namespace {

std::unique_ptr<PrinterHost> printerHost;

class SystemPrinters : public PrinterHost
{
public:
    QStringList names() override { return QPrinterInfo::availablePrinterNames(); }
    QString standard() override { return QPrinterInfo::defaultPrinterName(); }
    QSizeF paperOf(const QString& printer) override
    {
        const auto info = QPrinterInfo::printerInfo(printer);
        return info.isNull() ? QSizeF() : info.defaultPageSize().size(QPageSize::Millimeter);
    }
    std::unique_ptr<QPagedPaintDevice> open(const PrintJob& job, const QString& title) override
    {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        if (!job.file.isEmpty()) {
            printer->setOutputFormat(QPrinter::PdfFormat);
            printer->setOutputFileName(job.file);
        } else {
            const QString name = names().contains(job.printer) ? job.printer : standard();
            if (name.isEmpty())
                return nullptr;
            printer->setPrinterName(name);
            printer->setCopyCount(job.copies);
            printer->setCollateCopies(job.collate);
        }
        printer->setDocName(title);
        printer->setFullPage(true); // the layouts have margins of their own
        return printer;
    }
};

} // namespace

void setPrinterHost(std::unique_ptr<PrinterHost> host)
{
    printerHost = std::move(host);
}

PrinterHost& printers()
{
    if (!printerHost)
        printerHost = std::make_unique<SystemPrinters>();
    return *printerHost;
}
