// Every file-system call of a save and of an open fails, alone, with all of its kind, and with all that follow.
// Whatever fails alone or for one reason, the map's old or new content is whole in the data file or in its backup.
// The cases in which it is not follow from the order of a save, and each has a test of its own here:
// - The backup cannot be made, for one reason, and writing fails, for another: the data file was emptied and stays
//   incomplete. The backup is missing or from an earlier save.
// - A save fails while it writes and a second one fails, too: the second takes the first one's incomplete file for
// its
//   backup, and the good backup goes.
// - Under a changed map number there is no backup: a failing save leaves the new number's file incomplete, though an
//   earlier save had filled it. The map's file under the old number is never touched.
#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "tests/editor_session.h"
#include "tests/save_scenarios.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>

namespace {

constexpr int faultErrors[] = {ENOSPC, EIO, EACCES};
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

// A refused creation is tried again, so the first one that the save got past counts.
int CallThatEmptiedTarget()
{
    for (const JudgedCall& call : JudgedCalls()) {
        if (call.kind == openCall && (call.flags & O_TRUNC) != 0 && !call.refused) {
            return call.number;
        }
    }
    return 0;
}

typedef SaveScenarioTest SaveFaults;

const std::vector<std::string> couldNotOpen = {
    "Could not open a new file. Quit program, find and rename the '.bak' file "
    "to end in '.dat' and try again."};

TEST_F(SaveFaults, EveryCallMayFailAndTheWorkIsWhole)
{
    int savesFailed = 0;
    int messagesShown = 0;
    for (const SaveScenario& scenario : saveScenarios) {
        for (const FileSystemKind system : {wholeFileSystem, noExclusiveRename, noLinks}) {
            for (const int error : faultErrors) {
                if (system != wholeFileSystem && error != EIO) {
                    continue; // the way of the backup differs there, not what an error leads to
                }
                for (const FaultSpan span : faultSpans) {
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
                        EXPECT_EQ(messages, RefusedToOpenTarget() ? couldNotOpen : std::vector<std::string>{});
                        EXPECT_TRUE(status == 1 || (messages.empty() && !RefusedToWrite(error)));
                        EXPECT_TRUE(WorkIsWhole(scenario));
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
    EXPECT_GT(savesFailed, 300);
    EXPECT_GT(messagesShown, 60);
}

TEST_F(SaveFaults, ShortWritesAreContinued)
{
    for (const SaveScenario& scenario : saveScenarios) {
        for (const bool always : {false, true}) {
            int writes = 0;
            int next = 1;
            do {
                const int cut = next++;
                Prepare(scenario);
                writes = 0;
                JudgeSystemCalls([&](const JudgedCall& call) {
                    writes += call.kind == writeCall ? 1 : 0;
                    return call.kind == writeCall && (always ? writes >= cut : writes == cut) ? halfTransfer
                                                                                              : letThrough;
                });
                ASSERT_EQ(Save(), 0) << scenario.name;
                ExpectSound(scenario, 0);
                EXPECT_TRUE(messages.empty());
            } while (next <= std::min(writes, 6));
            EXPECT_GT(writes, 1);
        }
    }
}

TEST_F(SaveFaults, WithoutABackupAFailedWriteLosesTheFile)
{
    int lost = 0;
    for (const SaveScenario& scenario : {saveScenarios[1], saveScenarios[2]}) {
        int calls = 1000;
        for (int first = 1; first <= calls; first++) {
            for (int second = first + 1; second <= calls; second++) {
                SCOPED_TRACE(std::string(scenario.name) + ": calls " + std::to_string(first) + " and " +
                             std::to_string(second));
                Prepare(scenario);
                JudgeSystemCalls([&](const JudgedCall& call) {
                    return call.number == first ? EIO : call.number == second ? ENOSPC : letThrough;
                });
                const int status = Save();
                const int emptied = CallThatEmptiedTarget();
                calls = JudgedCallCount();
                ExpectSound(scenario, status);
                if (!WorkIsWhole(scenario)) {
                    lost++;
                    EXPECT_EQ(status, 1);
                    EXPECT_TRUE(emptied == 0 || first < emptied)
                        << "one of the faults was met while making the backup";
                }
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    EXPECT_GT(lost, 0) << "two faults may lose a map, and the guide says so";

    // The plainest of these: the old backup cannot be replaced, and the disk is full.
    Prepare(saveScenarios[2]);
    JudgeSystemCalls([](const JudgedCall& call) {
        return call.kind == renameNoReplaceCall ? EACCES : call.kind == writeCall ? ENOSPC : letThrough;
    });
    EXPECT_EQ(Save(), 1);
    ExpectSound(saveScenarios[2], 1);
    EXPECT_TRUE(messages.empty());
    EXPECT_FALSE(WorkIsWhole(saveScenarios[2]));
}

TEST_F(SaveFaults, ASecondFailedSaveReplacesTheGoodBackup)
{
    Prepare(saveScenarios[1]);
    JudgeSystemCalls([](const JudgedCall& call) { return call.kind == writeCall ? ENOSPC : letThrough; });
    EXPECT_EQ(Save(), 1);
    EXPECT_TRUE(Content("Map101c.dat_old") == oldContent);
    EXPECT_EQ(Save(), 1);
    EXPECT_EQ(Content("Map101c.dat_old"), "");
    ExpectSound(saveScenarios[1], 1);
    EXPECT_FALSE(WorkIsWhole(saveScenarios[1]));
    EXPECT_EQ(Save(), 0) << "the work is still in memory, and there is room now";
    ExpectSound(saveScenarios[1], 0);
}

TEST_F(SaveFaults, UnderAChangedNumberAFailedSaveLeavesAnIncompleteFile)
{
    const SaveScenario& scenario = saveScenarios[4];
    Prepare(scenario);
    int writes = 0;
    JudgeSystemCalls(
        [&](const JudgedCall& call) { return call.kind == writeCall && ++writes > 1 ? ENOSPC : letThrough; });
    EXPECT_EQ(Save(), 1);
    ExpectSound(scenario, 1);
    const std::string target = Content("Map102c.dat");
    EXPECT_LT(target.size(), newContent.size());
    EXPECT_TRUE(newContent.compare(0, target.size(), target) == 0);
    EXPECT_TRUE(WorkIsWhole(scenario)) << "the file under the old number";
}

// ---- opening ----

// What becomes of an open when a call fails.
enum OpenOutcome { mapOpens, artNotFound, dataNotOpened, headerUnreadable, silentFailure };

std::vector<std::string> MessagesOf(OpenOutcome outcome)
{
    switch (outcome) {
    case artNotFound:
        return {"Could not find a map art file named: Map101c.bmp"};
    case dataNotOpened:
        return {"Could not open 'DAT' file. File may be damaged or in use. Quit program, restart, and try again."};
    case headerUnreadable:
        return {"Could not load terrain data from 'DAT' file. File may be damaged. Quit program, restart, and try "
                "again."};
    default:
        return {};
    }
}

// The calls of an open without a fault, and the outcome when one of them fails.
OpenOutcome OutcomeOfFault(const std::vector<JudgedCall>& calls, size_t index)
{
    const JudgedCall& call = calls[index];
    const bool ofData = EndsWith(call.path, ".dat");
    const bool ofArt = EndsWith(call.path, ".bmp");
    const auto before = std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(index),
                                      [&](const JudgedCall& other) {
                                          return other.kind == call.kind && EndsWith(other.path, ".dat") == ofData &&
                                                 EndsWith(other.path, ".bmp") == ofArt;
                                      });
    switch (call.kind) {
    case openCall:
    case statOpenCall:
        return ofData ? dataNotOpened : silentFailure;
    case readCall:
        return before == 0 ? headerUnreadable : silentFailure;
    case readAtCall:
    case seekCall:
        return silentFailure;
    case statCall: // names are first looked up as they are, then without regard to case; the second look counts
        return ofArt && before == 1 ? artNotFound : mapOpens;
    default:
        return mapOpens;
    }
}

OpenOutcome OutcomeOfFaults(const std::vector<JudgedCall>& calls, size_t first, FaultSpan span)
{
    for (size_t i = first; i < calls.size(); i++) {
        const bool fails = i == first || span == failAll || (span == failKind && calls[i].kind == calls[first].kind);
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
        map.cells.assign(310 * 150, 0x0420);
        WriteMap(map);
    }

    // Starts the program, opens the map under the judge, opens it again without one if that failed, and quits. The
    // calls of the first open are left to look at.
    std::vector<std::string> Open(CallJudge judge)
    {
        std::vector<std::string> messages;
        HeadlessReset();
        host->start();
        const std::string data = Read("Map101c.dat");
        const std::string art = Read("Map101c.bmp");
        const int descriptors = OpenDescriptors();
        ScriptCall([&, judge] { JudgeSystemCalls(judge); });
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
        Quit();
        Run();
        EXPECT_EQ(OpenDescriptors(), descriptors);
        EXPECT_EQ(Files(), (std::vector<std::string>{"Map101c.bmp", "Map101c.dat"}));
        EXPECT_TRUE(Read("Map101c.dat") == data && Read("Map101c.bmp") == art);
        return messages;
    }

    bool shown = false;

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
    const std::vector<JudgedCall> calls = JudgedCalls();
    std::vector<OpenOutcome> outcomes;
    for (size_t i = 0; i < calls.size(); i++) {
        for (const FaultSpan span : faultSpans) {
            for (const int error : faultErrors) {
                SCOPED_TRACE("call " + std::to_string(calls[i].number) + " of kind " + std::to_string(calls[i].kind) +
                             " on " + calls[i].path + ", error " + std::to_string(error) + ", span " +
                             std::to_string(span));
                const OpenOutcome outcome = OutcomeOfFaults(calls, i, span);
                EXPECT_EQ(Open(FailFrom(calls[i].number, error, span)), MessagesOf(outcome));
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
