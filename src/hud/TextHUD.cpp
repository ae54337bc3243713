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
constexpr float smallestSize = 1.0f;   // pixels
constexpr float windowMargin = 1.0f;   // pixels that stay free along the window's edges
const osg::Vec4f outlineColor(1.0f, 1.0f, 1.0f, 1.0f);

// For a file that is missing, any font of the system may be handed out.
bool isOwnFont(const osgText::Font* font)
{
    return font &&
           osgDB::getSimpleFileName(font->getFileName()) == osgDB::getSimpleFileName(fontFile);
}

void setSize(osgText::Text& drawable, float size)
{
    drawable.setCharacterSize(size);
    // A texel of the glyphs' atlas for each pixel: the default would blur the large lines. So
    // nothing is ever drawn smaller than it is in the atlas, and mipmaps would only cost.
    const unsigned int resolution =
        static_cast<unsigned int>(std::ceil(std::max(size, smallestSize)));
    drawable.setFontResolution(resolution, resolution);
}

/// How much of a text that reaches from `low` to `high` around its anchor there is room for between
/// 0 and `room`, at most 1. On a side where the anchor itself leaves none no size would help: it
/// does not count.
float roomAround(float anchor, float low, float high, float room)
{
    const float below = anchor - windowMargin;
    const float above = room - windowMargin - anchor;
    float share = 1.0f;
    if (below > 0.0f && anchor - low > below)
        share = below / (anchor - low);
    if (above > 0.0f && high - anchor > above)
        share = std::min(share, above / (high - anchor));
    return share;
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
    setSize(*drawable, drawnSize(share));
    const osg::ref_ptr<osgText::Font> font = osgText::readRefFontFile(fontFile);
    if (font)
        font->setMinFilterHint(osg::Texture::LINEAR);
    if (isOwnFont(font))
        noteReadable(fontFile);
    else
        reportUnreadable("font", fontFile, "I write with what I have.");
    drawable->setFont(font);
    drawable->setText(text);
    drawable->setBackdropColor(outlineColor);
    drawable->setBackdropOffset(outlineWidth);
    drawable->setBackdropImplementation(osgText::Text::STENCIL_BUFFER);
    drawable->setBackdropType(osgText::Text::OUTLINE);
    drawable->setAxisAlignment(osgText::TextBase::SCREEN);
    // Whole pixels keep the glyphs sharp.
    const int x = int(getWidth() * position.x());
    const int y = int(getHeight() * position.y());
    drawable->setPosition(osg::Vec3(x, y, 0));
    drawable->setColor(color);
    drawable->setAlignment(alignment);
    // The lines of a menu tell by their sizes which of them is chosen: only who stands alone
    // shrinks by itself.
    if (!inContainer)
        fitIntoWindow(*drawable);
}

float TextHUD::drawnSize(float shareOfSize) const
{
    // Whole pixels keep the glyphs sharp.
    return shareOfSize < 1.0f ? std::max(std::floor(characterSize * shareOfSize), smallestSize)
                              : characterSize;
}

float TextHUD::roomFor(const osgText::Text& drawable, float enlarged) const
{
    const osg::Vec3& anchor = drawable.getPosition();
    const osg::Vec3 low = anchor + (drawable.getBoundingBox()._min - anchor) * enlarged;
    const osg::Vec3 high = anchor + (drawable.getBoundingBox()._max - anchor) * enlarged;
    return std::min(roomAround(anchor.x(), low.x(), high.x(), float(getWidth())),
                    roomAround(anchor.y(), low.y(), high.y(), float(getHeight())));
}

void TextHUD::fitIntoWindow(osgText::Text& drawable) const
{
    float size = characterSize;
    while (size > smallestSize) {
        const float room = roomFor(drawable, 1.0f);
        if (room >= 1.0f)
            return;
        // The widths of glyphs do not shrink evenly with their size.
        size = std::max(std::min(std::floor(size * room), size - 1.0f), smallestSize);
        setSize(drawable, size);
    }
}

float TextHUD::roomInWindow(float size) const
{
    const osg::Drawable* const drawable =
        geode && geode->getNumDrawables() > 0 ? geode->getDrawable(0) : nullptr;
    const auto* const line = dynamic_cast<const osgText::Text*>(drawable);
    return line ? roomFor(*line, size / characterSize) : 1.0f;
}

void TextHUD::setShare(float newShare)
{
    if (share == newShare)
        return;
    share = newShare;
    refresh();
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
