#pragma once

#include "hud/ContainerHUD.h"

class AbstractMenuItem;
class MenuItemFolder;
class QKeyEvent;
namespace Leap {
class Controller;
}

/// A list of lines over the whole window, worked by keys or by gestures. The game stands still
/// while it is shown.
class MenuHUD : public ContainerHUD
{
public:
    using ContainerHUD::init;

    /// Both to be set between init and the first show; neither is owned.
    void setRootItem(AbstractMenuItem* item) { rootItem = item; }
    void setCurrentFolder(MenuItemFolder* folder) { currentFolder = folder; }

    void show() override;
    void hide() override;
    void build() override;

    /// For a menu that is visible: what the player does, handed to the page that is shown.
    void onKeyPress(QKeyEvent* event);
    void onLeapFrame(Leap::Controller controller);

protected:
    ~MenuHUD() override = default;

private:
    AbstractMenuItem* rootItem = nullptr;
    MenuItemFolder* currentFolder = nullptr;
};
