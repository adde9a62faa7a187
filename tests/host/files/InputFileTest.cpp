#include "host/files/InputFile.h"

#include <string>

#include <gmock/gmock.h>

#include "host/files/OutputFile.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::InputFile;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;

namespace
{

/// All bytes of a file, asked for in portions of this size.
std::string readAll(const std::string& path, std::size_t portion)
{
    InputFile file(path);
    std::string text;
    std::string bytes(portion, '?');
    while (const std::size_t count = file.read(bytes.data(), bytes.size()))
        text.append(bytes, 0, count);
    return text;
}

class InputFileTest : public testing::Test
{
protected:
    /// The text, packed by gzip.
    std::string packed(const std::string& text)
    {
        krige::OutputFile file(folder.pathOf("packed.gz"));
        file.write(text);
        file.commit();
        return folder.read("packed.gz");
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(InputFileTest, PlainBytesAreReadAsTheyAre)
{
    const std::string bytes("a\0\xff\r\nb", 6);
    const std::string path = folder.write("plain", bytes);

    for (const std::size_t portion : {1u, 2u, 3u, 100u})
        EXPECT_EQ(readAll(path, portion), bytes) << portion;
}

TEST_F(InputFileTest, FilesOfUpToTwoBytesAreReadToo)
{
    EXPECT_EQ(readAll(folder.write("empty", ""), 10), "");
    EXPECT_EQ(readAll(folder.write("one", "\x1f"), 10), "\x1f");
    EXPECT_EQ(readAll(folder.write("two", "ab"), 10), "ab");
}

TEST_F(InputFileTest, GzipIsUnpackedWhateverTheFilesName)
{
    const std::string text(300000, 'x');
    const std::string path = folder.write("samples.csv", packed(text));

    for (const std::size_t portion : {7u, 65536u, 1000000u})
        EXPECT_EQ(readAll(path, portion), text) << portion;
}

TEST_F(InputFileTest, MembersOfAGzipFileFollowEachOther)
{
    const std::string path = folder.write("two.gz", packed("x,z\n") + packed("1,2\n"));

    EXPECT_EQ(readAll(path, 100), "x,z\n1,2\n");
}

TEST_F(InputFileTest, AGzipFileThatIsCutOffIsAnError)
{
    const std::string whole = packed("x,z\n1,2\n");
    const std::string path = folder.write("cut.gz", whole.substr(0, whole.size() - 1));

    EXPECT_EQ(messageOf<InputError>([&] { readAll(path, 100); }),
              path + ": the gzip data end too early: the file is truncated");
}

TEST_F(InputFileTest, DamagedGzipDataAreAnError)
{
    std::string bytes = packed("x,z\n1,2\n");
    bytes[bytes.size() - 6] = static_cast<char>(~bytes[bytes.size() - 6]); // of the checksum
    const std::string path = folder.write("damaged.gz", bytes);

    EXPECT_THAT(messageOf<InputError>([&] { readAll(path, 100); }), HasSubstr(path + ": the gzip data are damaged"));
}

TEST_F(InputFileTest, AFileThatIsNotThereIsNamed)
{
    const std::string path = folder.pathOf("missing.csv");

    EXPECT_EQ(messageOf<InputError>([&] { const InputFile file(path); }), path + ": No such file or directory");
}

TEST_F(InputFileTest, AFolderIsNoFile)
{
    const std::string path = folder.pathOf(".");

    EXPECT_EQ(messageOf<InputError>([&] { const InputFile file(path); }), path + ": Is a directory; name a file in it");
    const std::string file = folder.write("wells.csv", "");
    EXPECT_EQ(messageOf<InputError>([&] { readAll(folder.pathOf(""), 10); }),
              folder.pathOf("") + ": Is a directory; name a file in it, for instance '" + file + "'");
}

TEST_F(InputFileTest, AFileOfALikeNameIsSuggested)
{
    const std::string file = folder.write("samples.csv", "");
    const std::string path = folder.pathOf("sample.csv");

    EXPECT_EQ(messageOf<InputError>([&] { const InputFile input(path); }),
              path + ": No such file or directory; did you mean '" + file + "'?");
}

TEST_F(InputFileTest, ADashStandsForStandardInput)
{
    EXPECT_TRUE(krige::isStandardStream("-"));
    EXPECT_FALSE(krige::isStandardStream("./-"));
    EXPECT_EQ(InputFile(folder.write("s.csv", "")).getName(), folder.pathOf("s.csv"));
}
