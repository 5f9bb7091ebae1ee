#include "platform/widgets/window_dialogs.h"

#include "platform/base/files.h"
#include "platform/widgets/form.h"
#include "platform/widgets/style.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSplitter>
#include <QTreeView>

namespace {

constexpr int iconSize = 32;
constexpr int textWidth = 420; ///< longer lines wrap
constexpr int buttonWidth = 84;
constexpr QSize fileDialogSize(760, 480);

QPixmap boxPicture(BoxIcon icon)
{
    const bool warns = icon == BoxIcon::Exclamation;
    QPixmap pixmap(QSize(iconSize, iconSize) * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(style::color(warns ? style::Role::Warning : style::Role::Accent));
    painter.drawEllipse(QRectF(1, 1, iconSize - 2, iconSize - 2));
    QFont font = QApplication::font();
    font.setBold(true);
    font.setPixelSize(20);
    painter.setFont(font);
    painter.setPen(style::color(style::Role::Field));
    const QString sign = warns ? u"!"_s : icon == BoxIcon::Question ? u"?"_s : u"i"_s;
    painter.drawText(QRectF(0, 0, iconSize, iconSize), Qt::AlignCenter, sign);
    return pixmap;
}

/// Room for a file's size and day, by which backups are told apart; the toolkit's own dialog cuts them off.
void showDays(QFileDialog& dialog)
{
    if (auto* parts = dialog.findChild<QSplitter*>(u"splitter"_s))
        parts->setSizes({style::scaled(120), style::scaled(fileDialogSize.width() - 120)});
    if (auto* files = dialog.findChild<QTreeView*>(u"treeView"_s)) {
        int column = 0;
        for (const int width : {260, 90, 80, 170})
            files->header()->resizeSection(column++, style::scaled(width));
    }
}

QWidget* dialogOwner()
{
    return QApplication::activeWindow();
}

/// The frame that boxes share: content above, buttons at the right below.
class BoxWindow : public QDialog
{
public:
    BoxWindow(const QString& title, const QString& text, BoxIcon icon)
        : QDialog(dialogOwner(),
                  Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint)
    {
        setWindowTitle(title);
        setAttribute(Qt::WA_QuitOnClose, false);
        auto* outer = new QVBoxLayout(this);
        outer->setContentsMargins(18, 16, 18, 14);
        outer->setSpacing(2 * style::spacing);
        auto* row = new QHBoxLayout;
        row->setSpacing(2 * style::spacing);
        if (icon != BoxIcon::None) {
            auto* picture = new QLabel;
            picture->setPixmap(boxPicture(icon));
            row->addWidget(picture, 0, Qt::AlignTop);
        }
        body_ = new QVBoxLayout;
        body_->setSpacing(style::spacing);
        auto* words = new QLabel(text);
        words->setTextFormat(Qt::PlainText);
        words->setTextInteractionFlags(Qt::TextSelectableByMouse);
        words->setFocusPolicy(Qt::NoFocus);
        const int natural = words->sizeHint().width();
        const int widest = style::scaled(textWidth);
        words->setWordWrap(natural > widest);
        words->setMinimumWidth(std::min(std::max(natural, 180), widest));
        body_->addWidget(words);
        row->addLayout(body_, 1);
        outer->addLayout(row, 1);
        buttons_ = new QHBoxLayout;
        buttons_->setSpacing(style::spacing);
        buttons_->addStretch(1);
        outer->addLayout(buttons_);
        outer->setSizeConstraint(QLayout::SetFixedSize);
    }

    void addButton(const QString& caption, int result, bool isDefault)
    {
        auto* button = new QPushButton(caption);
        button->setMinimumWidth(style::scaled(buttonWidth));
        button->setAutoDefault(true);
        connect(button, &QPushButton::clicked, this, [this, result] { done(result); });
        buttons_->addWidget(button);
        if (isDefault) {
            button->setDefault(true);
            button->setFocus();
        }
    }

    QVBoxLayout* body() { return body_; }

protected:
    /// Y and N answer without Alt, as in the message boxes that operators know.
    void keyPressEvent(QKeyEvent* event) override
    {
        for (auto* button : findChildren<QPushButton*>())
            if (event->modifiers() == Qt::NoModifier &&
                QKeySequence::mnemonic(button->text()) == QKeySequence(Qt::ALT | Qt::Key(event->key())))
                return button->click();
        QDialog::keyPressEvent(event);
    }

private:
    QVBoxLayout* body_;
    QHBoxLayout* buttons_;
};

class WindowDialogs : public DialogHost
{
public:
    Answer show(const Box& box) override
    {
        BoxWindow window(box.title, box.text, box.icon);
        if (box.buttons == BoxButtons::Ok) {
            window.addButton(u"确定"_s, QDialog::Accepted, true);
            execModal(window);
            return Answer::Ok;
        }
        window.addButton(u"是(&Y)"_s, QDialog::Accepted, box.preset != Answer::No);
        window.addButton(u"否(&N)"_s, QDialog::Rejected, box.preset == Answer::No);
        return execModal(window) == QDialog::Accepted ? Answer::Yes : Answer::No;
    }

    std::optional<QString> input(const InputRequest& request) override
    {
        BoxWindow window(request.title, request.prompt, BoxIcon::None);
        auto* edit = new QLineEdit(request.preset);
        edit->setMinimumWidth(style::scaled(textWidth - 100));
        edit->setAccessibleName(request.prompt);
        window.body()->addWidget(edit);
        window.addButton(u"确定"_s, QDialog::Accepted, true);
        window.addButton(u"取消"_s, QDialog::Rejected, false);
        edit->selectAll();
        edit->setFocus();
        if (execModal(window) != QDialog::Accepted)
            return std::nullopt;
        return edit->text();
    }

    std::optional<QString> chooseFile(const FileRequest& request) override
    {
        const bool saving = request.purpose == FileRequest::Purpose::Save;
        QFileDialog dialog(dialogOwner(), request.title);
        dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        dialog.setFileMode(saving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        dialog.setOption(QFileDialog::DontConfirmOverwrite); // the commands ask by their own rules
#ifndef Q_OS_WIN
        dialog.setOption(QFileDialog::DontUseNativeDialog);
#endif
        dialog.setLabelText(QFileDialog::Accept, saving ? u"保存(&S)"_s : u"打开(&O)"_s);
        dialog.setLabelText(QFileDialog::Reject, u"取消"_s);
        dialog.setLabelText(QFileDialog::FileName, u"文件名(&N)："_s);
        dialog.setLabelText(QFileDialog::FileType, u"文件类型："_s);
        dialog.setLabelText(QFileDialog::LookIn, u"查找范围："_s);
        dialog.resize(style::scaled(fileDialogSize.width()), style::scaled(fileDialogSize.height()));
        dialog.setNameFilters(fileDialogFilters(request.filter));

        const QString folder = folderOf(request.fileName);
        const QString name = fileNameOf(request.fileName);
        if (!folder.isEmpty())
            dialog.setDirectory(resolvedPath(folder));
        if (!name.contains(u'*') && !name.contains(u'?') && !name.isEmpty())
            dialog.selectFile(name);
        showDays(dialog);

        if (execModal(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
            return std::nullopt;
        const QString chosen = dialog.selectedFiles().constFirst();
        return saving ? withFilterExtension(chosen, dialog.selectedNameFilter()) : chosen;
    }

    std::optional<PrintJob> print(const PrintRequest& request) override
    {
        QPrinter printer(QPrinter::HighResolution);
        if (!request.job.printer.isEmpty())
            printer.setPrinterName(request.job.printer);
        const QSizeF paper = request.job.paper.isEmpty() ? request.paper : request.job.paper;
        printer.setPageSize(QPageSize(paper, QPageSize::Millimeter, {}, QPageSize::FuzzyMatch));
        printer.setDocName(request.document);
        printer.setCopyCount(request.job.copies);
        printer.setCollateCopies(request.job.collate);
        const QSizeF offered = printer.pageLayout().pageSize().size(QPageSize::Millimeter);
        QPrintDialog dialog(&printer, dialogOwner());
        dialog.setWindowTitle(request.title);
        dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                          QAbstractPrintDialog::PrintCollateCopies | QAbstractPrintDialog::PrintShowPageSize);
        dialog.setMinMax(1, request.pages);
        dialog.setFromTo(request.job.first, request.job.last > 0 ? request.job.last : request.pages);
        dialog.setPrintRange(QAbstractPrintDialog::AllPages);
        if (execModal(dialog) != QDialog::Accepted)
            return std::nullopt;
        PrintJob job;
        job.printer = printer.printerName();
        if (printer.outputFormat() == QPrinter::PdfFormat)
            job.file = printer.outputFileName();
        job.copies = printer.copyCount();
        job.collate = printer.collateCopies();
        if (dialog.printRange() == QAbstractPrintDialog::PageRange) {
            job.first = dialog.fromPage();
            job.last = dialog.toPage();
        }
        // Only another choice of paper counts: what was offered may be the printer's nearest to the report's own.
        const QPageLayout chosen = printer.pageLayout();
        if (chosen.pageSize().size(QPageSize::Millimeter) != offered)
            job.paper = chosen.fullRect(QPageLayout::Millimeter).size();
        return job;
    }

    void doEvents() override
    {
        QCoreApplication::processEvents();
    }
};

} // namespace

QStringList fileDialogFilters(const QString& filter)
{
    // The words often name the pattern already; the dialog shows it behind them in any case.
    static const QRegularExpression patternBehind(u"\\s*[(（][^()（）]*[)）]\\s*$"_s);
    const QStringList parts = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& pattern : parts[i + 1].split(u';', Qt::SkipEmptyParts))
            patterns += pattern.trimmed() == u"*.*" ? u"*"_s : pattern.trimmed();
        const QString words = QString(parts[i]).remove(patternBehind);
        filters += u"%1 (%2)"_s.arg(words, patterns.join(u' '));
    }
    return filters;
}

QString withFilterExtension(const QString& path, const QString& chosenFilter)
{
    static const QRegularExpression firstExtension(u"\\(\\*(\\.[^*?\\s)]+)"_s);
    const auto match = firstExtension.match(chosenFilter);
    return match.hasMatch() && QFileInfo(path).suffix().isEmpty() ? path + match.captured(1) : path;
}

std::unique_ptr<DialogHost> windowDialogs()
{
    return std::make_unique<WindowDialogs>();
}
