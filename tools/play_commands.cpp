#include "platform/base/clock.h"
#include "platform/widgets/grid.h"
#include "tools/play_acting.h"
#include "tools/play_handlers.h"
#include "tools/typing.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QRadioButton>

namespace play {

namespace {

using world::Found;

QString textOf(const ControlUse& use)
{
    const auto text = world::text(use.found);
    if (!text)
        fail(u"a control with a text"_s, use.name);
    return plainBreaks(*text);
}

bool stateOf(const ControlUse& use)
{
    const auto state = world::on(use.found);
    if (!state)
        fail(u"a control that can be on or off"_s, use.name);
    return *state;
}

void needFocusSomewhere()
{
    const QWidget* focus = QApplication::focusWidget();
    if (!focus && !QApplication::activePopupWidget() && !QApplication::activeWindow())
        fail(u"a control with the focus"_s, u"none"_s);
    if (const QWidget* blocker = focus ? world::blockerOf(focus) : nullptr)
        fail(u"the focus within reach"_s, u"%1 in front of it"_s.arg(world::nameOf(blocker)));
}

void press(const QString& name)
{
    const Key key = *keyNamed(name);
    pressKey(key.key, key.modifiers, key.text);
}

/// Clicks the cell, types over what stands in it, ends with Enter.
bool fillCell(const ControlUse& use)
{
    Grid* grid = gridOf(use);
    const int row = use.line.integer(1), column = use.line.integer(2);
    switch (use.phase) {
    case 0:
        acting::clickCell(use.found, use.name, row, column);
        return true;
    case 1:
        if (!grid->editing() || !grid->TxtEnter->isVisible() || grid->Row() != row || grid->Col() != column)
            fail(u"an editor in cell %1, %2 of %3"_s.arg(row).arg(column).arg(use.name), u"none"_s);
        acting::focus({use.found.form, grid->TxtEnter, nullptr});
        acting::selectAllAndType({use.found.form, grid->TxtEnter, nullptr}, use.line.operands[3]);
        return true;
    default:
        pressKey(Qt::Key_Return, Qt::NoModifier, u"\r"_s);
        return false;
    }
}

void tick(const ControlUse& use)
{
    const bool wanted = use.line.operands[1] == u"on";
    if (stateOf(use) == wanted)
        return;
    if (qobject_cast<QRadioButton*>(use.found.widget) && !wanted)
        fail(u"%1 to be off"_s.arg(use.name), u"an option that only another one takes off"_s);
    acting::click(use.found, use.name);
}

} // namespace

void Player::act(const QString& command, std::function<bool(const ControlUse& use)> handler)
{
    handlers_.insert(command, [handler = std::move(handler)](const Line& line, int phase) {
        const QString& name = line.operands[0];
        const Found found = world::find(name);
        if (!found)
            fail(name, world::missing(name));
        if (phase == 0) {
            acting::turnTo(found, name);
            return true;
        }
        acting::needReachable(found, name);
        return handler({found, name, line, phase - 1});
    });
}

void Player::look(const QString& command, std::function<void(const ControlUse& use)> handler)
{
    handlers_.insert(command, [handler = std::move(handler)](const Line& line, int) {
        const QString& name = line.operands[0];
        const Found found = world::find(name);
        if (!found)
            fail(name, world::missing(name));
        handler({found, name, line});
        return false;
    });
}

void Player::addActing()
{
    const auto once = [this](const QString& command, void (*run)(const ControlUse&)) {
        act(command, [run](const ControlUse& use) {
            run(use);
            return false;
        });
    };
    /// What takes the focus first: the program then comes to rest, and the focus must still be there.
    const auto focused = [this](const QString& command, void (*run)(const ControlUse&)) {
        act(command, [run](const ControlUse& use) {
            if (use.phase == 0) {
                if (use.found.action)
                    fail(u"a control that takes the focus"_s, use.name);
                acting::focus(use.found);
                return true;
            }
            acting::needFocus(use.found, use.name);
            run(use);
            return false;
        });
    };

    once(u"do"_s, [](const ControlUse& use) { acting::click(use.found, use.name); });
    once(u"leave"_s, [](const ControlUse& use) { acting::leave(use.found); });
    once(u"tick"_s, tick);
    once(u"tab"_s, [](const ControlUse& use) { acting::selectTab(use.found, use.name, use.line.integer(1)); });
    once(u"row"_s, [](const ControlUse& use) { acting::selectRow(use.found, use.name, use.line.integer(1)); });
    once(u"dbl"_s, [](const ControlUse& use) {
        const bool withRow = use.line.operands.size() > 1;
        acting::doubleClick(use.found, use.name, withRow ? std::optional(use.line.integer(1)) : std::nullopt);
    });
    once(u"click-cell"_s, [](const ControlUse& use) {
        acting::clickCell(use.found, use.name, use.line.integer(1), use.line.integer(2));
    });
    once(u"close"_s, [](const ControlUse& use) { acting::closeWindow(use.found.form); });
    act(u"cell"_s, fillCell);
    act(u"choose"_s, [](const ControlUse& use) {
        // A list gets the focus from the click on it, if it takes it: some are there for a field that keeps it.
        if (use.phase == 0 && qobject_cast<QComboBox*>(use.found.widget)) {
            acting::focus(use.found);
            return true;
        }
        acting::choose(use.found, use.name, use.line.operands[1]);
        return false;
    });
    focused(u"type"_s, [](const ControlUse& use) { acting::selectAllAndType(use.found, use.line.operands[1]); });
    focused(u"press"_s, [](const ControlUse& use) { press(use.line.operands[1]); });
    focused(u"date"_s, [](const ControlUse& use) { acting::setDate(use.found, use.name, use.line.operands[1]); });

    handlers_[u"keys"_s] = [](const Line& line, int) {
        needFocusSomewhere();
        typeText(line.operands[0]);
        return false;
    };
    handlers_[u"clipboard"_s] = [](const Line& line, int) {
        QGuiApplication::clipboard()->setText(line.operands[0]);
        return false;
    };
    handlers_[u"key"_s] = [](const Line& line, int) {
        needFocusSomewhere();
        press(line.operands[0]);
        return false;
    };
    handlers_[u"wait"_s] = [](const Line& line, int) {
        const Found found = world::find(line.operands[0]);
        return !found || !world::showing(found.form);
    };
    handlers_[u"idle"_s] = [this](const Line& line, int phase) {
        if (phase == 0)
            idle_.start();
        return idle_.elapsed() < 1000LL * line.integer(0);
    };
    handlers_[u"crash"_s] = [this](const Line&, int) {
        handOver();
        return false;
    };
    handlers_[u"clock"_s] = [this](const Line& line, int) {
        state_.clock = clockMoment(line.operands[0], Now());
        setClock(state_.clock);
        return false;
    };
    handlers_[u"open"_s] = [this](const Line& line, int) {
        openProgram(line.operands.value(0));
        return false;
    };
    handlers_[u"beside"_s] = [this](const Line& line, int phase) { return playBeside(line.operands[0], phase); };
}

void Player::addExpecting()
{
    look(u"expect"_s, [](const ControlUse& use) {
        const QString text = textOf(use);
        if (world::secret(use.found.widget) && text != use.line.operands[1])
            fail(use.name + u" with that password"_s, u"another one"_s);
        expectEqual(use.name, use.line.operands[1], text);
    });
    look(u"expect-has"_s, [](const ControlUse& use) {
        const QString text = textOf(use);
        if (!text.contains(use.line.operands[1]) && world::secret(use.found.widget))
            fail(use.name + u" with that in the password"_s, u"another one"_s);
        if (!text.contains(use.line.operands[1]))
            fail(u"%1 with %2 in it"_s.arg(use.name, quoted(use.line.operands[1])), quoted(text));
    });
    look(u"expect-cell"_s, [](const ControlUse& use) {
        const Grid* grid = gridOf(use);
        const int row = use.line.integer(1), column = use.line.integer(2);
        const QString what = u"%1 row %2 column %3"_s.arg(use.name).arg(row).arg(column);
        if (row >= grid->Rows() || column >= grid->Cols())
            fail(what, u"%1 rows and %2 columns"_s.arg(grid->Rows()).arg(grid->Cols()));
        expectEqual(what, use.line.operands[3], plainBreaks(grid->TextMatrix(row, column)));
    });
    look(u"expect-rows"_s, [](const ControlUse& use) {
        const int rows = gridOf(use)->Rows();
        expectState(u"%1 rows in %2"_s.arg(use.line.operands[1], use.name), rows == use.line.integer(1),
                    QString::number(rows));
    });
    look(u"expect-items"_s, [](const ControlUse& use) {
        const auto items = world::items(use.found);
        if (!items)
            fail(u"a combo box or list"_s, use.name);
        expectState(u"%1 items in %2"_s.arg(use.line.operands[1], use.name), items->size() == use.line.integer(1),
                    u"%1 (%2)"_s.arg(items->size()).arg(quoted(items->join(u"\", \""_s))));
    });

    struct StateRow
    {
        const char* on;
        const char* off;
        QString onText, offText;
        bool (*holds)(const ControlUse& use);
    };
    const StateRow rows[] = {
        {"expect-on", "expect-off", u"on"_s, u"off"_s, stateOf},
        {"expect-visible", "expect-hidden", u"visible"_s, u"hidden"_s,
         [](const ControlUse& use) { return world::visible(use.found); }},
        {"expect-enabled", "expect-disabled", u"enabled"_s, u"disabled"_s,
         [](const ControlUse& use) { return world::enabled(use.found); }},
        {"expect-col-visible", "expect-col-hidden", u"visible"_s, u"hidden"_s,
         [](const ControlUse& use) {
             const Grid* grid = gridOf(use);
             if (use.line.integer(1) >= grid->Cols())
                 fail(u"a column %1 in %2"_s.arg(use.line.operands[1], use.name), u"%1 columns"_s.arg(grid->Cols()));
             return !grid->isColumnHidden(use.line.integer(1));
         }},
    };
    for (const StateRow& row : rows)
        for (const bool wanted : {true, false})
            look(QString::fromLatin1(wanted ? row.on : row.off), [row, wanted](const ControlUse& use) {
                const QString what = use.line.operands.join(u" column "_s);
                expectState(u"%1 to be %2"_s.arg(what, wanted ? row.onText : row.offText), row.holds(use) == wanted,
                            wanted ? row.offText : row.onText);
            });
    look(u"expect-focus"_s, [](const ControlUse& use) {
        const QWidget* focus = QApplication::focusWidget();
        expectState(u"the focus on "_s + use.name, world::focused(use.found),
                    focus ? world::nameOf(focus) : u"no focus"_s);
    });

    const auto showing = [](const Line& line) {
        const Found found = world::find(line.operands[0]);
        return found && world::showing(found.form);
    };
    handlers_[u"expect-open"_s] = [showing](const Line& line, int) {
        expectState(line.operands[0] + u" to be open"_s, showing(line), u"no such window"_s);
        return false;
    };
    handlers_[u"expect-closed"_s] = [showing](const Line& line, int) {
        expectState(line.operands[0] + u" to be closed"_s, !showing(line), u"an open window"_s);
        return false;
    };
    handlers_[u"expect-ended"_s] = [this](const Line&, int) {
        expectState(u"the program to have ended"_s, programEnded_,
                    started_ ? u"one that runs"_s : u"one that never started"_s);
        return false;
    };
}

} // namespace play
