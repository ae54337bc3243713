#pragma once

#include "hud/AbstractMenuItem.h"

#include <vector>

class QKeyEvent;
namespace Leap {
class Controller;
class GestureList;
}  // namespace Leap

/// The lines of one menu page and the player's way through them. A folder among the lines opens as
/// a page of its own. Without lines, or before a menu has shown it, there is nothing to pick.
class MenuItemFolder : public AbstractMenuItem
{
public:
    MenuItemFolder(const char* name, AbstractMenuItem* parent);

    /// Appends a line; it is not owned.
    void addItem(AbstractMenuItem* item);

    void activate(MenuHUD* hud) override;

    /// Up and down move the selection round, return picks, escape closes. Main thread.
    void onKeyPress(QKeyEvent* event);
    /// A circle that ends moves the selection one line, a tap picks. Sensor thread, world lock
    /// held.
    void onLeapFrame(const Leap::Controller& controller);
    /// The gestures of one frame, all served in their order, even after one has closed the menu.
    void onGestures(const Leap::GestureList& gestures);

    const std::vector<AbstractMenuItem*>& getItems() const { return items; }
    int getSelected() const { return selected; }

private:
    void moveSelection(int step);
    void pickSelected();

    std::vector<AbstractMenuItem*> items;
    int itemCount = 0;
    int selected = 0;  // kept while the menu is closed
    MenuHUD* hud = nullptr;
};
