#include "hud/TextHUD.h"

#include "hud/ContainerHUD.h"
#include "hud/HudTest.h"
#include "hud/ScoreHUD.h"
#include "support/EventLoop.h"
#include "support/OutputCapture.h"

#include <QFile>
#include <gtest/gtest.h>
#include <osgDB/Registry>

namespace {

const osg::Vec3i black(0, 0, 0);
const osg::Vec3i white(255, 255, 255);

// The outline is 0.05 of the size wide, and the glyphs keep a little away from the anchor.
constexpr int outlineAndMargin = 8;  // pixels

class TextHUDTest : public HudTest
{
protected:
    osg::ref_ptr<TextHUD> makesText(const std::string& text)
    {
        osg::ref_ptr<TextHUD> element = new TextHUD;
        element->setText(text);
        element->setPosition({0.5f, 0.5f});
        return element;
    }

    int pixelsNear(const osg::Vec3i& color, int tolerance = 12)
    {
        int count = 0;
        for (int y = 0; y < windowHeight; ++y)
            for (int x = 0; x < windowWidth; ++x)
                count += isNear(offscreen.pixel(x, y), color, tolerance);
        return count;
    }
};

class ScoreHUDTest : public TextHUDTest
{
};

}  // namespace

TEST_F(TextHUDTest, IsBlackThirtyPixelsHighCentredWithAWhiteOutline)
{
    auto element = shown(makesText("Line"));
    const osgText::Text* text = textOf(*element);
    ASSERT_NE(text, nullptr);

    EXPECT_EQ(text->getText().createUTF8EncodedString(), "Line");
    EXPECT_EQ(text->getCharacterHeight(), 30.0f);
    EXPECT_EQ(text->getColor(), osg::Vec4(0, 0, 0, 1));
    EXPECT_EQ(text->getAlignment(), osgText::TextBase::CENTER_CENTER);
    EXPECT_EQ(text->getAxisAlignment(), osgText::TextBase::SCREEN);
    EXPECT_EQ(text->getBackdropType(), osgText::Text::OUTLINE);
    EXPECT_EQ(text->getBackdropColor(), osg::Vec4(1, 1, 1, 1));
    EXPECT_EQ(text->getBackdropHorizontalOffset(), 0.05f);
    EXPECT_EQ(text->getBackdropVerticalOffset(), 0.05f);
    ASSERT_NE(text->getFont(), nullptr);
    EXPECT_NE(text->getFont()->getFileName().find("data/Bevan.ttf"), std::string::npos);
}

TEST_F(TextHUDTest, StartsAtTheWindowsLowerLeftCorner)
{
    osg::ref_ptr<TextHUD> element = new TextHUD;
    element->setText("x");
    shown(element);
    EXPECT_EQ(textOf(*element)->getPosition(), osg::Vec3(0, 0, 0));
}

TEST_F(TextHUDTest, DrawsItsOwnProgramOverTheScenesAndTheTextsOwn)
{
    auto element = shown(makesText("x"));
    osg::StateSet* state = element->getGeode()->getStateSet();
    EXPECT_NE(state->getAttribute(osg::StateAttribute::PROGRAM), nullptr);
    int unit = -1;
    ASSERT_NE(state->getUniform("GlyphTexture"), nullptr);
    EXPECT_TRUE(state->getUniform("GlyphTexture")->get(unit));
    EXPECT_EQ(unit, 0);
}

TEST_F(TextHUDTest, DrawsBlackGlyphsInAWhiteOutlineAndNothingElse)
{
    for (float size : {30.0f, 40.0f, 50.0f}) {
        SCOPED_TRACE(size);
        auto element = makesText("HILTE");
        element->setCharacterSize(size);
        shown(element);
        const Extent extent = drawnExtent();
        ASSERT_FALSE(extent.isEmpty());

        const int area = (extent.right - extent.left) * (extent.top - extent.bottom);
        EXPECT_GT(pixelsNear(black), area / 4);
        EXPECT_GT(pixelsNear(white, 100), area / 10);

        // From outside into the first stem there is white, and then black at once.
        const int middle = (extent.bottom + extent.top) / 2;
        int x = extent.left;
        while (x < extent.right && isNear(offscreen.pixel(x, middle), background))
            ++x;
        int steps = 0;
        int brightest = 0;
        for (; x < extent.right && !isNear(offscreen.pixel(x, middle), black); ++x) {
            brightest = std::max(brightest, offscreen.pixel(x, middle).x());
            ++steps;
        }
        EXPECT_GT(brightest, 150);
        EXPECT_LE(steps, 3 + int(std::ceil(0.05f * size)));
        EXPECT_EQ(textOf(*element)->getFontHeight(), static_cast<unsigned int>(size));
        element->hide();
    }
}

