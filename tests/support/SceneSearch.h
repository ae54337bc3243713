#pragma once

#include <gtest/gtest.h>
#include <osg/Node>
#include <osg/Uniform>

#include <string>
#include <vector>

namespace osgText {
class Text;
}

/// What hangs below a node, whether or not it is drawn.

/// The lines of text of at least this size, in the order of the tree.
std::vector<std::string> textsBelow(osg::Node* node, float smallest = 0.0f);
/// The largest lines of text, in the order of the tree: with a menu up, its title and the line that
/// is selected.
std::vector<std::string> largestTextsBelow(osg::Node* node);
/// The first line of text that reads so; null if there is none.
const osgText::Text* textReading(const std::string& text, osg::Node* node);
/// The file names of the textures' images, in the order of the tree.
std::vector<std::string> imagesBelow(osg::Node* node);
/// The first drawable of a texture with an image of this file name; null if there is none.
osg::Drawable* drawableOfImage(osg::Node* node, const std::string& file);
/// The first uniform of this name; null if there is none.
osg::Uniform* uniformBelow(osg::Node* node, const std::string& name);
/// The first node whose own state set holds a uniform of this name; null if there is none.
osg::Node* nodeWithUniform(osg::Node* node, const std::string& name);

/// A uniform's value; the test fails if it is absent or of another type.
template <typename Value>
Value valueOf(osg::Uniform* uniform)
{
    Value value = Value();
    if (!uniform || !uniform->get(value))
        ADD_FAILURE() << "no such uniform, or of another type";
    return value;
}
