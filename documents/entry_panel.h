#pragma once

#include <QFrame>

/// A panel that opens above the lines of an entry. Esc in any of its controls closes it.
class EntryPanel : public QFrame
{
    Q_OBJECT

signals:
    void left(); ///< closed without result

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void leave();
};
