// Every file-system call of a save and of an open fails, alone, with all of its kind, and with all that follow.
// Whatever fails alone or for one reason, the map's old or new content is whole in the data file or in its backup.
// With the rescue copy, what was in memory is never lost either.
// Two faults can cost the file, and each case has a test here: the backup cannot be made and writing fails; a second
// save fails, too, and takes the first one's incomplete file for its backup; under a changed number, which has no
// backup, a failing save leaves that number's file incomplete. The file under the old number is never touched.
#include "mapdata/data_file.h"
#include "mapdata/rescue_files.h"
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"
#include "tests/failing_calls.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <map>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct SaveScenario {
    const char* name;
    bool hasDataFile;
    bool hasBackup;
    bool changedID; // so that the target is another file and there is no backup
    bool targetIsThere;
};

constexpr SaveScenario saveScenarios[] = {
    {"a new map", false, false, false, false},
    {"an opened map", true, false, false, true},
    {"an opened map with a backup", true, true, false, true},
    {"a changed number", true, true, true, false},
    {"a changed number, saved before", true, true, true, true},
};

// Some file systems cannot rename without replacing.
enum FileSystemKind { wholeFileSystem, noExclusiveRename };

const std::map<std::string, std::string> bystanders = {
    {"Map101c.bmp", "the art"},
    {"Map103c.dat", "another map"},
    {"notes", "of the user"},
};

std::string SmallMap(uint16_t fill)
{
    MapFile map(101, 600, 400);
    map.SizeCells(fill);
    return map.Bytes();
}

// The map that is saved: its file takes several writes.
MapFile NewMap(const SaveScenario& scenario)
{
    MapFile map(scenario.changedID ? 102 : 101, 600, 400);
    map.words[columnsWord] = 310;
    map.words[rowsWord] = 130;
    map.SizeCells();
    for (size_t i = 0; i < map.cells.size(); i++) {
        map.cells[i] = static_cast<uint16_t>(7 * i + 1);
    }
    return map;
}

const std::string oldContent = SmallMap(0x1111);
const std::string olderContent = SmallMap(0x2222);

CallJudge OnFileSystem(FileSystemKind kind, CallJudge judge)
{
    return [=](const JudgedCall& call) {
        const int verdict = judge(call);
        const bool unknown = kind == noExclusiveRename && call.kind == renameNoReplaceCall;
        return verdict == letThrough && unknown ? EINVAL : verdict;
    };
}

constexpr int savedStatus = 42;

enum DeathPlace { beforeCall, inWrite };

// For the child. The numbers count all calls, or the writes: of that write half is made, and the next call kills.
CallJudge DieAt(int number, DeathPlace place)
{
    auto writes = std::make_shared<int>(0);
    return [=](const JudgedCall& call) {
        if (place == beforeCall ? call.number == number : *writes == number) {
            kill(getpid(), SIGKILL);
        }
        *writes += call.kind == writeCall ? 1 : 0;
        return place == inWrite && call.kind == writeCall && *writes == number ? halfTransfer : letThrough;
    };
}

