// The menu bar, built from the menu tables, and its items by number. An item's state is the
// program's: a click only says what was wished.
#include "runtime/qt/qt_view.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QHash>
#include <QMenu>
#include <QMenuBar>

#include "runtime/qt/port_menu.h"
#include "ui/resource.h"

namespace {

QHash<int, QMenu *> menus;
QHash<int, QAction *> actions;

QKeySequence Shortcut(int code)
{
    const int key = QTV_QtKey(code);
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ControlModifier, code & KEY_CTRL);
    modifiers.setFlag(Qt::AltModifier, code & KEY_ALT);
    modifiers.setFlag(Qt::ShiftModifier, code & KEY_SHIFT);
    return key ? QKeySequence(QKeyCombination(modifiers, Qt::Key(key))) : QKeySequence();
}

QAction *MakeAction(QWidget *owner, int item, const std::string &text, int shortcut)
{
    auto *action = new QAction(QTV_AccessText(text), owner);
    if (text.empty())
        action->setSeparator(true);
    action->setShortcut(Shortcut(shortcut));
    QObject::connect(action, &QAction::triggered, [action, item] {
        // A click flips a check mark by itself; here the mark shows a setting, and whether that
        // has changed is the program's to say.
        if (action->isCheckable())
            action->setChecked(!action->isChecked());
        VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_MENU);
        event.item = item;
        event.value = action->isChecked(); // what the user saw
        QTV_Post(event);
    });
    if (item != 0)
        actions.insert(item, action);
    return action;
}

// Submenus stand in a group of their own behind the parent's first group of items.
void AddSubmenu(QMenu *parent, QMenu *submenu)
{
    const QList<QAction *> items = parent->actions();
    for (QAction *item : items) {
        if (item->isSeparator() && item->data().isNull()) {
            parent->insertMenu(item, submenu);
            return;
        }
    }
    parent->addMenu(submenu);
}

// When all of them are in: before the first.
void SeparateSubmenus(QMenu *parent)
{
    const QList<QAction *> items = parent->actions();
    for (QAction *item : items) {
        if (item->menu()) {
            parent->insertSeparator(item)->setData(true); // not the one submenus go before
            return;
        }
    }
}

// The mouse when it is in the control in use, else the place the keyboard is at there.
QPoint PopupPlace()
{
    const QWidget *widget = QApplication::focusWidget();
    if (!widget || widget->rect().contains(widget->mapFromGlobal(QCursor::pos())))
        return QCursor::pos();
    return widget->mapToGlobal(
        widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().bottomLeft());
}

} // namespace

QMenuBar *QTV_BuildMenuBar(QWidget *window)
{
    auto *bar = new QMenuBar(window);
    bar->setNativeMenuBar(false); // it belongs to the window, beside its other parts
    for (int i = 0; i < UI_cnMenus; i++) {
        const UI_Menu &row = UI_aMenus[i];
        QMenu *parent = menus.value(row.parent);
        auto *menu = new QMenu(QTV_AccessText(row.text), parent ? parent : window);
        menu->setToolTipsVisible(true);
        menus.insert(row.menu, menu);
        for (int k = 0; k < UI_cnMenuItems; k++) {
            const UI_MenuItem &item = UI_aMenuItems[k];
            if (item.menu == row.menu)
                menu->addAction(MakeAction(menu, item.item, item.text, item.shortcut));
        }
        if (parent)
            AddSubmenu(parent, menu);
        else
            bar->addMenu(menu);
    }
    for (int i = 0; i < UI_cnMenus; i++)
        if (UI_aMenus[i].parent == 0)
            SeparateSubmenus(menus.value(UI_aMenus[i].menu));
    // What devices there are the view finds out by itself.
    if (QMenu *ports = menus.value(MENU_PORT))
        QTV_EquipPortMenu(ports);
    return bar;
}

void QTV_ForgetMenus()
{
    menus.clear();
    actions.clear();
}

QAction *QTV_MenuAction(int item)
{
    return actions.value(item);
}

void QTV_DrawMenuItem(const VIEW_MenuItem &change)
{
    QAction *action = actions.value(change.item);
    if (change.isGone) {
        actions.remove(change.item);
        delete action;
        return;
    }
    // Items of the table are there from the start; recent files come and go.
    QMenu *menu = menus.value(change.menu);
    if (!action && change.isNew && menu) {
        action = MakeAction(menu, change.item, change.text, change.shortcut);
        menu->insertAction(actions.value(change.before), action);
    }
    if (!action)
        return;
    action->setText(QTV_AccessText(change.text));
    action->setEnabled(!change.isDimmed);
    action->setCheckable(change.isCheckable);
    action->setChecked(change.isChecked);
}

void QTV_OpenPopupMenu(int menu)
{
    QMenu *found = menus.value(menu);
    if (found && !QApplication::activeModalWidget()) // a question has come first
        found->popup(PopupPlace());
}
