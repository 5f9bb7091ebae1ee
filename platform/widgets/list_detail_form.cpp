#include "platform/widgets/list_detail_form.h"

#include "platform/base/dialogs.h"
#include "platform/widgets/grid.h"

#include <QHBoxLayout>
#include <QShortcut>
#include <QStackedWidget>
#include <QTabBar>

ListDetailForm::ListDetailForm(const QString& name, const QString& caption, const QString& listTab,
                               const QString& detailTab)
    : Form(name, caption)
{
    TabS = new QTabBar;
    TabS->setObjectName(u"TabS"_s);
    TabS->addTab(listTab);
    TabS->addTab(detailTab);
    TabS->setFocusPolicy(Qt::StrongFocus);
    TabS->setExpanding(false);
    TabS->setDrawBase(false);
    state_ = makeBadge(u"LabState"_s);
    stack_ = new QStackedWidget;
    for (const auto& [tab, pageName] : {std::pair(ListTab, u"PageList"_s), {DetailTab, u"PageDetail"_s}}) {
        auto* page = makePanel(pageName);
        pages_[tab] = new QVBoxLayout(page);
        stack_->addWidget(page);
    }
    GD = new Grid(u"GD"_s);
    GD->actAsList();
    pages_[ListTab]->addWidget(GD);

    body_ = new QWidget;
    auto* body = new QVBoxLayout(body_);
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(0);
    body->addLayout(makeRow({TabS, nullptr, state_}));
    body->addWidget(stack_, 1);
    barred_ = makeLabel(u"LabBarred"_s, QString());
    barred_->setAlignment(Qt::AlignCenter);
    barred_->hide();
    content()->addWidget(body_, 1);
    content()->addWidget(barred_, 1);

    connect(TabS, &QTabBar::currentChanged, this, [this](int tab) {
        stack_->setCurrentIndex(tab);
        if (Edstu == Viewing)
            runCommand([&] { tabChanged(Tab(tab)); });
    });
    connect(GD, &Grid::currentRowChanged, this, [this](int row) {
        listRow_ = qMax(row, 1);
        rowChanged();
    });
    connect(GD, &Grid::activatedRow, this, [this](int) { showTab(DetailTab); });
    addKey(Qt::Key_F5, [this] { recordsChanged(); });
}

void ListDetailForm::recordsChanged()
{
    if (Edstu == Viewing)
        refresh();
}

QAction* ListDetailForm::addModeCommand(const QString& name, const QString& caption, Shown shown,
                                        std::function<void()> run)
{
    return addModeCommand(nullptr, name, caption, shown, std::move(run));
}

QAction* ListDetailForm::addModeCommand(QMenu* menu, const QString& name, const QString& caption, Shown shown,
                                        std::function<void()> run)
{
    QAction* action = addCommand(menu, name, caption, run);
    action->setEnabled(bool(run));
    modeCommands_.append({action, shown});
    return action;
}

QMenu* ListDetailForm::addModeMenu(const QString& name, const QString& caption, Shown shown)
{
    QMenu* menu = addCommandMenu(name, caption);
    modeCommands_.append({menu->menuAction(), shown});
    return menu;
}

void ListDetailForm::showMode()
{
    const bool entering = Edstu != Viewing;
    for (const auto& [action, shown] : modeCommands_)
        setCommandVisible(action, shown == Shown::Always || shown == (entering ? Shown::Entering : Shown::Viewing));
    TabS->setEnabled(!entering);
    if (entering) {
        GD->endNarrowing(); // what is being entered need not have those words
        showTab(DetailTab);
    }
}

bool ListDetailForm::onDetail() const
{
    return TabS->currentIndex() == DetailTab;
}

void ListDetailForm::showTab(Tab tab)
{
    TabS->setCurrentIndex(tab);
}

void ListDetailForm::setBarred(const QString& why)
{
    barred_->setText(why);
    barred_->setVisible(!why.isEmpty());
    body_->setVisible(why.isEmpty());
}

void ListDetailForm::setState(const QString& text, BadgeLook look)
{
    setBadge(state_, text, look);
}

QString ListDetailForm::listCell(int column) const
{
    return GD->TextMatrix(listRow_, column);
}

bool ListDetailForm::listEmpty() const
{
    return Trim(GD->TextMatrix(1, 0)).isEmpty();
}

void ListDetailForm::fillList(QList<QStringList> rows)
{
    if (rows.isEmpty())
        GD->clearRows();
    else
        GD->setRows(std::move(rows));
    selectListRow(listRow_);
}

void ListDetailForm::selectListRow(int row)
{
    GD->select(qBound(1, row, qMax(GD->Rows() - 1, 1)));
    listRow_ = qMax(GD->Row(), 1); // another one where the list is narrowed
    rowChanged();
}

void ListDetailForm::removeListRow(int row)
{
    if (GD->Rows() > 2)
        GD->RemoveItem(row);
    else
        GD->clearRows();
}

void ListDetailForm::addListRow(const QStringList& cells)
{
    const bool first = listEmpty();
    GD->AddItem(QString());
    for (int column = 0; column < cells.size(); ++column)
        GD->SetTextMatrix(GD->Rows() - 1, column, cells[column]); // a pasted tab must not become a column
    if (first)
        GD->RemoveItem(1);
    selectListRow(GD->Rows() - 1);
}

void ListDetailForm::refuse(const QString& text, QWidget* where)
{
    MsgBox(text);
    focusText(where);
}

void ListDetailForm::addKey(Qt::Key key, std::function<void()> run)
{
    auto* shortcut = new QShortcut(QKeySequence(key), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [run = std::move(run)] { runCommand(run); });
}

QWidget* ListDetailForm::firstFocus()
{
    return onDetail() ? static_cast<QWidget*>(TabS) : GD;
}
