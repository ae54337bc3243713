#pragma once

#include "shaders/ShaderProgram.h"

#include <functional>
#include <string>
#include <vector>

/// What a stage is made from: its file, the files that are pasted above its main function, in
/// order, and the statement that is pasted at the start of it, empty for none.
struct StageRecipe
{
    std::string name;
    std::string file;
    std::vector<std::string> preMainFiles;
    std::string startMainCode;
};

/// The stages, by name, that are linked to one program. Most have no geometry stage: it is empty.
struct ProgramRecipe
{
    std::string name;
    std::string vertexStage;
    std::string geometryStage;
    std::string fragmentStage;
};

/// Every stage and every program of the game.
const std::vector<StageRecipe>& stageRecipes();
const std::vector<ProgramRecipe>& programRecipes();

/// The one of this name, which must be in the table.
const StageRecipe& stageRecipe(const std::string& name);
const ProgramRecipe& programRecipe(const std::string& name);

/// Reads a stage anew.
osg::ref_ptr<ShaderProgram::Shader> makeStage(const std::string& name);

/// Hands a stage out by its name.
using StageSource = std::function<osg::ref_ptr<ShaderProgram::Shader>(const std::string&)>;

/// Gives `program` the stages of a recipe.
void setStages(ShaderProgram& program, const std::string& programName, const StageSource& stageOf);

/// Those, read anew and shared with no other program.
void setOwnStages(ShaderProgram& program, const std::string& programName);
