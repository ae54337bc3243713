#include "shaders/ShaderProgram.h"

#include "support/EventLoop.h"
#include "support/OffscreenView.h"
#include "support/OutputCapture.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/observer_ptr>

#include <string>

namespace {

constexpr const char* preMain = "//HOTSPOT_PRE_MAIN";

class ShaderProgramTest : public ::testing::Test
{
protected:
    std::string writesFile(const std::string& name, const std::string& text)
    {
        const std::string path = pathOf(name);
        QFile file(QString::fromStdString(path));
        EXPECT_TRUE(file.open(QFile::WriteOnly | QFile::Truncate));
        file.write(QByteArray::fromStdString(text));
        return path;
    }

    // As editors do: the old text or the new one can be read, and nothing in between.
    void savesFile(const std::string& name, const std::string& text)
    {
        writesFile(name + ".new", text);
        ASSERT_EQ(std::rename(pathOf(name + ".new").c_str(), pathOf(name).c_str()), 0);
    }

    std::string pathOf(const std::string& name) const
    {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }

    static std::string sourceOf(const ShaderProgram::Shader& stage)
    {
        return stage.shader->getShaderSource();
    }

    // The notices of the files' removal belong to no later test.
    void TearDown() override
    {
        OutputCapture output;
        directory.remove();
        QCoreApplication::processEvents();
    }

    QTemporaryDir directory;
};

using Shader = ShaderProgram::Shader;
using CodeInjection = ShaderProgram::CodeInjection;
using CodeFileInjection = ShaderProgram::CodeFileInjection;

}  // namespace

TEST_F(ShaderProgramTest, ReadsAWholeTextFileAndNothingFromAnAbsentOne)
{
    OutputCapture output;
    const std::string text(5000, 'x');
    EXPECT_EQ(readTextFile(writesFile("long.txt", text)).toStdString(), text);
    EXPECT_EQ(readTextFile(pathOf("absent.txt")), QString());
    EXPECT_EQ(readTextFile(directory.path().toStdString()), QString());
    EXPECT_EQ(output.text(), "");
}

TEST_F(ShaderProgramTest, InstallsItselfOnTheNodeAndGoesWithItsLastHolder)
{
    osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::ref_ptr<ShaderProgram> program = new ShaderProgram(node);
    EXPECT_EQ(node->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM),
              program->program.get());

    program = nullptr;

    EXPECT_EQ(node->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM), nullptr);
}

TEST_F(ShaderProgramTest, InstallsItselfOnANodeThatNobodyHoldsYet)
{
    osg::Group* fresh = new osg::Group;
    osg::ref_ptr<ShaderProgram> program = new ShaderProgram(fresh);
    osg::Group* another = new osg::Group;
    osg::ref_ptr<ShaderProgram> sharer = new ShaderProgram(another, program);
    sharer->setVertexShader(writesFile("own.vert", "own"));

    const osg::ref_ptr<osg::Group> node = fresh;
    const osg::ref_ptr<osg::Group> nodeOfSharer = another;
    ASSERT_TRUE(node->getStateSet());
    EXPECT_EQ(node->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM),
              program->program.get());
    ASSERT_TRUE(nodeOfSharer->getStateSet());
    EXPECT_EQ(nodeOfSharer->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM),
              sharer->program.get());
    EXPECT_NE(sharer->program, program->program);
}

TEST_F(ShaderProgramTest, OutlivesItsNode)
{
    osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::ref_ptr<ShaderProgram> program = new ShaderProgram(node);
    node = nullptr;
    program->setVertexShader(writesFile("left.vert", "left"));
    EXPECT_EQ(program->program->getNumShaders(), 1u);
}

