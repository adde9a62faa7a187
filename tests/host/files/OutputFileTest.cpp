#include "host/files/OutputFile.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::OutputFile;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;

TEST(OutputFileTest, NothingIsAtThePathBeforeCommit)
{
    const TemporaryFolder folder;
    OutputFile output(folder.pathOf("out.csv"));
    output.write("abc");

    EXPECT_FALSE(std::filesystem::exists(folder.pathOf("out.csv")));
}

TEST(OutputFileTest, CommitLeavesTheFileAndNothingElse)
{
    const TemporaryFolder folder;
    OutputFile output(folder.pathOf("out.csv"));
    output.write("abc");
    output.commit();

    EXPECT_EQ(folder.read("out.csv"), "abc");
    EXPECT_EQ(folder.countFiles(), 1u);
}

TEST(OutputFileTest, WithoutCommitTheFolderIsAsBefore)
{
    const TemporaryFolder folder;
    folder.write("out.csv", "old");
    {
        OutputFile output(folder.pathOf("out.csv"));
        output.write("abc");
    }

    EXPECT_EQ(folder.read("out.csv"), "old");
    EXPECT_EQ(folder.countFiles(), 1u);
}

TEST(OutputFileTest, ASymbolicLinkStaysAndItsFileIsReplaced)
{
    const TemporaryFolder folder;
    folder.write("real.csv", "old");
    std::filesystem::create_symlink("real.csv", folder.pathOf("link.csv"));
    OutputFile output(folder.pathOf("link.csv"));
    output.write("new");
    output.commit();

    EXPECT_TRUE(std::filesystem::is_symlink(folder.pathOf("link.csv")));
    EXPECT_EQ(folder.read("real.csv"), "new");
}

TEST(OutputFileTest, AReplacedFileKeepsItsPermissions)
{
    const TemporaryFolder folder;
    folder.write("out.csv", "old");
    const auto ownerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    std::filesystem::permissions(folder.pathOf("out.csv"), ownerOnly);
    OutputFile output(folder.pathOf("out.csv"));
    output.commit();

    EXPECT_EQ(std::filesystem::status(folder.pathOf("out.csv")).permissions(), ownerOnly);
}

TEST(OutputFileTest, ANameOfTheGreatestLengthIsFine)
{
    const TemporaryFolder folder;
    OutputFile output(folder.pathOf(std::string(255, 'a')));
    output.commit();

    EXPECT_TRUE(std::filesystem::exists(folder.pathOf(std::string(255, 'a'))));
}

TEST(OutputFileTest, AMissingFolderIsAnErrorThatNamesThePath)
{
    const TemporaryFolder folder;

    EXPECT_THAT(messageOf<InputError>([&] { OutputFile output(folder.pathOf("none/out.csv")); }),
                HasSubstr("none/out.csv: cannot be written: No such file or directory"));
}

TEST(OutputFileTest, AFolderIsNoOutputFile)
{
    const TemporaryFolder folder;

    EXPECT_THAT(messageOf<InputError>([&] { OutputFile output(folder.pathOf("")); }), HasSubstr("it is a folder"));
}

TEST(OutputFileTest, ManyFilesOneAfterAnotherAreFine)
{
    const TemporaryFolder folder;
    for (int i = 0; i < 20; ++i)
        OutputFile(folder.pathOf("out.csv")).commit();

    EXPECT_EQ(folder.countFiles(), 1u);
}
