#pragma once

#include "hud/AbstractHUD.h"

#include <vector>

/// Several elements that come, go and follow the window together. It draws nothing of its own.
class ContainerHUD : public AbstractHUD
{
public:
    ContainerHUD();

    using AbstractHUD::init;

    /// Takes the element in with a new Geode and brings it to the container's size and visibility.
    void addChild(AbstractHUD* child);
    /// Forgets the elements, but their Geodes stay in the group: call clear() before.
    void removeChildren();

    void attachChild(AbstractHUD* child);
    void detachChild(AbstractHUD* child);

    void show() override;
    void hide() override;
    void build() override {}
    void clear() override;
    void resize(int width, int height) override;

protected:
    ~ContainerHUD() override = default;

    osg::ref_ptr<osg::Group> group;
    std::vector<osg::ref_ptr<AbstractHUD>> children;
};