TEST_F(ShaderProgramTest, ReplacesAStage)
{
    osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::ref_ptr<ShaderProgram> program = new ShaderProgram(node);
    program->setVertexShader(writesFile("one.vert", "one"));
    program->setFragmentShader(writesFile("one.frag", "fragment"));
    program->setGeometryShader(writesFile("one.geom", "geometry"));
    ASSERT_EQ(program->program->getNumShaders(), 3u);

    osg::ref_ptr<Shader> second = new Shader(writesFile("two.vert", "two"), osg::Shader::VERTEX);
    program->setVertexShader(second);
    program->setVertexShader(second);

    ASSERT_EQ(program->program->getNumShaders(), 3u);
    EXPECT_EQ(program->vertexShader, second);
    EXPECT_EQ(program->program->getShader(2), second->shader.get());
    EXPECT_EQ(second->shader->getType(), osg::Shader::VERTEX);
    EXPECT_EQ(program->geometryShader->shader->getType(), osg::Shader::GEOMETRY);
    EXPECT_EQ(program->fragmentShader->shader->getType(), osg::Shader::FRAGMENT);
}

TEST_F(ShaderProgramTest, SharesAProgramThatOutlivesTheOneItWasMadeBy)
{
    osg::ref_ptr<osg::Group> first = new osg::Group;
    osg::ref_ptr<osg::Group> second = new osg::Group;
    osg::ref_ptr<ShaderProgram> maker = new ShaderProgram(first);
    maker->setVertexShader(writesFile("one.vert", "one"));
    osg::ref_ptr<ShaderProgram> sharer = new ShaderProgram(second, maker);
    EXPECT_EQ(sharer->vertexShader, maker->vertexShader);
    EXPECT_EQ(second->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM),
              maker->program.get());

    maker = nullptr;
    EXPECT_EQ(sharer->program->getNumShaders(), 1u);

    osg::observer_ptr<osg::Program> program = sharer->program.get();
    sharer = nullptr;
    EXPECT_EQ(first->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM), nullptr);
    EXPECT_EQ(second->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM), nullptr);
    EXPECT_FALSE(program.valid());
}

TEST_F(ShaderProgramTest, EndsTheSharingWithAStageOfItsOwn)
{
    osg::ref_ptr<osg::Group> first = new osg::Group;
    osg::ref_ptr<osg::Group> second = new osg::Group;
    osg::ref_ptr<ShaderProgram> maker = new ShaderProgram(first);
    maker->setVertexShader(writesFile("one.vert", "one"));
    maker->setFragmentShader(writesFile("one.frag", "fragment"));
    osg::ref_ptr<ShaderProgram> sharer = new ShaderProgram(second, maker);

    sharer->setVertexShader(writesFile("two.vert", "two"));

    EXPECT_NE(sharer->program, maker->program);
    EXPECT_EQ(second->getStateSet()->getAttribute(osg::StateAttribute::PROGRAM),
              sharer->program.get());
    EXPECT_EQ(sharer->program->getNumShaders(), 2u);
    EXPECT_EQ(maker->program->getNumShaders(), 2u);
    EXPECT_NE(sharer->vertexShader, maker->vertexShader);
    EXPECT_EQ(sharer->fragmentShader, maker->fragmentShader);
}

TEST_F(ShaderProgramTest, LeavesNothingBehindOfAGroupThatKeepsItsOwnProgram)
{
    osg::ref_ptr<ShaderProgram::ShaderGroup> group = new ShaderProgram::ShaderGroup;
    group->shaderProgram = new ShaderProgram(group);
    group->shaderProgram->setVertexShader(writesFile("group.vert", "text"));
    osg::observer_ptr<ShaderProgram> program = group->shaderProgram.get();
    osg::observer_ptr<Shader> stage = group->shaderProgram->vertexShader.get();

    group = nullptr;

    EXPECT_FALSE(program.valid());
    EXPECT_FALSE(stage.valid());
}

TEST_F(ShaderProgramTest, PastesTwoFilesAtOneMarkerInTheOrderOfAddition)
{
    osg::ref_ptr<Shader> stage = new Shader(
        writesFile("a.frag", std::string("top\n") + preMain + "\nmain\n"), osg::Shader::FRAGMENT);
    stage->addFileInjection(writesFile("first.glsl", "first"), preMain);
    stage->addFileInjection(writesFile("second.glsl", "second"), preMain);

    EXPECT_EQ(sourceOf(*stage), std::string("top\nfirst\nsecond\n") + preMain + "\nmain\n");

    stage->reload();
    EXPECT_EQ(sourceOf(*stage), std::string("top\nfirst\nsecond\n") + preMain + "\nmain\n");
}

