#pragma once

/// What a ball can take from an item block.
enum class ItemKind : int { Coin = 0, Heart = 1, Weight = 2 };

/// What the saturation of an item's pixel says.
struct ItemOption
{
    ItemKind kind;
    int count;      // what the display shows: pieces and, by the sign, give or take; 0 for a weight
    double amount;  // coins or lives, negative ones to take; seconds for a weight

    static ItemOption ofSaturation(int saturation);
};
