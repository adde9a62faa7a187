#include "host/files/OutputPlace.h"

#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/files/OutputFile.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::findLeftovers;
using krige::InputError;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

/// Of a process that has ended.
std::string goneProcess()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return std::to_string(child);
}

} // namespace

TEST(OutputPlaceTest, TemporaryFilesOfProcessesThatAreGoneAreFound)
{
    const TemporaryFolder folder;
    const std::string process = goneProcess();
    const std::string second = folder.write(".krige-" + process + "-7-1.tmp", "x");
    const std::string first = folder.write(".krige-" + process + "-7-0.tmp", "x");

    EXPECT_THAT(findLeftovers(folder.pathOf("out.csv")), ElementsAre(first, second));
}

TEST(OutputPlaceTest, ThoseOfRunsThatGoOnAreNot)
{
    const TemporaryFolder folder;
    const krige::OutputFile output(folder.pathOf("out.csv"));

    ASSERT_EQ(folder.countFiles(), 1u);
    EXPECT_THAT(findLeftovers(folder.pathOf("out.csv")), IsEmpty());
}

TEST(OutputPlaceTest, OtherFilesAreNot)
{
    const TemporaryFolder folder;
    for (const char* const name : {".krige-.tmp", ".krige-0-1.tmp", ".krige-x-1.tmp", ".krige-1", "krige-1-1.tmp",
                                   ".krige-99999999999999999999-1.tmp"})
        folder.write(name, "x");

    EXPECT_THAT(findLeftovers(folder.pathOf("out.csv")), IsEmpty());
    EXPECT_THAT(findLeftovers(folder.pathOf("no/such/folder/out.csv")), IsEmpty());
}

TEST(OutputPlaceTest, WhetherAFileCanAppearIsKnownBeforehand)
{
    const TemporaryFolder folder;
    const auto errorOf = [](const std::string& path)
    {
        return messageOf<InputError>([&] { krige::checkCanBeWritten(path); });
    };

    EXPECT_EQ(errorOf(folder.pathOf("out.csv")), "nothing was thrown");
    EXPECT_EQ(errorOf(folder.write("old.csv", "old")), "nothing was thrown");
    EXPECT_EQ(folder.read("old.csv"), "old");
    EXPECT_EQ(folder.countFiles(), 1u);
    EXPECT_EQ(errorOf("/dev/null"), "nothing was thrown");
    EXPECT_EQ(errorOf(folder.pathOf("none/out.csv")),
              folder.pathOf("none/out.csv") + ": cannot be written: No such file or directory");
    EXPECT_THAT(errorOf(folder.pathOf("old.csv/out.csv")), HasSubstr(": cannot be written: Not a directory"));
    EXPECT_THAT(errorOf(folder.pathOf("")), HasSubstr(": cannot be written: it is a folder"));
}
