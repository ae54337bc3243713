#pragma once

#include <QImage>
#include <osg/Camera>
#include <osg/ref_ptr>

/// Reads back what a camera has drawn, before the buffers are swapped: other windows on the screen
/// and the window's own place on it do not matter.
class FrameGrab
{
public:
    /// Takes the camera's final draw callback.
    explicit FrameGrab(osg::Camera* camera);
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
