#include "tests/failing_calls.h"

#include "platform/kernel/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

namespace {

CallJudge judgeInForce;
std::vector<JudgedCall> judgedCalls;
std::map<int, std::pair<std::string, int>> openedWith;
std::map<DIR*, std::string> foldersOpenedWith;

int Judge(CallKind kind, const std::string& path, int flags)
{
    // What rescue copies ask for is none of the save's calls.
    if (const char* state = getenv("XDG_STATE_HOME"); state != nullptr && path.starts_with(state)) {
        return letThrough;
    }
    JudgedCall call = {static_cast<int>(judgedCalls.size()) + 1, kind, path, flags, false};
    const int verdict = judgeInForce(call);
    call.refused = verdict > 0;
    judgedCalls.push_back(call);
    if (verdict > 0) {
        errno = verdict;
    }
    return verdict;
}

int JudgeOpenFile(CallKind kind, int descriptor)
{
    const auto& [path, flags] = openedWith[descriptor];
    return Judge(kind, path, flags);
}

size_t Share(int verdict, size_t count)
{
    return verdict == halfTransfer ? (count + 1) / 2 : count;
}

int Open(const char* path, int flags, mode_t mode)
{
    if (Judge(openCall, path, flags) > 0) {
        return -1;
    }
    const int descriptor = RealSystemCalls().open(path, flags, mode);
    openedWith[descriptor] = {path, flags};
    return descriptor;
}

int Close(int descriptor)
{
    const int verdict = JudgeOpenFile(closeCall, descriptor);
    const int result = RealSystemCalls().close(descriptor);
    if (verdict > 0) {
        errno = verdict;
        return -1;
    }
    return result;
}

ssize_t Read(int descriptor, void* buffer, size_t count)
{
    const int verdict = JudgeOpenFile(readCall, descriptor);
    return verdict > 0 ? -1 : RealSystemCalls().read(descriptor, buffer, Share(verdict, count));
}

ssize_t ReadAt(int descriptor, void* buffer, size_t count, off_t offset)
{
    const int verdict = JudgeOpenFile(readAtCall, descriptor);
    return verdict > 0 ? -1 : RealSystemCalls().readAt(descriptor, buffer, Share(verdict, count), offset);
}

ssize_t Write(int descriptor, const void* buffer, size_t count)
{
    const int verdict = JudgeOpenFile(writeCall, descriptor);
    return verdict > 0 ? -1 : RealSystemCalls().write(descriptor, buffer, Share(verdict, count));
}

off_t Seek(int descriptor, off_t offset, int from)
{
    return JudgeOpenFile(seekCall, descriptor) > 0 ? -1 : RealSystemCalls().seek(descriptor, offset, from);
}

int Truncate(int descriptor, off_t size)
{
    return JudgeOpenFile(truncateCall, descriptor) > 0 ? -1 : RealSystemCalls().truncate(descriptor, size);
}

int Sync(int descriptor)
{
    return JudgeOpenFile(syncCall, descriptor) > 0 ? -1 : 0;
}

int Stat(const char* path, struct stat* status)
{
    return Judge(statCall, path, 0) > 0 ? -1 : RealSystemCalls().stat(path, status);
}

int StatOpen(int descriptor, struct stat* status)
{
    return JudgeOpenFile(statOpenCall, descriptor) > 0 ? -1 : RealSystemCalls().statOpen(descriptor, status);
}

int Unlink(const char* path)
{
    return Judge(unlinkCall, path, 0) > 0 ? -1 : RealSystemCalls().unlink(path);
}

int Rename(const char* from, const char* to)
{
    return Judge(renameCall, from, 0) > 0 ? -1 : RealSystemCalls().rename(from, to);
}

int RenameNoReplace(const char* from, const char* to)
{
    return Judge(renameNoReplaceCall, from, 0) > 0 ? -1 : RealSystemCalls().renameNoReplace(from, to);
}

int ChangeMode(const char* path, mode_t mode)
{
    return Judge(changeModeCall, path, 0) > 0 ? -1 : RealSystemCalls().changeMode(path, mode);
}

int ChangeGroup(const char* path, gid_t group)
{
    return Judge(changeGroupCall, path, 0) > 0 ? -1 : RealSystemCalls().changeGroup(path, group);
}

int MakeFile(const char* path, mode_t mode)
{
    return Judge(makeFileCall, path, 0) > 0 ? -1 : RealSystemCalls().makeFile(path, mode);
}

int MakeFolder(const char* path, mode_t mode)
{
    return Judge(makeFolderCall, path, 0) > 0 ? -1 : RealSystemCalls().makeFolder(path, mode);
}

DIR* OpenFolder(const char* path)
{
    DIR* folder = Judge(openFolderCall, path, 0) > 0 ? nullptr : RealSystemCalls().openFolder(path);
    foldersOpenedWith[folder] = path;
    return folder;
}

dirent* ReadFolder(DIR* folder)
{
    return Judge(readFolderCall, foldersOpenedWith[folder], 0) > 0 ? nullptr : RealSystemCalls().readFolder(folder);
}

int CloseFolder(DIR* folder)
{
    Judge(closeFolderCall, foldersOpenedWith[folder], 0); // nobody asks what became of it
    return RealSystemCalls().closeFolder(folder);
}

int Lock(int descriptor, int operation)
{
    return JudgeOpenFile(lockCall, descriptor) > 0 ? -1 : RealSystemCalls().lock(descriptor, operation);
}

} // namespace

void JudgeSystemCalls(CallJudge judge)
{
    judgeInForce = std::move(judge);
    judgedCalls.clear();
    openedWith.clear();
    systemCalls = {Open,
                   Close,
                   Read,
                   ReadAt,
                   Write,
                   Seek,
                   Truncate,
                   Sync,
                   Stat,
                   StatOpen,
                   Unlink,
                   Rename,
                   RenameNoReplace,
                   ChangeMode,
                   ChangeGroup,
                   MakeFile,
                   MakeFolder,
                   OpenFolder,
                   ReadFolder,
                   CloseFolder,
                   Lock,
                   RealSystemCalls().allocate,
                   RealSystemCalls().mapPages};
}

const std::vector<JudgedCall>& JudgedCalls()
{
    return judgedCalls;
}

bool EndsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

int OpenDescriptors()
{
    // The lock of the rescue copies stays until the program ends.
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<int>(std::count_if(begin(entries), end(entries), [](const auto& entry) {
        std::error_code gone;
        return std::filesystem::read_symlink(entry, gone).string().find(".lock") == std::string::npos;
    }));
}

CallJudge Refuse(CallKind kind, int error, int after)
{
    return [=, left = after](const JudgedCall& call) mutable {
        return call.kind == kind && left-- <= 0 ? error : letThrough;
    };
}

bool FailTogether(CallKind first, CallKind second)
{
    const auto looks = [](CallKind kind) { return kind == statCall || kind == statOpenCall; };
    return first == second || (looks(first) && looks(second));
}

CallJudge FailFrom(int number, int error, FaultSpan span)
{
    auto kind = std::make_shared<CallKind>(openCall); // of the first call that failed
    return [=](const JudgedCall& call) {
        if (call.number < number) {
            return letThrough;
        }
        if (call.number == number) {
            *kind = call.kind;
        }
        const bool fails =
            call.number == number || span == failAll || (span == failKind && FailTogether(call.kind, *kind));
        return fails ? error : letThrough;
    };
}
