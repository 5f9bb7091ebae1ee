#pragma once

#include "platform/base/lock_file.h"
#include "platform/base/text.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// What is being typed into a document, kept in a private file of the user outside the ledger, for the case that the
/// process dies before it is saved.

struct KeptEntry
{
    QString form;
    QString ledger;   ///< canonical path
    QString identity; ///< `ledgerIdentity`
    QString account;  ///< of the operator, and their name
    QString clerk;
    bool costs = false;   ///< whether the operator was shown cost prices
    bool editing = false; ///< a stored document, not a new one
    QString reserved;     ///< the number held for the entry, or that of the stored document
    QString original;     ///< `editing`: the digest of the stored document when its editing began
    QString savedNumber;  ///< set when a save begins: the number, and the digest that the stored document will have
    QString saved;
    QString number; ///< from here on as the form shows it
    QString date;
    QString partner;
    QString remark;
    QString code; ///< of the panel above the lines, where it isn't that of a line
    QString quantity;
    QString cell; ///< being typed into a cell: its text, the column, and the code of the line
    QString cellColumn;
    QString cellCode;
    QStringList newGoods; ///< being typed into the panel for new goods
    QList<QStringList> lines;
    QString moment; ///< of the last change; not compared

    QByteArray content() const; ///< all but the moment
    QByteArray file() const;
    /// Nothing when the bytes aren't what `file` gave.
    static std::optional<KeptEntry> read(const QByteArray& bytes);
};

/// What a document holds in short, whatever the order of its lines.
QString documentDigest(const QStringList& header, QStringList lines);

/// The file of one entry. Its lock is held from the first write on for as long as the entry is under way: whose lock is
/// free belongs to a process that has died, whatever has its process id now.
class KeptFile
{
public:
    KeptFile() = default;
    /// A name for a new file; nothing is written yet.
    KeptFile(const QString& folder, const QString& form, const QString& ledger);
    KeptFile(KeptFile&&) noexcept = default;
    KeptFile& operator=(KeptFile&&) noexcept = default;

    /// Writes the entry if it is another than before.
    /// @return false when it isn't on the disk
    bool write(KeptEntry entry);
    /// Ends it: the file goes, and the lock after it.
    void remove();

private:
    friend struct KeptSearch;
    QString path_;
    std::unique_ptr<LockFile> lock_;
    QByteArray written_;
};

/// The entries of that form and ledger that processes of this machine left behind, oldest first; their locks are held.
/// Those of other machines on the same home folder are not touched, since not all network folders lock across machines.
struct KeptSearch
{
    /// @param account whose entries are wanted; others' stay
    KeptSearch(const QString& folder, const QString& form, const QString& ledger, const QString& account);

    struct Found
    {
        KeptEntry entry;
        KeptFile file;
    };
    std::vector<Found> found;
    QStringList damaged; ///< put aside under these paths
};
