#include "base/DataFolder.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// A folder to start in, and an installation in another.
class DataFolderTest : public testing::Test
{
protected:
    ~DataFolderTest() override { fs::current_path(before); }

    void makes(const fs::path& name) { fs::create_directories(root() / name); }
    fs::path root() const { return folder.path().toStdString(); }
    fs::path foundIn(const fs::path& current, const fs::path& program = "usr/games/rollix") const
    {
        return DataFolder::find(root() / current, root() / program);
    }

    QTemporaryDir folder;
    fs::path before = fs::current_path();
};

TEST_F(DataFolderTest, IsTheCurrentOneOfALevelAuthorEvenWhereTheGameIsInstalled)
{
    makes("author/data/Rollix");
    makes("usr/share/games/rollix/data/Rollix");
    EXPECT_EQ(foundIn("author"), root() / "author");
}

TEST_F(DataFolderTest, IsTheInstallationsEverywhereElse)
{
    makes("home");
    makes("usr/share/games/rollix/data/Rollix");
    EXPECT_EQ(foundIn("home"), root() / "usr/share/games/rollix");
    EXPECT_EQ(foundIn("home", "usr/bin/rollix-level"), root() / "usr/share/games/rollix");
}

TEST_F(DataFolderTest, IsNotSomebodysFolderOfTheSameName)
{
    makes("home/data/measurements");
    makes("usr/share/games/rollix/data/Rollix");
    EXPECT_EQ(foundIn("home"), root() / "usr/share/games/rollix");
}

TEST_F(DataFolderTest, GoesWithTheProgramToAnyPrefix)
{
    makes("home");
    makes("opt/rollix-1/share/games/rollix/data/Rollix");
    EXPECT_EQ(foundIn("home", "opt/rollix-1/games/rollix"),
              root() / "opt/rollix-1/share/games/rollix");
}

TEST_F(DataFolderTest, IsNoneWhereThereIsNoData)
{
    makes("home");
    EXPECT_EQ(foundIn("home"), fs::path());
}

TEST_F(DataFolderTest, IsEnteredOnlyWhereThereIsData)
{
    makes("author/data/Rollix");
    makes("home");
    fs::current_path(root() / "author");
    DataFolder::enter();
    EXPECT_EQ(fs::current_path(), fs::canonical(root() / "author"));
    fs::current_path(root() / "home");
    DataFolder::enter();
    EXPECT_EQ(fs::current_path(), fs::canonical(root() / "home"))
        << "this program has no installation";
}

}  // namespace
