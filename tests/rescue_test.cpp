// Work that is not in the map's file outlives the program, and belongs to that file only.
#include "mapdata/rescue.h"
#include "mapdata/rescue_files.h"
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"
#include "tests/failing_calls.h"

#include <cerrno>
#include <cstring>

namespace {

namespace fs = std::filesystem;

class Rescue : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        WriteMap(MapFile(101, 600, 400));
        original = Read("Map101c.dat");
        painted = original;
        painted[57 + 2 * (10 * 60 + 10)] = 0x40;
    }

    // The data files among the copies; aside: of those put aside.
    std::vector<fs::path> Copies(bool aside = false) const
    {
        std::vector<fs::path> found;
        std::error_code none;
        const std::string rescueFolder = StateFolder() + "/kestrel-map-tool/rescue";
        for (const auto& entry : fs::directory_iterator(rescueFolder + (aside ? "/aside" : ""), none)) {
            if (entry.path().extension() == ".dat") {
                found.push_back(entry.path());
            }
        }
        return found;
    }

    static void PaintACell()
    {
        OpenPalette('t', woodsTool);
        ClickOnMap(105, 105);
    }

    // A session that ends with a painted cell unsaved, as a log-out ends it.
    void LeaveWorkBehind()
    {
        OpenMap();
        PaintACell();
        ScriptSessionEnd();
        Run();
        ASSERT_EQ(Copies().size(), 1U);
        EXPECT_TRUE(Read("Map101c.dat") == original);
        StartAgain();
    }

    static void StartAgain()
    {
        HeadlessReset();
        host->start();
        rescue = {};
        shell = {};
        view = {};
        currentMap = {};
        editing = {};
    }

    static void ExpectQuestion(const char* answer)
    {
        ThenCheck([] {
            const std::string text = TextsOf(TopDialog());
            const std::string start = "Work on this map that was not saved is kept from 20";
            EXPECT_EQ(text.substr(0, start.size()), start);
            EXPECT_EQ(text.substr(text.size() - 9), ". Use it?");
        });
        ClickButton(answer);
    }

    static void ExpectNoQuestion()
    {
        ThenCheck([] { EXPECT_EQ(TopDialog(), nullptr) << TextsOf(TopDialog()); });
    }

    std::string original;
    std::string painted;
};

TEST_F(Rescue, WorkLeftBehindComesBackAndStaysUntilItIsSaved)
{
    LeaveWorkBehind();
    OpenMap();
    ExpectQuestion("Yes");
    ThenCheck([this] {
        EXPECT_EQ(MarkedCells(), "10,10=0040");
        EXPECT_EQ(currentMap.mapModified, 1);
        EXPECT_TRUE(Read("Map101c.dat") == original);
        EXPECT_EQ(Copies().size(), 1U);
    });
    ScriptControl('s');
    ClickButton("Yes");
    ThenCheck([this] {
        EXPECT_TRUE(Read("Map101c.dat") == painted);
        EXPECT_TRUE(Copies().empty());
    });
    QuitAndRun();
    EXPECT_TRUE(Copies().empty() && Copies(true).empty());
}

TEST_F(Rescue, AnsweredWithNoItIsPutAsideAndTheLastFiveStay)
{
    for (int i = 0; i < 7; i++) {
        LeaveWorkBehind();
        fs::path copy = Copies().at(0);
        for (const char* ending : {".dat", ".txt"}) { // as if another process had written it
            const std::string name = "Map101c-" + std::to_string(i) + "-1" + ending;
            fs::rename(copy.replace_extension(ending), copy.parent_path() / name);
        }
        OpenMap();
        ExpectQuestion("No");
        ThenCheck([] { EXPECT_EQ(MarkedCells(), ""); });
        QuitAndRun();
        StartAgain();
        EXPECT_TRUE(Copies().empty());
        EXPECT_EQ(Copies(true).size(), static_cast<size_t>(std::min(i + 1, 5)));
    }
    OpenMap();
    ExpectNoQuestion();
    QuitAndRun();
}

