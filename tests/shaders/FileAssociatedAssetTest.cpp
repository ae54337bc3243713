#include "shaders/FileAssociatedAsset.h"

#include "support/EventLoop.h"
#include "support/OutputCapture.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <osg/ref_ptr>

#include <functional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

class TestAsset : public FileAssociatedAsset
{
public:
    using Reaction = std::function<void(const std::string&)>;

    explicit TestAsset(Reaction onChange) : reaction(std::move(onChange)) {}

    using FileAssociatedAsset::unwatchFile;

    void watchFile(const std::string& path)
    {
        FileAssociatedAsset::watchFile(path);
        watched.insert(path);
    }

    void fileChanged(std::string path) override
    {
        ++calls;
        if (reaction)
            reaction(path);
    }

    int calls = 0;

protected:
    ~TestAsset() override
    {
        for (const std::string& path : watched)
            unwatchFile(path);
    }

private:
    Reaction reaction;
    std::set<std::string> watched;
};

class FileAssociatedAssetTest : public ::testing::Test
{
protected:
    std::string writesFile(const std::string& name, const std::string& text = "first\n")
    {
        const std::string path = directory.filePath(QString::fromStdString(name)).toStdString();
        save(path, text, QFile::WriteOnly);
        return path;
    }

    // One write by one call, which the system reports once.
    static void appendsTo(const std::string& path) { save(path, "more\n", QFile::Append); }

    static void replaces(const std::string& path, const std::string& text = "new\n")
    {
        save(path + ".new", text, QFile::WriteOnly);
        ASSERT_EQ(std::rename((path + ".new").c_str(), path.c_str()), 0);
    }

    osg::ref_ptr<TestAsset> makesAsset(TestAsset::Reaction reaction = {})
    {
        return new TestAsset(std::move(reaction));
    }

    static bool hearsNotice(const OutputCapture& output, const std::string& path, int times = 1)
    {
        return waitUntil([&] { return output.count(path + " was changed\n") >= times; });
    }

    // The notices of the files' removal belong to no later test.
    void TearDown() override
    {
        OutputCapture output;
        directory.remove();
        QCoreApplication::processEvents();
    }

    QTemporaryDir directory;

private:
    static void save(const std::string& path, const std::string& text, QFile::OpenMode mode)
    {
        QFile file(QString::fromStdString(path));
        ASSERT_TRUE(file.open(mode | QFile::Unbuffered));
        ASSERT_EQ(file.write(text.data(), text.size()), qint64(text.size()));
    }
};

}  // namespace

TEST_F(FileAssociatedAssetTest, TellsAllAssetsOfAFileTheNewestFirst)
{
    const std::string path = writesFile("shared.glsl");
    std::vector<std::string> heard;
    auto older = makesAsset([&](const std::string& changed) { heard.push_back("old " + changed); });
    auto newer = makesAsset([&](const std::string& changed) { heard.push_back("new " + changed); });
    older->watchFile(path);
    newer->watchFile(path);
    OutputCapture output;

    appendsTo(path);

    ASSERT_TRUE(waitUntil([&] { return heard.size() >= 2; }));
    EXPECT_EQ(heard[0], "new " + path);
    EXPECT_EQ(heard[1], "old " + path);
    EXPECT_EQ(output.text(), path + " was changed\n");
}

TEST_F(FileAssociatedAssetTest, PrintsTheLineAndCallsNobodyAfterTheLastUnwatch)
{
    const std::string path = writesFile("left.glsl");
    auto asset = makesAsset();
    asset->watchFile(path);
    asset->unwatchFile(path);
    OutputCapture output;

    appendsTo(path);

    ASSERT_TRUE(hearsNotice(output, path));
    EXPECT_EQ(asset->calls, 0);
}

TEST_F(FileAssociatedAssetTest, PassesOverAFileThatDoesNotExist)
{
    const std::string absent = directory.filePath("absent.glsl").toStdString();
    const std::string present = writesFile("present.glsl");
    auto asset = makesAsset();
    auto witness = makesAsset();
    OutputCapture output;
    asset->watchFile(absent);
    witness->watchFile(present);

    appendsTo(present);

    ASSERT_TRUE(hearsNotice(output, present));
    EXPECT_EQ(asset->calls, 0);
    EXPECT_EQ(output.text(), present + " was changed\n");
}

TEST_F(FileAssociatedAssetTest, CallsTwiceForAFileThatIsWatchedTwiceAndOneUnwatchEndsBoth)
{
    const std::string path = writesFile("twice.glsl");
    auto asset = makesAsset();
    asset->watchFile(path);
    asset->watchFile(path);
    OutputCapture output;

    appendsTo(path);
    ASSERT_TRUE(hearsNotice(output, path));
    EXPECT_EQ(asset->calls, 2);

    asset->unwatchFile(path);
    appendsTo(path);
    ASSERT_TRUE(hearsNotice(output, path, 2));
    EXPECT_EQ(asset->calls, 2);
}

