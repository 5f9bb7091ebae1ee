#include "documents/kept_entry.h"

#include "platform/base/clock.h"
#include "platform/base/durable.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSysInfo>
#include <QUuid>

#include <algorithm>

namespace {

const QByteArray entryMark = "hcn-entry 1 ";
const QString entrySuffix = u".entry"_s;
const QString lockSuffix = u"-lock"_s;

struct EntryText
{
    const char* name;
    QString KeptEntry::*text;
};
constexpr EntryText entryTexts[] = {
    {"form", &KeptEntry::form},
    {"ledger", &KeptEntry::ledger},
    {"identity", &KeptEntry::identity},
    {"account", &KeptEntry::account},
    {"clerk", &KeptEntry::clerk},
    {"reserved", &KeptEntry::reserved},
    {"original", &KeptEntry::original},
    {"savedNumber", &KeptEntry::savedNumber},
    {"saved", &KeptEntry::saved},
    {"number", &KeptEntry::number},
    {"date", &KeptEntry::date},
    {"partner", &KeptEntry::partner},
    {"remark", &KeptEntry::remark},
    {"code", &KeptEntry::code},
    {"quantity", &KeptEntry::quantity},
    {"cell", &KeptEntry::cell},
    {"cellColumn", &KeptEntry::cellColumn},
    {"cellCode", &KeptEntry::cellCode},
};

QJsonObject entryObject(const KeptEntry& entry)
{
    QJsonObject object{{u"costs"_s, entry.costs}, {u"editing"_s, entry.editing}};
    for (const EntryText& row : entryTexts)
        object.insert(QLatin1StringView(row.name), entry.*row.text);
    QJsonArray lines;
    for (const QStringList& line : entry.lines)
        lines.append(QJsonArray::fromStringList(line));
    object.insert(u"lines"_s, lines);
    object.insert(u"newGoods"_s, QJsonArray::fromStringList(entry.newGoods));
    return object;
}

QByteArray digestOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

QString shortDigest(const QString& text)
{
    return QString::fromLatin1(digestOf(text.toUtf8()).first(12));
}

/// Form, ledger and machine: what is not ours to look into is told by its name.
QString fileStart(const QString& form, const QString& ledger)
{
    return form + u'-' + shortDigest(ledger) + u'-' + shortDigest(QSysInfo::machineHostName()) + u'-';
}

} // namespace

QByteArray KeptEntry::content() const
{
    return QJsonDocument(entryObject(*this)).toJson(QJsonDocument::Compact);
}

QByteArray KeptEntry::file() const
{
    QJsonObject object = entryObject(*this);
    object.insert(u"moment"_s, moment);
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return entryMark + digestOf(json) + '\n' + json;
}

std::optional<KeptEntry> KeptEntry::read(const QByteArray& bytes)
{
    const qsizetype end = bytes.indexOf('\n');
    if (end < 0 || bytes.first(end) != entryMark + digestOf(bytes.sliced(end + 1)))
        return {};
    const QJsonObject object = QJsonDocument::fromJson(bytes.sliced(end + 1)).object();
    KeptEntry entry;
    for (const EntryText& row : entryTexts)
        entry.*row.text = object.value(QLatin1StringView(row.name)).toString();
    entry.costs = object.value(u"costs"_s).toBool();
    entry.editing = object.value(u"editing"_s).toBool();
    entry.moment = object.value(u"moment"_s).toString();
    entry.newGoods = object.value(u"newGoods"_s).toVariant().toStringList();
    const QJsonArray lines = object.value(u"lines"_s).toArray();
    for (const auto& line : lines)
        entry.lines += line.toVariant().toStringList();
    return entry;
}

QString documentDigest(const QStringList& header, QStringList lines)
{
    std::ranges::sort(lines);
    const QChar between(u'\x1f');
    return QString::fromLatin1(digestOf((header.join(between) + u'\n' + lines.join(u'\n')).toUtf8()));
}

KeptFile::KeptFile(const QString& folder, const QString& form, const QString& ledger)
    : path_(folder + u'/' + fileStart(form, ledger) + QUuid::createUuid().toString(QUuid::WithoutBraces) + entrySuffix)
{}

bool KeptFile::write(KeptEntry entry)
{
    const QByteArray content = entry.content();
    if (content == written_)
        return true;
    if (!lock_) {
        const QString folder = QFileInfo(path_).path();
        if (!QDir().mkpath(folder))
            return false;
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        auto lock = std::make_unique<LockFile>(); // before the file: what lies there unlocked is offered
        if (lock->take(path_ + lockSuffix, LockFile::Hold::Exclusive, folder) != LockFile::Outcome::Held)
            return false;
        lock_ = std::move(lock);
    }
    entry.moment = nowText();
    if (!writePrivately(path_, entry.file()))
        return false;
    written_ = content;
    return true;
}

void KeptFile::remove()
{
    if (lock_) {
        removeDurably(path_);
        removeDurably(path_ + u"-part"_s); // of a write that was killed
    }
    lock_.reset();
    written_.clear();
}

KeptSearch::KeptSearch(const QString& folder, const QString& form, const QString& ledger, const QString& account)
{
    const QDir all(folder);
    const QString start = fileStart(form, ledger);
    const auto files = all.entryInfoList({start + u'*' + entrySuffix}, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo& info : files) {
        KeptFile file;
        file.path_ = info.filePath();
        file.lock_ = std::make_unique<LockFile>();
        if (file.lock_->take(file.path_ + lockSuffix, LockFile::Hold::Exclusive, folder) != LockFile::Outcome::Held)
            continue; // its process lives
        QFile stored(file.path_);
        if (!stored.open(QIODevice::ReadOnly))
            continue; // ended just now, or not to be read at present
        const auto entry = KeptEntry::read(stored.readAll());
        stored.close();
        if (!entry) {
            const QString aside = file.path_ + u"-damaged"_s;
            if (renameDurably(file.path_, aside))
                damaged += aside;
            continue;
        }
        if (entry->form != form || entry->ledger != ledger || entry->account != account)
            continue;
        file.written_ = entry->content();
        found.push_back({*entry, std::move(file)});
    }
    // Of a process that died before its first entry was on the disk.
    const auto locks = all.entryList({start + u'*' + entrySuffix + lockSuffix}, QDir::Files);
    for (const QString& name : locks) {
        const QString path = all.filePath(name.chopped(lockSuffix.size()));
        LockFile lock;
        if (!QFile::exists(path) &&
            lock.take(path + lockSuffix, LockFile::Hold::Exclusive, folder) == LockFile::Outcome::Held &&
            !QFile::exists(path))
            QFile::remove(path + u"-part"_s);
    }
}
