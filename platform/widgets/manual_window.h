#pragma once

#include <QHash>
#include <QWidget>

class ManualPage;
class QLineEdit;
class QTreeWidget;

/// The reader of the manual: a folder of pages in Markdown (UTF-8), one a chapter, with the pictures that they name.
/// "index.md" is the first page and the table of contents: its second-level headings are the groups, the links in its
/// lists the chapters. Contents at the left, search over all chapters above them. The window blocks nothing and is
/// blocked by no modal form.
class ManualWindow : public QWidget
{
    Q_OBJECT

public:
    /// Brings the one window to the front at that chapter ("B1" for "B1.md"); the first page when it is empty or there
    /// is no such chapter.
    /// @return the window; null when the folder holds no manual
    static ManualWindow* open(const QString& folder, const QString& chapter);

    /// Lists only the chapters that have the text, and marks it in the page; "" lists all.
    void search(const QString& text);

private:
    ManualWindow();
    bool load(const QString& folder);
    void showChapter(const QString& chapter);
    void pageShown(const QUrl& source);
    void mark();
    void toNextMark();

    QString folder_;
    QHash<QString, QString> texts_; ///< by chapter
    QLineEdit* search_ = nullptr;
    QTreeWidget* contents_ = nullptr;
    ManualPage* page_ = nullptr;
    QString shown_; ///< the chapter in the page
};
