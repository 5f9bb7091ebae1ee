#pragma once

#include <QString>

#include <exception>
#include <memory>

/// The one exception of the system: a failure of the store. Thrown by the store only; caught where a form runs a
/// command, and besides that only where a rule of the business says so.
class StoreError : public std::exception
{
public:
    enum class Kind {
        Missing,   ///< no such file, or no ledger open
        NotLedger, ///< garbage, another password, no known table
        Statement, ///< the text of a statement: it can't be parsed, or names what does not exist
        Value,     ///< a value that a statement can't work with, such as a text that is no date
        Locked,    ///< another session holds the ledger
        Disk,      ///< full, read only or failing
        Damaged,
        Other
    };

    struct Details
    {
        Kind kind = Kind::Other;
        QString what = {};          ///< in Chinese: what happened and what to do
        QString engineMessage = {}; ///< the engine's own words
        QString statement = {};     ///< the statement as the form built it
        qsizetype offset = -1;      ///< where in it, in characters; -1 unknown
        QString aftermath = {};     ///< set by a write run that had to be undone whole
    };

    explicit StoreError(Details details);

    Kind kind() const;
    const Details& details() const;
    /// The text for an error box.
    QString description() const;
    /// `description` in UTF-8.
    const char* what() const noexcept override;
    /// A write run adds, after the fact, that nothing of the command was kept.
    void setAftermath(const QString& text) const;

private:
    struct Shared;
    std::shared_ptr<Shared> shared_; // one for all copies, so that a run can still add to an error that is in flight
};
