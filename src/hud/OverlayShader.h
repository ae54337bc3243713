#pragma once

#include <osg/ref_ptr>

#include <string>

class ShaderProgram;
namespace osg {
class Node;
}

/// Gives an element's Geode a program of its own by a recipe; it reads texture unit 0 as
/// `sampler`. It is drawn with for as long as the result is held.
osg::ref_ptr<ShaderProgram> installOverlayShader(osg::Node& node, const std::string& programName,
                                                 const std::string& sampler);
