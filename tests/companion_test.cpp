// The companion at the command line: what each command finds and writes, and that nothing is lost or half written.
#include "companion/command_line.h"
#include "companion/exchange.h"
#include "companion/save.h"
#include "mapdata/rescue_files.h"
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"
#include "tests/failing_calls.h"

#include <cstring>
#include <random>
#include <regex>

namespace {

using Words = std::vector<std::string>;

class CompanionTest : public testing::Test, public TemporaryFolder {
  protected:
    int Run(const Words& arguments)
    {
        report = {};
        return RunCommandLine(arguments, &report);
    }

    // The codes of what check finds, one after the other.
    std::string Codes(const std::string& path)
    {
        const int status = Run({"check", path});
        std::string codes;
        for (size_t place = report.out.find(": "); place != std::string::npos;) {
            codes += (codes.empty() ? "" : " ") +
                     report.out.substr(place + 2, report.out.find(':', place + 2) - place - 2);
            place = report.out.find(": ", report.out.find('\n', place));
        }
        EXPECT_EQ(status, codes.empty() ? statusFine : statusFound) << report.errors;
        return codes;
    }

    void WriteMap(const MapFile& map, int artWidth = 450, int artHeight = 220) const
    {
        Write("Map101c.dat", map.Bytes());
        Write("Map101c.bmp", ArtBytes(artWidth, artHeight));
    }

    Report report;
};

MapFile RandomMap(std::mt19937* random)
{
    const auto upTo = [&](int most) { return static_cast<int>((*random)() % static_cast<unsigned>(most + 1)); };
    MapFile map(100 + upTo(899), 1 + upTo(300), 1 + upTo(300));
    for (int i = 0; i < 28; i++) {
        if (i > bottomWord || i == 1 || i == 2) {
            map.words[i] = static_cast<int16_t>((*random)());
        }
    }
    for (int i = upTo(255); i > 0; i--) {
        map.text += static_cast<char>(1 + upTo(254));
    }
    for (uint16_t& cell : map.cells) {
        cell = static_cast<uint16_t>((*random)());
    }
    return map;
}

std::string Replaced(std::string text, const std::string& part, const std::string& other)
{
    const size_t place = text.find(part);
    return place == std::string::npos ? "?" : text.replace(place, part.size(), other);
}

} // namespace

TEST_F(CompanionTest, EveryCommandShowsAnExampleAndWrongUsageEndsWithTwo)
{
    for (const char* command : {"info", "check", "render", "diff", "export", "import", "set", "rescue"}) {
        EXPECT_EQ(Run({command, "--help"}), statusFine);
        EXPECT_NE(report.out.find(std::string("Example: kestrel-map ") + command), std::string::npos) << report.out;
        EXPECT_EQ(Run({command, "--no-such-option"}), statusFailed);
        EXPECT_EQ(report.errors.find("kestrel-map: "), 0u);
        EXPECT_EQ(report.out, "");
    }
    EXPECT_EQ(Run({"--version"}), statusFine);
    for (const Words& words : {Words{}, {"paint"}, {"info", "none.dat"}, {"render", "none.dat", "-o", "-"}}) {
        EXPECT_EQ(Run(words), statusFailed);
    }
}

TEST_F(CompanionTest, CheckTellsEachFaultByItsCode)
{
    const struct {
        const char* codes;
        std::function<void(MapFile*)> damage;
    } rows[] = {
        {"", [](MapFile*) {}},
        {"number", [](MapFile* map) { map->words[idWord] = 102; }},
        {"counts art-size", [](MapFile* map) { map->words[rightWord] = 500; }},
        {"header", [](MapFile* map) { map->words[rowsWord] = 311; }},
        {"header", [](MapFile* map) { map->text = std::string(300, 'x'); }},
        {"ends-early", [](MapFile* map) { map->cells.pop_back(); }},
        {"ends-late", [](MapFile* map) { map->cells.push_back(0); }},
        {"range range range",
         [](MapFile* map) {
             map->words[eastingWord] = 100, map->words[northingWord] = -1, map->words[versionWord] = 9;
         }},
        {"cost no-go free-bits", [](MapFile* map) { map->Cell(1, 1) = 5 << 11 | 0x0301; }},
    };
    for (const auto& row : rows) {
        MapFile map(101, 450, 220);
        row.damage(&map);
        WriteMap(map);
        EXPECT_EQ(Codes(folder), row.codes);
    }
}

