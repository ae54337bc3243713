#pragma once

#include "level/Block.h"

#include <string>

/// A block that writes down what it hears. It has a body of its own at a cell of the board, of the
/// shape of `value`; the default value gives it none.
class ProbeBlock : public Block
{
public:
    explicit ProbeBlock(Level& owner, float cellX = 0.0f, float cellY = 0.0f, int value = 0,
                        bool dynamic = true)
        : Block(owner, cellX, cellY, 0, value, ownGroup(), dynamic, "Standard")
    {
    }

    void onBallContact(Ball*) override { heard += "contact "; }
    void onBallEnter(Ball*) override { heard += "enter "; }
    void onBallLeave(Ball*) override { heard += "leave "; }
    void onSignal(Block*) override { heard += "signal "; }
    void reset() override { heard += "reset "; }

    using Block::fixToBoard;
    using Block::highHeight;
    using Block::lowHeight;
    using Block::slope;

    std::string heard;

protected:
    ~ProbeBlock() override = default;

private:
    static BlockGroup& ownGroup()
    {
        static BlockGroup none;
        return none;
    }
};
