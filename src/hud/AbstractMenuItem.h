#pragma once

class MenuHUD;

/// One line of a menu. Whoever makes it keeps it alive for as long as a menu shows it.
class AbstractMenuItem
{
public:
    /// `name` is not copied.
    AbstractMenuItem(const char* itemName, AbstractMenuItem* itemParent)
        : name(itemName), parent(itemParent)
    {
    }
    virtual ~AbstractMenuItem() = default;

    /// The player has picked the line in `hud`.
    virtual void activate(MenuHUD* hud) = 0;

    const char* name;
    AbstractMenuItem* parent;
};
