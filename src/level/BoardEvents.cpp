// The board's events: the ball's touches become sounds and news for the blocks.
#include "base/Random.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/FilterGroups.h"
#include "level/Level.h"

namespace {

constexpr float audibleImpulse = 0.01f;
constexpr float volumePerImpulse = 2.0f;

}  // namespace

void Board::addContactShape(Block* block, unsigned int actorId)
{
    contactBlocks[actorId] = block;
}

void Board::addTriggerShape(Block* block, unsigned int actorId)
{
    triggerBlocks[actorId] = block;
}

void Board::onBallContact(const physx::PxContactPairHeader& header,
                          const physx::PxContactPair* pairs, unsigned int count)
{
    // The last point of the last pair speaks for the whole contact.
    float impulse = 0.0f;
    std::vector<physx::PxContactPairPoint> points;
    for (unsigned int i = 0; i < count; ++i) {
        if (pairs[i].contactCount == 0)
            continue;
        points.resize(pairs[i].contactCount);
        const physx::PxU32 found =
            pairs[i].extractContacts(points.data(), physx::PxU32(points.size()));
        if (found > 0)
            impulse = points[found - 1].impulse.magnitude();
    }
    if (game()->isShapeContactBetween(ballGroup, boardGroup, pairs[0]) && impulse > audibleImpulse)
        playHitSound(impulse);

    for (const auto& [actorId, block] : contactBlocks)
        if (game()->isContactBetween(level->ball->getId(), actorId, header))
            block->onBallContact(level->ball);
}

void Board::playHitSound(float impulse)
{
    const int sound = random15() >> 12;
    game()->playSound("hit" + std::to_string(sound + 1), impulse * volumePerImpulse, 0, nullptr);
}

void Board::onBallTrigger(const physx::PxTriggerPair& pair,
                          const physx::PxContactPairHeader& actors)
{
    for (const auto& [actorId, block] : triggerBlocks) {
        if (!game()->isContactBetween(level->ball->getId(), actorId, actors))
            continue;
        if (pair.status & physx::PxPairFlag::eNOTIFY_TOUCH_FOUND)
            block->onBallEnter(level->ball);
        else if (pair.status & physx::PxPairFlag::eNOTIFY_TOUCH_LOST)
            block->onBallLeave(level->ball);
    }
}
