// SPDX-License-Identifier: LGPL-2.1-or-later
#include <cstdint>
#include <string>

#include "fuzz/seeds/Seeds.h"

namespace quarner::fuzz {
namespace {

std::string repeated(std::string_view text, int times) {
    std::string all;
    for (; times > 0; --times)
        all += text;
    return all;
}

void putJolietNames(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, const std::string& bytes) {
        folder.put("joliet-names", name, bytes);
    };
    put("empty", "");
    put("ordinary", "one.mp3\ntwo.mp3\nDisc");
    put("alike-but-for-case", "Song.mp3\nsong.MP3\nSONG.mp3\nDisc");
    put("number-already-taken", "a.mp3\na.mp3\na (2).mp3\na (3).mp3\nDisc");
    put("too-long", repeated("long ", 30) + ".mp3\n" + repeated("long ", 30) + ".mp3\nDisc");
    put("long-extension", "a." + repeated("e", 40) + "\na." + repeated("e", 16) + "\n");
    put("surrogates-at-the-limit", "a" + repeated("\xF0\x9F\x8E\xB5", 40) + ".mp3\nDisc");
    put("not-utf8", "\xFF\xFE.mp3\n\xC3.mp3\n\xED\xA0\x80.mp3\n\xFF");
    put("forbidden", "a*/:;?\\b.mp3\n\x01\x7F\nDisc\x1F");
    put("unusual-case",
        "\xC3\x9F.mp3\nss.mp3\nSS.mp3\n\xC4\xB0.mp3\ni\xCC\x87.mp3\n\xEF\xAC\x81\nfi\n");
    put("composed-and-decomposed", "\xC3\xA9.mp3\ne\xCC\x81.mp3\n\xE2\x84\xAB\n\xC3\x85\n");
    put("dots", ".\n..\n.mp3\na.\n...\n");
    put("zero-byte", std::string("a\0b\na\0\n", 7));
}

void putPlaylists(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, const std::string& bytes) {
        folder.put("playlist", name, bytes);
    };
    put("empty", "");
    put("m3u", "#EXTM3U\r\n#EXTINF:5,A\r\nsub\\a.mp3\r\nfile:///b%20c.mp3\nhttp://host/d\n");
    put("not-utf8", "\xEF\xBB\xBFgr\xFC\xDF.mp3\n");
    put("pls", "[playlist]\nFile2=b.mp3\nfile1=a.mp3\nFile18446744073709551616=c\n");
    put("xspf", "<playlist><trackList><track><location> a%20b&amp;c.mp3</location></track>"
                "<track><location><![CDATA[%00]]></location></track></trackList></playlist>");
    put("nested",
        "<playlist><track><location><location>a</location></location></track></playlist>");
}

void putSizeFormats(const SeedFolder& folder) {
    constexpr std::int64_t sizes[] = {0,
                                      -1,
                                      1,
                                      1023,
                                      1024,
                                      1048575,
                                      1048576,
                                      1073741823,
                                      4700000000,
                                      1649267441664,
                                      1125899906842624,
                                      INT64_MIN,
                                      INT64_MAX};
    for (const std::int64_t size : sizes)
        folder.put("size-format", "size-" + std::to_string(size),
                   Bytes().number(size).text(".").rest("%@ MB"));
    constexpr std::string_view translations[] = {"%.0f KB",
                                                 "%.1f Ko",
                                                 "%1$@ Mo",
                                                 "%n",
                                                 "%s%s%s%s",
                                                 "%999999999f",
                                                 "%.999999999f",
                                                 "%*d",
                                                 "%",
                                                 "%%",
                                                 "%%.0f",
                                                 "%@%@",
                                                 "%-+ #012.3f",
                                                 "%99999999999999999999f",
                                                 "%.f",
                                                 "%1$",
                                                 "%2$@",
                                                 "%\xFF",
                                                 "\xC3",
                                                 "%l",
                                                 "%Lf",
                                                 "%hhn",
                                                 ""};
    int index = 0;
    for (const std::string_view translation : translations) {
        const std::string name = "translation-" + std::to_string(++index);
        folder.put("size-format", name + "-kilo",
                   Bytes().number(std::int64_t(5000)).text("\xD9\xAB").rest(translation));
        folder.put("size-format", name + "-giga",
                   Bytes().number(std::int64_t(4700000000)).text("").rest(translation));
    }
}

void putCueSheets(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, const std::string& bytes) {
        folder.put("cue-sheet", name, bytes);
    };
    put("ordinary", "FILE \"disc.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    put("carriage-returns", "REM x\r\nFILE \"disc.bin\" BINARY\r\n  TRACK 01 AUDIO\r\n");
    put("no-end-of-name", "FILE \"disc.bin BINARY\n\"");
    put("quotes-in-name", "FILE \"a\"b\"c\" BINARY");
    put("nothing-behind-the-quote", "FILE \"");
    put("empty-name", "FILE \"\" BINARY");
    put("no-file", "TRACK 01 AUDIO\n");
    put("empty", "");
    put("a-plan", std::string(Bytes()
                                  .byte(2)
                                  .number(0U)
                                  .number(300U)
                                  .number(150U)
                                  .number(0xFFFFFFFFU)
                                  .rest("disc.bin")));
    put("a-plan-with-a-sheet-as-name", std::string(Bytes().byte(0).rest("FILE x")));
}

void putProgramTexts(const SeedFolder& folder) {
    const auto put = [&](std::string_view name, std::string_view bytes) {
        folder.put("program-text", name, bytes);
    };
    put("plain", Bytes().byte(20).rest("A song of an ordinary length"));
    put("escape-sequence", Bytes().byte(8).rest("\x1B[2J\x9B\xC2\x9B\r\n\t"));
    put("direction", Bytes().byte(9).rest("abc\xE2\x80\xAE"
                                          "def\xE2\x81\xA6\xE2\x80\xA8"));
    put("wide", Bytes().byte(5).rest("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xF0\x9F\x8E\xB5"));
    put("combining", Bytes().byte(4).rest("e\xCC\x81\xCC\x81\xCC\x81"
                                          "a\xE2\x80\x8D"
                                          "bcd"));
    put("not-utf8", Bytes().byte(3).rest("\xFF\xC0\x80\xED\xA0\x80\xF4\x90\x80\x80"));
    put("no-columns", Bytes().byte(0).rest("abc"));
    // An event's name, then one value of each type: see `valueFrom`.
    put("json-text", Bytes().text("event").byte(4).byte(255).text("\"\\\x01\xFF\xE2\x80\xA8"));
    put("json-delete", Bytes().text("\x7F")); // legal in JSON as it is
    put("json-not-a-number", Bytes().text("e").byte(3).number(__builtin_nan("")));
    put("json-infinite", Bytes().text("e").byte(3).number(__builtin_inf()));
    put("json-whole", Bytes().text("e").byte(2).number(INT64_MIN));
    put("json-icon", Bytes().text("e").byte(5).byte(2).text("audio").text("\xFF"));
    Bytes nested;
    nested.text("\xFF");
    for (int depth = 0; depth < 8; ++depth)
        nested.byte(6).byte(2);
    put("json-nested", nested.byte(7).byte(2).byte(255).text("\xFF").byte(1).byte(1));
}

} // namespace

void putTextSeeds(const SeedFolder& folder) {
    putJolietNames(folder);
    putPlaylists(folder);
    putSizeFormats(folder);
    putCueSheets(folder);
    putProgramTexts(folder);
}

} // namespace quarner::fuzz