TEST_F(TextHUDTest, IsAsHighAsItsCharacterSize)
{
    auto element = makesText("H");
    element->setCharacterSize(50);
    shown(element);
    const Extent large = drawnExtent();
    element->setCharacterSize(25);
    const Extent small = drawnExtent();

    const int largeHeight = large.top - large.bottom;
    EXPECT_NEAR(largeHeight, 2 * (small.top - small.bottom), 5);
    EXPECT_GT(largeHeight, 30);
    EXPECT_LE(largeHeight, 50 + outlineAndMargin);
}

TEST_F(TextHUDTest, LaysThePointOfItsAlignmentOnTheAnchor)
{
    // The middle of the line is not that of a letter without parts below the line.
    constexpr int middleTolerance = 12;  // pixels
    const int anchorX = windowWidth / 2;
    const int anchorY = windowHeight / 2;
    auto element = shown(makesText("Hg"));
    for (int value = 0; value < 9; ++value) {
        SCOPED_TRACE(value);
        element->setAlignment(static_cast<osgText::TextBase::AlignmentType>(value));
        const Extent extent = drawnExtent();
        ASSERT_FALSE(extent.isEmpty());
        switch (value / 3) {
        case 0:
            EXPECT_NEAR(extent.left, anchorX, outlineAndMargin);
            break;
        case 1:
            EXPECT_NEAR((extent.left + extent.right) / 2, anchorX, outlineAndMargin);
            break;
        default:
            EXPECT_NEAR(extent.right, anchorX, outlineAndMargin);
        }
        switch (value % 3) {
        case 0:
            EXPECT_NEAR(extent.top, anchorY, outlineAndMargin);
            break;
        case 1:
            EXPECT_NEAR((extent.bottom + extent.top) / 2, anchorY, middleTolerance);
            break;
        default:
            EXPECT_NEAR(extent.bottom, anchorY, outlineAndMargin);
        }
    }
}

TEST_F(TextHUDTest, StandsOnWholePixels)
{
    auto element = makesText("x");
    element->setPosition({0.3337f, 0.6669f});
    shown(element);
    element->resize(1001, 501);
    EXPECT_EQ(textOf(*element)->getPosition(), osg::Vec3(334, 334, 0));
}

TEST_F(TextHUDTest, KeepsItsSizeWhereTheWindowHasRoomForIt)
{
    auto element = shown(makesText("Not even close..."));
    for (const auto& [width, height] : {std::pair<int, int>{3840, 2160}, {800, 600}, {640, 480}}) {
        element->resize(width, height);
        EXPECT_EQ(textOf(*element)->getCharacterHeight(), 30.0f);
    }
}

TEST_F(TextHUDTest, ShrinksAwayFromEveryEdgeThatItWouldCross)
{
    for (int value = 0; value < 9; ++value) {
        SCOPED_TRACE(value);
        auto element = makesText("Bring your hand in rest position.");
        element->setAlignment(static_cast<osgText::TextBase::AlignmentType>(value));
        element->setPosition({0.9f - 0.4f * float(value / 3), 0.02f + 0.48f * float(value % 3)});
        shown(element);
        const Extent extent = drawnExtent();
        ASSERT_FALSE(extent.isEmpty());
        EXPECT_GT(extent.left, 0);
        EXPECT_LT(extent.right, windowWidth);
        EXPECT_GT(extent.bottom, 0);
        EXPECT_LT(extent.top, windowHeight);
        element->hide();
    }
}

