#pragma once

#include "platform/widgets/form.h"

class QLabel;
class QPushButton;

/// Explains the tool bar of the preview, right below it.
class PrntHelp : public Form
{
    Q_OBJECT

public:
    PrntHelp();
    static QString formName() { return u"PrntHelp"_s; }

    /// Shows the form modally under that widget and returns when it is closed.
    static void explain(const QWidget& toolBar);

    QLabel* Lab[5] = {};
    QPushButton* CmdOK = nullptr;

protected:
    QWidget* firstFocus() override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QPoint corner_;
};