class FailingSaves : public StartedProgram, public TemporaryFolder {
  protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        ReleaseRescueFolder(); // of the program before
        Write("memory", NewMap(saveScenarios[0]).Bytes());
        ASSERT_EQ(MakeFileSpec((folder + "/").c_str(), "memory", &currentMap.dataFileSpec), 0);
        ASSERT_TRUE(OpenMapDataFile() == 0 && ReadMapHeader(currentMap.openDataFile) == 0);
        ASSERT_TRUE(AllocateCellColumns() == 0 && ReadMapCells(currentMap.openDataFile) == 0);
    }

    void TearDown() override
    {
        systemCalls = RealSystemCalls();
        StartedProgram::TearDown();
    }

    // Fills the folder anew, and the map in memory counts as opened from it, or as new, and as modified.
    void Prepare(const SaveScenario& scenario)
    {
        systemCalls = RealSystemCalls();
        CloseMapDataFile();
        for (const std::string& name : Files()) {
            std::filesystem::remove(Path(name));
        }
        for (const auto& [name, content] : bystanders) {
            Write(name, content);
        }
        if (scenario.hasDataFile) {
            Write("Map101c.dat", oldContent);
        }
        if (scenario.hasBackup) {
            Write("Map101c.dat_old", olderContent);
        }
        if (scenario.changedID && scenario.targetIsThere) {
            Write("Map102c.dat", SmallMap(0x3333));
        }
        currentMap.record.mapID = scenario.changedID ? 102 : 101;
        currentMap.loadedMapID = 101;
        currentMap.mapModified = 1;
        newContent = NewMap(scenario).Bytes();
        MapFiles files;
        ASSERT_EQ(MakeFileSpec((folder + "/").c_str(), "Map101c.dat", &files.data), 0);
        TakeMapFiles(files);
        NoteMapOpened(); // the last rescue copy goes
        openBefore = OpenDescriptors();
        if (scenario.hasDataFile) {
            ASSERT_EQ(OpenFileSpecRead(&currentMap.dataFileSpec, &currentMap.openDataFile), 0);
        }
    }

    // SaveMap without its question. Messages are noted and answered.
    int Save()
    {
        messages.clear();
        AnswerMessages(3);
        const int status = SaveMap(false);
        while (HeadlessStepsLeft() > 0) {
            host->pump(100);
        }
        return status;
    }

    // The looks come while a message's loop runs; without one they are played afterwards and find nothing.
    void AnswerMessages(int looks)
    {
        ScriptCall([=, this] {
            if (TopDialog() != nullptr) {
                messages.push_back(TextsOf(TopDialog()));
                ScriptButton("OK");
                ScriptWait(60);
            }
            if (looks > 1) {
                AnswerMessages(looks - 1);
            }
        });
    }

    // What holds whatever happened: other files, an old file under another number, handles, the flags of the map.
    void ExpectSound(const SaveScenario& scenario, int status)
    {
        systemCalls = RealSystemCalls();
        EXPECT_EQ(shell.quitRequested, 0u) << "a message was never answered";
        EXPECT_EQ(currentMap.openDataFile, noFile);
        EXPECT_EQ(OpenDescriptors(), openBefore);
        EXPECT_EQ(currentMap.mapModified, status == 0 ? 0 : 1);
        if (status == 0) {
            EXPECT_TRUE(Read(currentMap.dataFileSpec.name) == newContent) << "the save counts as done";
        }
        EXPECT_TRUE(status == 0 || WorkIsKept());
        if (scenario.changedID) {
            EXPECT_TRUE(Read("Map101c.dat") == oldContent);
            EXPECT_TRUE(Read("Map101c.dat_old") == olderContent);
        }
        const std::string target = scenario.changedID ? "Map102c.dat" : "Map101c.dat";
        EXPECT_EQ(currentMap.dataFileSpec.name, target);
        for (const auto& [name, content] : bystanders) {
            EXPECT_EQ(Read(name), content);
        }
        for (const std::string& name : Files()) {
            EXPECT_TRUE(bystanders.count(name) == 1 || name == "Map101c.dat" || name == "Map101c.dat_old" ||
                        name == target)
                << name;
        }
    }

    // The data file holds the old or the new content, or its backup the old one; for a map that had no file there is
    // nothing to lose.
    bool WorkIsWhole(const SaveScenario& scenario) const
    {
        if (!scenario.hasDataFile) {
            return true;
        }
        const std::string data = Read("Map101c.dat");
        return data == oldContent || data == newContent || Read("Map101c.dat_old") == oldContent;
    }

    // The new content is in the file or in the rescue copy.
    bool WorkIsKept() const
    {
        if (Read(currentMap.record.mapID == 102 ? "Map102c.dat" : "Map101c.dat") == newContent) {
            return true;
        }
        const std::filesystem::recursive_directory_iterator kept(StateFolder());
        return std::any_of(begin(kept), end(kept), [this](const auto& entry) {
            std::ifstream file(entry.path(), std::ios::binary);
            return entry.is_regular_file() && std::string(std::istreambuf_iterator<char>(file), {}) == newContent;
        });
    }

    // Whether the child was killed; false when it came to the end of its save.
    bool SaveInChild(const CallJudge& judge)
    {
        const pid_t child = fork();
        if (child == 0) {
            JudgeSystemCalls(judge);
            _exit(SaveMap(false) == 0 ? savedStatus : 1);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        EXPECT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == savedStatus)) << status;
        return killed;
    }

    std::string newContent;
    std::vector<std::string> messages;
    int openBefore = 0;
};

constexpr int faultErrors[] = {EIO, ENOSPC, EACCES, EROFS, EDQUOT, EINTR};
constexpr FaultSpan faultSpans[] = {failOnce, failKind, failAll};

