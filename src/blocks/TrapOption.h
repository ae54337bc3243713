#pragma once

/// The hazards that one class of block stands for; a trap of no kind is a block like any other.
enum class TrapKind : int { None = -1, Mine = 0, Spring = 1, Trapdoor = 2, Well = 3 };

/// What the saturation of a trap's pixel says.
struct TrapOption
{
    TrapKind kind;
    /// Mine: its fuse, trapdoor: its delay, in seconds. Spring: half the force of its throw. Well:
    /// the side of the cube in which it pulls.
    double parameter;

    static TrapOption ofSaturation(int saturation);
};
