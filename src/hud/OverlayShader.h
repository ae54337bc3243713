#pragma once

#include <osg/ref_ptr>

#include <string>

class ShaderProgram;
namespace osg {
class Node;
}

/// Gives an element's Geode the program data/<name>.vert and .frag, which reads texture unit 0 as
/// `sampler`. It is drawn with for as long as the result is held.
osg::ref_ptr<ShaderProgram> installOverlayShader(osg::Node& node, const std::string& name,
                                                 const std::string& sampler);