int JudgedCallCount()
{
    return static_cast<int>(JudgedCalls().size());
}

// What is written but not brought to the disk, with its folder, is not saved. A folder that may not be read is let
// off.
bool RefusedToWrite(int error)
{
    return std::any_of(JudgedCalls().begin(), JudgedCalls().end(), [=](const JudgedCall& call) {
        const bool opensFolder = (call.flags & O_DIRECTORY) == O_DIRECTORY && error != EACCES && error != EPERM;
        return call.refused && (call.kind == writeCall || call.kind == syncCall || opensFolder) &&
               call.kind != closeCall;
    });
}

// The second opening of the target is the one whose failure is told; it neither creates nor empties.
bool RefusedToOpenTarget()
{
    return std::any_of(JudgedCalls().begin(), JudgedCalls().end(), [](const JudgedCall& call) {
        return call.refused && (call.kind == openCall || call.kind == statOpenCall) &&
               (call.flags & O_ACCMODE) == O_RDWR && (call.flags & O_CREAT) == 0;
    });
}

const std::vector<std::string> couldNotOpen = {
    "Could not open a new file. Quit program, find and rename the '.bak' file "
    "to end in '.dat' and try again."};

TEST_F(FailingSaves, EveryCallMayFailAndTheWorkIsWhole)
{
    int saves = 0;
    int savesFailed = 0;
    int messagesShown = 0;
    for (const SaveScenario& scenario : saveScenarios) {
        for (const FileSystemKind system : {wholeFileSystem, noExclusiveRename}) {
            for (const int error : faultErrors) {
                if (system != wholeFileSystem && error != EIO) {
                    continue; // the way of the backup differs there, not what an error leads to
                }
                for (const FaultSpan span : faultSpans) {
                    if (span == failAll && error != EIO && error != EACCES) {
                        continue; // the same as for EIO, and slow
                    }
                    int number = 0;
                    do {
                        number++;
                        SCOPED_TRACE(std::string(scenario.name) + ": call " + std::to_string(number) + ", error " +
                                     std::to_string(error) + ", span " + std::to_string(span) + ", file system " +
                                     std::to_string(system));
                        Prepare(scenario);
                        JudgeSystemCalls(OnFileSystem(system, FailFrom(number, error, span)));
                        const int status = Save();
                        ExpectSound(scenario, status);
                        const bool madeAgain = error == EINTR && span == failOnce;
                        EXPECT_EQ(messages,
                                  RefusedToOpenTarget() && !madeAgain ? couldNotOpen : std::vector<std::string>{});
                        EXPECT_TRUE(status == 1 || madeAgain || (messages.empty() && !RefusedToWrite(error)));
                        EXPECT_FALSE(madeAgain && status != 0);
                        EXPECT_TRUE(WorkIsWhole(scenario));
                        saves++;
                        savesFailed += status;
                        messagesShown += static_cast<int>(messages.size());
                        ASSERT_FALSE(HasFailure());
                        // The call before the first to fail was the last: nothing failed any more.
                    } while (number <= JudgedCallCount());
                    EXPECT_EQ(currentMap.mapModified, 0) << "without a fault";
                }
            }
        }
    }
    RecordProperty("saves", saves);
    RecordProperty("savesThatFailed", savesFailed);
    EXPECT_GT(savesFailed, 300);
    EXPECT_GT(messagesShown, 60);
}

TEST_F(FailingSaves, WithoutABackupAFailedWriteLosesTheFile)
{
    // The old backup cannot be replaced, and the disk is full.
    Prepare(saveScenarios[2]);
    JudgeSystemCalls([](const JudgedCall& call) {
        return call.kind == renameNoReplaceCall ? EACCES : call.kind == writeCall ? ENOSPC : letThrough;
    });
    EXPECT_EQ(Save(), 1);
    ExpectSound(saveScenarios[2], 1);
    EXPECT_TRUE(messages.empty());
    EXPECT_FALSE(WorkIsWhole(saveScenarios[2]));
}

