// The file layer's system calls under a judge: it looks at each call before it is made, may let it fail, may cut a
// transfer short, and may end the process.
#pragma once

#include <functional>
#include <string>
#include <vector>

enum CallKind {
    openCall,
    closeCall,
    readCall,
    readAtCall,
    writeCall,
    seekCall,
    truncateCall,
    syncCall,
    statCall,
    statOpenCall,
    unlinkCall,
    renameCall,
    renameNoReplaceCall,
    changeModeCall,
    changeGroupCall,
    makeFileCall,
    makeFolderCall,
    openFolderCall,
    readFolderCall,
    closeFolderCall,
    lockCall,
};

struct JudgedCall {
    int number; // from 1
    CallKind kind;
    std::string path; // for a call on an open file, the one that it was opened with
    int flags;        // of that open
    bool refused;
};

constexpr int letThrough = 0;
constexpr int halfTransfer = -1; // a read or write moves half of its bytes; other calls go through
typedef std::function<int(const JudgedCall&)> CallJudge; // letThrough, halfTransfer, or the errno to fail with

// From here on, until RealSystemCalls() are put back. A close that is refused closes all the same; syncs that are let
// through are not carried out, since no test pulls the plug.
void JudgeSystemCalls(CallJudge judge);
const std::vector<JudgedCall>& JudgedCalls(); // since then
bool EndsWith(const std::string& text, const std::string& ending);
int OpenDescriptors(); // of the process

// Lets from the given call on fail: that one alone, all of its kind, or all.
CallJudge Refuse(CallKind kind, int error, int after = 0); // those of a kind, but for the first few
bool FailTogether(CallKind first, CallKind second);        // those of a kind; both ways of looking at a file are one
enum FaultSpan { failOnce, failKind, failAll };
CallJudge FailFrom(int number, int error, FaultSpan span);
