#include "hud/TextHUD.h"

#include "base/UnreadableFile.h"
#include "hud/OverlayShader.h"
#include "shaders/ShaderProgram.h"

#include <osgDB/FileNameUtils>
#include <osgText/Font>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr const char* fontFile = "data/Bevan.ttf";
constexpr float outlineWidth = 0.05f;  // of the character size
const osg::Vec4f outlineColor(1.0f, 1.0f, 1.0f, 1.0f);

// For a file that is missing, any font of the system may be handed out.
bool isOwnFont(const osgText::Font* font)
{
    return font &&
           osgDB::getSimpleFileName(font->getFileName()) == osgDB::getSimpleFileName(fontFile);
}

}  // namespace

TextHUD::TextHUD() = default;
TextHUD::~TextHUD() = default;

void TextHUD::init(osg::Group* parentGroup, osgViewer::View* parentView)
{
    AbstractHUD::init(parentGroup, parentView);
    initShader();
}

void TextHUD::init(ContainerHUD* parentContainer)
{
    AbstractHUD::init(parentContainer);
    initShader();
}

void TextHUD::initShader()
{
    shader = installOverlayShader(*geode, "text", "GlyphTexture");
}

void TextHUD::build()
{
    osg::ref_ptr<osgText::Text> drawable = new osgText::Text;
    geode->addDrawable(drawable);
    drawable->setCharacterSize(characterSize);
    // A texel of the glyphs' atlas for each pixel: the default would blur the large lines. So
    // nothing is ever drawn smaller than it is in the atlas, and mipmaps would only cost.
    const unsigned int resolution =
        static_cast<unsigned int>(std::ceil(std::max(characterSize, 1.0f)));
    drawable->setFontResolution(resolution, resolution);
    const osg::ref_ptr<osgText::Font> font = osgText::readRefFontFile(fontFile);
    if (font)
        font->setMinFilterHint(osg::Texture::LINEAR);
    if (!isOwnFont(font))
        reportUnreadable("font", fontFile, "I write with what I have.");
    drawable->setFont(font);
    drawable->setText(text);
    drawable->setBackdropColor(outlineColor);
    drawable->setBackdropOffset(outlineWidth);
    drawable->setBackdropImplementation(osgText::Text::STENCIL_BUFFER);
    drawable->setBackdropType(osgText::Text::OUTLINE);
    drawable->setAxisAlignment(osgText::TextBase::SCREEN);
    // Whole pixels keep the glyphs sharp.
    const int x = static_cast<int>(getWidth() * position.x());
    const int y = static_cast<int>(getHeight() * position.y());
    drawable->setPosition(osg::Vec3(x, y, 0));
    drawable->setColor(color);
    drawable->setAlignment(alignment);
}

void TextHUD::setText(std::string newText)
{
    text = std::move(newText);
    refresh();
}

void TextHUD::setColor(const osg::Vec4f& newColor)
{
    color = newColor;
    refresh();
}

void TextHUD::setCharacterSize(float size)
{
    characterSize = size;
    refresh();
}

void TextHUD::setPosition(osg::Vec2f newPosition)
{
    position = newPosition;
    refresh();
}

void TextHUD::setAlignment(osgText::TextBase::AlignmentType newAlignment)
{
    alignment = newAlignment;
    refresh();
}
