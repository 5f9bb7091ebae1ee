#include "platform/base/status.h"

namespace {
StatusHost current;
}

void setStatusHost(StatusHost host)
{
    current = std::move(host);
}

void setStatusPanel(int panel, const QString& text)
{
    if (current.write)
        current.write(panel, text);
}

QString statusPanel(int panel)
{
    return current.read ? current.read(panel) : QString();
}
