/// Makes the template of new ledgers: make_template <schema.sql> <vemaro.dat>. Runs while building.

#include "ledger/create.h"
#include "platform/base/files.h"
#include "shell/session.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3) {
        std::fputs("make_template <schema> <template>\n", stderr);
        return 2;
    }
    const auto schema = readLines(arguments[1]);
    if (!schema) {
        std::fprintf(stderr, "%s: can't be read\n", argv[1]);
        return 1;
    }
    // An older one of the build's own; beside the program stands a copy of it.
    QFile::remove(arguments[2]);
    try {
        createLedger(arguments[2], schema->join(u'\n'), ledgerConnect.toString());
    } catch (const StoreError& error) {
        std::fprintf(stderr, "%s: %s\n", argv[2], error.what());
        return 1;
    }
    return 0;
}
