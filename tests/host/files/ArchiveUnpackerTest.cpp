#include "host/files/ArchiveUnpacker.h"

#include <string>
#include <utility>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <gmock/gmock.h>

#include "host/files/InputFile.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::InputFile;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

/// All bytes of a file, asked for in portions of this size.
std::string readAll(const std::string& path, std::size_t portion = 1000)
{
    InputFile file(path);
    std::string text;
    std::string bytes(portion, '?');
    while (const std::size_t count = file.read(bytes.data(), bytes.size()))
        text.append(bytes, 0, count);
    return text;
}

class ArchiveUnpackerTest : public testing::Test
{
protected:
    /// Packed by a filter of libarchive.
    std::string packed(int (*addFilter)(archive*), const std::string& text)
    {
        return write({{"data", text}},
                     [&](archive* writer)
                     {
                         addFilter(writer);
                         archive_write_set_format_raw(writer);
                     });
    }

    std::string zipped(const std::vector<std::pair<std::string, std::string>>& files)
    {
        return write(files, [](archive* writer) { archive_write_set_format_zip(writer); });
    }

    std::string errorOf(const std::string& bytes)
    {
        const std::string path = folder.write("file", bytes);
        return messageOf<InputError>([&] { readAll(path); });
    }

    TemporaryFolder folder;

private:
    template <typename Set>
    std::string write(const std::vector<std::pair<std::string, std::string>>& files, Set set)
    {
        archive* const writer = archive_write_new();
        set(writer);
        archive_write_open_filename(writer, folder.pathOf("packed").c_str());
        for (const auto& [name, text] : files)
        {
            archive_entry* const entry = archive_entry_new();
            archive_entry_set_pathname(entry, name.c_str());
            archive_entry_set_filetype(entry, name.back() == '/' ? AE_IFDIR : AE_IFREG);
            archive_entry_set_perm(entry, 0644);
            archive_entry_set_size(entry, static_cast<la_int64_t>(text.size()));
            archive_write_header(writer, entry);
            archive_write_data(writer, text.data(), text.size());
            archive_entry_free(entry);
        }
        archive_write_free(writer);
        return folder.read("packed");
    }
};

} // namespace

TEST_F(ArchiveUnpackerTest, XzZstdAndBzip2AreUnpackedWhateverTheFilesName)
{
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += std::to_string(i) + ",";
    for (const auto filter :
         {&archive_write_add_filter_xz, &archive_write_add_filter_zstd, &archive_write_add_filter_bzip2})
    {
        const std::string path = folder.write("samples.csv", packed(filter, text));

        for (const std::size_t portion : {7u, 65536u, 1000000u})
            EXPECT_EQ(readAll(path, portion), text) << portion;
    }
}

TEST_F(ArchiveUnpackerTest, SeveralPackedPartsAreOneFile)
{
    for (const auto filter : {&archive_write_add_filter_xz, &archive_write_add_filter_zstd})
        EXPECT_EQ(readAll(folder.write("two", packed(filter, "x,z\n") + packed(filter, "1,2\n"))), "x,z\n1,2\n");
}

TEST_F(ArchiveUnpackerTest, TheOnlyFileOfAZipArchiveIsRead)
{
    const std::string text(300000, 'x');

    EXPECT_EQ(readAll(folder.write("a.zip", zipped({{"samples.csv", text}}))), text);
    EXPECT_EQ(readAll(folder.write("a.zip", zipped({{"empty.csv", ""}}))), "");
}

TEST_F(ArchiveUnpackerTest, FoldersAndWhatAMacAddsAreNoFiles)
{
    const std::string path = folder.write("a.zip", zipped({{"data/", ""},
                                                           {"data/.DS_Store", "?"},
                                                           {"data/samples.csv", "x,z\n"},
                                                           {"__MACOSX/data/._samples.csv", "?"}}));

    EXPECT_EQ(readAll(path), "x,z\n");
}

