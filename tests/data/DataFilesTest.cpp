#include <QColorSpace>
#include <QImage>
#include <QRawFont>
#include <QStringList>
#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Math>
#include <osgDB/ReadFile>
#include <osgText/Font>

#include <algorithm>
#include <string>

namespace {

constexpr int fullLives = 5;

class ItemModel : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        node = osgDB::readRefNodeFile("data/Rollix/" + GetParam() + ".osgt");
        ASSERT_TRUE(node);
        osg::Geode* geode = node->asGeode();
        ASSERT_TRUE(geode);
        ASSERT_GE(geode->getNumDrawables(), 1u);
        geometry = geode->getDrawable(0)->asGeometry();
        ASSERT_TRUE(geometry);
        vertices = dynamic_cast<osg::Vec3Array*>(geometry->getVertexArray());
        normals = dynamic_cast<osg::Vec3Array*>(geometry->getNormalArray());
        ASSERT_TRUE(vertices);
        ASSERT_TRUE(normals);
    }

    float reach() const
    {
        float farthest = 0.0f;
        for (const osg::Vec3f& vertex : *vertices)
            farthest = std::max(farthest, vertex.length());
        return farthest;
    }

    osg::ref_ptr<osg::Node> node;
    osg::Geometry* geometry = nullptr;
    osg::Vec3Array* vertices = nullptr;
    osg::Vec3Array* normals = nullptr;
};

TEST_P(ItemModel, HasANormalOfLengthOneForEveryVertex)
{
    EXPECT_EQ(geometry->getNormalBinding(), osg::Geometry::BIND_PER_VERTEX);
    ASSERT_EQ(normals->size(), vertices->size());
    for (const osg::Vec3f& normal : *normals)
        EXPECT_NEAR(normal.length(), 1.0f, 0.001f);
}

TEST_P(ItemModel, LeavesRoomForTwoMoreOfItsKindBesideIt)
{
    // Copies hover one unit and more from each other; a weight is always alone.
    EXPECT_LE(reach(), GetParam() == "weight" ? 0.8f : 0.5f);
    EXPECT_GE(reach(), 0.4f);
}

TEST_P(ItemModel, IsSmallEnoughToBeDrawnOnEveryCellOfALevel)
{
    unsigned int indices = 0;
    for (const osg::ref_ptr<osg::PrimitiveSet>& primitives : geometry->getPrimitiveSetList()) {
        EXPECT_EQ(primitives->getMode(), GLenum(GL_TRIANGLES));
        indices += primitives->getNumIndices();
    }
    EXPECT_LE(indices / 3, 2000u);
}

INSTANTIATE_TEST_SUITE_P(OfEveryKind, ItemModel, ::testing::Values("coin", "heart", "weight"),
                         [](const ::testing::TestParamInfo<std::string>& kind) {
                             return kind.param;
                         });

/// Hearts of a row of lives whose middle is red, left of those whose middle is not.
int fullHearts(const QImage& row)
{
    int full = 0;
    for (int heart = 0; heart < fullLives; ++heart) {
        const QColor middle =
            row.pixelColor(row.width() * (2 * heart + 1) / (2 * fullLives), row.height() / 2);
        const bool isRed = middle.alpha() > 200 && middle.red() > 2 * middle.green() &&
                           middle.red() > 2 * middle.blue();
        if (isRed && full == heart)
            ++full;
        else
            EXPECT_FALSE(isRed) << "heart " << heart << " stands after a hollow one";
    }
    return full;
}

bool isPowerOfTwo(int size)
{
    return size > 0 && (size & (size - 1)) == 0;
}

TEST(LifePictures, ShowAsManyFullHeartsAsThereAreLives)
{
    for (int lives = 0; lives <= fullLives; ++lives) {
        SCOPED_TRACE(lives);
        const QImage picture("data/Rollix/lives-" + QString::number(lives) + ".png");
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(fullHearts(picture), lives);
    }
}

TEST(ScorePictures, AreTransparentAroundAndOfSizesThatNeedNoScaling)
{
    QStringList files{"coins"};
    for (int lives = 0; lives <= fullLives; ++lives)
        files << "lives-" + QString::number(lives);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const QImage picture("data/Rollix/" + file + ".png");
        ASSERT_FALSE(picture.isNull());
        EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(picture.pixelColor(picture.width() - 1, picture.height() - 1).alpha(), 0);
        EXPECT_TRUE(isPowerOfTwo(picture.width()));
        EXPECT_TRUE(isPowerOfTwo(picture.height()));
        EXPECT_FALSE(picture.colorSpace().isValid()) << "has a colour profile";
    }
}

TEST(WoodPicture, HasOneChannelThatUsesItsRangeAndASizeThatNeedsNoScaling)
{
    const QImage picture("data/Rollix/wood.png");
    ASSERT_FALSE(picture.isNull());
    EXPECT_TRUE(picture.isGrayscale());
    EXPECT_TRUE(isPowerOfTwo(picture.width()));
    EXPECT_TRUE(isPowerOfTwo(picture.height()));
    EXPECT_FALSE(picture.colorSpace().isValid()) << "has a colour profile";
    int palest = 255;
    int darkest = 0;
    double sum = 0.0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int grain = qGray(picture.pixel(x, y));
            palest = std::min(palest, grain);
            darkest = std::max(darkest, grain);
            sum += grain;
        }
    }
    EXPECT_LT(palest, 10);
    EXPECT_GT(darkest, 200);
    const double mean = sum / (picture.width() * picture.height());
    EXPECT_GT(mean, 40.0) << "a board of one colour";
    EXPECT_LT(mean, 110.0) << "a dark one";
}

TEST(TextFont, HasEveryLetterThatTheGameWrites)
{
    const QRawFont font(QString("data/Bevan.ttf"), 30.0);
    ASSERT_TRUE(font.isValid());
    EXPECT_EQ(font.familyName(), "Bevan");
    const QString written = "Not even close... Well Done! Restart Next Level Previous Level "
                            "Continue Menu 0123456789-";
    for (const QChar letter : written)
        EXPECT_TRUE(font.supportsCharacter(letter)) << letter.toLatin1();
    EXPECT_TRUE(osgText::readRefFontFile("data/Bevan.ttf"));
}

}  // namespace