TEST_F(ShaderProgramTest, PastesAtEveryLineThatHoldsTheMarker)
{
    osg::ref_ptr<Shader> stage =
        new Shader(writesFile("b.vert", "//HERE\nmiddle\n//HERE\n//here\n"), osg::Shader::VERTEX);
    stage->addCodeInjection("phong();", "//HERE");

    EXPECT_EQ(sourceOf(*stage), "phong();\n//HERE\nmiddle\nphong();\n//HERE\n//here\n");
}

TEST_F(ShaderProgramTest, LeavesTheSourceAsItIsWhenTheMarkerIsAbsentOrEmpty)
{
    osg::ref_ptr<Shader> stage = new Shader(writesFile("c.vert", "plain\n"), osg::Shader::VERTEX);
    stage->addCodeInjection("code", "//ABSENT");
    stage->addCodeInjection("code", "");

    EXPECT_EQ(sourceOf(*stage), "plain\n");
}

TEST_F(ShaderProgramTest, KeepsMarkersAsPlainCommentsWithoutInjections)
{
    const std::string text = std::string(preMain) + "\nvoid main() {}\n";
    osg::ref_ptr<Shader> stage = new Shader(writesFile("d.vert", text), osg::Shader::VERTEX);
    stage->reload();

    EXPECT_EQ(sourceOf(*stage), text);
    EXPECT_EQ(stage->shader->getFileName(), pathOf("d.vert"));
    EXPECT_EQ(stage->shader->getName(), pathOf("d.vert"));
}

TEST_F(ShaderProgramTest, HoldsNewCodeBackWithoutNotice)
{
    osg::ref_ptr<Shader> stage = new Shader(writesFile("e.frag", "//X\n"), osg::Shader::FRAGMENT);
    osg::ref_ptr<CodeInjection> injection = new CodeInjection("old", "//X");
    stage->addInjection(injection);
    OutputCapture output;

    injection->setCode("new", false);
    EXPECT_EQ(injection->code(), "new");
    EXPECT_EQ(injection->marker(), "//X");
    EXPECT_EQ(sourceOf(*stage), "old\n//X\n");
    EXPECT_EQ(output.text(), "");

    stage->reload();
    EXPECT_EQ(sourceOf(*stage), "new\n//X\n");
}

TEST_F(ShaderProgramTest, AnnouncesNewCodeAndEveryStageThatUsesIt)
{
    osg::ref_ptr<Shader> stage = new Shader(writesFile("f.frag", "//X\n"), osg::Shader::FRAGMENT);
    osg::ref_ptr<CodeInjection> injection = new CodeInjection("old", "//X");
    stage->addInjection(injection);
    OutputCapture output;

    injection->setCode("new", true);

    EXPECT_EQ(sourceOf(*stage), "new\n//X\n");
    EXPECT_EQ(output.text(),
              "CodeInjection changed\nFRAGMENT Shader " + pathOf("f.frag") + " changed\n");
}

TEST_F(ShaderProgramTest, ReloadsAStageWhenItsFileIsSaved)
{
    osg::ref_ptr<Shader> vertex = new Shader(writesFile("g.vert", "old"), osg::Shader::VERTEX);
    osg::ref_ptr<Shader> geometry =
        new Shader(writesFile("g.geom", "other"), osg::Shader::GEOMETRY);
    OutputCapture output;

    savesFile("g.vert", "new");

    ASSERT_TRUE(waitUntil([&] { return sourceOf(*vertex) == "new"; }));
    EXPECT_EQ(output.text(),
              pathOf("g.vert") + " was changed\nVERTEX Shader " + pathOf("g.vert") + " changed\n");
    EXPECT_EQ(sourceOf(*geometry), "other");

    savesFile("g.geom", "newer");
    ASSERT_TRUE(waitUntil([&] { return sourceOf(*geometry) == "newer"; }));
    EXPECT_EQ(output.count("GEOMETRY Shader " + pathOf("g.geom") + " changed\n"), 1);
}

