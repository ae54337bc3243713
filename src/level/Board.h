#pragma once

#include "level/Block.h"
#include "level/GameObject.h"
#include "shaders/ShaderProgram.h"

#include <osg/Callback>
#include <osg/Geode>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

#include <string>
#include <unordered_map>
#include <vector>

class QImage;
class Relief;

namespace physx {
struct PxContactPair;
struct PxContactPairHeader;
struct PxTriggerPair;
}  // namespace physx

/// The wooden board that the player tilts: one dynamic actor without gravity, pinned at its centre
/// to the world's origin, free to tilt 30 degrees, with nothing that drives it back. Its static
/// blocks are shapes of its actor and drawables of its geode; the others have actors of their own,
/// tied to it by joints. It reads the level picture, owns all blocks and their link groups, and
/// passes the ball's events on to them. World lock held.
class Board : public GameObject
{
public:
    explicit Board(Level& level);

    /// Makes the board and all blocks from a level picture; a null picture makes a bare board. Once
    /// a board, after the level knows it.
    void load(const QImage& image);

    /// The scene group of the dynamic blocks of a kind, made at first use.
    ShaderProgram::ShaderGroup* shaderGroup(std::string name);

    /// From now on the block hears of the ball's touches of the actor `id`, or of its ways in and
    /// out of that actor's trigger shapes.
    void addContactShape(Block* block, unsigned int id);
    void addTriggerShape(Block* block, unsigned int id);

    /// Plays the hit sound and tells the blocks. Inside the physics step.
    void onBallContact(const physx::PxContactPairHeader& header, const physx::PxContactPair* pairs,
                       unsigned int count);
    void onBallTrigger(const physx::PxTriggerPair& pair, const physx::PxContactPairHeader& actors);

    /// Puts the board level at the next step, with all that is tied to it.
    void reset(bool resetBlocks);

    osg::Geode* getGeode() const { return geode; }
    osg::MatrixTransform* getTransform() const { return transform; }

    /// All blocks in scan order: the picture's rows from the top, each from the left.
    const std::vector<osg::ref_ptr<Block>>& getBlocks() const { return blocks; }
    /// Link groups by the alpha of their pixels.
    const std::unordered_map<int, BlockGroup>& getGroups() const { return groups; }

    /// Id of the guide plate's transform; no actor has it.
    unsigned int guideId = 0;

protected:
    ~Board() override = default;

private:
    class SynchronizerCallback;

    void createBody();
    void createShader();
    void createBlocks(const QImage& image);
    Relief reliefOf(int columns, int rows) const;
    void finishLook(const Relief& relief);
    void finishBody();
    void hang();
    void createGuide(int columns, int rows);
    void playHitSound(float impulse);

    osg::ref_ptr<osg::Group> root;
    osg::ref_ptr<osg::MatrixTransform> transform;
    osg::ref_ptr<osg::Geode> geode;
    std::vector<osg::ref_ptr<Block>> blocks;
    std::unordered_map<int, BlockGroup> groups;
    std::unordered_map<std::string, osg::ref_ptr<ShaderProgram::ShaderGroup>> shaderGroups;
    std::unordered_map<unsigned int, osg::ref_ptr<Block>> contactBlocks;
    std::unordered_map<unsigned int, osg::ref_ptr<Block>> triggerBlocks;
    osg::ref_ptr<ShaderProgram> shader;
    osg::ref_ptr<osg::Geode> guide;
};