TEST_F(TextHUDTest, IsAsLargeAsItWasOnceTheWindowHasRoomAgain)
{
    auto element = shown(makesText("Bring your hand in rest position."));
    element->resize(320, 240);
    const float small = textOf(*element)->getCharacterHeight();
    EXPECT_LT(small, 20.0f);
    EXPECT_GT(small, 10.0f);
    element->resize(windowWidth, windowHeight);
    EXPECT_EQ(textOf(*element)->getCharacterHeight(), 30.0f);
}

TEST_F(TextHUDTest, ShowsEveryNewSettingAtOnce)
{
    auto element = shown(makesText("old"));
    element->setText("new");
    EXPECT_EQ(textOf(*element)->getText().createUTF8EncodedString(), "new");
    element->setColor({1, 0, 0, 1});
    EXPECT_EQ(textOf(*element)->getColor(), osg::Vec4(1, 0, 0, 1));
    element->setCharacterSize(12);
    EXPECT_EQ(textOf(*element)->getCharacterHeight(), 12.0f);
    element->setAlignment(osgText::TextBase::LEFT_TOP);
    EXPECT_EQ(textOf(*element)->getAlignment(), osgText::TextBase::LEFT_TOP);
    element->setPosition({0.25f, 0.75f});
    EXPECT_EQ(textOf(*element)->getPosition(), osg::Vec3(200, 450, 0));
    EXPECT_EQ(element->getGeode()->getNumDrawables(), 1u);
}

TEST_F(TextHUDTest, DrawsItsColour)
{
    auto element = makesText("HILTE");
    element->setColor({0.9f, 0, 0, 1});
    shown(element);
    drawnExtent();
    EXPECT_GT(pixelsNear({230, 0, 0}), 300);
    EXPECT_EQ(pixelsNear(black), 0);
}

TEST_F(TextHUDTest, KeepsATextThatIsSetWhileHidden)
{
    auto element = prepared(makesText("old"));
    element->setText("new");
    EXPECT_EQ(textOf(*element), nullptr);
    EXPECT_TRUE(drawnExtent().isEmpty());

    element->show();
    EXPECT_EQ(textOf(*element)->getText().createUTF8EncodedString(), "new");
    EXPECT_FALSE(drawnExtent().isEmpty());

    element->hide();
    EXPECT_TRUE(drawnExtent().isEmpty());
}

TEST_F(TextHUDTest, StandsInAContainerWhereItStandsAlone)
{
    auto alone = makesText("Here");
    alone->setPosition({0.2f, 0.8f});
    shown(alone);
    const Extent expected = drawnExtent();
    alone->hide();

    osg::ref_ptr<ContainerHUD> container = new ContainerHUD;
    shown(container);
    auto child = makesText("Here");
    child->setPosition({0.2f, 0.8f});
    child->init(container);
    const Extent extent = drawnExtent();

    EXPECT_EQ(extent.left, expected.left);
    EXPECT_EQ(extent.right, expected.right);
    EXPECT_EQ(extent.bottom, expected.bottom);
    EXPECT_EQ(extent.top, expected.top);
}

TEST_F(TextHUDTest, StaysOverANearerSceneAndOutOfItsLighting)
{
    osg::ref_ptr<osg::Geode> wall = new osg::Geode;
    wall->addDrawable(osg::createTexturedQuadGeometry({-9, 2, -9}, {18, 0, 0}, {0, 0, 18}));
    offscreen.root()->addChild(wall);
    offscreen.view()->getCamera()->setViewMatrixAsLookAt({0, 0, 0}, {0, 1, 0}, {0, 0, 1});
    shown(makesText("HILTE"));
    drawnExtent();
    EXPECT_GT(pixelsNear(black), 300);
}

TEST_F(TextHUDTest, WritesWithAnotherFontAndSaysSoOnceWhenItsOwnIsMissing)
{
    ASSERT_TRUE(QFile::rename("data/Bevan.ttf", "data/away"));
    osgDB::Registry::instance()->clearObjectCache();
    std::string said;
    auto element = makesText("HILTE");
    {
        OutputCapture output;
        shown(element);
        element->setText("HILTEH");
        element->refresh();
        said = output.text();
    }

    EXPECT_EQ(said, "I cannot read the font data/Bevan.ttf. I write with what I have.\n");
    EXPECT_FALSE(drawnExtent().isEmpty());
    ASSERT_TRUE(QFile::rename("data/away", "data/Bevan.ttf"));
}

