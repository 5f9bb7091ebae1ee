#include "platform/report/preview_probe.h"

#include <QList>

namespace {
QList<PreviewProbe*> openPreviews;
}

PreviewProbe* openPreview()
{
    return openPreviews.isEmpty() ? nullptr : openPreviews.last();
}

void previewOpened(PreviewProbe* preview)
{
    openPreviews.append(preview);
}

void previewClosed(PreviewProbe* preview)
{
    openPreviews.removeAll(preview);
}
