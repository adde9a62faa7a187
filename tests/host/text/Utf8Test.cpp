#include "host/text/Utf8.h"

#include <string>

#include <gtest/gtest.h>
#include <iconv.h>

using krige::isUtf8;
using krige::toUtf8;
using krige::utf8CharacterLength;

TEST(Utf8Test, CharactersOfEveryLengthAreTold)
{
    EXPECT_EQ(utf8CharacterLength("az"), 1u);
    EXPECT_EQ(utf8CharacterLength("\xc3\xbcz"), 2u);
    EXPECT_EQ(utf8CharacterLength("\xe2\x82\xacz"), 3u);
    EXPECT_EQ(utf8CharacterLength("\xf0\x9f\x8c\x8dz"), 4u);
    EXPECT_EQ(utf8CharacterLength(""), 0u);
}

TEST(Utf8Test, WhatUnicodeForbidsIsNoCharacter)
{
    for (const char* const text : {"\x80", "\xc3", "\xc3z", "\xc0\x80", "\xc1\xbf", "\xe0\x9f\xbf", "\xed\xa0\x80",
                                   "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff"})
    {
        EXPECT_EQ(utf8CharacterLength(text), 0u) << text;
        EXPECT_FALSE(isUtf8("a" + std::string(text))) << text;
    }
}

TEST(Utf8Test, TheEndsOfTheRangesAreCharacters)
{
    for (const char* const text : {"\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
                                   "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"})
        EXPECT_TRUE(isUtf8(text)) << text;
}

TEST(Utf8Test, Utf8StaysWhatItIs)
{
    EXPECT_EQ(toUtf8("H\xc3\xb6he \xe2\x82\xac"), "H\xc3\xb6he \xe2\x82\xac");
    EXPECT_EQ(toUtf8(""), "");
}

TEST(Utf8Test, OtherTextIsTakenForWindows1252)
{
    EXPECT_EQ(toUtf8("H\xf6he \x80 \x96"), "H\xc3\xb6he \xe2\x82\xac \xe2\x80\x93");
}

TEST(Utf8Test, EveryByteOfWindows1252IsWhatTheCLibraryHas)
{
    const iconv_t converter = iconv_open("UTF-8", "WINDOWS-1252");
    if (converter == reinterpret_cast<iconv_t>(-1))
        GTEST_SKIP() << "no Windows-1252 in this C library";
    for (int byte = 0x80; byte < 0x100; ++byte)
    {
        char bytes[] = {static_cast<char>(byte), '\xff'}; // the second one: never UTF-8
        char converted[16];
        char* in = bytes;
        char* out = converted;
        std::size_t inLeft = sizeof bytes;
        std::size_t outLeft = sizeof converted;
        const bool isCharacter = iconv(converter, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1);
        const std::string expected =
            isCharacter ? std::string(converted, out) : std::string{'\xc2', static_cast<char>(byte)} + "\xc3\xbf";
        EXPECT_EQ(toUtf8({bytes, 2}), expected) << byte;
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
    }
    iconv_close(converter);
}
