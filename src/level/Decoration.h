#pragma once

#include "level/BlockShape.h"
#include "shaders/ShaderProgram.h"

#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>
#include <osgParticle/Particle>
#include <osgParticle/range>

#include <string>
#include <vector>

namespace osg {
class Group;
class Node;
}  // namespace osg

class Rollix;

// What blocks hang on themselves besides their body. Each of these programs is drawn with for as
// long as the caller keeps it.

/// The program of this recipe on `node`, one for all nodes that ask for it: each has to set every
/// uniform of it.
osg::ref_ptr<ShaderProgram> addProgram(osg::Node* node, const std::string& programName,
                                       Rollix* game);

/// A picture let into the upper face of a block, which says what the block does.
enum class InlayKind : int { Mine = 0, Portal = 1 };

/// Adds the picture to `parent`, the transform of a block of these corners over its own origin; one
/// that points somewhere points along `direction` on the board. The result is its program.
osg::ref_ptr<ShaderProgram> addInlay(osg::Group* parent, InlayKind kind,
                                     const CornerHeights& corners, const osg::Vec3f& direction,
                                     Rollix* game);

/// A fountain that never runs dry. Positions and directions in the frame of the node that it hangs
/// on.
struct Sparks
{
    osgParticle::Particle::Shape shape = osgParticle::Particle::QUAD;  // as the library has it
    osgParticle::rangef size;        // from a spark's birth to its end
    osgParticle::rangev4 color;      // likewise
    osgParticle::rangef rate;        // sparks a second
    std::vector<osg::Vec3f> source;  // corners of the line on which sparks are born
    osg::Vec3f wind;
};

/// Adds the fountain to `parent`; the result is the sparks' program.
osg::ref_ptr<ShaderProgram> addSparks(osg::Group* parent, const Sparks& sparks, Rollix* game);
