#include "hud/MenuItemAction.h"

#include "hud/MenuHUD.h"

#include <utility>

MenuItemAction::MenuItemAction(std::function<void()> itemAction, const char* itemName,
                               AbstractMenuItem* itemParent)
    : AbstractMenuItem(itemName, itemParent), action(std::move(itemAction))
{
}

void MenuItemAction::activate(MenuHUD* hud)
{
    hud->hide();
    action();
}