TEST_F(ShaderProgramTest, ReloadsEveryStageThatPastesASavedFileAndNoOther)
{
    const std::string shared = writesFile("shared.glsl", "old");
    osg::ref_ptr<Shader> one = new Shader(writesFile("one.frag", "//X\n"), osg::Shader::FRAGMENT);
    osg::ref_ptr<Shader> two = new Shader(writesFile("two.vert", "//X\n"), osg::Shader::VERTEX);
    osg::ref_ptr<Shader> alone = new Shader(writesFile("alone.vert", "//X\n"), osg::Shader::VERTEX);
    one->addFileInjection(shared, "//X");
    two->addFileInjection(shared, "//X");
    alone->addCodeInjection("own", "//X");
    OutputCapture output;

    savesFile("shared.glsl", "new");

    ASSERT_TRUE(waitUntil(
        [&] { return sourceOf(*one) == "new\n//X\n" && sourceOf(*two) == "new\n//X\n"; }));
    EXPECT_EQ(output.text(), shared + " was changed\n" +  //
                                 "CodeInjection changed\nVERTEX Shader " + pathOf("two.vert") +
                                 " changed\nCodeInjection changed\nFRAGMENT Shader " +
                                 pathOf("one.frag") + " changed\n");
    EXPECT_EQ(sourceOf(*alone), "own\n//X\n");
}

TEST_F(ShaderProgramTest, WatchesAPastedFileUntilItsLastStageGoes)
{
    const std::string shared = writesFile("last.glsl", "old");
    osg::ref_ptr<CodeFileInjection> injection = new CodeFileInjection(shared, "//X");
    osg::ref_ptr<Shader> one = new Shader(writesFile("h1.frag", "//X\n"), osg::Shader::FRAGMENT);
    osg::ref_ptr<Shader> two = new Shader(writesFile("h2.frag", "//X\n"), osg::Shader::FRAGMENT);
    one->addInjection(injection);
    two->addInjection(injection);
    OutputCapture output;

    one = nullptr;
    savesFile("last.glsl", "second");
    ASSERT_TRUE(waitUntil([&] { return sourceOf(*two) == "second\n//X\n"; }));
    EXPECT_EQ(output.count("CodeInjection changed"), 1);

    two = nullptr;
    savesFile("last.glsl", "third");
    ASSERT_TRUE(waitUntil([&] { return output.count(shared + " was changed\n") >= 2; }));
    EXPECT_EQ(output.count("CodeInjection changed"), 1);
    EXPECT_EQ(injection->code(), "second");
}

TEST_F(ShaderProgramTest, DoesNotHearOfAPastedFileBeforeAStageUsesIt)
{
    const std::string shared = writesFile("unused.glsl", "old");
    osg::ref_ptr<CodeFileInjection> injection = new CodeFileInjection(shared, "//X");
    osg::ref_ptr<Shader> witness = new Shader(shared, osg::Shader::VERTEX);
    OutputCapture output;

    savesFile("unused.glsl", "new");

    ASSERT_TRUE(waitUntil([&] { return sourceOf(*witness) == "new"; }));
    EXPECT_EQ(injection->code(), "old");
}

TEST_F(ShaderProgramTest, ReportsAnUnreadableFileOnceAndComesToLifeWhenItIsThere)
{
    const std::string absent = pathOf("absent.vert");
    const std::string line =
        "I cannot read the shader " + absent + ". What it colours looks odd now.\n";
    OutputCapture output;

    osg::ref_ptr<Shader> stage = new Shader(absent, osg::Shader::VERTEX);
    osg::ref_ptr<Shader> another = new Shader(absent, osg::Shader::VERTEX);
    osg::ref_ptr<CodeFileInjection> injection = new CodeFileInjection(absent, "//X");
    stage->reload();

    EXPECT_EQ(output.text(), line);
    EXPECT_EQ(sourceOf(*stage), "");

    writesFile("absent.vert", "there");
    stage->reload();
    EXPECT_EQ(sourceOf(*stage), "there");
}

