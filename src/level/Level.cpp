#include "level/Level.h"

#include "base/Say.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/ImageHUD.h"
#include "hud/ScoreHUD.h"
#include "level/Ball.h"
#include "level/BlockCheckpoint.h"
#include "level/Board.h"
#include "level/Ground.h"
#include "level/PictureFile.h"
#include "shaders/ShaderProgram.h"

#include <osgDB/ReadFile>
#include <osgDB/Registry>

#include <algorithm>
#include <sstream>

namespace {

constexpr int maximumLives = 5;
constexpr float hudHeight = 0.03f;  // of the window's height

std::string levelPicture(unsigned int number)
{
    // Signed: the level before level 0 is level -1, a file like any other.
    std::ostringstream name;
    name << "data/Rollix/level" << int(number) << ".png";
    return name.str();
}

osg::ref_ptr<osg::Drawable> readModel(const std::string& file)
{
    const osg::ref_ptr<osg::Node> node =
        osgDB::readRefNodeFile(file, osgDB::Registry::instance()->getOptions());
    osg::Geode* geode = node ? node->asGeode() : nullptr;
    if (geode && geode->getNumDrawables() > 0)
        return geode->getDrawable(0);
    say("I cannot read a model from ", file);
    return nullptr;
}

}  // namespace

Level::Level(unsigned int levelNumber, osg::Group* parentGroup, Rollix* owner)
    : game_(owner),
      parent(parentGroup),
      lives(maximumLives),
      number(levelNumber),
      pictureFile(levelPicture(levelNumber))
{
    const GameLoop::Lock worldLock;
    game_->createMaterial("holz", 0.2f, 0.05f, 0.0f);
    say("reading level ", pictureFile);
    root = new osg::Group;
    createShader();
    ground = new Ground(*this);
    createBoard();
    ball = new Ball(*this);
    createHud();
    parent->addChild(root);
}

Level::~Level()
{
    const GameLoop::Lock worldLock;
    parent->removeChild(root);
    // Shown elements are event handlers of the view, which would keep them for good.
    livesHud->hide();
    coinsHud->hide();
    scoreHud->hide();
    game_->clear();
}

void Level::createShader()
{
    shader = new ShaderProgram(root);
    game_->setSharedStages(*shader, "standard");
}

void Level::createBoard()
{
    board = new Board(*this);
    const PictureFile read = PictureFile::read(pictureFile);
    if (!read.refusal.empty())
        say(read.refusal);
    board->load(read.picture);
}

void Level::createHud()
{
    livesHud = new ImageHUD;
    showLives();
    livesHud->setPosition(osg::Vec2f(0.9f, 0.97f));
    livesHud->setSize(osg::Vec2f(0.0f, hudHeight));
    livesHud->setAlignment(osgText::TextBase::RIGHT_TOP);
    livesHud->init(root, game_);
    livesHud->show();

    coinsHud = new ImageHUD;
    coinsHud->setImage("data/Rollix/coins.png");
    coinsHud->setPosition(osg::Vec2f(0.95f, 0.97f));
    coinsHud->setSize(osg::Vec2f(0.0f, hudHeight));
    coinsHud->setAlignment(osgText::TextBase::RIGHT_TOP);
    coinsHud->init(root, game_);
    coinsHud->show();

    scoreHud = new ScoreHUD;
    scoreHud->setPosition(osg::Vec2f(0.955f, 0.965f));
    scoreHud->setAlignment(osgText::TextBase::LEFT_TOP);
    scoreHud->init(root, game_);
    scoreHud->show();
}

void Level::addChild(osg::Node* node)
{
    root->addChild(node);
}

osg::Drawable* Level::sharedModel(const std::string& file)
{
    const auto known = models.find(file);
    return known != models.end() ? known->second
                                 : models.emplace(file, readModel(file)).first->second;
}

void Level::setStart(BlockCheckpoint* block)
{
    startCheckpoint = block;
    checkpoint = block;
}

void Level::showLives()
{
    livesHud->setImage("data/Rollix/lives-" + std::to_string(lives) + ".png");
}

void Level::changeLives(int delta, bool reset)
{
    // A mine's fuse burns down between two ticks, while the sensor's thread may show a menu.
    const GameLoop::Lock worldLock;
    lives = std::clamp(lives + delta, 0, maximumLives);
    showLives();
    if (reset || lives == 0)
        restart(lives == 0);
}

void Level::changeCoins(int delta)
{
    coins += std::max(delta, -coins);
    scoreHud->setScore(coins);
}

void Level::restart(bool fromStart)
{
    if (fromStart) {
        checkpoint = startCheckpoint;
        lives = maximumLives;
        showLives();
        scoreHud->setScore(0);
        coins = 0;
    }
    ball->reset();
    board->reset(fromStart);
    game_->state = GameState::WaitingForRest;
    if (fromStart)
        game_->levelFailed();
}

void Level::complete()
{
    game_->levelCompleted();
}
