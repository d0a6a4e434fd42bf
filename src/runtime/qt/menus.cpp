// The menu bar, built from the menu tables, and its items by number.
#include "runtime/qt/face.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QHash>
#include <QMenu>
#include <QMenuBar>

#include "runtime/qt/port_menu.h"
#include "ui/resource.h"

namespace {

constexpr int FIRST_NEW_ITEM = 1000; // items the program adds are numbered from here

QHash<int, QMenu *> menus;
QHash<int, QAction *> actions;
int nextItem = FIRST_NEW_ITEM;

QKeySequence Shortcut(int code)
{
    const int key = FACE_QtKey(code);
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ControlModifier, code & KEY_CTRL);
    modifiers.setFlag(Qt::AltModifier, code & KEY_ALT);
    modifiers.setFlag(Qt::ShiftModifier, code & KEY_SHIFT);
    return key ? QKeySequence(QKeyCombination(modifiers, Qt::Key(key))) : QKeySequence();
}

// A click flips a check mark by itself; here the mark shows a setting, and whether
// that has changed is the program's to say.
void KeepCheckMark(QAction *action)
{
    if (action->isCheckable())
        action->setChecked(!action->isChecked());
}

QAction *MakeAction(QWidget *owner, int item, const std::string &text, int shortcut,
                    MenuCallback callback)
{
    auto *action = new QAction(FACE_AccessText(text), owner);
    if (text.empty())
        action->setSeparator(true);
    action->setShortcut(Shortcut(shortcut));
    QObject::connect(action, &QAction::triggered, [action, item, callback] {
        KeepCheckMark(action);
        if (FACE_IsBusy() || !callback)
            return;
        const FaceBusy busy;
        callback(UI_nMenuPanel, item);
    });
    if (item != 0)
        actions.insert(item, action);
    return action;
}

void AddItems(QMenu *menu, int number)
{
    for (int i = 0; i < UI_cnMenuItems; i++) {
        const UI_MenuItem &row = UI_aMenuItems[i];
        if (row.menu == number)
            menu->addAction(MakeAction(menu, row.item, row.text, row.shortcut, row.callback));
    }
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

int FindAction(int menuBar, int item, QAction **action)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    *action = actions.value(item);
    return *action ? 0 : UIE_NO_ITEM;
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

QMenuBar *FACE_BuildMenuBar(QWidget *window)
{
    auto *bar = new QMenuBar(window);
    bar->setNativeMenuBar(false); // panel coordinates count from above the bar
    for (int i = 0; i < UI_cnMenus; i++) {
        const UI_Menu &row = UI_aMenus[i];
        QMenu *parent = menus.value(row.parent);
        auto *menu = new QMenu(FACE_AccessText(row.text), parent ? parent : window);
        menu->setToolTipsVisible(true);
        menus.insert(row.menu, menu);
        AddItems(menu, row.menu);
        if (parent)
            AddSubmenu(parent, menu);
        else
            bar->addMenu(menu);
    }
    for (int i = 0; i < UI_cnMenus; i++)
        if (UI_aMenus[i].parent == 0)
            SeparateSubmenus(menus.value(UI_aMenus[i].menu));
    if (QMenu *ports = menus.value(MENU_PORT))
        FACE_EquipPortMenu(ports);
    return bar;
}

QAction *FACE_MenuAction(int item)
{
    return actions.value(item);
}

int GetPanelMenuBar(int panel)
{
    FacePanel *found = nullptr;
    const int error = FACE_FindPanel(panel, &found);
    if (error < 0)
        return error;
    return panel == UI_nMenuPanel ? panel : UIE_NO_ITEM;
}

int SetMenuBarAttribute(int menuBar, int item, int attribute, int value)
{
    QAction *action = nullptr;
    const int error = FindAction(menuBar, item, &action);
    if (error < 0)
        return error;
    if (attribute == ATTR_DIMMED) {
        action->setEnabled(value == 0);
    } else if (attribute == ATTR_CHECKED) {
        action->setCheckable(true);
        action->setChecked(value != 0);
    } else {
        return UIE_BAD_ATTRIBUTE;
    }
    return 0;
}

int GetMenuBarAttribute(int menuBar, int item, int attribute, int *value)
{
    QAction *action = nullptr;
    const int error = FindAction(menuBar, item, &action);
    if (error < 0)
        return error;
    if (attribute == ATTR_DIMMED)
        *value = !action->isEnabled();
    else if (attribute == ATTR_CHECKED)
        *value = action->isChecked();
    else
        return UIE_BAD_ATTRIBUTE;
    return 0;
}

int NewMenuItem(int menuBar, int menu, const std::string &text, int beforeItem, int shortcut,
                MenuCallback callback)
{
    QAction *before = nullptr;
    const int error = FindAction(menuBar, beforeItem, &before);
    if (error < 0)
        return error;
    QMenu *target = menus.value(menu);
    if (!target || !target->actions().contains(before))
        return UIE_NO_ITEM;
    target->insertAction(before, MakeAction(target, nextItem, text, shortcut, callback));
    return nextItem++;
}

int DiscardMenuItem(int menuBar, int item)
{
    QAction *action = nullptr;
    const int error = FindAction(menuBar, item, &action);
    if (error < 0)
        return error;
    actions.remove(item);
    action->setVisible(false);
    action->deleteLater(); // it may be the one whose callback is running
    return 0;
}

int RunPopupMenu(int menuBar, int menu)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    QMenu *found = menus.value(menu);
    if (!found)
        return UIE_NO_ITEM;
    found->popup(PopupPlace());
    return 0;
}
