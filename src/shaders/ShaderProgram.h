#pragma once

#include "shaders/FileAssociatedAsset.h"

#include <QString>
#include <osg/Group>
#include <osg/Program>
#include <osg/Shader>
#include <osg/observer_ptr>
#include <osg/ref_ptr>

#include <list>
#include <string>
#include <unordered_set>

/// The whole text of a file; empty, and silently so, when it cannot be opened.
QString readTextFile(std::string path);

/// Binds GLSL to a node: one program with up to three stages, each read from a file and read again
/// when that file is saved. GLSL has no include, so what stages share is pasted into them at marker
/// comments.
///
/// The program is drawn with for as long as this object lives; it takes the program away from its
/// node when it goes. It does not keep the node alive: nodes keep their programs, and a reference
/// in both directions would leave both in memory after every level.
class ShaderProgram : public osg::Referenced
{
public:
    class Shader;
    class CodeInjection;
    class CodeFileInjection;
    class ShaderGroup;

    explicit ShaderProgram(osg::Node* node);

    /// Draws `node` with the program that `shared` stands for: a program is linked once for each
    /// object of its own, which costs a millisecond and half a megabyte. Of a shared program every
    /// node must set every uniform, as it would else see what another node has set. A stage that is
    /// replaced ends the sharing; `shared` itself must not replace one.
    ShaderProgram(osg::Node* node, ShaderProgram* shared);

    /// Replace a stage by one that other programs may use too; null takes the stage away.
    void setVertexShader(Shader* shader);
    void setGeometryShader(Shader* shader);
    void setFragmentShader(Shader* shader);

    /// Replace a stage by one of this program's own.
    void setVertexShader(std::string file);
    void setGeometryShader(std::string file);
    void setFragmentShader(std::string file);

    osg::observer_ptr<osg::Node> node;
    osg::ref_ptr<osg::Program> program;
    osg::ref_ptr<Shader> vertexShader;
    osg::ref_ptr<Shader> geometryShader;
    osg::ref_ptr<Shader> fragmentShader;

protected:
    ~ShaderProgram() override;

private:
    void setStage(osg::ref_ptr<Shader>& stage, Shader* shader);
    void install();
    void endSharing();

    /// Kept, so that it does not take the program apart before the last that shares it has gone.
    osg::ref_ptr<ShaderProgram> sharedWith;
};

/// One stage: a source file and what is pasted into it. Programs that want the same file with the
/// same injections share one.
class ShaderProgram::Shader : public FileAssociatedAsset
{
public:
    /// `type` is the GL enumerant: GL_VERTEX_SHADER, GL_GEOMETRY_SHADER or GL_FRAGMENT_SHADER.
    /// A file that does not exist is reported once on standard output and leaves the stage empty.
    Shader(std::string file, unsigned int type);

    /// Paste a file, or a piece of code, above every `marker` of the source. What is added first
    /// comes first. A marker that the source lacks changes nothing.
    void addFileInjection(std::string file, std::string marker);
    void addCodeInjection(std::string code, std::string marker);

    /// As above, for an injection that several stages share.
    void addInjection(CodeInjection* injection);

    /// Reads the file anew and pastes. OpenGL compiles at the next draw, in every program that
    /// holds the stage; a failure there is reported by the scene graph on its own channel.
    void reload();

    /// Announces itself on standard output and reloads; `path` is not looked at.
    void fileChanged(std::string path) override;

    osg::ref_ptr<osg::Shader> shader;
    std::list<osg::ref_ptr<CodeInjection>> injections;

protected:
    ~Shader() override;
};

/// A piece of GLSL and the marker comment above which stages paste it.
class ShaderProgram::CodeInjection : public virtual osg::Referenced
{
public:
    CodeInjection(std::string code, std::string marker);

    /// With `notify` all stages that use it announce themselves and reload; without, the new code
    /// waits for the next reload of each.
    void setCode(QString code, bool notify);

    QString code() const { return code_; }
    QString marker() const { return marker_; }

    virtual void addShader(Shader* shader);
    virtual void removeShader(Shader* shader);

protected:
    ~CodeInjection() override = default;

    std::unordered_set<Shader*> shaders;  // not owned: a stage takes itself out when it goes
    QString code_;
    QString marker_;
};

/// A whole file to paste. It is watched exactly while at least one stage uses it.
class ShaderProgram::CodeFileInjection : public ShaderProgram::CodeInjection,
                                         public FileAssociatedAsset
{
public:
    /// A file that does not exist is reported once on standard output and pastes nothing.
    CodeFileInjection(std::string file, std::string marker);

    void addShader(Shader* shader) override;
    void removeShader(Shader* shader) override;
    void fileChanged(std::string path) override;

protected:
    ~CodeFileInjection() override;

private:
    std::string fileName;
};

/// A group that keeps the program of its own state set alive: the blocks of one kind, drawn alike.
class ShaderProgram::ShaderGroup : public osg::Group
{
public:
    osg::ref_ptr<ShaderProgram> shaderProgram;

protected:
    ~ShaderGroup() override = default;
};
