#pragma once

#include "documents/line_paste.h"
#include "platform/widgets/form.h"

class Grid;

struct RefusedLine
{
    PastedLine line;
    QString reason;
};

/// Which pasted lines a document didn't take, and why. Copied whole, the list can be mended in a spreadsheet and pasted
/// again: its captions are those that a paste knows.
class PasteRefused : public Form
{
    Q_OBJECT

public:
    static QString formName() { return u"PasteRefused"_s; }
    PasteRefused();

    /// Shows the list modally. @param entered how many lines were taken
    static void tell(const QList<RefusedLine>& refused, qsizetype entered);

    QLabel* LabInfo = nullptr;
    Grid* GD = nullptr;
};
