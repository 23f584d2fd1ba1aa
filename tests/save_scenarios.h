// Saves of a map from every state that its folder can be in, for the tests that let them fail.
#pragma once

#include "tests/dialog_driver.h"
#include "tests/failing_calls.h"

#include <map>
#include <string>
#include <vector>

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

// What a file system does not have: renaming without replacing, or links besides.
enum FileSystemKind { wholeFileSystem, noExclusiveRename, noLinks };
CallJudge OnFileSystem(FileSystemKind kind, CallJudge judge);

class SaveScenarioTest : public DialogDriver {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Fills the folder anew, and the map in memory counts as opened from it, or as new, and as modified.
    void Prepare(const SaveScenario& scenario);
    // SaveMap without its question. Messages are noted and answered.
    int Save();
    // What holds whatever happened: other files, an old file under another number, handles, the flags of the map.
    void ExpectSound(const SaveScenario& scenario, int status);
    // The data file holds the old or the new content, or its backup the old one; for a map that had no file there is
    // nothing to lose.
    bool WorkIsWhole(const SaveScenario& scenario) const;
    std::string Content(const char* name) const; // empty when there is no such file

    std::string newContent;
    std::vector<std::string> messages;

  private:
    void AnswerMessages(int looks);

    std::string newCells;
    std::string folder; // with a separator at its end
    int openBefore = 0;
};

// What the files of a scenario hold.
extern const std::string oldContent;
extern const std::string olderContent;
extern const std::string otherContent; // of a target under the new number
