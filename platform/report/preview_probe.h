#pragma once

#include <QString>
#include <QStringList>

/// A look into the report preview that is open, for those who test it: by the layout's own texts, since the text of a
/// PDF depends on the font.
class PreviewProbe
{
public:
    virtual ~PreviewProbe() = default;
    virtual int pageCount() const = 0;
    /// All texts that stand on a page, counted from 1.
    virtual QStringList pageTexts(int page) const = 0;
    /// @return false when the file can't be written
    virtual bool savePdf(const QString& path) const = 0;
};

/// The preview that was opened last and is still open, or null.
PreviewProbe* openPreview();
/// A preview tells of itself when it opens, and takes itself back before it is gone.
void previewOpened(PreviewProbe* preview);
void previewClosed(PreviewProbe* preview);
