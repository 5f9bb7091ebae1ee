#include "platform/widgets/status_panels.h"

#include "platform/widgets/controls.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPointer>
#include <QProgressBar>

StatusPanels::StatusPanels(int count, QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int panel = 1; panel <= count; ++panel) {
        QLabel* label = makeLabel(u"StB"_s, {}, panel);
        onClick(label, [this, panel] { emit clicked(panel); });
        layout->addWidget(label, panel == count ? 1 : 0);
        labels_.append(label);
        if (panel < count) {
            auto* line = new QFrame;
            line->setProperty("look", u"line"_s);
            layout->addWidget(line);
        }
    }
    selection_ = makeLabel(u"LabSelection"_s, {});
    selection_->setAccessibleName(u"所选各行的合计"_s);
    selection_->hide();
    layout->addWidget(selection_);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(u"Progress"_s);
    bar_->setRange(0, 100);
    bar_->hide();
}

QLabel* StatusPanels::label(int panel) const
{
    return panel >= 1 && panel <= labels_.size() ? labels_[panel - 1] : nullptr;
}

void StatusPanels::setText(int panel, const QString& text)
{
    QLabel* target = label(panel);
    if (!target || target->text() == text)
        return;
    target->setText(text);
    if (isVisible())
        target->repaint();
}

QString StatusPanels::text(int panel) const
{
    const QLabel* source = label(panel);
    return source ? source->text() : QString();
}

void StatusPanels::setToolTip(int panel, const QString& text)
{
    if (QLabel* target = label(panel))
        target->setToolTip(text);
}

void StatusPanels::showProgress(qint64 done, qint64 total)
{
    if (total <= 0)
        return bar_->hide();
    constexpr int length = 260, thickness = 15;
    // Placed by hand: a layout would wait for the event loop, which does not turn while the work goes on.
    bar_->setGeometry(width() - length - 8, (height() - thickness) / 2, length, thickness);
    bar_->setValue(int(done * 100 / total));
    bar_->show();
    bar_->raise();
    if (isVisible())
        bar_->repaint();
}

StatusHost StatusPanels::host()
{
    const QPointer<StatusPanels> self = this;
    return {[self](int panel, const QString& text) {
                if (self)
                    self->setText(panel, text);
            },
            [self](int panel) { return self ? self->text(panel) : QString(); },
            [](bool busy) {
                if (busy)
                    QApplication::setOverrideCursor(Qt::WaitCursor);
                else
                    QApplication::restoreOverrideCursor();
            },
            [self](qint64 done, qint64 total) {
                if (self)
                    self->showProgress(done, total);
            },
            [self](const QString& text) {
                if (!self)
                    return;
                self->selection_->setText(text);
                self->selection_->setVisible(!text.isEmpty());
            }};
}
