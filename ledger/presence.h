#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/// A session that has a ledger open, as its mark tells.
struct PresentSession
{
    QString host;
    QString operatorName;
    QString since; ///< moment text
    bool ours = false;
};

/// Tells the other sessions of a ledger who is here: a small file beside the ledger, touched every minute. It is for
/// people to read and locks nobody out; the mark of a session that died stops counting after a few minutes.
class PresenceMark
{
public:
    static constexpr int secondsBetweenTouches = 60;
    static constexpr int secondsToLapse = 300;

    PresenceMark() = default;
    ~PresenceMark();
    PresenceMark(const PresenceMark&) = delete;
    PresenceMark& operator=(const PresenceMark&) = delete;

    /// This session now works in that ledger under that name. The mark in another ledger goes.
    void place(const QString& ledger, const QString& operatorName);
    /// Keeps the mark from lapsing. A folder that can't be written just now is tried again the next time.
    void touch() const;
    void remove();
    /// All sessions of the ledger, ours among them, by host and operator. Marks long out of use are removed.
    QList<PresentSession> sessions() const;

private:
    QString ledger_;
    QString path_;
    QString operatorName_;
    QString since_;
};
