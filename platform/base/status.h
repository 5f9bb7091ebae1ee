#pragma once

#include <QElapsedTimer>
#include <QString>

#include <functional>

/// The status panels of the main window, for procedures that know no window. Panels count from 1.

struct StatusHost
{
    std::function<void(int, const QString&)> write;
    std::function<QString(int)> read;
    /// Long work begins or ends: the busy pointer.
    std::function<void(bool)> busy = {};
    /// How far it is, drawn at once; a total of 0 takes the bar away.
    std::function<void(qint64 done, qint64 total)> progress = {};
    /// Beside the panels: what the rows come to that are selected in a list; "" for nothing.
    std::function<void(const QString&)> selection = {};
};

/// The last panel: the ledger's name, what a form tells of its rows, or that the program is busy.
inline constexpr int busyPanel = 4;

void setStatusHost(StatusHost host);
void setStatusPanel(int panel, const QString& text);
QString statusPanel(int panel);
void setStatusSelection(const QString& text);

/// Shows that long work goes on, for the time of its life: a text in the last panel, the busy pointer and a bar. It is
/// drawn without a turn of the message loop, so that no click gets in between. One inside another shows nothing.
///
///     BusyProgress progress(u"正在清除历史单据……"_s, numbers.size());
///     for (const QString& number : numbers) {
///         remove(number);
///         progress.advance();
///     }
class BusyProgress
{
public:
    /// @param text  "" leaves the panel as it is
    /// @param total steps to come; 0 when nobody knows, which shows no bar
    explicit BusyProgress(const QString& text, qint64 total = 0);
    /// Takes pointer and bar away, and puts back what the panel said before unless somebody has written there since.
    ~BusyProgress();
    BusyProgress(const BusyProgress&) = delete;
    BusyProgress& operator=(const BusyProgress&) = delete;

    /// Some steps are done; cheap enough for each row of a loop.
    void advance(qint64 steps = 1);

private:
    bool outermost_;
    QString text_;
    QString before_;
    qint64 total_;
    qint64 done_ = 0;
    QElapsedTimer sinceDrawn_;
};
