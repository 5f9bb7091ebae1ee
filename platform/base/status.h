#pragma once

#include <QString>

#include <functional>

/// The status panels of the main window, for procedures that know no window. Panels count from 1.

struct StatusHost
{
    std::function<void(int, const QString&)> write;
    std::function<QString(int)> read;
};

void setStatusHost(StatusHost host);
void setStatusPanel(int panel, const QString& text);
QString statusPanel(int panel);
