#include "support/SceneSearch.h"

#include <osg/Drawable>
#include <osg/Image>
#include <osg/NodeVisitor>
#include <osg/Texture2D>
#include <osgText/Text>

#include <algorithm>
#include <functional>

namespace {

class Walk : public osg::NodeVisitor
{
public:
    explicit Walk(std::function<void(osg::Node&)> action)
        : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), visit(std::move(action))
    {
        setNodeMaskOverride(~0u);
    }

    void apply(osg::Node& node) override
    {
        visit(node);
        traverse(node);
    }

private:
    std::function<void(osg::Node&)> visit;
};

/// The image of the texture that a node or drawable sets itself; null if it sets none.
const osg::Image* imageOn(osg::Node& node)
{
    if (!node.getStateSet())
        return nullptr;
    const auto* texture = dynamic_cast<osg::Texture2D*>(
        node.getStateSet()->getTextureAttribute(0, osg::StateAttribute::TEXTURE));
    return texture ? texture->getImage() : nullptr;
}

void forEachText(osg::Node* node, const std::function<void(const osgText::Text&)>& action)
{
    Walk walk([&](osg::Node& found) {
        if (const auto* text = dynamic_cast<osgText::Text*>(&found))
            action(*text);
    });
    node->accept(walk);
}

}  // namespace

std::vector<std::string> textsBelow(osg::Node* node, float smallest)
{
    std::vector<std::string> texts;
    forEachText(node, [&](const osgText::Text& text) {
        if (text.getCharacterHeight() >= smallest)
            texts.push_back(text.getText().createUTF8EncodedString());
    });
    return texts;
}

std::vector<std::string> largestTextsBelow(osg::Node* node)
{
    float largest = 0.0f;
    forEachText(node, [&](const osgText::Text& text) {
        largest = std::max(largest, text.getCharacterHeight());
    });
    return textsBelow(node, largest);
}

const osgText::Text* textReading(const std::string& text, osg::Node* node)
{
    const osgText::Text* result = nullptr;
    forEachText(node, [&](const osgText::Text& found) {
        if (!result && found.getText().createUTF8EncodedString() == text)
            result = &found;
    });
    return result;
}

std::vector<std::string> imagesBelow(osg::Node* node)
{
    std::vector<std::string> images;
    Walk walk([&](osg::Node& found) {
        if (const osg::Image* image = imageOn(found))
            images.push_back(image->getFileName());
    });
    node->accept(walk);
    return images;
}

osg::Drawable* drawableOfImage(osg::Node* node, const std::string& file)
{
    osg::Drawable* drawable = nullptr;
    Walk walk([&](osg::Node& found) {
        const osg::Image* image = imageOn(found);
        if (!drawable && image && image->getFileName() == file)
            drawable = found.asDrawable();
    });
    node->accept(walk);
    return drawable;
}

osg::Node* nodeWithUniform(osg::Node* node, const std::string& name)
{
    osg::Node* result = nullptr;
    Walk walk([&](osg::Node& found) {
        if (!result && found.getStateSet() && found.getStateSet()->getUniform(name))
            result = &found;
    });
    node->accept(walk);
    return result;
}

osg::Uniform* uniformBelow(osg::Node* node, const std::string& name)
{
    osg::Node* owner = nodeWithUniform(node, name);
    return owner ? owner->getStateSet()->getUniform(name) : nullptr;
}
