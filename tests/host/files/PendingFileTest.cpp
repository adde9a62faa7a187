#include "host/files/PendingFile.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::PendingFile;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::EndsWith;
using testing::HasSubstr;

namespace
{

void writeAt(const std::string& path)
{
    std::ofstream(path) << "new";
}

} // namespace

TEST(PendingFileTest, NothingExistsUntilSomebodyWrites)
{
    const TemporaryFolder folder;
    const PendingFile file(folder.pathOf("map.tif"));

    EXPECT_EQ(folder.countFiles(), 0u);
    EXPECT_FALSE(file.replaces());
}

TEST(PendingFileTest, TheTemporaryNameEndsAsAsked)
{
    const TemporaryFolder folder;

    EXPECT_THAT(PendingFile(folder.pathOf("points.shp"), ".shp").getTemporaryPath(), EndsWith(".tmp.shp"));
    EXPECT_THAT(PendingFile(folder.pathOf("map.tif")).getTemporaryPath(), EndsWith(".tmp"));
}

TEST(PendingFileTest, TwoAtOneFileHaveTwoNames)
{
    const TemporaryFolder folder;
    const PendingFile first(folder.pathOf("map.tif"));
    writeAt(first.getTemporaryPath());
    const PendingFile second(folder.pathOf("map.tif"));

    EXPECT_NE(first.getTemporaryPath(), second.getTemporaryPath());
}

TEST(PendingFileTest, FilesOfASetShareTheirNames)
{
    const TemporaryFolder folder;
    PendingFile shapes(folder.pathOf("points.shp"), ".shp");
    PendingFile index(shapes, ".shp", ".shx");
    writeAt(shapes.getTemporaryPath());
    writeAt(index.getTemporaryPath());
    index.commit();
    shapes.commit();

    EXPECT_EQ(folder.read("points.shp"), "new");
    EXPECT_EQ(folder.read("points.shx"), "new");
    EXPECT_EQ(folder.countFiles(), 2u);
}

TEST(PendingFileTest, WithoutCommitTheTemporaryFileGoes)
{
    const TemporaryFolder folder;
    folder.write("map.tif", "old");
    {
        const PendingFile file(folder.pathOf("map.tif"));
        EXPECT_TRUE(file.replaces());
        writeAt(file.getTemporaryPath());
    }

    EXPECT_EQ(folder.read("map.tif"), "old");
    EXPECT_EQ(folder.countFiles(), 1u);
}

TEST(PendingFileTest, AReplacedFileKeepsItsPermissions)
{
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.write("map.tif", "old"),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    PendingFile file(folder.pathOf("map.tif"));
    writeAt(file.getTemporaryPath());
    file.commit();

    EXPECT_EQ(std::filesystem::status(folder.pathOf("map.tif")).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(PendingFileTest, AFolderIsRefused)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.pathOf("map.tif"));

    EXPECT_THAT(messageOf<InputError>([&] { PendingFile(folder.pathOf("map.tif")); }),
                HasSubstr("map.tif: cannot be written: it is a folder"));
}