TEST_F(ArchiveUnpackerTest, SeveralFilesOfAZipArchiveAreNamed)
{
    EXPECT_EQ(errorOf(zipped({{"a.csv", "1"}, {"b/c.csv", "2"}})),
              folder.pathOf("file") +
                  ": the zip archive holds 2 files: 'a.csv', 'b/c.csv'; unpack it and name one of them");
}

TEST_F(ArchiveUnpackerTest, ManyFilesOfAZipArchiveAreCounted)
{
    std::vector<std::pair<std::string, std::string>> files;
    for (int i = 0; i < 20; ++i)
        files.emplace_back(std::to_string(i), "x");

    EXPECT_THAT(errorOf(zipped(files)), HasSubstr("holds 20 files: '0', '1', "));
    EXPECT_THAT(errorOf(zipped(files)), HasSubstr("'11' and 8 more; unpack it"));
}

TEST_F(ArchiveUnpackerTest, AZipArchiveWithoutAFileIsAnError)
{
    EXPECT_EQ(errorOf(zipped({{"data/", ""}})), folder.pathOf("file") + ": the zip archive holds no file");
    EXPECT_EQ(errorOf(zipped({})), folder.pathOf("file") + ": the zip archive holds no file");
}

TEST_F(ArchiveUnpackerTest, ASpreadsheetIsToldFromOtherArchives)
{
    const std::string expected =
        folder.pathOf("file") + ": holds an office document, such as a spreadsheet; save its sheet as CSV";

    EXPECT_EQ(errorOf(zipped({{"[Content_Types].xml", "<"}, {"xl/workbook.xml", "<"}})), expected);
    EXPECT_EQ(errorOf(zipped({{"mimetype", "a"}, {"content.xml", "<"}, {"META-INF/manifest.xml", "<"}})), expected);
}

TEST_F(ArchiveUnpackerTest, PackedDataThatEndTooEarlyAreAnError)
{
    std::string text;
    for (int i = 0; i < 30000; ++i)
        text += std::to_string(i * 7919 % 10007) + "\n";
    const std::pair<const char*, std::string> whole[] = {{"xz", packed(&archive_write_add_filter_xz, text)},
                                                         {"zstd", packed(&archive_write_add_filter_zstd, text)},
                                                         {"bzip2", packed(&archive_write_add_filter_bzip2, text)},
                                                         {"zip", zipped({{"a.csv", text}})}};
    for (const auto& [format, bytes] : whole)
    {
        for (const std::size_t size : {bytes.size() / 2, bytes.size() - 1})
            EXPECT_THAT(errorOf(bytes.substr(0, format == std::string("zip") ? bytes.size() / 2 : size)),
                        StartsWith(folder.pathOf("file") + ": the " + format + " data are damaged or end too early"))
                << size << " of " << bytes.size();
    }
}

TEST_F(ArchiveUnpackerTest, DamagedPackedDataAreAnError)
{
    std::string text;
    for (int i = 0; i < 30000; ++i)
        text += std::to_string(i * 7919 % 10007) + "\n";
    for (std::string bytes : {packed(&archive_write_add_filter_xz, text), packed(&archive_write_add_filter_bzip2, text),
                              zipped({{"a.csv", text}})})
    {
        for (std::size_t i = bytes.size() / 2; i < bytes.size() / 2 + 20; ++i)
            bytes[i] = static_cast<char>(~bytes[i]);
        EXPECT_THAT(errorOf(bytes), HasSubstr("data are damaged or end too early")) << bytes.size();
    }
}

TEST_F(ArchiveUnpackerTest, OnlyMarksOfPackedDataAreTakenForSuch)
{
    for (const char* const text : {"PK", "PK3,4", "BZh", "BZh91,x", "x,y", ""})
        EXPECT_FALSE(krige::ArchiveUnpacker::isPacked(text)) << text;
}
