#include "hud/ImageHUD.h"

#include "hud/ContainerHUD.h"
#include "hud/HudTest.h"
#include "support/OutputCapture.h"

#include <gtest/gtest.h>
#include <osgDB/ReaderWriter>
#include <osgDB/Registry>

#include <cstdio>
#include <string>

namespace {

const osg::Vec3i red(255, 0, 0);
const osg::Vec3i green(0, 255, 0);
const osg::Vec3i blue(0, 0, 255);
const osg::Vec3i white(255, 255, 255);

class ImageHUDTest : public HudTest
{
protected:
    osg::ref_ptr<ImageHUD> makesImage(const std::string& file, osg::Vec2f position, osg::Vec2f size,
                                      int alignment)
    {
        osg::ref_ptr<ImageHUD> element = new ImageHUD;
        element->setImage(file);
        element->setPosition(position);
        element->setSize(size);
        element->setAlignment(alignment);
        return element;
    }

    static void expectQuad(ImageHUD& element, double left, double bottom, double right, double top)
    {
        const osg::BoundingBox quad = quadOf(element);
        EXPECT_EQ(quad.xMin(), left);
        EXPECT_EQ(quad.yMin(), bottom);
        EXPECT_EQ(quad.xMax(), right);
        EXPECT_EQ(quad.yMax(), top);
        EXPECT_EQ(quad.zMin(), 0.0);
        EXPECT_EQ(quad.zMax(), 0.0);
    }
};

/// Reads files named *.nothing as pictures without a pixel.
class NothingReader : public osgDB::ReaderWriter
{
public:
    NothingReader() { supportsExtension("nothing", "a picture without a pixel"); }

    ReadResult readImage(const std::string&, const osgDB::Options*) const override
    {
        return ReadResult(new osg::Image);
    }
};

}  // namespace

TEST_F(ImageHUDTest, TakesTheMissingWidthFromThePicture)
{
    writesPicture("wide.png", 100, 50, {1, 0, 0, 1});
    auto element = shown(makesImage("wide.png", {0, 0}, {0, 0.03f}, 2));
    element->resize(1000, 1000);
    expectQuad(*element, 0, 0, 60, 30);
}

TEST_F(ImageHUDTest, TakesTheMissingHeightFromThePicture)
{
    writesPicture("wide.png", 100, 50, {1, 0, 0, 1});
    auto element = shown(makesImage("wide.png", {0, 0}, {0.25f, 0}, 2));
    expectQuad(*element, 0, 0, 200, 100);
}

TEST_F(ImageHUDTest, IsDrawnPixelByPixelWithoutASize)
{
    writesPicture("odd.png", 37, 21, {1, 0, 0, 1});
    auto element = shown(makesImage("odd.png", {0, 0}, {0, 0}, 2));
    expectQuad(*element, 0, 0, 37, 21);
}

TEST_F(ImageHUDTest, HasNoSizeUntilItIsGivenOne)
{
    writesPicture("odd.png", 37, 21, {1, 0, 0, 1});
    osg::ref_ptr<ImageHUD> element = new ImageHUD;
    element->setImage("odd.png");
    element->setAlignment(2);
    expectQuad(*shown(element), 0, 0, 37, 21);
}

TEST_F(ImageHUDTest, StretchesToASizeThatIsGivenWhole)
{
    writesPicture("wide.png", 100, 50, {1, 0, 0, 1});
    auto element = shown(makesImage("wide.png", {0, 0}, {0.1f, 0.2f}, 2));
    expectQuad(*element, 0, 0, 80, 120);
}

TEST_F(ImageHUDTest, TruncatesToWholePixels)
{
    writesPicture("odd.png", 10, 3, {1, 0, 0, 1});
    auto element = shown(makesImage("odd.png", {0.3337f, 0.6669f}, {0, 0.03f}, 2));
    element->resize(1001, 501);
    // 15 pixels high, 10 * 15 / 3 wide, at (334.03, 334.1).
    expectQuad(*element, 334, 334, 384, 349);
}

TEST_F(ImageHUDTest, LaysThePointOfItsAlignmentOnTheAnchor)
{
    writesPicture("even.png", 40, 20, {1, 0, 0, 1});
    auto element = shown(makesImage("even.png", {0.5f, 0.5f}, {0, 0}, 0));
    for (int value = 0; value < 9; ++value) {
        SCOPED_TRACE(value);
        element->setAlignment(value);
        const double left = 400 - (value / 3) * 20.0;
        const double top = 300 + (value % 3) * 10.0;
        expectQuad(*element, left, top - 20, left + 40, top);
    }
}

TEST_F(ImageHUDTest, EndsAtNinetyPercentOfTheWidthWhenAnchoredThereRightTop)
{
    writesPicture("wide.png", 100, 50, {1, 0, 0, 1});
    auto element =
        shown(makesImage("wide.png", {0.9f, 0.97f}, {0, 0.03f}, osgText::TextBase::RIGHT_TOP));
    const osg::BoundingBox quad = quadOf(*element);
    EXPECT_EQ(quad.xMax(), 720.0);
    EXPECT_EQ(quad.yMax(), 582.0);

    const Extent extent = drawnExtent();
    EXPECT_EQ(extent.right, 720);
    EXPECT_EQ(extent.top, 582);
    EXPECT_EQ(extent.left, 720 - 36);
    EXPECT_EQ(extent.bottom, 582 - 18);
}

