#include "shaders/ShaderProgram.h"

#include "base/Say.h"
#include "base/UnreadableFile.h"

#include <QFile>
#include <osg/StateSet>

#include <utility>

namespace {

constexpr qint64 readBlockSize = 1024;  // bytes

void noteShaderFile(const std::string& file, bool readable)
{
    if (readable)
        noteReadable(file);
    else
        reportUnreadable("shader", file, "What it colours looks odd now.");
}

}  // namespace

QString readTextFile(std::string path)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QByteArray bytes;
    while (!file.atEnd()) {
        const QByteArray block = file.read(readBlockSize);
        // A directory opens and never ends.
        if (block.isEmpty())
            break;
        bytes += block;
    }
    return QString(bytes);
}

ShaderProgram::ShaderProgram(osg::Node* target) : node(target), program(new osg::Program)
{
    install();
}

ShaderProgram::ShaderProgram(osg::Node* target, ShaderProgram* shared)
    : node(target),
      program(shared->program),
      vertexShader(shared->vertexShader),
      geometryShader(shared->geometryShader),
      fragmentShader(shared->fragmentShader),
      sharedWith(shared)
{
    install();
}

ShaderProgram::~ShaderProgram()
{
    if (!sharedWith) {
        setStage(fragmentShader, nullptr);
        setStage(geometryShader, nullptr);
        setStage(vertexShader, nullptr);
    }
    if (osg::Node* target = node.get(); target && target->getStateSet())
        target->getStateSet()->removeAttribute(program);
}

void ShaderProgram::install()
{
    // Not by a reference: one to a node that nobody holds yet is not to be had.
    if (osg::Node* target = node.get())
        target->getOrCreateStateSet()->setAttributeAndModes(program, osg::StateAttribute::ON);
}

void ShaderProgram::endSharing()
{
    sharedWith = nullptr;
    program = new osg::Program;
    for (const osg::ref_ptr<Shader>& stage : {vertexShader, geometryShader, fragmentShader})
        if (stage)
            program->addShader(stage->shader);
    install();
}

void ShaderProgram::setVertexShader(Shader* shader)
{
    setStage(vertexShader, shader);
}

void ShaderProgram::setGeometryShader(Shader* shader)
{
    setStage(geometryShader, shader);
}

void ShaderProgram::setFragmentShader(Shader* shader)
{
    setStage(fragmentShader, shader);
}

void ShaderProgram::setVertexShader(std::string file)
{
    setVertexShader(new Shader(std::move(file), osg::Shader::VERTEX));
}

void ShaderProgram::setGeometryShader(std::string file)
{
    setGeometryShader(new Shader(std::move(file), osg::Shader::GEOMETRY));
}

void ShaderProgram::setFragmentShader(std::string file)
{
    setFragmentShader(new Shader(std::move(file), osg::Shader::FRAGMENT));
}

void ShaderProgram::setStage(osg::ref_ptr<Shader>& stage, Shader* shader)
{
    if (sharedWith)
        endSharing();
    // Held first: the new stage may be the old one.
    const osg::ref_ptr<Shader> next = shader;
    if (stage)
        program->removeShader(stage->shader);
    stage = next;
    if (stage)
        program->addShader(stage->shader);
}

ShaderProgram::Shader::Shader(std::string file, unsigned int type)
    : shader(new osg::Shader(static_cast<osg::Shader::Type>(type)))
{
    noteShaderFile(file, shader->loadShaderSourceFromFile(file));
    // A failed load forgets the name, and reload needs it.
    shader->setFileName(file);
    shader->setName(file);
    watchFile(file);
}

ShaderProgram::Shader::~Shader()
{
    for (const auto& injection : injections)
        injection->removeShader(this);
    unwatchFile(shader->getFileName());
}

void ShaderProgram::Shader::addFileInjection(std::string file, std::string marker)
{
    addInjection(new CodeFileInjection(std::move(file), std::move(marker)));
}

void ShaderProgram::Shader::addCodeInjection(std::string code, std::string marker)
{
    addInjection(new CodeInjection(std::move(code), std::move(marker)));
}

void ShaderProgram::Shader::addInjection(CodeInjection* injection)
{
    injections.push_back(injection);
    injection->addShader(this);
    reload();
}

void ShaderProgram::Shader::reload()
{
    const std::string file = shader->getFileName();
    if (injections.empty()) {
        noteShaderFile(file, shader->loadShaderSourceFromFile(file));
        return;
    }
    QString source = readTextFile(file);
    for (const auto& injection : injections) {
        const QString marker = injection->marker();
        // Qt finds an empty text between any two letters.
        if (!marker.isEmpty())
            source.replace(marker, injection->code() + "\n" + marker, Qt::CaseSensitive);
    }
    shader->setShaderSource(source.toStdString());
}

void ShaderProgram::Shader::fileChanged(std::string)
{
    say(shader->getTypename(), " Shader ", shader->getName(), " changed");
    reload();
}

ShaderProgram::CodeInjection::CodeInjection(std::string code, std::string marker)
    : code_(QString::fromStdString(code)), marker_(QString::fromStdString(marker))
{
}

void ShaderProgram::CodeInjection::setCode(QString code, bool notify)
{
    code_ = std::move(code);
    if (!notify)
        return;
    say("CodeInjection changed");
    for (Shader* shader : shaders)
        shader->fileChanged("");
}

void ShaderProgram::CodeInjection::addShader(Shader* shader)
{
    shaders.insert(shader);
}

void ShaderProgram::CodeInjection::removeShader(Shader* shader)
{
    shaders.erase(shader);
}

ShaderProgram::CodeFileInjection::CodeFileInjection(std::string file, std::string marker)
    : CodeInjection("", std::move(marker)), fileName(std::move(file))
{
    noteShaderFile(fileName, QFile::exists(QString::fromStdString(fileName)));
    setCode(readTextFile(fileName), false);
}

ShaderProgram::CodeFileInjection::~CodeFileInjection()
{
    unwatchFile(fileName);
}

void ShaderProgram::CodeFileInjection::addShader(Shader* shader)
{
    if (shaders.empty())
        watchFile(fileName);
    CodeInjection::addShader(shader);
}

void ShaderProgram::CodeFileInjection::removeShader(Shader* shader)
{
    CodeInjection::removeShader(shader);
    if (shaders.empty())
        unwatchFile(fileName);
}

void ShaderProgram::CodeFileInjection::fileChanged(std::string path)
{
    setCode(readTextFile(std::move(path)), true);
}
