#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"

#include <QObject>
#include <QTimer>
#include <osg/ref_ptr>

class ShaderProgram;

/// A block with something floating above it that the ball takes by touching the block: coins or
/// lives, given or taken away, or a weight, which frees the ball of gravity for some seconds. What
/// is taken comes back after ten seconds. Its timer's steps run on the main thread between the
/// ticks, with the world lock held.
class BlockItem : public QObject, public Block
{
    Q_OBJECT

public:
    BlockItem(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Takes the item, if it is there.
    void onBallContact(Ball* ball) override;

    /// The item is back; a weight that was at work lets the ball fall again.
    void reset() override;

    std::vector<Hovering> hovering() const override;

protected:
    ~BlockItem() override;

private:
    void startTimer(int milliseconds, void (BlockItem::*slot)());
    class BlockItemCallback;

    void createDisplay(int count);
    void rememberDisplay(int count);
    void endWeight();
    void setBallMotion(unsigned int motion);

    ItemKind kind;
    QTimer timer;
    double amount;
    bool collected = false;
    std::vector<Hovering> shown;
    osg::ref_ptr<ShaderProgram> itemProgram;
};
