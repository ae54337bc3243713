#include "FrameGrab.h"
#include "game/Rollix.h"
#include "level/Level.h"
#include "soak/Soak.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <iostream>

namespace {

constexpr int shortForm = 12;       // shaders broken and mended
constexpr int reloadLimit = 20000;  // ms until a saved file must have been heard of
constexpr int alikePixels = 4800;   // of 480 000 of a frame: sparks and ghosts move on

/// A way to spoil a text, one after the other.
QByteArray spoiled(const QByteArray& text, int way)
{
    switch (way % 5) {
    case 0:
        return QByteArray();
    case 1:
        return text.left(text.size() / 2);
    case 2:
        return "void main() { this is no shader }\n" + text;
    case 3: {
        QByteArray noise = text;
        for (int i = 0; i < noise.size(); i += 7)
            noise[i] = char(i * 37);
        return noise;
    }
    default:
        return QByteArray(text).replace("main", "nowhere");
    }
}

class ShadersSoak : public GameTest
{
protected:
    static QStringList shaderFiles()
    {
        QStringList files;
        for (const QString& folder : {QString("data/"), QString("data/Rollix/")})
            for (const QString& name :
                 QDir(folder).entryList({"*.vert", "*.frag", "*.geom", "*.glsl"}, QDir::Files))
                files << folder + name;
        return files;
    }

    /// Saves the file and plays on until the game has said that it changed.
    bool saves(const QString& name, const QByteArray& text, const OutputCapture& output)
    {
        const std::string line = name.toStdString() + " was changed";
        const int heard = output.count(line);
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return false;
        file.write(text);
        file.close();
        const bool told = playsUntil([&] { return output.count(line) > heard; }, reloadLimit);
        // A save is two events, the emptying and the writing; both are over soon.
        waits(50);
        return told;
    }
};

TEST_F(ShadersSoak, MayBreakAndBeMendedInPlay)
{
    const int count = soakCount(shortForm);
    LevelPicture picture(12, 6, cells::floor);
    int column = 1;
    for (const int hue : {135, 270, 225, 180, 0, 45, 315}) {
        picture.set(column, 1, {hue, 50, 73, 254});
        picture.set(column, 3, {hue, 90, 73, 254});
        ++column;
    }
    picture.set(10, 5, cells::start);
    int mended = 0;
    const QStringList files = shaderFiles();
    ASSERT_FALSE(files.isEmpty());
    {
        OutputCapture output;
        testing::internal::CaptureStderr();  // the scene graph quotes each broken shader
        loads(picture);
        draws(true);
        ticks(100);
        Progress progress("shaders", count);
        for (int i = 0; i < count; ++i) {
            const QString& name = files[i % files.size()];
            SCOPED_TRACE(name.toStdString());
            QFile file(name);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray text = file.readAll();
            file.close();
            const QImage before = frame();
            // A shader of what this level does not show is not watched.
            const bool heard = saves(name, spoiled(text, i / files.size() + i), output);
            ticks(3);
            EXPECT_TRUE(saves(name, text, output) || !heard);
            ticks(3);
            EXPECT_LT(differingPixels(before, frame()), alikePixels);
            mended += heard;
            progress.at(i + 1);
        }
        testing::internal::GetCapturedStderr();
    }
    std::cout << count << " shaders broken, " << mended << " of them in use, and mended"
              << std::endl;
    EXPECT_GT(mended, count / 2);
}

}  // namespace
