#pragma once

#include <osg/Group>
#include <osg/Image>
#include <osg/Vec3i>
#include <osg/ref_ptr>
#include <osgViewer/CompositeViewer>
#include <osgViewer/View>

#include <string>

/// A view without a window, with the OpenGL state of the game's widget: what is hung under its root
/// can be drawn and looked at pixel by pixel.
class OffscreenView
{
public:
    OffscreenView(int width, int height);

    osgViewer::View* view() { return view_.get(); }
    osg::Group* root() { return root_.get(); }
    void setBackground(const osg::Vec4& color);

    /// Dispatches events, updates and renders one frame.
    void draw();

    /// Red, green and blue, 0 to 255, of a pixel of the last frame; from the lower left corner.
    osg::Vec3i pixel(int x, int y) const;

    /// Tells the event handlers, at the next frame, that the window has a new size.
    void resizeWindow(int width, int height);

    /// For looking at: writes the last frame as a picture.
    void save(const std::string& path) const;

private:
    osg::ref_ptr<osgViewer::CompositeViewer> viewer;
    osg::ref_ptr<osgViewer::View> view_;
    osg::ref_ptr<osg::Group> root_;
    osg::ref_ptr<osg::Image> frame;
};