TEST_F(ShaderProgramTest, ReportsAFileAnewThatWasMendedAndBreaksAgain)
{
    const std::string path = pathOf("again.vert");
    const std::string line =
        "I cannot read the shader " + path + ". What it colours looks odd now.\n";
    OutputCapture output;
    osg::ref_ptr<Shader> stage = new Shader(path, osg::Shader::VERTEX);
    for (int round = 1; round <= 3; ++round) {
        SCOPED_TRACE(round);
        stage->reload();
        EXPECT_EQ(output.count(line), round);
        writesFile("again.vert", "there");
        stage->reload();
        ASSERT_TRUE(QFile::remove(QString::fromStdString(path)));
        stage->reload();
        EXPECT_EQ(output.count(line), round + 1);
    }
}

TEST_F(ShaderProgramTest, KeepsTheTextOfAFileThatGoesAwayIfNothingIsPastedIntoIt)
{
    OutputCapture output;
    osg::ref_ptr<Shader> bare = new Shader(writesFile("bare.vert", "bare"), osg::Shader::VERTEX);
    ASSERT_TRUE(QFile::remove(QString::fromStdString(pathOf("bare.vert"))));
    const std::string notice = "VERTEX Shader " + pathOf("bare.vert") + " changed\n";
    ASSERT_TRUE(waitUntil([&] { return output.count(notice) >= 1; }));
    EXPECT_EQ(sourceOf(*bare), "bare");
    EXPECT_EQ(output.count("I cannot read the shader " + pathOf("bare.vert")), 1);

    writesFile("bare.vert", "new");
    EXPECT_TRUE(waitUntil([&] { return sourceOf(*bare) == "new"; }));
}

TEST_F(ShaderProgramTest, IsEmptyWithoutItsFileIfThereIsSomethingToPaste)
{
    OutputCapture output;
    osg::ref_ptr<Shader> stage =
        new Shader(writesFile("pasted.vert", "//X\nrest\n"), osg::Shader::VERTEX);
    stage->addCodeInjection("code", "//X");
    ASSERT_EQ(sourceOf(*stage), "code\n//X\nrest\n");
    ASSERT_TRUE(QFile::remove(QString::fromStdString(pathOf("pasted.vert"))));
    EXPECT_TRUE(waitUntil([&] { return sourceOf(*stage).empty(); }));
    EXPECT_EQ(output.text(), pathOf("pasted.vert") + " was changed\nVERTEX Shader " +
                                 pathOf("pasted.vert") + " changed\n");

    writesFile("pasted.vert", "//X\nback\n");
    EXPECT_TRUE(waitUntil([&] { return sourceOf(*stage) == "code\n//X\nback\n"; }));
}

namespace {

const std::string vertexText = R"(#version 150 compatibility
void main() { gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex; }
)";

const std::string fragmentText = R"(#version 150 compatibility
//HOTSPOT_PRE_MAIN
void main() { gl_FragColor = colour(); }
)";

const osg::Vec3i red(255, 0, 0);
const osg::Vec3i green(0, 255, 0);
const osg::Vec3i blue(0, 0, 255);

class ShaderDrawTest : public ShaderProgramTest
{
protected:
    ShaderDrawTest() : offscreen(32, 32), quad(new osg::Geode)
    {
        offscreen.setBackground({1, 1, 1, 1});
        offscreen.view()->getCamera()->setProjectionMatrixAsOrtho2D(-1, 1, -1, 1);
        offscreen.view()->getCamera()->setViewMatrix(osg::Matrix::identity());
        quad->addDrawable(osg::createTexturedQuadGeometry({-1, -1, 0}, {2, 0, 0}, {0, 2, 0}));
        offscreen.root()->addChild(quad);
        program = new ShaderProgram(quad);
        program->setVertexShader(writesFile("draw.vert", vertexText));
        program->setFragmentShader(
            new Shader(writesFile("draw.frag", fragmentText), osg::Shader::FRAGMENT));
        program->fragmentShader->addFileInjection(
            writesFile("colour.glsl", "vec4 colour() { return vec4(1, 0, 0, 1); }"), preMain);
    }

