#include "documents/entry_panel.h"

#include "platform/widgets/controls.h"

#include <QKeyEvent>

void EntryPanel::leave()
{
    hide();
    emit left();
}

void EntryPanel::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        runCommand([this] { leave(); });
    else
        QFrame::keyPressEvent(event);
}
