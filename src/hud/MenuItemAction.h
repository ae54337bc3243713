#pragma once

#include "hud/AbstractMenuItem.h"

#include <functional>

/// A line that closes the menu and then does something, on the thread that the choice came from.
class MenuItemAction : public AbstractMenuItem
{
public:
    MenuItemAction(std::function<void()> action, const char* name, AbstractMenuItem* parent);

    void activate(MenuHUD* hud) override;

private:
    std::function<void()> action;
};
