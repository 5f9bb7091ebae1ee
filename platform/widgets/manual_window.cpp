#include "platform/widgets/manual_window.h"

#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextTable>
#include <QTreeWidget>
#include <QWindow>

#include <optional>

namespace {

constexpr int manualChapterRole = Qt::UserRole;
constexpr int manualMargin = 18;
const QString manualIndex = u"index"_s;
const QString manualSuffix = u".md"_s;

/// A page's text. Lines are wrapped in the file; between Chinese characters a line break is no blank.
std::optional<QString> manualText(const QString& path)
{
    const auto lines = readLines(path);
    if (!lines)
        return {};
    static const QRegularExpression wrap(u"(?<=[\\x{2E80}-\\x{FFEF}])\\n *(?=[\\x{2E80}-\\x{FFEF}])"_s);
    return lines->join(u'\n').replace(wrap, QString());
}

void styleManualTables(QTextFrame* frame)
{
    for (QTextFrame* child : frame->childFrames()) {
        if (auto* table = qobject_cast<QTextTable*>(child)) {
            QTextTableFormat format = table->format();
            format.setCellPadding(5);
            format.setCellSpacing(0);
            format.setBorder(1);
            format.setBorderCollapse(true);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(style::color(style::Role::Lines));
            format.setTopMargin(style::spacing / 2.0);
            format.setBottomMargin(style::spacing);
            table->setFormat(format);
            for (int column = 0; column < table->columns(); ++column) {
                QTextTableCell cell = table->cellAt(0, column);
                QTextCharFormat head = cell.format();
                head.setBackground(style::color(style::Role::HeaderGround));
                cell.setFormat(head);
            }
        }
        styleManualTables(child);
    }
}

/// The toolkit gives a Markdown page no look: line height, air around paragraphs, colours of headings and links.
void styleManual(QTextDocument& document)
{
    document.setDocumentMargin(manualMargin);
    styleManualTables(document.rootFrame());
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        QTextBlockFormat format = block.blockFormat();
        const int level = format.headingLevel();
        const bool inTable = cursor.currentTable() != nullptr;
        const bool picture = block.text().contains(QChar::ObjectReplacementCharacter);
        format.setLineHeight(picture ? 100 : inTable ? 120 : 145, QTextBlockFormat::ProportionalHeight);
        format.setTopMargin(level > 0 ? style::spacing * 2 : 0);
        format.setBottomMargin(inTable ? 0 : block.textList() ? 2 : style::spacing);
        cursor.setBlockFormat(format);
        if (level > 0) {
            QTextCharFormat heading;
            const double larger = style::look().points / style::standardPoints;
            heading.setFontPointSize((level == 1 ? 17 : level == 2 ? 13 : 11) * larger);
            heading.setFontWeight(QFont::Bold);
            heading.setForeground(style::color(level == 1 ? style::Role::Text : style::Role::Accent));
            cursor.select(QTextCursor::BlockUnderCursor);
            cursor.mergeCharFormat(heading);
        }
        for (auto part = block.begin(); !part.atEnd(); ++part)
            if (part.fragment().charFormat().isAnchor()) {
                QTextCursor link(&document);
                link.setPosition(part.fragment().position());
                link.setPosition(part.fragment().position() + part.fragment().length(), QTextCursor::KeepAnchor);
                QTextCharFormat look;
                look.setForeground(style::color(style::Role::Accent));
                link.mergeCharFormat(look);
            }
    }
}

} // namespace

/// A page of the manual, its pictures no wider than the window.
class ManualPage : public QTextBrowser
{
public:
    /// Always with its scroll bar, so that the room for pictures is known before the page is laid out.
    ManualPage() { setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); }

    QString folder;

    QVariant loadResource(int type, const QUrl& name) override
    {
        const QString path = QDir(folder).filePath(name.isLocalFile() ? name.toLocalFile() : name.toString());
        if (type == QTextDocument::MarkdownResource)
            return manualText(path).value_or(QString()).toUtf8();
        if (type != QTextDocument::ImageResource)
            return QTextBrowser::loadResource(type, name);
        const QImage picture(path);
        const int room = viewport()->width() - 2 * manualMargin;
        return picture.width() > room ? picture.scaledToWidth(room, Qt::SmoothTransformation) : picture;
    }
};

ManualWindow* ManualWindow::open(const QString& folder, const QString& chapter)
{
    static QPointer<ManualWindow> window;
    if (!QFileInfo(QDir(folder).filePath(manualIndex + manualSuffix)).isFile())
        return nullptr;
    if (!window)
        window = new ManualWindow;
    if (!window->load(folder))
        return nullptr;
    // A modal form lets through only what belongs to it.
    window->winId();
    const QWidget* modal = QApplication::activeModalWidget();
    window->windowHandle()->setTransientParent(modal ? modal->windowHandle() : nullptr);
    if (window->isMinimized())
        window->showNormal();
    window->show();
    window->raise();
    window->activateWindow();
    window->showChapter(chapter);
    return window;
}

