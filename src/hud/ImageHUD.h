#pragma once

#include "hud/AbstractHUD.h"

#include <osg/Vec2f>
#include <osgText/TextBase>

#include <string>

class ShaderProgram;

/// One picture from a file, on a quad. Until it is told an alignment, its centre lies on the
/// anchor.
class ImageHUD : public AbstractHUD
{
public:
    ImageHUD();

    void init(osg::Group* parent, osgViewer::View* view) override;
    void init(ContainerHUD* container) override;
    /// Reads the file each time. What cannot be read is reported once and not drawn.
    void build() override;

    void setImage(std::string file);
    /// The anchor, in fractions of the window from its lower left corner.
    void setPosition(osg::Vec2f position);
    /// Fractions of the window's width and height. Where one is 0 it follows from the other and the
    /// picture's proportions; where both are, the picture is drawn pixel by pixel.
    void setSize(osg::Vec2f size);
    /// The point of the picture that lies on the anchor: one of the first nine values.
    void setAlignment(int alignment);

protected:
    ~ImageHUD() override;

    std::string imageFile;
    osg::Vec2f position{0.0f, 0.0f};
    osg::Vec2f size{0.0f, 0.0f};
    int alignment = osgText::TextBase::CENTER_CENTER;

private:
    void initShader();

    osg::ref_ptr<ShaderProgram> shader;
};
