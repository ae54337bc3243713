#include "PictureFaults.h"

#include "LevelReport.h"
#include "support/LevelPicture.h"

#include <QColor>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

QImage levelOfTheGame()
{
    return QImage(ROLLIX_SOURCE_DIR "/data/Rollix/level9.png");
}

/// What the check of a file says, but for its first line.
std::vector<std::string> warningsOfFile(const QImage& picture, const char* format)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("level.png");
    EXPECT_TRUE(picture.save(file, format));
    std::ostringstream out;
    EXPECT_EQ(reportLevel(file.toStdString(), true, out), 1);
    std::istringstream text(out.str());
    std::vector<std::string> lines;
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line))
        lines.push_back(line);
    return lines;
}

void expectOneLine(const QImage& picture, const std::string& beginning)
{
    const std::vector<std::string> lines = warningsOfFile(picture, "PNG");
    ASSERT_EQ(lines.size(), 1u) << lines.front();
    EXPECT_EQ(lines[0].rfind("  warning: " + beginning, 0), 0u) << lines[0];
}

}  // namespace

TEST(PictureFaults, NameAJpegWhateverItIsCalled)
{
    EXPECT_EQ(warningsOfFile(levelOfTheGame(), "JPG"),
              std::vector<std::string>{
                  "  warning: this is a JPEG, whatever its name says, and its colours are no "
                  "longer those that were painted; export the original as PNG"});
}

TEST(PictureFaults, NameAnEnlargedPictureAndItsTrueSize)
{
    const QImage level = levelOfTheGame();
    for (const int factor : {2, 3, 8}) {
        SCOPED_TRACE(factor);
        const QString size = QString::number(factor);
        expectOneLine(level.scaled(level.size() * factor),
                      QString("every cell is %1 x %1 pixels here, and a pixel is a cell; scale it "
                              "to %2 x %3 without interpolation")
                          .arg(size)
                          .arg(level.width())
                          .arg(level.height())
                          .toStdString());
    }
}

TEST(PictureFaults, NameAPictureThatWasEnlargedSmoothly)
{
    const QImage level = levelOfTheGame();
    for (const double factor : {1.5, 2.0, 4.0}) {
        SCOPED_TRACE(factor);
        expectOneLine(
            level.scaled(level.size() * factor, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
            "most of what makes no block is a mix of its neighbours");
    }
}

TEST(PictureFaults, NameAGamma)
{
    for (const double gamma : {0.4545, 0.6, 0.8, 1.25, 1.8, 2.2}) {
        SCOPED_TRACE(gamma);
        QImage level = levelOfTheGame();
        for (int row = 0; row < level.height(); ++row) {
            for (int column = 0; column < level.width(); ++column) {
                const QColor color = level.pixelColor(column, row);
                level.setPixelColor(
                    column, row,
                    QColor::fromRgbF(std::pow(color.redF(), gamma), std::pow(color.greenF(), gamma),
                                     std::pow(color.blueF(), gamma), color.alphaF()));
            }
        }
        expectOneLine(level, "the colours are those of the guide after a gamma of ");
    }
}

TEST(PictureFaults, AreNoneInWhatSomebodyPaintedWithOtherHuesOrValues)
{
    // Within ten degrees of each kind, and ramps only.
    EXPECT_TRUE(pictureFaults(LevelPicture(12, 3, {84, 100, 75})
                                  .set(0, 0, {130, 100, 74})
                                  .set(9, 2, {142, 50, 76})
                                  .image(),
                              "png")
                    .empty());
}
