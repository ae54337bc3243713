#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Block.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/DifferingPixels.h"
#include "support/EventLoop.h"
#include "support/GameTest.h"
#include "support/MissingFile.h"
#include "support/OutputCapture.h"

#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QProcess>

#include <sstream>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

const char* const levelFile = "data/Rollix/level0.png";
const std::string readingLine = "reading level data/Rollix/level0.png";

void saves(const QString& path, const QByteArray& content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class LevelFileTest : public GameTest
{
protected:
    /// Every block's place and height, in scan order.
    std::string blocks() const
    {
        std::ostringstream text;
        for (const osg::ref_ptr<Block>& block : board().getBlocks())
            text << block->x << ' ' << block->y << ' ' << block->height << "; ";
        return text.str();
    }

    void expectsABareBoard()
    {
        OutputCapture output;
        game.loadLevel(0);
        EXPECT_TRUE(board().getBlocks().empty());
        EXPECT_EQ(level().checkpoint, nullptr);
        holds(Qt::Key_Up, 10);
        ticks(100);
        EXPECT_EQ(output.lines().front(), readingLine);
        for (const std::string& line : output.lines())
            EXPECT_EQ(line, readingLine);
    }
};

TEST_F(LevelFileTest, GivesABareBoardWhenItIsMissingOrBroken)
{
    LevelPicture(20, 20, cells::floor).image().save("data/Rollix/whole.png");
    const QByteArray whole = contentOf("data/Rollix/whole.png");
    ASSERT_GT(whole.size(), 60);
    {
        SCOPED_TRACE("missing");
        QFile::remove(levelFile);
        expectsABareBoard();
    }
    {
        SCOPED_TRACE("empty");
        saves(levelFile, "");
        expectsABareBoard();
    }
    {
        SCOPED_TRACE("no picture");
        saves(levelFile, "This is a picture of a board.\n");
        expectsABareBoard();
    }
    {
        SCOPED_TRACE("only a head");
        saves(levelFile, whole.left(20));
        expectsABareBoard();
    }
    {
        SCOPED_TRACE("a directory");
        QFile::remove(levelFile);
        QDir().mkdir(levelFile);
        expectsABareBoard();
        QDir().rmdir(levelFile);
    }
}

TEST_F(LevelFileTest, IsPlayedAsFarAsQtReadsIt)
{
    LevelPicture picture(40, 40, cells::floor);
    for (int i = 0; i < 40; ++i)
        picture.set(i, (i * 7) % 40, cells::wall).set(i, (i * 11) % 40, cells::start);
    picture.image().save("data/Rollix/whole.png");
    const QByteArray whole = contentOf("data/Rollix/whole.png");
    for (const int part : {30, 60, 90}) {
        SCOPED_TRACE(part);
        saves(levelFile, whole.left(whole.size() * part / 100));
        const QImage read(levelFile);
        game.loadLevel(0);
        EXPECT_LE(int(board().getBlocks().size()), read.width() * read.height());
        EXPECT_EQ(board().getBlocks().empty(), read.isNull());
        ticks(3);
    }
}

TEST_F(LevelFileTest, MayBeOfAnySize)
{
    struct Size
    {
        int width;
        int height;
    };
    for (const Size& size : {Size{1, 1}, Size{1, 200}, Size{200, 1}, Size{7, 2}}) {
        SCOPED_TRACE(testing::Message() << size.width << " by " << size.height);
        loads(LevelPicture(size.width, size.height, cells::floor).set(0, 0, cells::start));
        EXPECT_EQ(int(board().getBlocks().size()), size.width * size.height);
        holds(Qt::Key_Right, 10);
        EXPECT_GT(tiltDegrees(), 1.0);
    }
}

TEST_F(LevelFileTest, MayBeHuge)
{
    loads(LevelPicture(300, 300, cells::floor).set(150, 150, cells::start));
    ASSERT_EQ(board().getBlocks().size(), 90000u);
    EXPECT_EQ(board().getBlocks().back()->x, 149.5f);
    ticks(5);
    EXPECT_NEAR(ballPosition().x(), 0.5, 0.05);
}

TEST_F(LevelFileTest, GivesABareBoardAndOneLineWhenItWouldTakeTooMuch)
{
    QImage photograph(1920, 1080, QImage::Format_RGB32);
    for (int y = 0; y < photograph.height(); ++y)
        for (int x = 0; x < photograph.width(); ++x)
            photograph.setPixel(x, y, qRgb(x / 8, y / 5, 90));
    const QImage coins = LevelPicture(60, 60, {45, 90, 73}).image();
    for (const QImage& image : {photograph, coins}) {
        ASSERT_TRUE(image.save(levelFile));
        OutputCapture output;
        game.loadLevel(0);
        EXPECT_TRUE(board().getBlocks().empty());
        ASSERT_EQ(output.lines().size(), 2u);
        EXPECT_EQ(output.lines()[0], readingLine);
        EXPECT_EQ(output.lines()[1].rfind("I cannot build data/Rollix/level0.png: ", 0), 0u)
            << output.lines()[1];
        holds(Qt::Key_Up, 10);
        EXPECT_GT(tiltDegrees(), 1.0) << "the game lives";
    }
    loads({"S"});
    EXPECT_EQ(board().getBlocks().size(), 1u);
}

TEST_F(LevelFileTest, TellsOfAllItsRefusedPixelsInOneLine)
{
    LevelPicture picture(5, 4, cells::floor);
    for (const auto& [column, row] : {std::pair(3, 1), {0, 2}, {4, 3}})
        picture.set(column, row, {45, 100, 40, 200});
    OutputCapture output;
    loads(picture);
    EXPECT_EQ(output.lines(),
              (Lines{readingLine,
                     "I cannot build 3 of the blocks of data/Rollix/level0.png: a value under 57 "
                     "gives no body. The first is at column 3, row 1: hue 45, saturation 100, "
                     "value 40, alpha 200."}));
    EXPECT_EQ(board().getBlocks().size(), 17u);
}

TEST_F(LevelFileTest, MayBeOfAnyKindOfPng)
{
    LevelPicture picture(6, 4, cells::floor);
    picture.set(0, 0, cells::start)
        .set(3, 1, cells::wall)
        .set(5, 3, cells::goal)
        .set(2, 2, cells::hole);
    loads(picture);
    const std::string expected = blocks();
    ASSERT_EQ(board().getBlocks().size(), 23u);

    const auto reads = [&](const QImage& image) {
        EXPECT_TRUE(image.save(levelFile));
        EXPECT_EQ(QImage(levelFile).format(), image.format()) << "written as it is meant";
        game.loadLevel(0);
        ticks(2);
        return blocks();
    };
    QVector<QRgb> palette;
    for (const Cell& cell : {cells::floor, cells::start, cells::wall, cells::goal, cells::hole})
        palette.append(colorOf(cell));
    EXPECT_EQ(reads(picture.image().convertToFormat(QImage::Format_Indexed8, palette)), expected);
    EXPECT_EQ(reads(picture.image().convertToFormat(QImage::Format_RGBA64)), expected);
    EXPECT_EQ(reads(picture.image().convertToFormat(QImage::Format_RGB32)), expected);
    EXPECT_EQ(reads(picture.image().convertToFormat(QImage::Format_Grayscale8)), "");

    QImage profiled = picture.image();
    profiled.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    ASSERT_TRUE(profiled.save(levelFile));
    ASSERT_TRUE(contentOf(levelFile).contains("iCCP"));
    game.loadLevel(0);
    EXPECT_EQ(blocks(), expected) << "a profile changes nothing";
}

TEST_F(LevelFileTest, MayBeInterlaced)
{
    LevelPicture picture(9, 9, cells::floor);
    picture.set(4, 4, cells::start).set(7, 2, cells::wall);
    loads(picture);
    const std::string expected = blocks();
    ASSERT_EQ(QProcess::execute("convert", {levelFile, "-interlace", "PNG", levelFile}), 0);
    // The last byte of the header chunk.
    ASSERT_EQ(contentOf(levelFile).at(28), 1) << "it is interlaced";
    game.loadLevel(0);
    EXPECT_EQ(blocks(), expected);
}

TEST_F(LevelFileTest, IsPlayedWithoutThePicturesOfTheScore)
{
    const MissingFile coins("data/Rollix/coins.png");
    const MissingFile lives("data/Rollix/lives-4.png");
    OutputCapture output;
    loads({"S"});
    EXPECT_EQ(output.lines(),
              (Lines{readingLine, "I cannot read the image data/Rollix/coins.png. Imagine it."}));
    level().changeLives(-1, true);
    EXPECT_EQ(output.lines().back(),
              "I cannot read the image data/Rollix/lives-4.png. Imagine it.");
    const std::size_t before = output.lines().size();
    level().changeLives(1, false);
    level().changeLives(-1, false);
    ticks(5);
    EXPECT_EQ(output.lines().size(), before) << "once is enough";
    game.loadLevel(0);
    EXPECT_EQ(output.lines().size(), before + 1) << "for the run";
    draws(true);
    ticks(2);
}

TEST_F(LevelFileTest, GetsItsWoodBackWhenABrokenShaderIsMended)
{
    const QString path = "data/Rollix/boardShader.frag";
    loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
    ticks(30);
    const QImage wood = frame(false);
    const QByteArray text = contentOf(path);
    ASSERT_FALSE(text.isEmpty());

    OutputCapture output;
    const auto noticed = [&] {
        const std::string notice = path.toStdString() + " was changed";
        return waitUntil([&] { return output.text().find(notice) != std::string::npos; });
    };
    saves(path, "void main() { this is no shader }\n");
    ASSERT_TRUE(noticed());
    waits(50);
    EXPECT_GT(differingPixels(frame(false), wood), 5000);

    OutputCapture again;
    saves(path, text);
    ASSERT_TRUE(waitUntil([&] { return !again.text().empty(); }));
    // A save comes as one or more notices; the last one has the whole text.
    EXPECT_TRUE(waitUntil([&] { return differingPixels(frame(false), wood) < 50; }))
        << "without a restart";
}

}  // namespace