TEST_F(FailingSaves, ASecondFailedSaveReplacesTheGoodBackup)
{
    Prepare(saveScenarios[1]);
    JudgeSystemCalls(Refuse(writeCall, ENOSPC));
    EXPECT_EQ(Save(), 1);
    EXPECT_TRUE(Read("Map101c.dat_old") == oldContent);
    EXPECT_EQ(Save(), 1);
    EXPECT_EQ(Read("Map101c.dat_old"), "");
    ExpectSound(saveScenarios[1], 1);
    EXPECT_FALSE(WorkIsWhole(saveScenarios[1]));
    EXPECT_EQ(Save(), 0) << "the work is still in memory, and there is room now";
    ExpectSound(saveScenarios[1], 0);
}

TEST_F(FailingSaves, UnderAChangedNumberAFailedSaveLeavesAnIncompleteFile)
{
    const SaveScenario& scenario = saveScenarios[4];
    Prepare(scenario);
    JudgeSystemCalls(Refuse(writeCall, ENOSPC, 1));
    EXPECT_EQ(Save(), 1);
    ExpectSound(scenario, 1);
    const std::string target = Read("Map102c.dat");
    EXPECT_LT(target.size(), newContent.size());
    EXPECT_TRUE(newContent.compare(0, target.size(), target) == 0);
    EXPECT_TRUE(WorkIsWhole(scenario)) << "the file under the old number";
}

// ---- killing ----

TEST_F(FailingSaves, ThatAreKilledLeaveTheWorkWhole)
{
    for (const SaveScenario& scenario : saveScenarios) {
        for (const FileSystemKind system : {wholeFileSystem, noExclusiveRename}) {
            for (const DeathPlace place : {beforeCall, inWrite}) {
                int number = 1;
                for (bool killed = true; killed; number++) {
                    SCOPED_TRACE(std::string(scenario.name) + ": call " + std::to_string(number) + ", place " +
                                 std::to_string(place) + ", file system " + std::to_string(system));
                    Prepare(scenario);
                    killed = SaveInChild(OnFileSystem(system, DieAt(number, place)));
                    EXPECT_TRUE(WorkIsWhole(scenario) && WorkIsKept());
                    // What the killed save left behind does not keep the next one from its work.
                    JudgeSystemCalls(OnFileSystem(system, [](const JudgedCall&) { return letThrough; }));
                    EXPECT_EQ(Save(), 0);
                    ExpectSound(scenario, 0);
                    ASSERT_FALSE(HasFailure());
                }
                EXPECT_GT(number, place == beforeCall ? 15 : 2) << "calls of a save";
            }
        }
    }
}

// ---- opening ----

// What becomes of an open when a call fails.
enum OpenOutcome { mapOpens, artNotFound, dataNotOpened, headerUnreadable, silentFailure };

const std::vector<std::string> messagesOf[] = {
    {},
    {"Could not find a map art file named: Map101c.bmp"},
    {"Could not open 'DAT' file. File may be damaged or in use. Quit program, restart, and try again."},
    {"Could not load terrain data from 'DAT' file. File may be damaged. Quit program, restart, and try again."},
    {},
};

// The calls of an open without a fault, and the outcome when one of them fails.
OpenOutcome OutcomeOfFault(const std::vector<JudgedCall>& calls, size_t index)
{
    const JudgedCall& call = calls[index];
    const std::string type = EndsWith(call.path, ".dat") ? ".dat" : EndsWith(call.path, ".bmp") ? ".bmp" : "";
    const auto before = std::count_if(calls.data(), &call, [&](const JudgedCall& other) {
        return other.kind == call.kind && EndsWith(other.path, type);
    });
    switch (call.kind) {
    case openCall:
    case statOpenCall:
        return type == ".dat" ? dataNotOpened : silentFailure;
    case readCall:
        return before == 0 ? headerUnreadable : silentFailure;
    case readAtCall:
    case seekCall:
        return silentFailure;
    case statCall: // names are first looked up as they are, then without regard to case; the second look counts
        return type == ".bmp" && before == 1 ? artNotFound : mapOpens;
    default:
        return mapOpens;
    }
}

OpenOutcome OutcomeOfFaults(const std::vector<JudgedCall>& calls, size_t first, FaultSpan span)
{
    for (size_t i = first; i < calls.size(); i++) {
        const bool fails =
            i == first || span == failAll || (span == failKind && FailTogether(calls[i].kind, calls[first].kind));
        if (fails && OutcomeOfFault(calls, i) != mapOpens) {
            return OutcomeOfFault(calls, i);
        }
    }
    return mapOpens;
}

