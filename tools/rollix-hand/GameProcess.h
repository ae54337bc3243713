#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

class QRect;

/// The game beside the hand.
class GameProcess : public QObject
{
    Q_OBJECT

public:
    explicit GameProcess(QObject* parent = nullptr);

    /// Where the game is: beside this program, in the place that distributions have for games, or
    /// on the PATH. Empty when it is nowhere.
    static QString find();

    /// Starts it with its window at this place of the screen; its lines go where this program's go.
    bool start(const QString& program, const QRect& place);

signals:
    void ended(int exitCode);
    void crashed();

private:
    QProcess process;
};
