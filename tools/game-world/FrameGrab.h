#pragma once

#include <QImage>
#include <osg/Camera>
#include <osg/ref_ptr>

/// Reads back what a camera has drawn, before the buffers are swapped: other windows on the screen
/// and the window's own place on it do not matter.
class FrameGrab
{
public:
    /// Of the samples of a pixel: the first, which is exact, or the mean of all, as the window
    /// shows it.
    enum class Samples { First, All };

    /// Takes the camera's final draw callback.
    explicit FrameGrab(osg::Camera* camera, Samples samples = Samples::First);
    ~FrameGrab();

    FrameGrab(const FrameGrab&) = delete;
    FrameGrab& operator=(const FrameGrab&) = delete;

    /// The latest frame, top row first; null before the first one.
    QImage image() const;

private:
    class ReadBack;

    osg::ref_ptr<osg::Camera> camera;
    osg::ref_ptr<ReadBack> readBack;
};
