#pragma once

#include <QImage>

#include <string>

/// A level picture from its file, read as far as it may be built: what it would take is bounded
/// before anything is made of it.
struct PictureFile
{
    QImage picture;       // null if the file cannot be read, or is refused
    std::string refusal;  // one line for the player; empty if nothing is refused

    /// Asks the file's head for the size first: a picture that is too large is not decoded.
    static PictureFile read(const std::string& file);
};

// Measured: each is far from what a machine bears, and both together, of the dearest blocks that
// there are, load within three seconds and stay under a gigabyte while they are drawn.

/// How many pixels a level picture may have: a board of 300 x 300 cells.
constexpr int mostCells = 90000;

/// How many blocks with a body of their own (all but floors and walls) a level may have.
constexpr int mostBodies = 3000;

/// Why a picture is not built, as one line for the player; empty if it is.
std::string refusalOf(const std::string& file, const QSize& size);
std::string refusalOf(const std::string& file, const QImage& picture);
