#include "TrackPicture.h"

#include <QPainter>

namespace {

constexpr int cellSize = 24;  // pixels
constexpr double fade = 0.55;
constexpr double cross = 0.25;  // cells

}  // namespace

QImage trackPicture(const QImage& level, const std::vector<RunResult>& runs)
{
    const LevelMap map(level);
    QImage image(level.size() * cellSize, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setOpacity(fade);
    painter.drawImage(image.rect(), level);
    painter.setOpacity(1.0);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto pointOf = [&](const osg::Vec2d& place) {
        return QPointF((place.x() + map.width() * 0.5) * cellSize,
                       (map.height() * 0.5 - place.y()) * cellSize);
    };
    for (const RunResult& run : runs) {
        painter.setPen(QPen(QColor(255, 255, 255, 150), 1.5));
        for (std::size_t i = 1; i < run.track.size(); ++i) {
            // From where it fell to the flag, nobody rolls.
            if ((run.track[i] - run.track[i - 1]).length() < 1.0)
                painter.drawLine(pointOf(run.track[i - 1]), pointOf(run.track[i]));
        }
    }
    painter.setPen(QPen(QColor(255, 0, 0), 3.0));
    for (const RunResult& run : runs) {
        for (const CellPosition& cell : run.losses) {
            const QPointF middle((cell.column + 0.5) * cellSize, (cell.row + 0.5) * cellSize);
            const QPointF reach(cross * cellSize, cross * cellSize);
            const QPointF other(reach.x(), -reach.y());
            painter.drawLine(middle - reach, middle + reach);
            painter.drawLine(middle - other, middle + other);
        }
    }
    return image;
}
