#include "level/PictureFile.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr QRgb floorColor = qRgb(93, 186, 0);
constexpr QRgb coinColor = qRgb(186, 144, 19);

QImage filled(int width, int height, QRgb color)
{
    QImage picture(width, height, QImage::Format_ARGB32);
    picture.fill(color);
    return picture;
}

/// What a photograph is to a level: every hue, and none for long.
QImage smoothPhotograph()
{
    QImage picture(1920, 1080, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixelColor(x, y, QColor::fromHsvF(x / 1920.0, y / 1080.0, 0.9));
    return picture;
}

QImage noise(int width, int height)
{
    std::mt19937 random(1);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, random());
    return picture;
}

/// The sum that ends a chunk of a PNG, over its name and content.
quint32 checksum(const QByteArray& bytes)
{
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum & 1 ? (sum >> 1) ^ 0xedb88320 : sum >> 1;
    }
    return ~sum;
}

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(char(number >> shift));
    return bytes;
}

class PictureFileTest : public ::testing::Test
{
protected:
    std::string pathOf(const QString& name) const
    {
        return QDir(folder.path()).filePath(name).toStdString();
    }

    PictureFile reads(const QImage& picture) const
    {
        EXPECT_TRUE(picture.save(QString::fromStdString(pathOf("level.png"))));
        return PictureFile::read(pathOf("level.png"));
    }

    /// A sound picture of 20 x 20 floors whose head tells another size.
    PictureFile readsHead(quint32 width, quint32 height) const
    {
        reads(filled(20, 20, floorColor));
        QFile file(QString::fromStdString(pathOf("level.png")));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray content = file.readAll();
        // Signature, length and name of the first chunk, then width and height.
        content.replace(16, 8, bigEndian(width) + bigEndian(height));
        content.replace(29, 4, bigEndian(checksum(content.mid(12, 17))));
        file.seek(0);
        file.write(content);
        file.close();
        return PictureFile::read(pathOf("level.png"));
    }

private:
    QTemporaryDir folder;
};

TEST_F(PictureFileTest, IsReadUpToThreeHundredTimesThreeHundredCells)
{
    for (const QSize& size : {QSize(300, 300), QSize(90000, 1), QSize(1, 90000)}) {
        const PictureFile file = reads(filled(size.width(), size.height(), floorColor));
        EXPECT_EQ(file.refusal, "");
        EXPECT_EQ(file.picture.size(), size);
    }
    const PictureFile file = reads(filled(90001, 1, qRgb(0, 0, 0)));
    EXPECT_TRUE(file.picture.isNull());
    EXPECT_EQ(file.refusal,
              "I cannot build " + pathOf("level.png") +
                  ": it is a picture of 90001 x 1 pixels, each of them a cell, and I build 90000 "
                  "cells at most. Make it smaller.");
}

TEST_F(PictureFileTest, IsLookedAtWithinItsEdges)
{
    // Qt complains of every pixel that is none.
    static int complaints;
    complaints = 0;
    const auto usual = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++complaints; });
    const PictureFile file = reads(filled(3, 2, floorColor));
    static_cast<void>(file.picture.pixel(3, 0));
    qInstallMessageHandler(usual);
    EXPECT_EQ(complaints, 1) << "of the one beyond the edge, here";
}

TEST_F(PictureFileTest, IsReadUpToItsMostBlocksWithABodyOfTheirOwn)
{
    QImage picture = filled(300, 300, floorColor);
    for (int i = 0; i < mostBodies; ++i)
        picture.setPixel(i % 300, i / 300, coinColor);
    PictureFile file = reads(picture);
    EXPECT_EQ(file.refusal, "");
    EXPECT_EQ(file.picture.size(), picture.size());

    picture.setPixel(299, 299, coinColor);
    file = reads(picture);
    EXPECT_TRUE(file.picture.isNull());
    EXPECT_EQ(file.refusal, "I cannot build " + pathOf("level.png") + ": its colours make " +
                                std::to_string(mostBodies + 1) +
                                " blocks that are no floor or wall, and I build " +
                                std::to_string(mostBodies) +
                                " of those at most. Paint more of it black, or as floor and wall.");

    // Too dark for a body: refused one by one, and no burden.
    picture.setPixel(299, 299, qRgb(100, 77, 10));
    EXPECT_EQ(reads(picture).refusal, "");
}

TEST_F(PictureFileTest, RefusesAPhotograph)
{
    const PictureFile file = reads(smoothPhotograph());
    EXPECT_TRUE(file.picture.isNull());
    EXPECT_NE(file.refusal.find("a picture of 1920 x 1080 pixels"), std::string::npos)
        << file.refusal;
}

TEST_F(PictureFileTest, RefusesNoiseByItsSizeOrByItsBlocks)
{
    EXPECT_NE(reads(noise(400, 300)).refusal.find("a picture of 400 x 300 pixels"),
              std::string::npos);
    const PictureFile file = reads(noise(300, 300));
    EXPECT_TRUE(file.picture.isNull());
    EXPECT_NE(file.refusal.find("blocks that are no floor or wall"), std::string::npos)
        << file.refusal;
}

TEST_F(PictureFileTest, BelievesAHeadThatTellsTooMuch)
{
    for (const quint32 width : {90001u, 0x7fffffffu}) {
        const PictureFile file = readsHead(width, width);
        EXPECT_TRUE(file.picture.isNull());
    }
    const PictureFile file = readsHead(60000, 60000);
    EXPECT_TRUE(file.picture.isNull());
    EXPECT_NE(file.refusal.find("a picture of 60000 x 60000 pixels"), std::string::npos)
        << file.refusal;
}

TEST_F(PictureFileTest, IsNoLargerThanItMayBeWhateverItsHeadTells)
{
    for (const auto& [width, height] : {std::pair(10u, 10u), {300u, 300u}, {1u, 1u}, {0u, 5u}}) {
        SCOPED_TRACE(testing::Message() << width << " by " << height);
        const PictureFile file = readsHead(width, height);
        EXPECT_EQ(file.refusal, "");
        EXPECT_LE(file.picture.width(), int(width));
        EXPECT_LE(file.picture.height(), int(height));
    }
}

TEST_F(PictureFileTest, SaysNothingOfAFileThatIsNoPicture)
{
    for (const char* content : {"", "This is a picture of a board.\n", "\x89PNG\r\n\x1a\n"}) {
        QFile file(QString::fromStdString(pathOf("level.png")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        const PictureFile read = PictureFile::read(pathOf("level.png"));
        EXPECT_TRUE(read.picture.isNull());
        EXPECT_EQ(read.refusal, "");
    }
    EXPECT_EQ(PictureFile::read(pathOf("none.png")).refusal, "");
}

}  // namespace
