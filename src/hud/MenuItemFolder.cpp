#include "hud/MenuItemFolder.h"

#include "hud/MenuHUD.h"

#include <QKeyEvent>

MenuItemFolder::MenuItemFolder(const char* itemName, AbstractMenuItem* itemParent)
    : AbstractMenuItem(itemName, itemParent)
{
}

void MenuItemFolder::addItem(AbstractMenuItem* item)
{
    items.push_back(item);
    ++itemCount;
}

void MenuItemFolder::activate(MenuHUD* menu)
{
    hud = menu;
    hud->setCurrentFolder(this);
    hud->build();
}

void MenuItemFolder::onKeyPress(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        if (hud)
            hud->hide();
        break;
    case Qt::Key_Return:
        pickSelected();
        break;
    case Qt::Key_Up:
        moveSelection(-1);
        break;
    case Qt::Key_Down:
        moveSelection(1);
        break;
    default:
        return;
    }
    event->accept();
}

void MenuItemFolder::moveSelection(int step)
{
    if (itemCount == 0)
        return;
    selected = (selected + step + itemCount) % itemCount;
    if (hud)
        hud->refresh();
}

void MenuItemFolder::pickSelected()
{
    if (hud && itemCount > 0)
        items[selected]->activate(hud);
}
