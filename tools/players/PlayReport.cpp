#include "PlayReport.h"

#include "LevelRun.h"
#include "Measures.h"
#include "PlayedWorld.h"
#include "Processes.h"
#include "TrackPicture.h"

#include <QApplication>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace {

using Json = nlohmann::ordered_json;

constexpr int won = 0;
constexpr int notWon = 1;
constexpr int unreadable = 2;

enum class Task { Run, FirstTouch, AfterFalls, Toddler };

struct Job
{
    std::size_t picture;
    Task task;
    unsigned int seed;
};

const std::map<Qt::Key, std::string> keyNames{
    {Qt::Key_Up, "up"}, {Qt::Key_Down, "down"}, {Qt::Key_Left, "left"}, {Qt::Key_Right, "right"}};

double rounded(double number)
{
    return std::round(number * 100.0) / 100.0;
}

Json jsonOf(const RunResult& run, unsigned int seed, bool withTrack)
{
    Json falls = Json::array();
    for (const CellPosition& cell : run.losses)
        falls.push_back({cell.column, cell.row});
    Json json{{"seed", seed},
              {"won", run.won},
              {"seconds", rounded(run.seconds())},
              {"lives_lost", run.livesLost},
              {"coins", run.coins},
              {"falls", falls}};
    if (withTrack) {
        Json& track = json["track"] = Json::array();
        for (const osg::Vec2d& place : run.track)
            track.push_back({rounded(place.x()), rounded(place.y())});
    }
    return json;
}

Json jsonOf(const FirstTouch& touch)
{
    Json unkind = Json::array();
    for (const UnkindTouch& one : touch.unkind)
        unkind.push_back({{"column", one.column},
                          {"row", one.row},
                          {"key", keyNames.at(one.key)},
                          {"ticks", one.ticks},
                          {"rise", rounded(one.rise)},
                          {"life_lost", one.lostLife}});
    return {{"kind", touch.kind()}, {"of", touch.touches}, {"unkind", unkind}};
}

RunResult runOf(const Json& json)
{
    RunResult run;
    for (const Json& cell : json["falls"])
        run.losses.push_back({cell[0], cell[1]});
    for (const Json& place : json.value("track", Json::array()))
        run.track.emplace_back(place[0].get<double>(), place[1].get<double>());
    return run;
}

Json work(const PlayWish& wish, const QImage& picture, const Job& job)
{
    // Nothing of this is to be seen, and it needs no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "*.debug=false;qt.qpa.*=false");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", QDir::tempPath().toLocal8Bit());
    int argc = 1;
    char name[] = "rollix";
    char* argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    PlayedWorld world(QDir(QString::fromStdString(wish.home)));
    switch (job.task) {
    case Task::FirstTouch:
        return jsonOf(firstTouch(world.game(), picture));
    case Task::AfterFalls:
        return jsonOf(touchAfterFalls(world.game(), picture));
    case Task::Toddler:
        return rounded(toddler(world.game(), picture, job.seed));
    case Task::Run:
        break;
    }
    RunWish run;
    run.player = wish.player;
    run.seed = job.seed;
    run.reaction = int(std::lround(wish.reaction * PlayedGame::ticksPerSecond));
    run.limit = int(std::lround(wish.limit * PlayedGame::ticksPerSecond));
    return jsonOf(runLevel(world.game(), picture, run), job.seed, !wish.track.empty());
}

std::vector<Job> jobsFor(const PlayWish& wish)
{
    std::vector<Job> jobs;
    for (std::size_t picture = 0; picture < wish.pictures.size(); ++picture) {
        for (int run = 0; run < wish.runs; ++run)
            jobs.push_back({picture, Task::Run, wish.seed + unsigned(run)});
        if (wish.firstTouch) {
            jobs.push_back({picture, Task::FirstTouch, wish.seed});
            jobs.push_back({picture, Task::AfterFalls, wish.seed});
        }
        if (wish.toddler)
            jobs.push_back({picture, Task::Toddler, wish.seed});
    }
    return jobs;
}

