// Makes a ledger with a year of audited documents in it, to measure with and to look at large lists.
// Usage: make_books OUTPUT.hcn [--goods N] [--documents N] [--lines N] [--stock-takes N]

#include "ledger/create.h"
#include "platform/base/files.h"
#include "platform/base/text.h"
#include "shell/session.h"
#include "tools/books.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    BooksSize size;
    const std::pair<QString, int*> sizes[] = {{u"goods"_s, &size.goods},
                                              {u"documents"_s, &size.documents},
                                              {u"lines"_s, &size.lines},
                                              {u"stock-takes"_s, &size.stockTakes}};
    QCommandLineParser parser;
    parser.addPositionalArgument(u"output"_s, u"The ledger to make."_s);
    for (const auto& [name, number] : sizes)
        parser.addOption({name, u"How many there are."_s, u"number"_s, QString::number(*number)});
    parser.addHelpOption();
    parser.process(application);
    for (const auto& [name, number] : sizes)
        *number = parser.value(name).toInt();
    const QStringList outputs = parser.positionalArguments();
    if (outputs.size() != 1 || size.goods < 1 || size.documents < 1 || size.lines < 1 || size.stockTakes < 0)
        parser.showHelp(2);

    try {
        createLedger(outputs.first(), readLines(QStringLiteral(LEDGER_SCHEMA)).value().join(u'\n'),
                     ledgerConnect.toString());
        Database ledger = DBEngine::OpenDatabase(outputs.first(), ledgerConnect.toString());
        writeBooks(ledger, size);
    } catch (const StoreError& error) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(outputs.first()), error.what());
        return 1;
    }
    return 0;
}
