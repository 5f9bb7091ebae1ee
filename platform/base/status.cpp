#include "platform/base/status.h"

namespace {
StatusHost current;
int busyDepth = 0;
} // namespace

void setStatusHost(StatusHost host)
{
    current = std::move(host);
}

void setStatusPanel(int panel, const QString& text)
{
    if (current.write)
        current.write(panel, text);
}

void setStatusSelection(const QString& text)
{
    if (current.selection)
        current.selection(text);
}

QString statusPanel(int panel)
{
    return current.read ? current.read(panel) : QString();
}

BusyProgress::BusyProgress(const QString& text, qint64 total)
    : outermost_(busyDepth++ == 0)
    , text_(text)
    , total_(total)
{
    if (!outermost_)
        return;
    if (!text_.isEmpty()) {
        before_ = statusPanel(busyPanel);
        setStatusPanel(busyPanel, text_);
    }
    if (current.busy)
        current.busy(true);
    sinceDrawn_.start();
}

BusyProgress::~BusyProgress()
{
    --busyDepth;
    if (!outermost_)
        return;
    if (current.progress)
        current.progress(0, 0);
    if (current.busy)
        current.busy(false);
    if (!text_.isEmpty() && statusPanel(busyPanel) == text_)
        setStatusPanel(busyPanel, before_);
}

void BusyProgress::advance(qint64 steps)
{
    constexpr qint64 drawnEvery = 50; // milliseconds: twenty pictures a second are enough, and cost nothing
    done_ += steps;
    if (!outermost_ || total_ <= 0 || !current.progress || sinceDrawn_.elapsed() < drawnEvery)
        return;
    sinceDrawn_.restart();
    current.progress(qMin(done_, total_), total_);
}
