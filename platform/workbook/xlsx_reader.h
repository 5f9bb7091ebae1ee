#pragma once

#include "platform/workbook/cell_text.h"
#include "platform/workbook/workbook.h"

#include <QList>
#include <QPair>

class QXmlStreamReader;
struct zip;

/// A workbook of the newer kind: a zip archive of XML parts.
class XlsxReader
{
public:
    explicit XlsxReader(const QString& path);
    ~XlsxReader();
    XlsxReader(const XlsxReader&) = delete;
    XlsxReader& operator=(const XlsxReader&) = delete;

    SheetNames names();
    SheetRows rows(const QString& sheet);

private:
    struct Sheet
    {
        QString name;
        QString part;
    };
    struct Link
    {
        QString type;
        QString part;
    };

    bool openWorkbook();
    QByteArray part(const QString& name, bool required = true);
    QHash<QString, Link> links(const QString& ofPart);
    QStringList sharedStrings(const QString& name);
    QList<NumberFormat> styles(const QString& name);
    QList<QStringList> cells(const QString& name);
    QString cell(QXmlStreamReader& xml);
    void refuse(const QString& why);

    zip* archive_ = nullptr;
    qint64 unpacked_ = 0;
    QString refusal_; ///< the first; everything after it gives nothing
    QList<Sheet> sheets_;
    QString stringsPart_;
    QString stylesPart_;
    bool epoch1904_ = false;
    QStringList strings_;
    QList<NumberFormat> styles_;
};
