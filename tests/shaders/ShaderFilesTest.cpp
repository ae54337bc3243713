#include "platform/osgqt/GLWidget.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "shaders/StageRecipes.h"

#include <QDir>
#include <gtest/gtest.h>
#include <osg/GLExtensions>
#include <osg/Group>
#include <osg/State>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

class ShaderFiles : public ::testing::TestWithParam<std::string>
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

    std::unique_ptr<osgQt::GLWidget> widget;
    osg::ref_ptr<osgQt::GraphicsWindowQt> window;
    osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::ref_ptr<ShaderProgram> shader;
};

TEST_P(ShaderFiles, CompileWithTheirInjectionsAndLinkToOneProgram)
{
    shader = new ShaderProgram(node);
    setOwnStages(*shader, GetParam());
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
    EXPECT_TRUE(linked->isLinked()) << programRecipe(GetParam()).vertexStage << " with "
                                    << programRecipe(GetParam()).fragmentStage << ":\n"
                                    << log;
}

std::vector<std::string> programNames()
{
    std::vector<std::string> names;
    for (const ProgramRecipe& recipe : programRecipes())
        names.push_back(recipe.name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(OfEveryProgram, ShaderFiles, ::testing::ValuesIn(programNames()),
                         [](const ::testing::TestParamInfo<std::string>& program) {
                             return program.param;
                         });

TEST(StageRecipes, AreEachPartOfAProgram)
{
    std::set<std::string> linked;
    for (const ProgramRecipe& program : programRecipes())
        linked.insert({program.vertexStage, program.geometryStage, program.fragmentStage});
    for (const StageRecipe& stage : stageRecipes())
        EXPECT_EQ(linked.count(stage.name), 1u) << stage.name;
}

TEST(StageRecipes, UseEveryPieceOfSharedText)
{
    std::set<std::string> used;
    for (const StageRecipe& stage : stageRecipes()) {
        used.insert(stage.file);
        used.insert(stage.preMainFiles.begin(), stage.preMainFiles.end());
    }
    for (const char* folder : {"data", "data/Rollix"}) {
        const QDir files(folder);
        for (const QString& name : files.entryList({"*.vert", "*.geom", "*.frag", "*.glsl"}))
            EXPECT_EQ(used.count(files.filePath(name).toStdString()), 1u) << name.toStdString();
    }
}

TEST(ShaderMarkers, StandOnALineOfTheirOwnInEveryStage)
{
    for (const StageRecipe& stage : stageRecipes()) {
        for (const char* marker : {"//HOTSPOT_PRE_MAIN", "//HOTSPOT_START_MAIN"}) {
            SCOPED_TRACE(stage.file + " " + marker);
            int found = 0;
            for (const QString& line : readTextFile(stage.file).split('\n')) {
                if (line.contains(marker)) {
                    EXPECT_EQ(line.trimmed(), marker);
                    ++found;
                }
            }
            EXPECT_EQ(found, 1);
        }
    }
}

}  // namespace