TEST_F(TextHUDTest, LeavesNoStageBehindThatHearsOfSavedFiles)
{
    for (int i = 0; i < 20; ++i)
        prepared(makesText("passing"));
    auto stays = prepared(makesText("staying"));
    OutputCapture output;

    QFile file("data/textShader.vert");
    ASSERT_TRUE(file.open(QFile::Append | QFile::Unbuffered));
    file.write("\n");

    const std::string line = "VERTEX Shader data/textShader.vert changed\n";
    ASSERT_TRUE(waitUntil([&] { return output.count(line) > 0; }));
    EXPECT_EQ(output.text(), "data/textShader.vert was changed\n" + line);
}

TEST_F(ScoreHUDTest, IsZeroAtFirst)
{
    auto score = shown<ScoreHUD>(new ScoreHUD);
    EXPECT_EQ(textOf(*score)->getText().createUTF8EncodedString(), "0");
    EXPECT_EQ(textOf(*score)->getCharacterHeight(), 30.0f);
}

TEST_F(ScoreHUDTest, ShowsNumbersInDecimalWithTheirSign)
{
    auto score = shown<ScoreHUD>(new ScoreHUD);
    for (const auto& [number, text] :
         {std::pair<int, std::string>{7, "7"}, {1234567, "1234567"}, {-12, "-12"}, {0, "0"}}) {
        score->setScore(number);
        EXPECT_EQ(textOf(*score)->getText().createUTF8EncodedString(), text);
    }
}

TEST_F(ScoreHUDTest, RebuildsForTheSameNumberToo)
{
    auto score = shown<ScoreHUD>(new ScoreHUD);
    score->setScore(5);
    const osg::ref_ptr<osgText::Text> before = textOf(*score);
    score->setScore(5);
    EXPECT_NE(textOf(*score), before);
}

TEST_F(ScoreHUDTest, GrowsToTheRight)
{
    osg::ref_ptr<ScoreHUD> score = new ScoreHUD;
    score->setPosition({0.5f, 0.5f});
    score->setAlignment(osgText::TextBase::LEFT_TOP);
    shown(score);
    score->setScore(8);
    const Extent one = drawnExtent();
    score->setScore(888);
    const Extent three = drawnExtent();

    EXPECT_EQ(three.left, one.left);
    EXPECT_GT(three.right, one.right + 20);
}

TEST_F(ScoreHUDTest, StaysInsideEveryWindowBesideTheCoin)
{
    for (const auto& [width, height] :
         {std::pair<int, int>{320, 240}, {640, 480}, {800, 600}, {3840, 2160}}) {
        OffscreenView window(width, height);
        osg::ref_ptr<ScoreHUD> score = new ScoreHUD;
        score->setPosition({0.955f, 0.965f});
        score->setAlignment(osgText::TextBase::LEFT_TOP);
        score->init(window.root(), window.view());
        score->show();
        for (const int number : {0, 7, 10, 99, 100, 888, 4444, 10000, 99999}) {
            SCOPED_TRACE(std::to_string(number) + " in " + std::to_string(width));
            score->setScore(number);
            const osg::BoundingBox bounds = textOf(*score)->getBoundingBox();
            EXPECT_LE(bounds.xMax(), float(width));
            EXPECT_GE(bounds.yMin(), 0.0f);
            EXPECT_EQ(textOf(*score)->getPosition().x(), float(int(0.955f * float(width))));
        }
        // What is drawn keeps off the edge as well, outline and all.
        if (width > windowWidth)
            continue;
        for (const int number : {10, 99, 888}) {
            SCOPED_TRACE(std::to_string(number) + " in " + std::to_string(width));
            score->setScore(number);
            window.setBackground({0.2f, 0.2f, 0.6f, 1.0f});
            window.draw();
            int drawn = 0;
            for (int y = 0; y < height; ++y) {
                EXPECT_TRUE(isNear(window.pixel(width - 1, y), background));
                for (int x = int(0.955f * float(width)); x < width; ++x)
                    drawn += !isNear(window.pixel(x, y), background);
            }
            EXPECT_GT(drawn, 20);
        }
    }
}