TEST_F(FileAssociatedAssetTest, KeepsOtherPathsAndOtherAssetsAtAnUnwatch)
{
    const std::string one = writesFile("one.glsl");
    const std::string two = writesFile("two.glsl");
    auto leaves = makesAsset();
    auto stays = makesAsset();
    leaves->watchFile(one);
    leaves->watchFile(two);
    stays->watchFile(one);
    leaves->unwatchFile(one);
    OutputCapture output;

    appendsTo(one);
    ASSERT_TRUE(hearsNotice(output, one));
    EXPECT_EQ(leaves->calls, 0);
    EXPECT_EQ(stays->calls, 1);

    appendsTo(two);
    ASSERT_TRUE(hearsNotice(output, two));
    EXPECT_EQ(leaves->calls, 1);
}

TEST_F(FileAssociatedAssetTest, HearsEverySaveThatRenamesANewFileOverTheOld)
{
    const std::string path = writesFile("renamed.glsl");
    auto asset = makesAsset();
    asset->watchFile(path);
    OutputCapture output;

    for (int save = 1; save <= 4; ++save) {
        SCOPED_TRACE(save);
        const int before = asset->calls;
        replaces(path);
        ASSERT_TRUE(waitUntil([&] { return asset->calls > before; }));
    }
}

TEST_F(FileAssociatedAssetTest, FollowsTheNameWhenTheOldFileLivesOnUnderAnother)
{
    const std::string path = writesFile("linked.glsl");
    ASSERT_EQ(std::system(("ln " + path + " " + path + "~").c_str()), 0);
    auto asset = makesAsset();
    asset->watchFile(path);
    OutputCapture output;

    replaces(path);
    ASSERT_TRUE(waitUntil([&] { return asset->calls > 0; }));
    const int before = asset->calls;
    appendsTo(path);

    EXPECT_TRUE(waitUntil([&] { return asset->calls > before; }));
}

TEST_F(FileAssociatedAssetTest, HearsOfAFileThatComesBackAfterItWasAway)
{
    const std::string path = writesFile("away.glsl");
    auto asset = makesAsset();
    asset->watchFile(path);
    OutputCapture output;

    for (int round = 1; round <= 2; ++round) {
        SCOPED_TRACE(round);
        int before = asset->calls;
        ASSERT_TRUE(QFile::remove(QString::fromStdString(path)));
        ASSERT_TRUE(waitUntil([&] { return asset->calls > before; }));

        // The directory's other files are nobody's business.
        writesFile("unrelated.glsl");

        before = asset->calls;
        writesFile("away.glsl", "back\n");
        ASSERT_TRUE(waitUntil([&] { return asset->calls > before; }));
    }
    EXPECT_EQ(output.count("unrelated"), 0);
}

TEST_F(FileAssociatedAssetTest, LetsANoticeDestroyTheNextAsset)
{
    const std::string path = writesFile("fatal.glsl");
    int victimCalls = 0;
    osg::ref_ptr<TestAsset> victim = makesAsset([&](const std::string&) { ++victimCalls; });
    victim->watchFile(path);
    auto killer = makesAsset([&](const std::string&) { victim = nullptr; });
    killer->watchFile(path);
    OutputCapture output;

    appendsTo(path);

    ASSERT_TRUE(hearsNotice(output, path));
    EXPECT_EQ(killer->calls, 1);
    EXPECT_EQ(victimCalls, 0);
}

TEST_F(FileAssociatedAssetTest, AcceptsAssetsOfAnotherThreadWhileFilesAreSaved)
{
    const std::string path = writesFile("crowd.glsl");
    auto witness = makesAsset();
    witness->watchFile(path);
    OutputCapture output;
    std::thread other([&] {
        for (int i = 0; i < 5000; ++i) {
            osg::ref_ptr<TestAsset> passing = new TestAsset({});
            passing->watchFile(path);
        }
    });

    for (int save = 1; save <= 20; ++save) {
        const int before = witness->calls;
        appendsTo(path);
        EXPECT_TRUE(waitUntil([&] { return witness->calls > before; }));
    }
    other.join();
}

TEST_F(FileAssociatedAssetTest, HearsOfAFileThatIsWatchedFromAnotherThread)
{
    const std::string path = writesFile("elsewhere.glsl");
    auto asset = makesAsset();
    std::thread([&] { asset->watchFile(path); }).join();
    QCoreApplication::processEvents();
    OutputCapture output;

    appendsTo(path);

    EXPECT_TRUE(waitUntil([&] { return asset->calls > 0; }));
}
