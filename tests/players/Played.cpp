#include "Played.h"

#include <gtest/gtest.h>

#include <sstream>

std::string levelFile(int number)
{
    return ROLLIX_SOURCE_DIR "/data/Rollix/level" + std::to_string(number) + ".png";
}

nlohmann::json played(PlayWish wish)
{
    wish.home = ROLLIX_SOURCE_DIR;
    wish.json = true;
    wish.processes = 1;
    std::ostringstream answer;
    std::ostringstream progress;
    playPictures(wish, answer, progress);
    return nlohmann::json::parse(answer.str());
}

std::string levelWithout(BlockKind kind, int number, const QTemporaryDir& folder)
{
    QImage picture(QString::fromStdString(levelFile(number)));
    int painted = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const LevelPixel pixel = LevelPixel::decode(picture.pixel(column, row));
            if (pixel.value == 0 || blockKindOfHue(pixel.hue) != kind)
                continue;
            picture.setPixel(column, row, qRgb(0, 0, 0));
            ++painted;
        }
    }
    EXPECT_GT(painted, 0) << "the level has no such block";
    const QString file = folder.filePath(QString("level%1.png").arg(number));
    EXPECT_TRUE(picture.save(file));
    return file.toStdString();
}
