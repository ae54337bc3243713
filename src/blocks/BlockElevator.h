#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"

#include <QObject>
#include <QTimer>

#include <functional>

/// A block that goes up or down through the board and is locked at each end of its way. Nothing
/// moves it along a path: it is a body that the drive of a sliding joint pulls against a stop, and
/// the ball rides on it by contact. An automatic one turns back a second after each end, the others
/// wait for a button. Main thread, world lock held, in its timer's steps as well.
class BlockElevator : public QObject, public Block
{
    Q_OBJECT

public:
    BlockElevator(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Leaves in the other direction, from an end as well as on the way.
    void onSignal(Block* source) override;

    /// Sends the block home.
    void reset() override;

    bool isRestless() const override;
    float lift() const override;

protected:
    ~BlockElevator() override;

private slots:
    void toggle();

private:
    enum Direction : int { Home = -1, Out = 1 };

    void createDrive();
    void update();
    void lockAt(double offset);

    unsigned int driveJointId;
    unsigned int lockJointId;
    bool locked = false;
    QTimer timer;
    const ElevatorOption way;
    int direction = Out;
    std::function<void()> frameTask;
};
