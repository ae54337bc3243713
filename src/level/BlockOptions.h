#pragma once

// What a pixel's saturation says to each kind of block: one type a kind.

/// The option that a saturation's offset stands for, in steps of three points: 0 under one point,
/// else the nearest multiple of three. Lets a paint program round as it likes.
int pixelStep(int offset);

enum class CheckpointType : int { Start = 0, Checkpoint = 1, Goal = 2 };

struct CheckpointOption
{
    CheckpointType type;
    bool required;  // to be passed before the goal counts
    int coins;

    static CheckpointOption ofSaturation(int saturation);
};

enum class ButtonMode : int {
    OneShot = 0,  // fires once a run
    Timed = 1,    // fires again by itself after its time, so that what it did is undone
    Toggle = 2,   // fires at every touch; its cap stays as it is between them
};

struct ButtonOption
{
    ButtonMode mode;
    float coolDown;  // seconds; 0 for a button that has none

    static ButtonOption ofSaturation(int saturation);
};

struct GhostOption
{
    bool initiallyOpaque;
    double period;  // seconds between changes; 0 for a ghost that only follows signals

    static GhostOption ofSaturation(int saturation);
};

struct ElevatorOption
{
    bool automatic;
    double travel;  // signed, along the board's vertical; never 0

    static ElevatorOption ofSaturation(int saturation);
};

/// The hazards that one class of block stands for; a trap of no kind is a block like any other.
enum class TrapKind : int { None = -1, Mine = 0, Spring = 1, Trapdoor = 2, Well = 3 };

struct TrapOption
{
    TrapKind kind;
    /// Mine: its fuse, trapdoor: its delay, in seconds. Spring: its throw, in units of
    /// world::springForce.
    /// Well: the side of the cube in which it pulls.
    double parameter;

    static TrapOption ofSaturation(int saturation);
};

/// What a ball can take from an item block.
enum class ItemKind : int { Coin = 0, Heart = 1, Weight = 2 };

struct ItemOption
{
    ItemKind kind;
    int count;      // what the display shows: pieces and, by the sign, give or take; 0 for a weight
    double amount;  // coins or lives, negative ones to take; seconds for a weight

    static ItemOption ofSaturation(int saturation);
};

/// The face of a portal block that has the mouth.
enum class PortalFace : int { Right = 0, Left = 1, Back = 2, Front = 3, Top = 4 };  // +x -x +y -y

struct PortalOption
{
    PortalFace face;
    float strength;  // of the pull; 0 for a portal that the ball has to roll into by itself

    static PortalOption ofSaturation(int saturation);
};
