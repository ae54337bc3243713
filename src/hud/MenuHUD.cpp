#include "hud/MenuHUD.h"

#include "frame/GameLoop.h"
#include "hud/MenuItemFolder.h"
#include "hud/TextHUD.h"

#include <Leap.h>

#include <algorithm>
#include <vector>

namespace {

// Sizes in pixels, places in fractions of the window.
constexpr float titleSize = 50.0f;
constexpr float lineSize = 40.0f;
constexpr float selectedLineSize = 50.0f;
constexpr float middle = 0.5f;
constexpr float titleHeight = 0.9f;
constexpr float firstLineHeight = 0.6f;
constexpr float lineDistance = 0.1f;

constexpr float smallestShare = 0.3f;  // of these sizes that can be read
constexpr float largestCrowd = 1.25f;  // of a line's size to the distance of two
constexpr float leastShrink = 0.98f;   // the widths of glyphs do not shrink evenly with their size

/// Shrinks lines that the window has no room for, all by one factor, which is the same whatever is
/// chosen: that is told by the sizes.
void fitIntoWindow(const std::vector<osg::ref_ptr<TextHUD>>& lines, int windowHeight)
{
    float share = std::clamp(float(windowHeight) * lineDistance * largestCrowd / selectedLineSize,
                             smallestShare, 1.0f);
    while (true) {
        float room = 1.0f;
        for (const auto& line : lines) {
            line->setShare(share);
            room = std::min(room, line->roomInWindow(selectedLineSize));
        }
        if (room >= 1.0f || share <= smallestShare)
            return;
        share *= std::min(room, leastShrink);
    }
}

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

    std::vector<osg::ref_ptr<TextHUD>> lines;
    osg::ref_ptr<TextHUD> title = new TextHUD;
    title->setText(currentFolder->name);
    title->setCharacterSize(titleSize);
    title->setPosition({middle, titleHeight});
    title->setAlignment(osgText::TextBase::CENTER_TOP);
    title->init(this);
    lines.push_back(title);

    int index = 0;
    for (const AbstractMenuItem* item : currentFolder->getItems()) {
        osg::ref_ptr<TextHUD> line = new TextHUD;
        line->setText(item->name);
        line->setCharacterSize(index == currentFolder->getSelected() ? selectedLineSize : lineSize);
        line->setPosition({middle, firstLineHeight - index * lineDistance});
        line->init(this);
        lines.push_back(line);
        ++index;
    }
    fitIntoWindow(lines, getHeight());
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