ManualWindow::ManualWindow()
{
    setObjectName(u"ManualWindow"_s);
    setWindowTitle(u"使用说明"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_DeleteOnClose);
    search_ = makeEdit(u"TxtSearch"_s);
    search_->setPlaceholderText(u"在全部章节中查找"_s);
    search_->setClearButtonEnabled(true);
    contents_ = new QTreeWidget;
    contents_->setObjectName(u"Contents"_s);
    contents_->setHeaderHidden(true);
    contents_->setRootIsDecorated(false);
    contents_->setAccessibleName(u"目录"_s);
    page_ = new ManualPage;
    page_->setObjectName(u"Page"_s);
    page_->setOpenExternalLinks(false);
    auto* first = makeButton(
        u"CmdFirst"_s, u"目录"_s, [this] { showChapter({}); }, -1, ButtonLook::Compact);
    auto* back = makeButton(
        u"CmdBack"_s, u"后退"_s, [this] { page_->backward(); }, -1, ButtonLook::Compact);
    auto* forward = makeButton(
        u"CmdForward"_s, u"前进"_s, [this] { page_->forward(); }, -1, ButtonLook::Compact);
    back->setEnabled(false);
    forward->setEnabled(false);

    auto* left = new QWidget;
    auto* column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(makeRow({first, back, forward, nullptr}));
    column->addWidget(search_);
    column->addWidget(contents_, 1);
    auto* halves = new QSplitter;
    halves->addWidget(left);
    halves->addWidget(page_);
    halves->setStretchFactor(1, 1);
    halves->setChildrenCollapsible(false);
    halves->setSizes({250, 810});
    auto* all = new QVBoxLayout(this);
    all->addWidget(halves);
    resize(1080, 740);

    connect(search_, &QLineEdit::textChanged, this, &ManualWindow::search);
    connect(search_, &QLineEdit::returnPressed, this, &ManualWindow::toNextMark);
    connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        const QString chapter = item ? item->data(0, manualChapterRole).toString() : QString();
        if (!chapter.isEmpty() && chapter != shown_)
            showChapter(chapter);
    });
    connect(page_, &QTextBrowser::sourceChanged, this, &ManualWindow::pageShown);
    connect(page_, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    connect(page_, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
    style::follow(this, [this] {
        if (!shown_.isEmpty())
            page_->reload(); // which shows it with the colours and headings of the look
    });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, search_, [this] {
        search_->setFocus();
        search_->selectAll();
    });
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
}

/// Reads all chapters, which are few and small, so that searching needs no file.
bool ManualWindow::load(const QString& folder)
{
    if (folder == folder_)
        return true;
    const QDir pages(folder);
    const auto index = readLines(pages.filePath(manualIndex + manualSuffix));
    if (!index)
        return false;
    folder_ = folder;
    page_->folder = folder;
    texts_.clear();
    contents_->clear();
    QTreeWidgetItem* group = nullptr;
    static const QRegularExpression link(u"\\[([^\\]]+)\\]\\(([^)/]+)\\.md\\)"_s);
    for (const QString& line : *index) {
        if (line.startsWith(u"## "_s)) {
            group = new QTreeWidgetItem(contents_, {line.mid(3)});
            group->setFlags(Qt::ItemIsEnabled);
            QFont bold = font();
            bold.setBold(true);
            group->setFont(0, bold);
        }
        const auto found = link.match(line);
        if (!group || !line.startsWith(u'-') || !found.hasMatch())
            continue;
        auto* item = new QTreeWidgetItem(group, {found.captured(1)});
        item->setData(0, manualChapterRole, found.captured(2));
        texts_[found.captured(2)] = manualText(pages.filePath(found.captured(2) + manualSuffix)).value_or(QString());
    }
    contents_->expandAll();
    return true;
}

void ManualWindow::showChapter(const QString& chapter)
{
    const QString shown = texts_.contains(chapter) ? chapter : manualIndex;
    page_->setSource(QUrl::fromLocalFile(QDir(folder_).filePath(shown + manualSuffix)));
}

/// By whatever road the page was reached, the contents show where it stands.
void ManualWindow::pageShown(const QUrl& source)
{
    styleManual(*page_->document());
    shown_ = QFileInfo(source.path()).completeBaseName();
    QTreeWidgetItem* current = nullptr;
    for (QTreeWidgetItemIterator item(contents_); *item; ++item)
        if ((*item)->data(0, manualChapterRole).toString() == shown_)
            current = *item;
    contents_->setCurrentItem(current);
    mark();
}

void ManualWindow::search(const QString& text)
{
    if (search_->text() != text)
        return search_->setText(text); // which comes back here
    for (int i = 0; i < contents_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = contents_->topLevelItem(i);
        bool any = false;
        for (int j = 0; j < group->childCount(); ++j) {
            QTreeWidgetItem* item = group->child(j);
            const bool found =
                item->text(0).contains(text, Qt::CaseInsensitive) ||
                texts_.value(item->data(0, manualChapterRole).toString()).contains(text, Qt::CaseInsensitive);
            item->setHidden(!found);
            any = any || found;
        }
        group->setHidden(!any);
    }
    mark();
}

void ManualWindow::mark()
{
    QList<QTextEdit::ExtraSelection> marks;
    const QString text = search_->text();
    QTextDocument* document = page_->document();
    for (QTextCursor found = document->find(text, 0); !text.isEmpty() && !found.isNull();
         found = document->find(text, found)) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = found;
        mark.format.setBackground(style::color(style::Role::WarningGround));
        mark.format.setForeground(style::color(style::Role::Warning));
        marks += mark;
    }
    page_->setExtraSelections(marks);
}

/// Within the page, and from its end to the next chapter that was found.
void ManualWindow::toNextMark()
{
    if (search_->text().isEmpty() || page_->find(search_->text()))
        return;
    QTreeWidgetItem* current = contents_->currentItem();
    QTreeWidgetItem* first = nullptr;
    QTreeWidgetItem* next = nullptr;
    bool passed = false;
    for (QTreeWidgetItemIterator item(contents_, QTreeWidgetItemIterator::NotHidden); *item; ++item) {
        if ((*item)->data(0, manualChapterRole).toString().isEmpty())
            continue;
        if (!first)
            first = *item;
        if (passed && !next)
            next = *item;
        passed = passed || *item == current;
    }
    if (!next)
        next = first;
    if (!next)
        return;
    contents_->setCurrentItem(next);
    page_->moveCursor(QTextCursor::Start);
    page_->find(search_->text());
}
