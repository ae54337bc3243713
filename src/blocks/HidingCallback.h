#pragma once

#include <osg/Callback>
#include <osg/NodeVisitor>

/// A cull callback: what it sits on is not drawn while a flag of its block is set.
template <typename Owner, bool Owner::*hidden>
class HidingCallback : public osg::NodeCallback
{
public:
    explicit HidingCallback(Owner* owner) : block(owner) {}

    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override
    {
        if (!(block->*hidden))
            traverse(node, visitor);
    }

private:
    Owner* block;  // not owned: the block owns the node that the callback sits on
};
