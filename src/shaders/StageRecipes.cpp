#include "shaders/StageRecipes.h"

#include <algorithm>
#include <cassert>

namespace {

const char* const lightingVertex = "data/phong_vert.glsl";
const char* const lightingFragment = "data/phong_frag.glsl";
const char* const ease = "data/easeFunctions.glsl";
const char* const noise = "data/classicnoise3D.glsl";
const char* const wood = "data/wood.glsl";
const char* const rotation = "data/rotation.glsl";

template <typename Recipe>
const Recipe& findByName(const std::vector<Recipe>& recipes, const std::string& name)
{
    const auto found = std::find_if(recipes.begin(), recipes.end(),
                                    [&](const Recipe& recipe) { return recipe.name == name; });
    assert(found != recipes.end());
    return *found;
}

unsigned int typeOfFile(const std::string& file)
{
    const std::string ending = file.substr(file.rfind('.') + 1);
    if (ending == "vert")
        return osg::Shader::VERTEX;
    return ending == "geom" ? osg::Shader::GEOMETRY : osg::Shader::FRAGMENT;
}

}  // namespace

const std::vector<StageRecipe>& stageRecipes()
{
    static const std::vector<StageRecipe> recipes{
        {"standardShader.vert", "data/Rollix/standardShader.vert", {}, ""},
        {"standardShader.frag", "data/Rollix/standardShader.frag", {}, ""},
        {"boardShader.vert", "data/Rollix/boardShader.vert", {rotation, lightingVertex}, ""},
        {"boardShader.frag", "data/Rollix/boardShader.frag", {noise, wood, lightingFragment}, ""},
        {"ghostShader.frag",
         "data/Rollix/ghostShader.frag",
         {noise, wood, ease, lightingFragment},
         ""},
        {"groundShader.vert", "data/Rollix/groundShader.vert", {}, ""},
        {"groundShader.frag", "data/Rollix/groundShader.frag", {}, ""},
        {"inlayShader.vert", "data/Rollix/inlayShader.vert", {lightingVertex}, ""},
        {"inlayShader.frag", "data/Rollix/inlayShader.frag", {lightingFragment}, ""},
        // The same text as for plain things; lighting is what a geometry stage needs besides.
        {"portalBallShader.vert",
         "data/Rollix/standardShader.vert",
         {"data/phong_vert-withgeom.glsl"},
         "phong();"},
        {"portalBallShader.geom", "data/Rollix/portalBallShader.geom", {}, ""},
        {"portalBallShader.frag", "data/Rollix/portalBallShader.frag", {lightingFragment}, ""},
        {"flagShader.vert", "data/Rollix/flagShader.vert", {ease}, ""},
        {"flagShader.frag", "data/Rollix/flagShader.frag", {}, ""},
        {"animationShader.vert", "data/Rollix/animationShader.vert", {ease, lightingVertex}, ""},
        {"animationShader.frag", "data/Rollix/animationShader.frag", {ease, lightingFragment}, ""},
        {"itemShader.vert", "data/Rollix/itemShader.vert", {lightingVertex, rotation}, ""},
        {"itemShader.frag", "data/Rollix/itemShader.frag", {lightingFragment}, ""},
        {"mineShader.vert", "data/Rollix/mineShader.vert", {lightingVertex}, "phong();"},
        {"mineShader.frag", "data/Rollix/mineShader.frag", {lightingFragment}, ""},
        {"textShader.vert", "data/textShader.vert", {}, ""},
        {"textShader.frag", "data/textShader.frag", {}, ""},
        {"imageShader.vert", "data/imageShader.vert", {}, ""},
        {"imageShader.frag", "data/imageShader.frag", {}, ""},
    };
    return recipes;
}

const std::vector<ProgramRecipe>& programRecipes()
{
    static const std::vector<ProgramRecipe> recipes{
        {"standard", "standardShader.vert", "", "standardShader.frag"},
        {"board", "boardShader.vert", "", "boardShader.frag"},
        {"ghost", "boardShader.vert", "", "ghostShader.frag"},
        {"ground", "groundShader.vert", "", "groundShader.frag"},
        {"inlay", "inlayShader.vert", "", "inlayShader.frag"},
        {"ball", "portalBallShader.vert", "portalBallShader.geom", "portalBallShader.frag"},
        {"flag", "flagShader.vert", "", "flagShader.frag"},
        {"buttonCap", "animationShader.vert", "", "animationShader.frag"},
        {"item", "itemShader.vert", "", "itemShader.frag"},
        {"mine", "mineShader.vert", "", "mineShader.frag"},
        {"text", "textShader.vert", "", "textShader.frag"},
        {"image", "imageShader.vert", "", "imageShader.frag"},
    };
    return recipes;
}

const StageRecipe& stageRecipe(const std::string& name)
{
    return findByName(stageRecipes(), name);
}

const ProgramRecipe& programRecipe(const std::string& name)
{
    return findByName(programRecipes(), name);
}

osg::ref_ptr<ShaderProgram::Shader> makeStage(const std::string& name)
{
    const StageRecipe& recipe = stageRecipe(name);
    osg::ref_ptr<ShaderProgram::Shader> stage =
        new ShaderProgram::Shader(recipe.file, typeOfFile(recipe.file));
    for (const std::string& file : recipe.preMainFiles)
        stage->addFileInjection(file, "//HOTSPOT_PRE_MAIN");
    if (!recipe.startMainCode.empty())
        stage->addCodeInjection(recipe.startMainCode, "//HOTSPOT_START_MAIN");
    return stage;
}

void setStages(ShaderProgram& program, const std::string& programName, const StageSource& stageOf)
{
    const ProgramRecipe& recipe = programRecipe(programName);
    program.setVertexShader(stageOf(recipe.vertexStage));
    if (!recipe.geometryStage.empty())
        program.setGeometryShader(stageOf(recipe.geometryStage));
    program.setFragmentShader(stageOf(recipe.fragmentStage));
}

void setOwnStages(ShaderProgram& program, const std::string& programName)
{
    setStages(program, programName, makeStage);
}