TEST_F(ImageHUDTest, DrawsEveryPixelOfThePictureWhereItBelongs)
{
    constexpr int width = 6;
    constexpr int height = 5;  // no power of two: nothing may stretch the picture on its way
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->allocateImage(width, height, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image->setColor({x % 2 ? 1.0f : 0.0f, y % 2 ? 1.0f : 0.0f, 0.0f, 1.0f}, x, y);
    image->setColor({0, 0, 1, 1}, 0, height - 1);
    writesPicture("pattern.png", *image);
    shown(makesImage("pattern.png", {0.5f, 0.5f}, {0, 0}, osgText::TextBase::LEFT_BOTTOM));
    offscreen.draw();

    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            SCOPED_TRACE(testing::Message() << x << ", " << y);
            const osg::Vec3i expected =
                x == 0 && y == height - 1 ? blue : osg::Vec3i(x % 2 ? 255 : 0, y % 2 ? 255 : 0, 0);
            EXPECT_TRUE(isNear(offscreen.pixel(400 + x, 300 + y), expected));
        }
    }
}

TEST_F(ImageHUDTest, LetsTheSceneThroughWhereThePictureIsTransparent)
{
    writesPicture("half.png", 10, 10, {1, 1, 1, 0.5f});
    shown(makesImage("half.png", {0.5f, 0.5f}, {0, 0}, osgText::TextBase::LEFT_BOTTOM));
    offscreen.draw();
    EXPECT_TRUE(isNear(offscreen.pixel(405, 305), (background + white) / 2));
}

TEST_F(ImageHUDTest, ChangesThePictureAtOnce)
{
    writesPicture("red.png", 10, 10, {1, 0, 0, 1});
    writesPicture("green.png", 10, 10, {0, 1, 0, 1});
    auto element =
        shown(makesImage("red.png", {0.5f, 0.5f}, {0, 0}, osgText::TextBase::LEFT_BOTTOM));
    offscreen.draw();
    EXPECT_TRUE(isNear(offscreen.pixel(405, 305), red));

    element->setImage("green.png");
    offscreen.draw();
    EXPECT_TRUE(isNear(offscreen.pixel(405, 305), green));
    EXPECT_EQ(element->getGeode()->getNumDrawables(), 1u);
}

TEST_F(ImageHUDTest, MovesGrowsAndTurnsToAnotherCornerAtOnce)
{
    writesPicture("wide.png", 100, 50, {1, 0, 0, 1});
    auto element = shown(makesImage("wide.png", {0, 0}, {0, 0}, osgText::TextBase::LEFT_BOTTOM));
    expectQuad(*element, 0, 0, 100, 50);
    element->setPosition({0.5f, 0.5f});
    expectQuad(*element, 400, 300, 500, 350);
    element->setSize({0.25f, 0});
    expectQuad(*element, 400, 300, 600, 400);
    element->setAlignment(osgText::TextBase::RIGHT_TOP);
    expectQuad(*element, 200, 200, 400, 300);
}

TEST_F(ImageHUDTest, MeansTheSameFractionsInAContainer)
{
    writesPicture("red.png", 10, 10, {1, 0, 0, 1});
    osg::ref_ptr<ContainerHUD> container = new ContainerHUD;
    shown(container);
    auto element = makesImage("red.png", {0.25f, 0.75f}, {0.1f, 0}, osgText::TextBase::LEFT_BOTTOM);
    element->init(container);
    expectQuad(*element, 200, 450, 280, 530);

    const Extent extent = drawnExtent();
    EXPECT_EQ(extent.left, 200);
    EXPECT_EQ(extent.right, 280);
    EXPECT_EQ(extent.bottom, 450);
    EXPECT_EQ(extent.top, 530);
}

TEST_F(ImageHUDTest, DrawsNothingForAMissingPictureAndSaysSoOnce)
{
    OutputCapture output;
    auto element = shown(makesImage("absent.png", {0.5f, 0.5f}, {0, 0}, 4));
    element->refresh();
    element->setSize({0.1f, 0});
    EXPECT_TRUE(drawnExtent().isEmpty());
    EXPECT_EQ(output.text(), "I cannot read the image absent.png. Imagine it.\n");

    writesPicture("absent.png", 10, 10, {1, 0, 0, 1});
    element->refresh();
    EXPECT_FALSE(drawnExtent().isEmpty());
}

TEST_F(ImageHUDTest, SaysSoAgainWhenAPictureThatWasThereGoesMissing)
{
    const std::string line = "I cannot read the image again.png. Imagine it.\n";
    OutputCapture output;
    auto element = shown(makesImage("again.png", {0.5f, 0.5f}, {0, 0}, 4));
    EXPECT_EQ(output.text(), line);
    writesPicture("again.png", 10, 10, {1, 0, 0, 1});
    element->refresh();
    EXPECT_EQ(output.text(), line);
    ASSERT_EQ(std::remove("again.png"), 0);
    element->refresh();
    element->refresh();
    EXPECT_EQ(output.text(), line + line);
}

TEST_F(ImageHUDTest, DrawsNothingForAPictureWithoutAPixel)
{
    osg::ref_ptr<NothingReader> reader = new NothingReader;
    osgDB::Registry::instance()->addReaderWriter(reader);
    OutputCapture output;
    auto element = shown(makesImage("empty.nothing", {0.5f, 0.5f}, {0, 0.1f}, 4));
    element->setSize({0.1f, 0});
    EXPECT_TRUE(drawnExtent().isEmpty());
    EXPECT_EQ(output.text(), "I cannot read the image empty.nothing. Imagine it.\n");
    osgDB::Registry::instance()->removeReaderWriter(reader);
}
