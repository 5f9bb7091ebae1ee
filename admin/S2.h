#pragma once

#include "platform/widgets/form.h"

class Background;
class QLabel;
class PictureBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

/// What the operator who is logged in may set for themselves: password, background picture, memo, big caption. Memo and
/// caption are saved when the form closes, on whatever road. Loading it reads the operator's row, so that a memo that
/// can't be read raises StoreError here and is never taken for an empty one.
class S2 : public Form
{
    Q_OBJECT

public:
    /// @param background outlives the form
    explicit S2(Background& background);
    static QString formName() { return u"S2"_s; }

    void changePassword();
    void browse();
    void restore();
    void setPicture();
    void dropChoice();

    QLabel* LabUser = nullptr;
    QTabWidget* TabS = nullptr;
    QWidget* Frm1 = nullptr;
    QWidget* Frm2 = nullptr;
    QWidget* Frm3 = nullptr;
    QWidget* Frm4 = nullptr;
    QLineEdit* txt[3] = {}; ///< the old password, the new one twice
    QPushButton* cmd[2] = {};
    PictureBox* Img = nullptr; ///< the picture, or why there is none
    QPushButton* CmdSet[4] = {};
    QPlainTextEdit* TxtPad = nullptr;
    QPushButton* CmdPad = nullptr;
    QLineEdit* TxtBgCpt = nullptr;
    QPushButton* CmdCptSet = nullptr;

protected:
    bool queryUnload() override;
    QWidget* firstFocus() override;

private:
    QWidget* passwordPage();
    QWidget* picturePage();
    QWidget* memoPage();
    QWidget* captionPage();
    void load();
    QString storedField(QStringView column) const;
    void refuse(const QString& text, QLineEdit* where);
    void choose(const QString& path);
    void showPicture(const QString& path);
    void showPresentPicture();
    void saveTexts();

    Background& background_;
    QString memo_;   ///< as loaded or last saved
    QString choice_; ///< the picture chosen and not yet set, "" for none
};
