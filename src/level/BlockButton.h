#pragma once

#include "level/Block.h"
#include "level/BlockOptions.h"
#include "level/UniformAnimation.h"

#include <QObject>
#include <osg/Geode>
#include <osg/Vec4f>

#include <memory>

class ShaderProgram;

/// A round push button on top of a block. The ball's touch sends a signal to every block of the
/// link group; who does not listen ignores it. Colour and cap are animated by the shaders alone.
class BlockButton : public QObject, public Block
{
    Q_OBJECT

public:
    BlockButton(Level& level, float x, float y, int saturation, int value, BlockGroup& group);

    /// Fires unless the button is used up or cooling down.
    void onBallContact(Ball* ball) override;

    /// Arms the button. A cool-down that is under way still ends in its time, and a timed button
    /// then signals once more.
    void reset() override;

public slots:
    /// The end of the cool-down. Main thread, between ticks, world lock held.
    void cooledDown();

protected:
    ~BlockButton() override;

private:
    void createCap();
    void signalGroup();
    void setPressed(bool down);
    osg::Vec4f grey() const;

    const ButtonOption option;
    const osg::Vec4f fullColor;
    bool pressed = false;
    bool busy = false;
    osg::ref_ptr<osg::Geode> capGeode;
    osg::ref_ptr<ShaderProgram> capShader;
    std::unique_ptr<UniformAnimation<osg::Vec3f>> pose;
    std::unique_ptr<UniformAnimation<osg::Vec4f>> color;
};