TEST_F(CompanionTest, CheckLooksAtArtAtOldFilesAndIntoFolders)
{
    const MapFile map(101, 450, 220);
    std::filesystem::create_directories(Path("deep/er"));
    Write("deep/er/map101C.DAT", map.Bytes());
    EXPECT_EQ(Codes(folder), "art-missing");
    Write("deep/er/MAP101c.bmp", ArtBytes(450, 220).substr(0, 1000));
    EXPECT_EQ(Codes(folder), "art-damaged");
    std::filesystem::remove_all(Path("deep"));

    WriteMap(map);
    Write("Map101c.dat_old", MapFile(102, 450, 220).Bytes());
    EXPECT_EQ(Codes(folder), "old-stale");
    Write("Map101c.dat_old", "short");
    EXPECT_EQ(Codes(folder), "old-damaged");
    Write("Map101c.dat", map.Bytes().substr(0, 99));
    EXPECT_EQ(Codes(folder), "ends-early old-damaged none-whole");
    Write("Map101c.dat_old", map.Bytes());
    EXPECT_EQ(Codes("Map101c.dat"), "ends-early use-old");
    std::filesystem::remove(Path("Map101c.dat"));
    EXPECT_EQ(Codes(folder), "missing use-old");
    Write("Mapxyz.dat", map.Bytes());
    EXPECT_EQ(Run({"check", "--json", "-j", "2", folder}), statusFound);
    EXPECT_NE(report.out.find("\"code\": \"name\""), std::string::npos) << report.out;
}

TEST_F(CompanionTest, WhatWasExportedComesBackByteForByte)
{
    std::mt19937 random(12);
    for (int i = 0; i < 20; i++) {
        const std::string bytes = RandomMap(&random).Bytes();
        Write("Map101c.dat", bytes);
        for (const char* format : {"csv", "json"}) {
            ASSERT_EQ(Run({"export", "Map101c.dat", "--to", format, "-o", "other"}), statusFine) << report.errors;
            ASSERT_EQ(Run({"import", "Map102c.dat", "--from", format, "-i", "other"}), statusFine) << report.errors;
            EXPECT_TRUE(Read("Map102c.dat") == bytes) << format << " " << i;
        }
    }
}