double median(std::vector<double> numbers)
{
    if (numbers.empty())
        return 0.0;
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

void summarise(Json& level)
{
    int wins = 0;
    int lives = 0;
    int coins = 0;
    std::vector<double> times;
    for (const Json& run : level["runs"]) {
        wins += run["won"].get<bool>() ? 1 : 0;
        lives += run["lives_lost"].get<int>();
        coins += run["coins"].get<int>();
        if (run["won"].get<bool>())
            times.push_back(run["seconds"]);
    }
    const double runs = std::max<double>(1.0, double(level["runs"].size()));
    level["won"] = wins;
    level["median_seconds"] = median(times);
    level["lives_lost"] = rounded(lives / runs);
    level["coins"] = rounded(coins / runs);
}

std::string cellsInWords(const Json& level)
{
    std::map<std::pair<int, int>, int> counts;
    for (const Json& run : level["runs"])
        for (const Json& cell : run["falls"])
            ++counts[{cell[1], cell[0]}];
    std::ostringstream text;
    for (const auto& [cell, count] : counts) {
        text << (text.tellp() > 0 ? "; " : "") << "column " << cell.second << ", row "
             << cell.first;
        if (count > 1)
            text << " (" << count << " times)";
    }
    return text.str();
}

void print(const Json& level, std::ostream& out)
{
    out << std::fixed << std::setprecision(1);
    for (const Json& run : level["runs"]) {
        out << "  run " << run["seed"] << ": " << (run["won"].get<bool>() ? "won" : "not won")
            << ", " << run["seconds"].get<double>() << " s, " << run["lives_lost"]
            << " lives lost, " << run["coins"] << " coins of " << level["coins_of"];
        for (std::size_t i = 0; i < run["falls"].size(); ++i)
            out << (i == 0 ? ", fell from " : "; ") << "column " << run["falls"][i][0] << ", row "
                << run["falls"][i][1];
        out << "\n";
    }
    out << level["picture"].get<std::string>() << ": " << level["player"].get<std::string>()
        << " won " << level["won"] << " of " << level["runs"].size() << ", "
        << level["median_seconds"].get<double>() << " s in the middle, "
        << level["lives_lost"].get<double>() << " lives lost a run\n";
    const std::string cells = cellsInWords(level);
    if (!cells.empty())
        out << "  falls, counted from column 0, row 0: " << cells << "\n";
    if (level.contains("first_touch")) {
        out << "  first touch: " << level["first_touch"]["kind"] << " of "
            << level["first_touch"]["of"] << " kind; after falls: " << level["after_falls"]["kind"]
            << " of " << level["after_falls"]["of"] << "\n";
        for (const char* when : {"first_touch", "after_falls"}) {
            for (const Json& one : level[when]["unkind"])
                out << "    from column " << one["column"] << ", row " << one["row"] << ": "
                    << one["key"].get<std::string>() << " for " << one["ticks"]
                    << " ticks throws the ball " << one["rise"].get<double>() << " up"
                    << (one["life_lost"].get<bool>() ? " and costs a life" : "") << "\n";
        }
    }
    if (level.contains("toddler"))
        out << "  random keys: " << level["toddler"].get<double>() << " lives a minute\n";
}

void drawTracks(const PlayWish& wish, const std::vector<QImage>& pictures, const Json& levels)
{
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        std::vector<RunResult> runs;
        for (const Json& run : levels[i]["runs"])
            runs.push_back(runOf(run));
        QString file = QString::fromStdString(wish.track);
        if (pictures.size() > 1)
            file.replace(QRegExp("(\\.[^.]*)?$"), QString("-%1.png").arg(i));
        trackPicture(pictures[i], runs).save(file);
    }
}

Json playAll(const PlayWish& wish, const std::vector<QImage>& pictures, std::ostream& progress)
{
    const std::vector<Job> jobs = jobsFor(wish);
    const auto tell = [&](std::size_t done) {
        progress << "\r" << done << " of " << jobs.size() << (done == jobs.size() ? "\n" : "")
                 << std::flush;
    };
    const std::vector<std::string> answers = inProcesses(
        jobs.size(), wish.processes,
        [&](std::size_t i) { return work(wish, pictures[jobs[i].picture], jobs[i]).dump(); }, tell);

    Json levels = Json::array();
    for (std::size_t i = 0; i < pictures.size(); ++i)
        levels.push_back({{"picture", wish.pictures[i]},
                          {"player", wish.player},
                          {"coins_of", coinsOf(LevelMap(pictures[i]))},
                          {"runs", Json::array()}});
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        Json& level = levels[jobs[i].picture];
        Json answer = Json::parse(answers[i], nullptr, false);
        if (answer.is_discarded())
            answer = jobs[i].task == Task::Run ? jsonOf(RunResult(), jobs[i].seed, false) : Json();
        switch (jobs[i].task) {
        case Task::Run:
            level["runs"].push_back(answer);
            break;
        case Task::FirstTouch:
            level["first_touch"] = answer;
            break;
        case Task::AfterFalls:
            level["after_falls"] = answer;
            break;
        case Task::Toddler:
            level["toddler"] = answer;
            break;
        }
    }
    for (Json& level : levels)
        summarise(level);
    return levels;
}

}  // namespace

int playPictures(const PlayWish& wish, std::ostream& out, std::ostream& progress)
{
    std::vector<QImage> pictures;
    for (const std::string& file : wish.pictures) {
        pictures.emplace_back(QString::fromStdString(file));
        if (pictures.back().isNull()) {
            out << file << ": this is no picture that I can read" << std::endl;
            return unreadable;
        }
    }
    Json levels = playAll(wish, pictures, progress);
    if (!wish.track.empty())
        drawTracks(wish, pictures, levels);
    bool allWon = true;
    for (Json& level : levels) {
        allWon = allWon && level["won"].get<int>() >= wish.atLeast * level["runs"].size();
        for (Json& run : level["runs"])
            run.erase("track");
        if (!wish.json)
            print(level, out);
    }
    if (wish.json)
        out << levels.dump(1) << "\n";
    out.flush();
    return allWon ? won : notWon;
}
