#pragma once

#include "LevelMap.h"

#include <functional>
#include <map>
#include <vector>

/// How the ball comes from one cell of a way to the next.
enum class Move {
    Roll,
    Jump,    // over a hole of one cell, at speed
    Throw,   // from a spring, or from an elevator that goes up
    Float,   // without gravity, from a weight
    Portal,  // out of a mouth
};

struct Stride
{
    CellPosition cell;
    Move by;
};

/// Where a ball can come to, judged from the picture by the figures of docs/levels.md: what buttons
/// open once the ball can come to them, how fast a straight run makes it, how high and how far it
/// is thrown. It says yes where a ball can come at all, however skilled its player has to be.
class LevelWays
{
public:
    /// Buttons open what they work if the ball can come to them from `start`. No ball comes to the
    /// closed cells, nor over them. The map has to outlive this.
    LevelWays(const LevelMap& map, const CellPosition& start,
              std::vector<CellPosition> closed = {});

    bool reaches(const CellPosition& cell) const;
    /// The buttons in reach, by the group that they open; one for each group.
    const std::map<int, CellPosition>& openingButtons() const { return buttons; }

    /// The easiest way, both ends included: with as few feats as can be. Empty if there is none.
    std::vector<Stride> way(const CellPosition& from, const CellPosition& to) const;
    /// Which of the cells a ball can come to from this one.
    std::vector<bool> reachedFrom(const CellPosition& from,
                                  const std::vector<CellPosition>& cells) const;

private:
    /// A ball on the block of a cell, or inside the portal that stands there.
    struct Place
    {
        CellPosition cell;
        bool inside;
    };

    struct Step
    {
        int from;  // index of a place; of itself where the flood began, -1 where it never came
        Move by;
    };

    using Flood = std::vector<Step>;  // by index of place
    using Heights = std::vector<double>;
    using Reached = std::function<void(const Place&, Move)>;

    int indexOf(const Place& place) const;
    Place placeAt(int index) const;
    bool has(const Flood& flood, const CellPosition& cell) const;

    void openGroups(const CellPosition& start);
    Flood flood(const CellPosition& from) const;
    void spread(const Place& place, const Reached& reached) const;
    void roll(const CellPosition& from, const CellPosition& way, double height,
              const Reached& reached) const;
    void jump(const CellPosition& from, const CellPosition& way, double height,
              const Reached& reached) const;
    void fly(const CellPosition& from, const CellPosition& way, double height, int holes, Move by,
             const Reached& reached) const;
    void cross(const CellPosition& portal, const Reached& reached) const;
    void land(const CellPosition& cell, Move by, const Reached& reached) const;

    bool isClosed(const CellPosition& cell) const;
    bool isWorked(const CellPosition& cell) const;
    bool carries(const CellPosition& cell) const;
    bool canBeAir(const CellPosition& cell) const;
    bool isLowerThan(const CellPosition& cell, double height) const;
    bool entersMouth(const CellPosition& from, double height, const CellPosition& portal) const;
    Heights shifts(const CellPosition& cell) const;
    Heights heightsWhereLeft(const CellPosition& cell, const CellPosition& way) const;
    Heights heightsWhereEntered(const CellPosition& cell, const CellPosition& way) const;
    int runUp(const CellPosition& cell, const CellPosition& way) const;

    const LevelMap& map;
    const std::vector<CellPosition> closed;
    std::map<int, std::vector<CellPosition>> portals;  // by group
    std::map<int, CellPosition> buttons;               // in reach, by group
    Flood fromStart;
};
