#pragma once

#include <QByteArray>

/// The bytes of a file that somebody might put in a level's place: strange sizes and formats,
/// noise, photographs, broken and truncated files, files that are no pictures. The same number
/// gives the same file.
QByteArray oddPicture(int number);
