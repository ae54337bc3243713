// The drawings of docs/levels.md, painted by the program that it tells of.

#include "BlockWords.h"
#include "GuideTables.h"
#include "LevelReport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

/// Runs the painter; what it says on standard output, and nothing on standard error.
QString paint(const QStringList& arguments)
{
    QProcess painter;
    painter.start(ROLLIX_SOURCE_DIR "/art/levels/paint", arguments);
    EXPECT_TRUE(painter.waitForFinished(60000));
    EXPECT_EQ(painter.exitCode(), 0);
    EXPECT_EQ(painter.readAllStandardError().toStdString(), "");
    return QString::fromUtf8(painter.readAllStandardOutput());
}

/// The drawings of the guide's recipes, by their names.
std::vector<std::pair<std::string, QString>> recipes()
{
    const QRegularExpression recipe(R"(^\*\*([^*]+)\*\*[^`]*^```\n([^`]*)^```)",
                                    QRegularExpression::MultilineOption);
    std::vector<std::pair<std::string, QString>> found;
    QRegularExpressionMatchIterator matches = recipe.globalMatch(textOf("docs/levels.md"));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found.emplace_back(match.captured(1).toStdString(), match.captured(2));
    }
    return found;
}

/// Warnings that a piece of a level gives because it is only a piece.
bool isOfAPiece(const std::string& warning)
{
    return warning.rfind("there is no start", 0) == 0 || warning.rfind("there is no goal", 0) == 0;
}

}  // namespace

TEST(Drawings, KnowTheCharactersOfTheGuideAndNoOthers)
{
    std::set<QString> told;
    for (const QStringList& row :
         rowsOf("docs/levels.md",
                R"(^\| (?:`(.)`|blank) \| ([^|]+) \| (\d+) \| (\d+) \| (\d+) \| (\d+) \|$)")) {
        SCOPED_TRACE(row[0].toStdString());
        const QString key = row[1].isEmpty() ? " " : row[1];
        told.insert("! " + key + " " + QStringList(row.mid(3)).join(" "));
        const LevelPixel pixel{row[3].toInt(), row[4].toInt(), row[5].toInt(), row[6].toInt()};
        const std::string words = row[2].toStdString();
        if (pixel.value == 0)
            EXPECT_EQ(words, "hole");
        else if (blockKindOfHue(pixel.hue) == BlockKind::Standard)
            EXPECT_NE(words.find(shapeInWords(pixel)), std::string::npos);
        else
            EXPECT_EQ(words, blockInWords(pixel));
    }
    const QStringList known = paint({"--legend"}).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(told, std::set<QString>(known.begin(), known.end()));
}

TEST(Drawings, OfTheRecipesAreSoundPiecesOfALevel)
{
    const auto all = recipes();
    EXPECT_GE(all.size(), 7u);
    const QTemporaryDir folder;
    for (const auto& [name, drawing] : all) {
        SCOPED_TRACE(name);
        QStringList rows =
            drawing.split('\n', Qt::SkipEmptyParts).filter(QRegularExpression("^[^!]"));
        for (const QString& row : rows)
            EXPECT_LE(row.size(), rows.first().size()) << row.toStdString();

        QFile text(folder.filePath("recipe.txt"));
        ASSERT_TRUE(text.open(QIODevice::WriteOnly));
        text.write(drawing.toUtf8());
        text.close();
        const QString picture = folder.filePath("recipe.png");
        paint({text.fileName(), picture});
        for (const std::string& warning : LevelReport(QImage(picture)).warnings())
            EXPECT_TRUE(isOfAPiece(warning)) << warning;
    }
}