TEST_F(Rescue, ACopyIsThereWhileTheMapDiffersFromItsFile)
{
    const auto expectCopies = [this](size_t count, const char* when) {
        ThenCheck([=, this] { EXPECT_EQ(Copies().size(), count) << when; });
    };
    OpenMap();
    expectCopies(0, "as opened");
    PaintACell();
    expectCopies(1, "painted");
    ClickOnMap(105, 105);
    expectCopies(0, "painted back");
    ClosePalette();
    ScriptMenu(203);
    ClickItem(105);
    ScriptText("222");
    ClickButton("OK");
    expectCopies(1, "another version number");
    ScriptControl('s');
    ClickButton("Yes");
    expectCopies(0, "saved");
    PaintACell();
    ThenCheck([this] {
        const fs::perms rights = fs::status(Copies().at(0).parent_path()).permissions();
        EXPECT_EQ(rights, fs::perms::owner_all);
    });
    ClosePalette();
    QuitAndRun(); // with "No Save"
    EXPECT_TRUE(Copies().empty());
}

TEST_F(Rescue, PaintedAfterASaveUnderTheSamePaletteItIsKeptThoughQuitDoesNotAsk)
{
    OpenMap();
    PaintACell();
    ScriptControl('s');
    ClickButton("Yes");
    ClickOnMap(205, 205);
    ScriptControl('q');
    ExpectMessage("Do you really want to quit? ", "Yes");
    Run();
    EXPECT_EQ(Copies().size(), 1U);
    StartAgain();
    OpenMap();
    ExpectQuestion("Yes");
    ThenCheck([] { EXPECT_EQ(MarkedCells(), "10,10=0040 20,20=0040"); });
    QuitAndRun();
}

