#pragma once

#include "hud/AbstractHUD.h"

#include <osg/Vec2f>
#include <osg/Vec4f>
#include <osgText/Text>

#include <string>

class ShaderProgram;

/// One line of text with a white outline. A line that stands alone and would cross an edge of the
/// window is drawn smaller than its size, until it fits.
class TextHUD : public AbstractHUD
{
public:
    TextHUD();

    void init(osg::Group* parent, osgViewer::View* view) override;
    void init(ContainerHUD* container) override;
    void build() override;
    /// Gives the Geode the program that the glyphs are drawn with.
    virtual void initShader();

    void setText(std::string text);
    void setColor(const osg::Vec4f& color);
    /// Height in pixels, where the window has room for it.
    void setCharacterSize(float size);
    /// The anchor, in fractions of the window from its lower left corner.
    void setPosition(osg::Vec2f position);
    /// The point of the text that lies on the anchor.
    void setAlignment(osgText::TextBase::AlignmentType alignment);

    /// For lines in a container, which shrink together or not at all: how much of the line, were it
    /// of this size, the window has room for, at most 1, and how much of its size it is drawn with.
    float roomInWindow(float size) const;
    void setShare(float share);

protected:
    ~TextHUD() override;

    float characterSize = 30.0f;  // pixels
    std::string text;
    osg::Vec2f position{0.0f, 0.0f};
    osgText::TextBase::AlignmentType alignment = osgText::TextBase::CENTER_CENTER;
    osg::Vec4f color{0.0f, 0.0f, 0.0f, 1.0f};

private:
    float drawnSize(float shareOfSize) const;
    float roomFor(const osgText::Text& drawable, float enlarged) const;
    void fitIntoWindow(osgText::Text& drawable) const;

    float share = 1.0f;  // of the size
    osg::ref_ptr<ShaderProgram> shader;
};
