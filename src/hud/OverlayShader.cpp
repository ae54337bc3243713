#include "hud/OverlayShader.h"

#include "shaders/ShaderProgram.h"
#include "shaders/StageRecipes.h"

#include <osg/StateSet>
#include <osg/Uniform>

osg::ref_ptr<ShaderProgram> installOverlayShader(osg::Node& node, const std::string& programName,
                                                 const std::string& sampler)
{
    osg::ref_ptr<ShaderProgram> shader = new ShaderProgram(&node);
    osg::StateSet* state = node.getOrCreateStateSet();
    // A text drawable brings a program of its own, which knows nothing of this one's files.
    state->setAttributeAndModes(shader->program,
                                osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE);
    state->addUniform(new osg::Uniform(sampler.c_str(), 0));
    setOwnStages(*shader, programName);
    return shader;
}