    osg::Vec3i drawnColour()
    {
        offscreen.draw();
        return offscreen.pixel(16, 16);
    }

    void savesAndWaits(const std::string& name, const std::string& text)
    {
        savesFile(name, text);
        ASSERT_TRUE(waitUntil([&] {
            return (sourceOf(*program->vertexShader) + sourceOf(*program->fragmentShader))
                       .find(text) != std::string::npos;
        }));
    }

    OffscreenView offscreen;
    osg::ref_ptr<osg::Geode> quad;
    osg::ref_ptr<ShaderProgram> program;
};

}  // namespace

TEST_F(ShaderDrawTest, DrawsTheNewColourAfterAPastedFileWasSaved)
{
    OutputCapture output;
    ASSERT_EQ(drawnColour(), red);
    savesAndWaits("colour.glsl", "vec4 colour() { return vec4(0, 1, 0, 1); }");
    EXPECT_EQ(drawnColour(), green);
}

TEST_F(ShaderDrawTest, DrawsAgainAfterAnErrorInAFragmentStageWasMended)
{
    OutputCapture output;
    ASSERT_EQ(drawnColour(), red);
    savesAndWaits("draw.frag", "#version 150 compatibility\nvoid main() { this is wrong }\n");
    EXPECT_NE(drawnColour(), red);
    drawnColour();
    savesAndWaits("draw.frag", "#version 150 compatibility\n"
                               "void main() { gl_FragColor = vec4(0, 0, 1, 1); }\n");
    EXPECT_EQ(drawnColour(), blue);
}

TEST_F(ShaderDrawTest, DrawsAgainAfterAnErrorInAPastedFileWasMended)
{
    OutputCapture output;
    ASSERT_EQ(drawnColour(), red);
    savesAndWaits("colour.glsl", "vec4 colour( { return 1; }");
    EXPECT_NE(drawnColour(), red);
    savesAndWaits("colour.glsl", "vec4 colour() { return vec4(0, 1, 0, 1); }");
    EXPECT_EQ(drawnColour(), green);
}

TEST_F(ShaderDrawTest, DrawsAgainAfterAnErrorInAVertexStageWasMended)
{
    OutputCapture output;
    ASSERT_EQ(drawnColour(), red);
    savesAndWaits("draw.vert", "#version 150 compatibility\nvoid main() { gl_Position = 7; }\n");
    drawnColour();
    savesAndWaits("draw.vert", vertexText);
    EXPECT_EQ(drawnColour(), red);
}

TEST_F(ShaderDrawTest, MendsEveryProgramThatSharesTheStage)
{
    OutputCapture output;
    osg::ref_ptr<osg::Geode> twin = new osg::Geode;
    twin->addDrawable(osg::createTexturedQuadGeometry({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
    osg::ref_ptr<ShaderProgram> twinProgram = new ShaderProgram(twin);
    twinProgram->setVertexShader(pathOf("draw.vert"));
    twinProgram->setFragmentShader(program->fragmentShader.get());
    ASSERT_EQ(drawnColour(), red);
    offscreen.root()->removeChild(quad);
    offscreen.root()->addChild(twin);
    offscreen.draw();
    ASSERT_EQ(offscreen.pixel(24, 24), red);

    savesAndWaits("colour.glsl", "broken");
    offscreen.draw();
    savesAndWaits("colour.glsl", "vec4 colour() { return vec4(0, 1, 0, 1); }");
    offscreen.draw();
    EXPECT_EQ(offscreen.pixel(24, 24), green);
    offscreen.root()->removeChild(twin);
    offscreen.root()->addChild(quad);
    EXPECT_EQ(drawnColour(), green);
}