TEST_F(CompanionTest, AnImportNamesTheLineThatIsWrongAndLeavesTheMapAlone)
{
    const std::string bytes = MapFile(101, 20, 20).Bytes();
    Write("Map101c.dat", bytes);
    Run({"export", "Map101c.dat", "--to", "csv", "-o", "-"});
    const std::string csv = report.out;
    const std::string windows = std::regex_replace(csv, std::regex("\n"), "\r\n");
    Write("in", "\xEF\xBB\xBF" + windows);
    EXPECT_EQ(Run({"import", "Map101c.dat", "--from", "csv", "-i", "in"}), statusFine) << report.errors;
    Run({"export", "Map101c.dat", "--to", "json", "-o", "-"});
    const std::string json = report.out;
    const struct {
        const char* format;
        std::string text;
        const char* message;
    } rows[] = {
        {"csv", Replaced(csv, "\n1,1,", "\n1,0,"), "line 35: cell 1,0 is there twice"},
        {"csv", Replaced(csv, "\n0,1,", "\n0,2,"), "line 34: cell 0,2 is outside the map's 2 x 2 cells"},
        {"csv", Replaced(csv, "\n1,1,0,0,0,0,0,0,0,0", ""), "line 34: there is no cell 1,1 up to here"},
        {"csv", Replaced(csv, "\n0,0,0", "\n0,0,32"), "line 32: cell 0,0: its cost cannot be \"32\""},
        {"csv", Replaced(csv, "0,0\n0,1", "0,2\n0,1"), "line 33: cell 1,0: its free cannot be \"2\""},
        {"csv", Replaced(csv, "rowCount,2", "rowCount,x"), "line 6: \"x\" is no whole number"},
        {"csv", Replaced(csv, "auxWord1,0\n", ""), "line 30: the field auxWord1 is missing"},
        {"csv", Replaced(csv, "rowCount,2", "rowCount,0"), "line 31: the fields cannot be a map's"},
        {"csv", Replaced(csv, "woods", "trees"), "line 31: there is no column \"trees\""},
        {"csv", Replaced(csv, "mapText,\"\"", "mapText,\""), "line 30: a quotation mark is missing"},
        {"csv", "", "line 1: the cells are missing"},
        {"json", "{\"fields\": {}", "parse error"},
        {"json", Replaced(json, "[0,0]", "[0]"), "cells, row 0: there are not 2 cells"},
        {"json", Replaced(json, "[0,0]", "[0,65536]"), "cells, row 0, column 1: not a number from 0 to 65535"},
        {"json", Replaced(json, "\"mapText\": \"\"", "\"mapText\": 5"), "the field mapText is no text"},
        {"json", Replaced(json, "\"mapID\": 101", "\"mapID\": 70000"), "the field mapID is not from"},
    };
    for (const auto& row : rows) {
        Write("in", row.text);
        EXPECT_EQ(Run({"import", "Map101c.dat", "--from", row.format, "-i", "in"}), statusFailed) << row.message;
        EXPECT_EQ(report.errors.find("kestrel-map: in: "), 0u) << report.errors;
        EXPECT_NE(report.errors.find(row.message), std::string::npos) << report.errors;
        EXPECT_TRUE(Read("Map101c.dat") == bytes);
    }
}

TEST_F(CompanionTest, DiffCountsCellsByKindAndComparesTheHeader)
{
    MapFile map(101, 450, 220);
    WriteMap(map);
    EXPECT_EQ(Run({"diff", "Map101c.dat", "Map101c.dat"}), statusFine);
    EXPECT_EQ(report.out, "");
    map.words[versionWord] = 101;
    map.Cell(3, 4) = cellWoods | 6 << cellMoveCostShift;
    map.Cell(4, 4) = cellWoods | 0x0400;
    Write("new.dat", map.Bytes());
    EXPECT_EQ(Run({"diff", "Map101c.dat", "new.dat", "-o", "changed.png"}), statusFound);
    EXPECT_EQ(report.out, "--- Map101c.dat\n+++ new.dat\nversionNumber: 100 -> 101\n2 cells differ\n"
                          "  NO-GO none to 3: 1\n  cost clear to water: 1\n  woods set: 2\n");
    EXPECT_EQ(Read("changed.png").substr(1, 3), "PNG");
    EXPECT_EQ(Run({"diff", "/dev/null", "new.dat", "--json"}), statusFound);
}

TEST_F(CompanionTest, SetWritesLikeASaveAndOnlyWhatChanges)
{
    MapFile map(101, 450, 220);
    map.Cell(0, 0) = cellNoGoMask | cellTown;
    map.Cell(1, 0) = 0x0200;
    map.words[markerFieldWord] = 0;
    WriteMap(map);
    const std::string before = Read("Map101c.dat");
    EXPECT_EQ(Run({"set", "Map101c.dat", "--no-go", "2", "--clear", "--all"}), statusFine) << report.errors;
    EXPECT_EQ(report.out, "Map101c.dat: 1 cell changed\n");
    map.Cell(1, 0) = 0;
    map.words[markerFieldWord] = 1;
    EXPECT_TRUE(Read("Map101c.dat") == map.Bytes());
    EXPECT_TRUE(Read("Map101c.dat_old") == before);
    EXPECT_EQ(Run({"set", "Map101c.dat", "--no-go", "2", "--clear", "--all"}), statusFine);
    EXPECT_TRUE(Read("Map101c.dat_old") == before) << "nothing changed, so nothing is written";
    EXPECT_EQ(Run({"set", "Map101c.dat", "--cost", "rough", "--all"}), statusFailed) << "there are four of them";
    EXPECT_EQ(Run({"set", "-", "--cost", "water", "--all"}), statusFailed);
}

