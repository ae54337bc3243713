#pragma once

#include "GameWorld.h"

/// The one window and game of the process, with the tree's own data/. Made at the first call, with
/// a level of a single start cell; its folder goes at exit. Shaders are copies: a test may spoil
/// one and mend it.
GameWorld& sharedWorld();