class OpenFaults : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        MapFile map(101, 500, 260);
        map.words[columnsWord] = 310; // so that the cells take several reads
        map.words[rowsWord] = 150;
        map.SizeCells(0x0420);
        WriteMap(map);
    }

    // Opens the map under the judge, and again without one if that failed, and quits. The calls of the first open are
    // left to look at.
    std::vector<std::string> Open(CallJudge judge)
    {
        std::vector<std::string> messages;
        HeadlessReset();
        const std::string data = Read("Map101c.dat");
        const std::string art = Read("Map101c.bmp");
        const int descriptors = OpenDescriptors();
        ScriptCall([&, judge] {
            callsUntilShown = 0;
            JudgeSystemCalls([this, judge](const JudgedCall& call) {
                callsUntilShown += shell.mapShown ? 0 : 1;
                return shell.mapShown ? letThrough : judge(call);
            });
        });
        OpenMap();
        AnswerMessages(&messages, 3);
        ThenCheck([&] {
            systemCalls = RealSystemCalls();
            shown = shell.mapShown != 0;
            EXPECT_EQ(OpenDescriptors(), descriptors + (shown ? 1 : 0)) << "the data file stays open";
            EXPECT_EQ(currentMap.openDataFile != noFile, shown);
            EXPECT_EQ(currentMap.allocatedColumns, shown ? 310 : 0);
            if (shown) {
                EXPECT_EQ(CellWord(309, 149), 0x0420);
            } else {
                OpenMap();
            }
        });
        ThenCheck([] { EXPECT_EQ(shell.mapShown, 1) << "without faults the map opens"; });
        QuitAndRun();
        EXPECT_EQ(OpenDescriptors(), descriptors);
        EXPECT_EQ(Files(), (std::vector<std::string>{"Map101c.bmp", "Map101c.dat"}));
        EXPECT_TRUE(Read("Map101c.dat") == data && Read("Map101c.bmp") == art);
        return messages;
    }

    bool shown = false;
    size_t callsUntilShown = 0;

  private:
    static void AnswerMessages(std::vector<std::string>* messages, int looks)
    {
        ThenCheck([=] {
            if (TopDialog() != nullptr) {
                messages->push_back(TextsOf(TopDialog()));
                ClickButton("OK");
            }
            if (looks > 1) {
                AnswerMessages(messages, looks - 1);
            }
        });
    }
};

TEST_F(OpenFaults, EveryCallMayFail)
{
    EXPECT_TRUE(Open([](const JudgedCall&) { return letThrough; }).empty());
    ASSERT_TRUE(shown);
    const std::vector<JudgedCall> calls(JudgedCalls().begin(),
                                        JudgedCalls().begin() + static_cast<std::ptrdiff_t>(callsUntilShown));
    for (const JudgedCall& call : calls) { // nothing that a kill could leave half done
        EXPECT_TRUE(call.kind != openCall || (call.flags & (O_ACCMODE | O_CREAT)) == O_RDONLY);
        for (const CallKind kind :
             {writeCall, truncateCall, unlinkCall, renameCall, renameNoReplaceCall, makeFileCall}) {
            EXPECT_NE(call.kind, kind);
        }
    }
    std::vector<OpenOutcome> outcomes;
    for (size_t i = 0; i < calls.size(); i++) {
        for (const FaultSpan span : faultSpans) {
            for (const int error : faultErrors) {
                SCOPED_TRACE("call " + std::to_string(calls[i].number) + " of kind " + std::to_string(calls[i].kind) +
                             " on " + calls[i].path + ", error " + std::to_string(error) + ", span " +
                             std::to_string(span));
                const bool madeAgain = error == EINTR && span == failOnce;
                const OpenOutcome outcome = madeAgain ? mapOpens : OutcomeOfFaults(calls, i, span);
                EXPECT_EQ(Open(FailFrom(calls[i].number, error, span)), messagesOf[outcome]);
                EXPECT_EQ(shown, outcome == mapOpens);
                outcomes.push_back(outcome);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    for (const OpenOutcome outcome : {mapOpens, artNotFound, dataNotOpened, headerUnreadable, silentFailure}) {
        EXPECT_NE(std::find(outcomes.begin(), outcomes.end(), outcome), outcomes.end()) << outcome;
    }
}

TEST_F(OpenFaults, ShortReadsAreContinued)
{
    EXPECT_TRUE(Open([](const JudgedCall&) { return halfTransfer; }).empty());
    EXPECT_TRUE(shown);
}

} // namespace
