#include "hud/ContainerHUD.h"

ContainerHUD::ContainerHUD() : group(new osg::Group)
{
    makeOverlay(*group);
    modelView->addChild(group);
}

void ContainerHUD::addChild(AbstractHUD* child)
{
    child->setGeode(new osg::Geode);
    children.push_back(child);
    child->resize(width, height);
    if (visible)
        child->show();
    else
        child->hide();
}

void ContainerHUD::removeChildren()
{
    children.clear();
}

void ContainerHUD::attachChild(AbstractHUD* child)
{
    group->addChild(child->getGeode());
}

void ContainerHUD::detachChild(AbstractHUD* child)
{
    group->removeChild(child->getGeode());
}

void ContainerHUD::show()
{
    AbstractHUD::show();
    for (const auto& child : children)
        child->show();
}

void ContainerHUD::hide()
{
    AbstractHUD::hide();
    for (const auto& child : children)
        child->hide();
}

void ContainerHUD::clear()
{
    for (const auto& child : children)
        child->clear();
}

void ContainerHUD::resize(int newWidth, int newHeight)
{
    AbstractHUD::resize(newWidth, newHeight);
    for (const auto& child : children)
        child->resize(newWidth, newHeight);
}