TEST_F(Rescue, OnlyAWholeCopyOfThisVeryFileIsOffered)
{
    const struct {
        const char* what;
        std::function<void()> change;
        bool putAside;
    } rows[] = {
        {"the file was replaced", [this] { Write("Map101c.dat", painted); }, true},
        {"the copy is cut", [this] { fs::resize_file(Copies().at(0), 500); }, true},
        {"the copy is no map", [this] { std::ofstream(Copies().at(0)) << "no map"; }, true},
        {"the copy is of another size", [this] { std::ofstream(Copies().at(0)) << MapFile(101, 500, 400).Bytes(); },
         true},
        {"the record is none",
         [this] { std::ofstream(Copies().at(0).replace_extension(".txt")) << "map: " << Path("Map101c.dat"); },
         false},
        {"the record's path is too long",
         [this] { std::ofstream(Copies().at(0).replace_extension(".txt")) << "\nmap: " << std::string(300, 'a'); },
         false},
        {"the record cannot be read",
         [this] {
             const fs::path record = Copies().at(0).replace_extension(".txt");
             fs::remove(record);
             fs::create_directory(record);
         },
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Write("Map101c.dat", original);
        fs::remove_all(StateFolder());
        LeaveWorkBehind();
        row.change();
        OpenMap();
        ExpectNoQuestion();
        QuitAndRun();
        EXPECT_EQ(Copies(true).size(), row.putAside ? 1U : 0U);
        StartAgain();
    }
}

TEST_F(Rescue, ACopyOfAProgramThatRunsIsItsOwn)
{
    LeaveWorkBehind();
    const fs::path copy = Copies().at(0);
    const std::string stem = copy.stem();
    const std::string lock = copy.parent_path() / (stem.substr(stem.find('-')) + ".lock");
    std::ofstream(lock) << "";
    const HFILE held = _lopen(lock.c_str(), OF_READWRITE | OF_SHARE_EXCLUSIVE);
    OpenMap();
    ExpectNoQuestion();
    PaintACell();
    ThenCheck([this] { EXPECT_EQ(Copies().size(), 2U); });
    ClosePalette();
    QuitAndRun();
    EXPECT_EQ(Copies(), std::vector<fs::path>{copy});
    _lclose(held);
}

TEST_F(Rescue, ASaveThatBrokeOffLosesNothing)
{
    const std::function<void()> breaks[] = {
        [this] { fs::remove(Path("Map101c.dat")); },
        [this] { Write("Map101c.dat", ""); },
        [this] { Write("Map101c.dat", painted.substr(0, 40)); },
        [this] { Write("Map101c.dat", painted.substr(0, 700)); },
    };
    const auto fullDisk = [](int, const void*, size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    for (size_t i = 0; i < 2 * std::size(breaks); ++i) {
        Write("Map101c.dat", original);
        OpenMap();
        PaintACell();
        if (i < std::size(breaks)) {
            ThenCheck([] { JudgeSystemCalls(Refuse(writeCall, ENOSPC)); });
        } else { // the copies lie on the same disk
            ThenCheck([=] { systemCalls.write = fullDisk; });
        }
        ScriptControl('q');
        ClickButton("Save");
        Run();
        systemCalls = RealSystemCalls();
        breaks[i % std::size(breaks)]();
        StartAgain();
        OpenMap();
        ExpectQuestion("Yes");
        ThenCheck([] { EXPECT_EQ(MarkedCells(), "10,10=0040"); });
        ScriptControl('s');
        ClickButton("Yes");
        ThenCheck([this] { EXPECT_TRUE(Read("Map101c.dat") == painted); });
        QuitAndRun();
        EXPECT_TRUE(Copies().empty());
        StartAgain();
    }
}

TEST_F(Rescue, AnUnansweredQuestionIsAskedAgainAndADeclinedOneIsNot)
{
    for (const bool saveBrokeOff : {false, true}) {
        SCOPED_TRACE(saveBrokeOff);
        fs::remove_all(StateFolder());
        Write("Map101c.dat", original);
        if (saveBrokeOff) {
            OpenMap();
            PaintACell();
            ThenCheck([] { JudgeSystemCalls(Refuse(writeCall, ENOSPC)); });
            ScriptControl('q');
            ClickButton("Save");
            Run();
            systemCalls = RealSystemCalls();
            Write("Map101c.dat", "");
            StartAgain();
        } else {
            LeaveWorkBehind();
            fs::path copy = Copies().at(0); // the older of two goes aside unasked
            for (const char* ending : {".dat", ".txt"}) {
                fs::copy(copy.replace_extension(ending), copy.parent_path() / (std::string("Old") + ending));
            }
        }
        OpenMap();
        ThenCheck([] { EXPECT_NE(TopDialog(), nullptr); });
        ScriptSessionEnd();
        Run();
        EXPECT_EQ(Copies().size(), 1U);
        const size_t aside = Copies(true).size();
        EXPECT_EQ(aside, saveBrokeOff ? 0U : 1U);
        StartAgain();
        OpenMap();
        ExpectQuestion("No");
        ThenCheck([] { EXPECT_EQ(shell.mapShown != 0 ? MarkedCells() : "", ""); });
        ScriptKey(VK_RETURN);
        QuitAndRun();
        EXPECT_EQ(Copies(true).size(), aside + 1);
        StartAgain();
    }
}

TEST_F(Rescue, AFolderThatCannotBeWrittenStopsNothing)
{
    for (const char* place : {"/kestrel-map-tool", ""}) {
        Write("Map101c.dat", original);
        fs::remove_all(StateFolder() + place);
        std::ofstream(StateFolder() + place) << "no folder";
        OpenMap();
        PaintACell();
        ScriptControl('s');
        ClickButton("Yes");
        ThenCheck([this] { EXPECT_TRUE(Read("Map101c.dat") == painted); });
        QuitAndRun();
        StartAgain();
    }
}

TEST_F(Rescue, AFileOfACopyThatCannotBeMadeStopsNothing)
{
    static const char* refused;
    for (const char* part : {"/rescue/-", "/rescue/Map"}) { // the lock, and the copy
        refused = part;
        systemCalls.open = [](const char* path, int flags, mode_t mode) {
            errno = EACCES;
            return strstr(path, refused) != nullptr ? -1 : RealSystemCalls().open(path, flags, mode);
        };
        Write("Map101c.dat", original);
        OpenMap();
        PaintACell();
        ThenCheck([this] { EXPECT_TRUE(Copies().empty()); });
        ScriptControl('s');
        ClickButton("Yes");
        ThenCheck([this] { EXPECT_TRUE(Read("Map101c.dat") == painted); });
        QuitAndRun();
        StartAgain();
    }
    systemCalls = RealSystemCalls();
    currentMap = {};
    NoteSavingBegins(); // without a map there is nothing to keep
    EXPECT_EQ(rescue.saving, 0);
}

TEST_F(Rescue, ANewIdentityComesBackToo)
{
    OpenMap();
    ScriptMenu(205);
    ClickItem(105);
    ScriptText("222");
    ClickButton("OK");
    ScriptSessionEnd();
    Run();
    StartAgain();
    OpenMap();
    ExpectQuestion("Yes");
    ThenCheck([] { EXPECT_EQ(Title(), "Map222c.dat"); });
    QuitAndRun();
}

} // namespace
