#include "platform/widgets/suggestions.h"

#include "platform/widgets/form.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScrollBar>

Suggestions::Suggestions(QLineEdit* field, const QString& name, const QList<GridColumn>& columns)
    : QObject(field)
    , field_(field)
    , focus_(field->focusProxy() ? field->focusProxy() : field)
    , name_(name)
    , columns_(columns)
{
    focus_->installEventFilter(this);
    connect(field, &QLineEdit::textEdited, this, [this] { runCommand([this] { follow(); }); });
}

Suggestions::~Suggestions()
{
    delete list_;
}

bool Suggestions::shown() const
{
    return list_ && list_->isVisible();
}

void Suggestions::close()
{
    if (list_)
        list_->hide();
}

void Suggestions::follow()
{
    typed_ = field_->text();
    QList<QStringList> rows;
    try {
        rows = find(typed_);
    } catch (...) {
        close(); // what it shows belongs to another text
        throw;
    }
    if (rows.isEmpty())
        return close();
    if (!list_) {
        QWidget* form = field_->parentWidget();
        while (form->parentWidget() && !qobject_cast<Form*>(form))
            form = form->parentWidget();
        list_ = new Grid(name_, form);
        list_->setColumns(columns_);
        list_->verticalHeader()->hide();
        list_->setContextMenuPolicy(Qt::NoContextMenu);
        list_->setSelectionMode(QAbstractItemView::SingleSelection);
        list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        list_->setAttribute(Qt::WA_NoMousePropagation); // a click must not reach what would take the focus
        list_->setFocusPolicy(Qt::NoFocus);
        for (QWidget* part : list_->findChildren<QWidget*>())
            part->setFocusPolicy(Qt::NoFocus);
        connect(list_, &QAbstractItemView::clicked, this, [this](const QModelIndex& clicked) {
            choose(clicked.row() + 1);
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s);
            QCoreApplication::sendEvent(focus_, &enter);
        });
    }
    list_->setRows(std::move(rows));
    place();
    list_->show();
    list_->raise();
}

/// Below the field, or above it where there is more room.
void Suggestions::place()
{
    const QWidget* form = list_->parentWidget();
    int width = 2;
    for (int column = 0; column < list_->Cols(); ++column)
        width += columns_[column].hidden ? 0 : std::max(columns_[column].width, list_->columnWidth(column));
    int height = list_->horizontalHeader()->height() + (list_->Rows() - 1) * list_->rowHeight(0) + 2;
    const QRect anchor(field_->mapTo(form, QPoint(0, 0)), field_->size());
    const int below = form->height() - anchor.bottom() - 3;
    const int above = anchor.top() - 2;
    const bool under = height <= below || below >= above;
    const int room = under ? below : above;
    if (height > room) {
        height -= (height - room + list_->rowHeight(0) - 1) / list_->rowHeight(0) * list_->rowHeight(0); // whole rows
        width += list_->verticalScrollBar()->sizeHint().width();
    }
    const QSize size(std::min(width, form->width()), height);
    list_->resize(size);
    list_->move(std::clamp(anchor.left(), 0, form->width() - size.width()),
                under ? anchor.bottom() + 3 : anchor.top() - 2 - size.height());
}

void Suggestions::choose(int row)
{
    const QStringList chosen = list_->rowTexts(row);
    close();
    runCommand([&] { take(chosen); });
}

bool Suggestions::key(int key)
{
    switch (key) {
    case Qt::Key_Down:
        list_->select(std::min(list_->Row() + 1, list_->Rows() - 1));
        return true;
    case Qt::Key_Up:
        if (list_->Row() > 1)
            list_->select(list_->Row() - 1);
        else
            list_->setCurrentIndex({}); // back in the text
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (list_->Row() > 0)
            choose(list_->Row());
        else
            close();
        return false; // Enter goes its way
    case Qt::Key_F4:
        close(); // what it opens stands in the same place
        return false;
    default:
        return false;
    }
}

/// On a text that was typed the arrows are those of the list: a combo would step to another entry in its place.
bool Suggestions::closedKey(int key)
{
    if (focus_ == field_ || (key != Qt::Key_Down && key != Qt::Key_Up) || typed_.isEmpty() || field_->text() != typed_)
        return false;
    if (key == Qt::Key_Down)
        runCommand([this] { follow(); });
    return true;
}

bool Suggestions::eventFilter(QObject*, QEvent* event)
{
    if (!shown())
        return event->type() == QEvent::KeyPress && closedKey(static_cast<QKeyEvent*>(event)->key());
    switch (event->type()) {
    case QEvent::ShortcutOverride: // Esc closes the list, not what a shortcut would close
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
            return false;
        event->accept();
        return true;
    case QEvent::KeyPress:
        return key(static_cast<QKeyEvent*>(event)->key());
    case QEvent::InputMethod:
        if (!static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty())
            close();
        return false;
    case QEvent::FocusOut:
    case QEvent::Hide:
        close();
        return false;
    default:
        return false;
    }
}
