#pragma once

// Word 0 (group) and word 1 (mask) of a shape's filter data. The group also names the kind of shape
// in a contact report; the mask says whose contacts are reported, never who collides.
constexpr unsigned int groundGroup = 1;
constexpr unsigned int boardGroup = 2;  // the board and all blocks
constexpr unsigned int ballGroup = 4;

constexpr unsigned int groundMask = ballGroup;
constexpr unsigned int boardMask = ballGroup;
constexpr unsigned int ballMask = groundGroup | boardGroup;

// The board and all blocks: they touch each other with whole faces and are never to collide.
constexpr unsigned int boardFamily = 1;