// Whatever call of the save fails, and for however long, the file from before is there, or the new one is whole.
TEST_F(CompanionTest, NoFaultOfAFileCallLosesTheMap)
{
    MapFile map(101, 450, 220);
    const std::string before = map.Bytes();
    map.SizeCells(6 << cellMoveCostShift);
    const std::string after = map.Bytes();
    for (const FaultSpan span : {failOnce, failKind, failAll}) {
        bool wasRefused = true;
        for (int number = 1; wasRefused; number++) {
            Write("Map101c.dat", before);
            Write("Map101c.dat_old", "of yesterday");
            JudgeSystemCalls(FailFrom(number, ENOSPC, span));
            const int status = Run({"set", "Map101c.dat", "--cost", "water", "--all"});
            wasRefused = std::any_of(JudgedCalls().begin(), JudgedCalls().end(),
                                     [](const JudgedCall& call) { return call.refused; });
            systemCalls = RealSystemCalls();
            EXPECT_TRUE(Read("Map101c.dat") == (status == statusFine ? after : before)) << number << " " << span;
            EXPECT_TRUE(status == statusFine ? Read("Map101c.dat_old") == before : !report.errors.empty());
            ASSERT_LT(number, 100);
        }
    }
}

TEST_F(CompanionTest, AFileThatIsNotAsItWasIsLeftAlone)
{
    MapData map;
    FileBefore before;
    Write("Map101c.dat", MapFile(101, 450, 220).Bytes());
    DecodeMap(Read("Map101c.dat"), &map);
    ASSERT_TRUE(ReadBefore(&report, "Map101c.dat", &before));
    Write("Map101c.dat", "of another program");
    EXPECT_FALSE(SaveMapData(&report, before, map));
    EXPECT_EQ(Read("Map101c.dat"), "of another program");
    EXPECT_EQ(Files(), Words{"Map101c.dat"});
    // A damaged file does not take the place of a whole _old, nor does one that is not there.
    Write("Map101c.dat_old", MapFile(101, 20, 20).Bytes());
    ASSERT_TRUE(ReadBefore(&report, "Map101c.dat", &before) && SaveMapData(&report, before, map));
    std::filesystem::remove(Path("Map101c.dat"));
    ASSERT_TRUE(ReadBefore(&report, "Map101c.dat", &before) && SaveMapData(&report, before, map));
    EXPECT_TRUE(Read("Map101c.dat_old") == MapFile(101, 20, 20).Bytes());
}

TEST_F(CompanionTest, OutputAppearsWholeOrNotAtAll)
{
    WriteMap(MapFile(101, 450, 220));
    EXPECT_EQ(Run({"render", "Map101c.dat", "-o", "none/x.png"}), statusFailed);
    EXPECT_EQ(Run({"render", "Map101c.dat", "-o", "/dev/full"}), statusFailed);
    EXPECT_EQ(report.errors, "kestrel-map: /dev/full: cannot be written: No space left on device\n");
    std::filesystem::create_directory(Path("grid-town.asc"));
    Write("grid-cost.asc", "before");
    EXPECT_EQ(Run({"export", "Map101c.dat", "--to", "asc", "-o", "grid"}), statusFailed);
    EXPECT_EQ(Read("grid-cost.asc"), "before");
    EXPECT_EQ(Files(), (Words{"Map101c.bmp", "Map101c.dat", "grid-cost.asc", "grid-town.asc"}));
}

