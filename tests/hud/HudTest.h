#pragma once

#include "hud/AbstractHUD.h"
#include "support/OffscreenView.h"

#include <gtest/gtest.h>
#include <osg/Geometry>
#include <osg/Image>
#include <osg/Vec3i>
#include <osgText/Text>

#include <algorithm>
#include <cstdlib>
#include <string>

constexpr int windowWidth = 800;   // pixels
constexpr int windowHeight = 600;  // pixels

/// The folder that the tests of this program run in. Its data/ holds copies of the overlay's files,
/// which a test may spoil and has to put back.
std::string hudFolder();
/// Writes a picture into it, of solid colour or as `image` says; the name is the element's.
void writesPicture(const std::string& name, const osg::Image& image);
void writesPicture(const std::string& name, int width, int height, const osg::Vec4& color);

/// A window of the game's size and blue, in which elements are shown and looked at.
class HudTest : public ::testing::Test
{
protected:
    HudTest() { offscreen.setBackground({0.2f, 0.2f, 0.6f, 1.0f}); }

    template <class Element>
    osg::ref_ptr<Element> prepared(osg::ref_ptr<Element> element)
    {
        element->init(offscreen.root(), offscreen.view());
        return element;
    }

    template <class Element>
    osg::ref_ptr<Element> shown(osg::ref_ptr<Element> element)
    {
        prepared(element)->show();
        return element;
    }

    bool isRegistered(AbstractHUD* element)
    {
        const auto& handlers = offscreen.view()->getEventHandlers();
        return std::find(handlers.begin(), handlers.end(), element) != handlers.end();
    }

    /// In pixels, from the lower left corner; right and top lie outside. Empty when nothing is
    /// drawn.
    struct Extent
    {
        int left = windowWidth;
        int bottom = windowHeight;
        int right = 0;
        int top = 0;

        bool isEmpty() const { return right <= left; }
    };

    /// Draws a frame; what differs from the background in it.
    Extent drawnExtent()
    {
        offscreen.draw();
        Extent extent;
        for (int y = 0; y < windowHeight; ++y) {
            for (int x = 0; x < windowWidth; ++x) {
                if (isNear(offscreen.pixel(x, y), background))
                    continue;
                extent.left = std::min(extent.left, x);
                extent.right = std::max(extent.right, x + 1);
                extent.bottom = std::min(extent.bottom, y);
                extent.top = std::max(extent.top, y + 1);
            }
        }
        return extent;
    }

    static bool isNear(const osg::Vec3i& a, const osg::Vec3i& b, int tolerance = 12)
    {
        return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance &&
               std::abs(a.z() - b.z()) <= tolerance;
    }

    const osg::Vec3i background{51, 51, 153};
    OffscreenView offscreen{windowWidth, windowHeight};
};

/// The text that an element has built, or null.
inline osgText::Text* textOf(AbstractHUD& element)
{
    return element.getGeode()->getNumDrawables() == 0
               ? nullptr
               : dynamic_cast<osgText::Text*>(element.getGeode()->getDrawable(0));
}

/// The lower left and upper right corner of the quad that an element has built.
inline osg::BoundingBox quadOf(AbstractHUD& element)
{
    return element.getGeode()->getNumDrawables() == 0
               ? osg::BoundingBox()
               : element.getGeode()->getDrawable(0)->getBoundingBox();
}
