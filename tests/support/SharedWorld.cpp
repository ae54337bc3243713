#include "support/SharedWorld.h"

#include "support/LevelPicture.h"

GameWorld& sharedWorld()
{
    static GameWorld world(QDir(ROLLIX_SOURCE_DIR), LevelPicture({"S"}).image(),
                           GameFolder::Shaders::Copied);
    return world;
}
