#pragma once

#include <osg/Drawable>
#include <osg/Group>
#include <osg/Referenced>
#include <osg/ref_ptr>

#include <string>
#include <unordered_map>

class Ball;
class BlockCheckpoint;
class Board;
class Ground;
class ImageHUD;
class Rollix;
class ScoreHUD;
class ShaderProgram;

/// One loaded level: it owns the scene subtree, ground, board, ball and the HUD elements of a
/// running game, and keeps lives, coins and the last checkpoint. To make it loads it, to destroy it
/// clears the physics world. There is never more than one. World lock held in all of it;
/// constructor, destructor and changeLives take the lock themselves.
class Level : public osg::Referenced
{
public:
    /// Loads "data/Rollix/level<number>.png" under `parent`. A missing or broken picture gives a
    /// bare board.
    Level(unsigned int number, osg::Group* parent, Rollix* game);

    Rollix* game() const { return game_; }

    /// Ids count from 0 in every level: they are actor ids, and the scene is cleared between
    /// levels.
    unsigned int nextObjectId() { return nextObjectId_++; }

    /// Adds to the root of everything that the level shows.
    void addChild(osg::Node* node);

    /// The first drawable of a model file, read at its first use in the level: a large level has
    /// thousands of items of three kinds. Null, with a line on standard output, if there is none.
    osg::Drawable* sharedModel(const std::string& file);

    /// The start cell says so of itself; with several, the last one counts.
    void setStart(BlockCheckpoint* block);

    /// Lives stay from 0 to 5. With `reset`, or when none is left, the run goes on from the last
    /// checkpoint or from the start. May be called in a physics event.
    void changeLives(int delta, bool reset);

    /// Coins never go under 0.
    void changeCoins(int delta);

    /// Puts the ball back and the board level; from the start also all blocks, lives and coins.
    void restart(bool fromStart);

    void complete();

    int livesLeft() const { return lives; }
    int coinCount() const { return coins; }

private:
    Rollix* game_;
    osg::ref_ptr<osg::Group> parent;
    osg::ref_ptr<osg::Group> root;

public:
    osg::ref_ptr<Board> board;
    osg::ref_ptr<Ground> ground;
    osg::ref_ptr<Ball> ball;

private:
    osg::ref_ptr<ShaderProgram> shader;
    int coins = 0;
    int lives;

public:
    /// Where the ball is put back; null in a level without a start cell.
    osg::ref_ptr<BlockCheckpoint> checkpoint;

private:
    osg::ref_ptr<BlockCheckpoint> startCheckpoint;
    osg::ref_ptr<ImageHUD> livesHud;
    osg::ref_ptr<ImageHUD> coinsHud;
    osg::ref_ptr<ScoreHUD> scoreHud;

public:
    const unsigned int number;

    /// The level's picture, below the working directory.
    const std::string pictureFile;

protected:
    ~Level() override;

private:
    void createShader();
    void createBoard();
    void createHud();
    void showLives();

    std::unordered_map<std::string, osg::ref_ptr<osg::Drawable>> models;
    unsigned int nextObjectId_ = 0;
};
