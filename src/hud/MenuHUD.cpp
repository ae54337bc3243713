#include "hud/MenuHUD.h"

#include "frame/GameLoop.h"
#include "hud/MenuItemFolder.h"
#include "hud/TextHUD.h"

#include <Leap.h>

namespace {

// Sizes in pixels, places in fractions of the window.
constexpr float titleSize = 50.0f;
constexpr float lineSize = 40.0f;
constexpr float selectedLineSize = 50.0f;
constexpr float middle = 0.5f;
constexpr float titleHeight = 0.9f;
constexpr float firstLineHeight = 0.6f;
constexpr float lineDistance = 0.1f;

}  // namespace

void MenuHUD::show()
{
    ContainerHUD::show();
    GameLoop::pause();
    if (rootItem)
        rootItem->activate(this);
}

void MenuHUD::hide()
{
    ContainerHUD::hide();
    GameLoop::resume();
}

void MenuHUD::build()
{
    if (!currentFolder)
        return;
    clear();
    removeChildren();

    osg::ref_ptr<TextHUD> title = new TextHUD;
    title->setText(currentFolder->name);
    title->setCharacterSize(titleSize);
    title->setPosition({middle, titleHeight});
    title->setAlignment(osgText::TextBase::CENTER_TOP);
    title->init(this);

    int index = 0;
    for (const AbstractMenuItem* item : currentFolder->getItems()) {
        osg::ref_ptr<TextHUD> line = new TextHUD;
        line->setText(item->name);
        line->setCharacterSize(index == currentFolder->getSelected() ? selectedLineSize : lineSize);
        line->setPosition({middle, firstLineHeight - index * lineDistance});
        line->init(this);
        ++index;
    }
}

void MenuHUD::onKeyPress(QKeyEvent* event)
{
    if (currentFolder)
        currentFolder->onKeyPress(event);
}

void MenuHUD::onLeapFrame(Leap::Controller controller)
{
    if (currentFolder)
        currentFolder->onLeapFrame(controller);
}
