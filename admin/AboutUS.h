#pragma once

#include "platform/widgets/form.h"

class QLabel;
class QPushButton;

/// The program's identity and its maker; for upgrade, support and feedback with a line on how to ask for it.
class AboutUS : public Form
{
    Q_OBJECT

public:
    AboutUS();
    static QString formName() { return u"AboutUS"_s; }

    void setService(const QString& line);

    QLabel* LabTitle = nullptr;
    QLabel* LabVersion = nullptr;
    QLabel* LabEdition = nullptr;
    QLabel* LabMaker = nullptr;
    QLabel* LabService = nullptr;
    QPushButton* Cmd[3] = {};

protected:
    QWidget* firstFocus() override;

private:
    void openSite();
    void openMail();
};
