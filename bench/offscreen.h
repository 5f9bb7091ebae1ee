#pragma once

#include "platform/base/dialogs.h"
#include "platform/base/text.h"
#include "platform/widgets/style.h"
#include "tests/memory_desktop.h"

#include <QApplication>

#include <benchmark/benchmark.h>

/// The benchmarks of a program that works with forms, none of which is seen.
/// @param dialogs answers the boxes; none for what shows no box
inline int runOffscreen(int argc, char* argv[], std::unique_ptr<DialogHost> dialogs = {})
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qputenv("QT_LOGGING_RULES", "default.warning=false"); // the platform's, about size hints that it has no use for
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    style::apply(application);
    MemoryDesktop::install();
    setDialogHost(std::move(dialogs));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    setDialogHost(nullptr);
    return 0;
}
