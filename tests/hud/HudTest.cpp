#include "hud/HudTest.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <osgDB/WriteFile>

#include <memory>

namespace {

class HudFolder : public ::testing::Environment
{
public:
    void SetUp() override
    {
        folder = std::make_unique<QTemporaryDir>();
        ASSERT_TRUE(QDir(folder->path()).mkdir("data"));
        for (const char* name : {"textShader.vert", "textShader.frag", "imageShader.vert",
                                 "imageShader.frag", "Bevan.ttf"}) {
            const QString file = QString("data/") + name;
            ASSERT_TRUE(
                QFile::copy(QDir(ROLLIX_SOURCE_DIR).filePath(file), folder->filePath(file)));
        }
        previous = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(folder->path()));
    }

    void TearDown() override
    {
        QDir::setCurrent(previous);
        folder.reset();
    }

    std::unique_ptr<QTemporaryDir> folder;

private:
    QString previous;
};

HudFolder* const environment =
    static_cast<HudFolder*>(::testing::AddGlobalTestEnvironment(new HudFolder));

}  // namespace

std::string hudFolder()
{
    return environment->folder->path().toStdString();
}

void writesPicture(const std::string& name, const osg::Image& image)
{
    ASSERT_TRUE(osgDB::writeImageFile(image, hudFolder() + "/" + name));
}

void writesPicture(const std::string& name, int width, int height, const osg::Vec4& color)
{
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->allocateImage(width, height, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image->setColor(color, x, y);
    writesPicture(name, *image);
}