TEST_F(CompanionTest, RescueGoesBackToACopy)
{
    MapFile map(101, 450, 220);
    WriteMap(map);
    const std::string before = map.Bytes();
    map.Cell(1, 1) = cellTown;
    RescueRecord record;
    ASSERT_TRUE(HoldRescueFolder() && NameRescueCopy("Map101c", record.name));
    strcpy(record.mapPath, Path("Map101c.dat").c_str());
    strcpy(record.targetPath, record.mapPath);
    record.file = IdentityOfFile(record.mapPath);
    record.loadedMapID = 101;
    const auto keep = [&] {
        const std::string bytes = map.Bytes();
        return WriteRescueRecord(record) &&
               WriteRescueBytes(record.name, reinterpret_cast<const uint8_t*>(bytes.data()),
                                static_cast<int32_t>(bytes.size()));
    };
    ASSERT_TRUE(keep());
    EXPECT_EQ(Run({"rescue", "restore", "Map101c.dat"}), statusFailed) << "its editor runs";
    ReleaseRescueFolder();
    EXPECT_EQ(Run({"rescue"}), statusFine);
    EXPECT_NE(report.out.find("left behind"), std::string::npos) << report.out;
    EXPECT_EQ(Run({"rescue", "show", record.name}), statusFine) << report.out;
    EXPECT_EQ(Run({"rescue", "restore", "Map101c.dat"}), statusFine) << report.errors;
    EXPECT_TRUE(Read("Map101c.dat") == map.Bytes());
    EXPECT_TRUE(Read("Map101c.dat_old") == before);
    EXPECT_EQ(Run({"rescue", "restore", "Map101c.dat"}), statusFailed) << "the file changed since";
    EXPECT_EQ(Run({"rescue", "restore", "Map101c.dat", "--force"}), statusFine) << report.errors;
    EXPECT_EQ(Run({"rescue", "drop", "Map101c.dat"}), statusFine);
    EXPECT_EQ(Run({"rescue", "show", "Map101c.dat"}), statusFailed);
}

// Every kept input of the fuzzers, as a data file and as art, through every command that reads.
TEST_F(CompanionTest, DamagedFilesEndInAMessageOrAResult)
{
    const std::string good = MapFile(101, 450, 220).Bytes();
    Write("good.dat", good);
    for (const char* kind : {"map_data", "bitmap"}) {
        for (const auto& entry : std::filesystem::directory_iterator(std::string(KESTREL_FUZZ_CORPUS) + "/" + kind)) {
            const bool isData = strcmp(kind, "map_data") == 0;
            WriteMap(MapFile(101, 450, 220));
            std::filesystem::copy_file(entry.path(), Path(isData ? "Map101c.dat" : "Map101c.bmp"),
                                       std::filesystem::copy_options::overwrite_existing);
            const std::string file = "Map101c.dat";
            for (const Words& words :
                 {Words{"check", "."},
                  {"info", file},
                  {"render", file, "-o", "x.png", "--scale", "1/16"},
                  {"render", file, "-o", "x.png", "--view", "analysis", "--numbers", "--scale", "1/16"},
                  {"render", file, "-o", "x.png", "--view", "costs", "--style", "frame", "--scale", "1/16"},
                  {"render", file, "-o", "x.png", "--view", "features", "--scale", "1/16"},
                  {"diff", "good.dat", file},
                  {"diff", file, "good.dat", "--json"},
                  {"export", file, "--to", "csv", "-o", "-"},
                  {"export", file, "--to", "json", "-o", "-"},
                  {"export", file, "--to", "asc", "-o", "x"}}) {
                const int status = Run(words);
                EXPECT_TRUE(status != statusFailed || report.errors.find("kestrel-map: ") == 0)
                    << entry.path() << " " << words.front();
                EXPECT_TRUE(status == statusFailed || status == statusFound || report.errors.empty())
                    << report.errors;
            }
        }
    }
}
