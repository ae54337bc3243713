#include "soak/OddPictures.h"

#include <QBuffer>
#include <QColor>
#include <QImage>

#include <cmath>
#include <cstdint>
#include <random>

namespace {

using Random = std::mt19937;

int between(Random& random, int lowest, int highest)
{
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

QByteArray saved(const QImage& image, const char* format = "PNG")
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QImage noise(Random& random, int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            image.setPixel(column, row, random());
    return image;
}

/// Cells of all kinds, as they are meant.
QImage level(Random& random, int width, int height)
{
    constexpr int hues[] = {90, 90, 90, 90, 135, 270, 225, 180, 0, 45, 315};
    QImage image(width, height, QImage::Format_ARGB32);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const QColor color =
                QColor::fromHsv(hues[random() % std::size(hues)], between(random, 100, 255),
                                between(random, 150, 255), between(random, 250, 255));
            image.setPixelColor(column, row, color);
        }
    }
    return image;
}

/// Smooth colours with a grain, as a camera sees a room.
QImage photograph(Random& random, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    const double turn = between(random, 0, 628) / 100.0;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const double x = 6.0 * column / width;
            const double y = 6.0 * row / height;
            const auto channel = [&](double shift) {
                const double wave =
                    128.0 + 60.0 * std::sin(x + shift) + 50.0 * std::sin(y * 1.3 + turn);
                return qBound(0, int(wave) + between(random, -6, 6), 255);
            };
            image.setPixel(column, row, qRgb(channel(0.0), channel(2.1), channel(4.2)));
        }
    }
    return image;
}

QByteArray inAnotherDepth(Random& random)
{
    constexpr QImage::Format formats[] = {
        QImage::Format_Mono,       QImage::Format_Indexed8,
        QImage::Format_Grayscale8, QImage::Format_Grayscale16,
        QImage::Format_RGB16,      QImage::Format_RGBA64,
        QImage::Format_RGB888,     QImage::Format_ARGB32_Premultiplied};
    const QImage image = level(random, between(random, 2, 20), between(random, 2, 20));
    return saved(image.convertToFormat(formats[random() % std::size(formats)]));
}

QByteArray inAnotherFormat(Random& random)
{
    constexpr const char* formats[] = {"JPG", "BMP", "PPM", "XPM"};
    const QImage image = level(random, between(random, 2, 20), between(random, 2, 20));
    return saved(image, formats[random() % std::size(formats)]);
}

std::uint32_t checksum(const QByteArray& bytes)
{
    std::uint32_t sum = 0xffffffffu;
    for (const char byte : bytes) {
        sum ^= std::uint8_t(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ (sum & 1u ? 0xedb88320u : 0u);
    }
    return ~sum;
}

void appendNumber(QByteArray& bytes, std::uint32_t number)
{
    for (const int shift : {24, 16, 8, 0})
        bytes.append(char(number >> shift));
}

/// A head that promises any size, with the data of a small picture.
QByteArray withAFalseHead(Random& random)
{
    QByteArray bytes = saved(level(random, 8, 8));
    QByteArray head = bytes.mid(12, 17);  // kind and content of the first chunk
    QByteArray size;
    appendNumber(size, random() >> between(random, 1, 20));
    appendNumber(size, random() >> between(random, 1, 20));
    head.replace(4, 8, size);
    QByteArray sum;
    appendNumber(sum, checksum(head));
    return bytes.replace(12, 17, head).replace(29, 4, sum);
}

QByteArray withFlippedBytes(Random& random)
{
    QByteArray bytes = saved(level(random, between(random, 4, 20), between(random, 4, 20)));
    for (int i = between(random, 1, 12); i > 0; --i)
        bytes[between(random, 0, bytes.size() - 1)] = char(random());
    return bytes;
}

QByteArray noPicture(Random& random)
{
    switch (random() % 4) {
    case 0:
        return QByteArray();
    case 1:
        return QByteArray("Not a picture, but a letter about one.\n");
    case 2:
        return QByteArray(between(random, 1, 100000), '\0');
    default:
        QByteArray bytes(between(random, 1, 5000), ' ');
        for (char& byte : bytes)
            byte = char(random());
        return bytes;
    }
}

}  // namespace

QByteArray oddPicture(int number)
{
    constexpr int kinds = 10;
    Random random{unsigned(number)};
    switch (number % kinds) {
    case 0:  // thin and long
        return saved(level(random, between(random, 1, 2), between(random, 1, 200)));
    case 1:
        return inAnotherDepth(random);
    case 2:
        return inAnotherFormat(random);
    case 3: {
        const QByteArray whole =
            saved(level(random, between(random, 4, 40), between(random, 4, 40)));
        return whole.left(between(random, 1, whole.size() - 1));
    }
    case 4:
        return saved(noise(random, between(random, 1, 400), between(random, 1, 300)));
    case 5:
        return saved(photograph(random, between(random, 60, 1920), between(random, 40, 1080)));
    case 6:
        return withFlippedBytes(random);
    case 7:
        return withAFalseHead(random);
    case 8:
        return noPicture(random);
    default: {  // a level that a paint program has enlarged and smoothed
        const QImage image = level(random, between(random, 4, 12), between(random, 4, 12));
        return saved(image.scaled(image.size() * between(random, 2, 6), Qt::IgnoreAspectRatio,
                                  Qt::SmoothTransformation));
    }
    }
}
