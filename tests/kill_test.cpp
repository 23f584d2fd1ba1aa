// A process that is saving is killed before each file-system call, and in the middle of each write. The data file or
// its backup is whole then.
#include "platform/kernel/system_calls.h"
#include "tests/save_scenarios.h"

#include <csignal>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace {

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

class KilledSaves : public SaveScenarioTest {
  protected:
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
};

TEST_F(KilledSaves, LeaveTheWorkWhole)
{
    for (const SaveScenario& scenario : saveScenarios) {
        for (const FileSystemKind system : {wholeFileSystem, noExclusiveRename, noLinks}) {
            for (const DeathPlace place : {beforeCall, inWrite}) {
                int number = 1;
                for (bool killed = true; killed; number++) {
                    SCOPED_TRACE(std::string(scenario.name) + ": call " + std::to_string(number) + ", place " +
                                 std::to_string(place) + ", file system " + std::to_string(system));
                    Prepare(scenario);
                    killed = SaveInChild(OnFileSystem(system, DieAt(number, place)));
                    EXPECT_TRUE(WorkIsWhole(scenario));
                    if (scenario.changedID) {
                        EXPECT_TRUE(Content("Map101c.dat") == oldContent);
                        EXPECT_TRUE(Content("Map101c.dat_old") == olderContent);
                    }
                    if (!killed) {
                        EXPECT_TRUE(Content(scenario.changedID ? "Map102c.dat" : "Map101c.dat") == newContent);
                    }
                    ASSERT_FALSE(HasFailure());
                }
                EXPECT_GT(number, place == beforeCall ? 15 : 2) << "calls of a save";
            }
        }
    }
}

// What a killed save left behind does not keep the next one from its work.
TEST_F(KilledSaves, DoNotDisturbTheNextSave)
{
    const SaveScenario& scenario = saveScenarios[2];
    for (const FileSystemKind system : {wholeFileSystem, noExclusiveRename}) {
        int number = 1;
        for (bool killed = true; killed; number++) {
            Prepare(scenario);
            killed = SaveInChild(OnFileSystem(system, DieAt(number, beforeCall)));
            JudgeSystemCalls(OnFileSystem(system, [](const JudgedCall&) { return letThrough; }));
            EXPECT_EQ(Save(), 0) << "after a kill at call " << number;
            ExpectSound(scenario, 0);
        }
    }
}

} // namespace
