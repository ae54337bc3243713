#pragma once

#include <QImage>

/// Stand for levels that come with the game, where a benchmark takes the edge length of a mixed
/// one: level 0, and the one with the most blocks of the campaign.
constexpr int trueLevel = 0;
constexpr int fullestLevel = -27;

/// A square level of `size` times `size` cells without a hole: nine of ten cells are static blocks
/// of all shapes, every tenth is a block of its own, each kind and option in turn.
QImage mixedLevel(int size);

/// Flat floor with two portals of one link group and two wells in it, or, without `effects`, with
/// plain blocks of the same height in their places.
QImage effectsLevel(bool effects);

/// The picture that a benchmark's argument means: the edge length of a mixed level, or, from 0
/// down, the number of one that comes with the game.
QImage benchLevel(int argument);

/// Writes the picture as a level of the game's folder and loads it into the process's game.
void load(const QImage& picture);
