#include "platform/osgqt/GLWidget.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "shaders/ShaderProgram.h"

#include <gtest/gtest.h>
#include <osg/GLExtensions>
#include <osg/Group>
#include <osg/State>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

/// A stage as the game puts it together: its file and the files and code pasted into it.
struct Stage
{
    std::string file;
    std::vector<std::string> injectedFiles;
    std::string injectedCode;
};

/// A program of the game. An empty file is a stage that it does not have.
struct Program
{
    std::string name;
    Stage vertex;
    Stage geometry;
    Stage fragment;
};

void PrintTo(const Program& program, std::ostream* out)
{
    *out << program.name;
}

const Stage none{"", {}, ""};
const Stage boardVertex{
    "data/Rollix/boardShader.vert", {"data/rotation.glsl", "data/phong_vert.glsl"}, ""};

const std::vector<Program> programs{
    {"Standard",
     {"data/Rollix/standardShader.vert", {}, ""},
     none,
     {"data/Rollix/standardShader.frag", {}, ""}},
    {"Board",
     boardVertex,
     none,
     {"data/Rollix/boardShader.frag",
      {"data/classicnoise3D.glsl", "data/wood.glsl", "data/phong_frag.glsl"},
      ""}},
    {"Ghost",
     boardVertex,
     none,
     {"data/Rollix/ghostShader.frag",
      {"data/classicnoise3D.glsl", "data/wood.glsl", "data/easeFunctions.glsl",
       "data/phong_frag.glsl"},
      ""}},
    {"Ball",
     {"data/Rollix/standardShader.vert", {"data/phong_vert-withgeom.glsl"}, "phong();"},
     {"data/Rollix/portalBallShader.geom", {}, ""},
     {"data/Rollix/portalBallShader.frag", {"data/phong_frag.glsl"}, ""}},
    {"Flag",
     {"data/Rollix/flagShader.vert", {"data/easeFunctions.glsl"}, ""},
     none,
     {"data/Rollix/flagShader.frag", {}, ""}},
    {"ButtonCap",
     {"data/Rollix/animationShader.vert", {"data/easeFunctions.glsl", "data/phong_vert.glsl"}, ""},
     none,
     {"data/Rollix/animationShader.frag", {"data/easeFunctions.glsl", "data/phong_frag.glsl"}, ""}},
    {"Item",
     {"data/Rollix/itemShader.vert", {"data/phong_vert.glsl", "data/rotation.glsl"}, ""},
     none,
     {"data/Rollix/itemShader.frag", {"data/phong_frag.glsl"}, ""}},
    {"Mine",
     {"data/Rollix/mineShader.vert", {"data/phong_vert.glsl"}, "phong();"},
     none,
     {"data/Rollix/mineShader.frag", {"data/phong_frag.glsl"}, ""}},
    {"Text", {"data/textShader.vert", {}, ""}, none, {"data/textShader.frag", {}, ""}},
    {"Image", {"data/imageShader.vert", {}, ""}, none, {"data/imageShader.frag", {}, ""}},
};

class ShaderFiles : public ::testing::TestWithParam<Program>
{
protected:
    void SetUp() override
    {
        widget = std::make_unique<osgQt::GLWidget>(nullptr, nullptr, Qt::WindowFlags(), false);
        window = new osgQt::GraphicsWindowQt(widget.get());
        widget->show();
        ASSERT_TRUE(window->valid());
        window->realize();
        ASSERT_TRUE(window->makeCurrent());
        state().initializeExtensionProcs();
        // As the game draws: names of the fixed pipeline become uniforms and attributes of our own.
        state().setUseModelViewAndProjectionUniforms(true);
        state().setUseVertexAttributeAliasing(true);
    }

    void TearDown() override
    {
        shader = nullptr;
        window->releaseContext();
        window = nullptr;
        widget.reset();
    }

    osg::State& state() { return *window->getState(); }

    void assemble(const Program& parts)
    {
        shader = new ShaderProgram(node);
        shader->setVertexShader(stage(parts.vertex, GL_VERTEX_SHADER));
        if (!parts.geometry.file.empty())
            shader->setGeometryShader(stage(parts.geometry, GL_GEOMETRY_SHADER));
        shader->setFragmentShader(stage(parts.fragment, GL_FRAGMENT_SHADER));
    }

    static ShaderProgram::Shader* stage(const Stage& parts, unsigned int type)
    {
        auto* made = new ShaderProgram::Shader(parts.file, type);
        for (const std::string& file : parts.injectedFiles)
            made->addFileInjection(file, "//HOTSPOT_PRE_MAIN");
        if (!parts.injectedCode.empty())
            made->addCodeInjection(parts.injectedCode, "//HOTSPOT_START_MAIN");
        return made;
    }

    std::unique_ptr<osgQt::GLWidget> widget;
    osg::ref_ptr<osgQt::GraphicsWindowQt> window;
    osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::ref_ptr<ShaderProgram> shader;
};

TEST_P(ShaderFiles, CompileWithTheirInjectionsAndLinkToOneProgram)
{
    assemble(GetParam());
    for (unsigned int i = 0; i < shader->program->getNumShaders(); ++i) {
        osg::Shader* one = shader->program->getShader(i);
        osg::Shader::PerContextShader* compiled = one->getPCS(state());
        compiled->compileShader(state());
        std::string log;
        compiled->getInfoLog(log);
        EXPECT_TRUE(compiled->isCompiled()) << one->getName() << ":\n" << log;
    }
    shader->program->compileGLObjects(state());
    const osg::Program::PerContextProgram* linked = shader->program->getPCP(state());
    std::string log;
    linked->getInfoLog(log);
    EXPECT_TRUE(linked->isLinked())
        << GetParam().vertex.file << " with " << GetParam().fragment.file << ":\n"
        << log;
}

INSTANTIATE_TEST_SUITE_P(OfEveryProgram, ShaderFiles, ::testing::ValuesIn(programs),
                         [](const ::testing::TestParamInfo<Program>& program) {
                             return program.param.name;
                         });

TEST(ShaderMarkers, StandOnALineOfTheirOwnInEveryStage)
{
    for (const Program& program : programs) {
        for (const Stage& one : {program.vertex, program.geometry, program.fragment}) {
            if (one.file.empty())
                continue;
            for (const char* marker : {"//HOTSPOT_PRE_MAIN", "//HOTSPOT_START_MAIN"}) {
                SCOPED_TRACE(one.file + " " + marker);
                int found = 0;
                for (const QString& line : readTextFile(one.file).split('\n')) {
                    if (line.contains(marker)) {
                        EXPECT_EQ(line.trimmed(), marker);
                        ++found;
                    }
                }
                EXPECT_EQ(found, 1);
            }
        }
    }
}

}  // namespace
