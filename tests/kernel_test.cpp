// Files, paths, memory blocks and resources of the platform layer, on the real file system and with system calls that
// fail on purpose.
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "platform/platform.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

HANDLE AsHandle(HFILE file)
{
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file));
}

// ---- failing system calls ----

struct Fault {
    int callsLeft = -1; // the call after so many fails, and all behind it; -1: none does
    int error = 0;
    int count = 0; // calls made
};

Fault writeFault, readFault, syncFault, renameFault, linkFault;
int shortWrites = 0;
int interruptions = 0;
std::vector<int> syncedFolders; // 1 for a folder, 0 for a file

bool Fails(Fault& fault)
{
    fault.count++;
    if (fault.callsLeft < 0 || fault.count <= fault.callsLeft) {
        return false;
    }
    errno = fault.error;
    return true;
}

ssize_t FaultyWrite(int descriptor, const void* bytes, size_t count)
{
    if (interruptions > 0) {
        interruptions--;
        errno = EINTR;
        return -1;
    }
    if (Fails(writeFault)) {
        return -1;
    }
    if (shortWrites > 0 && count > 1) {
        shortWrites--;
        count /= 2;
    }
    return RealSystemCalls().write(descriptor, bytes, count);
}

ssize_t FaultyRead(int descriptor, void* bytes, size_t count)
{
    return Fails(readFault) ? -1 : RealSystemCalls().read(descriptor, bytes, count);
}

int FaultySync(int descriptor)
{
    struct stat status = {};
    fstat(descriptor, &status);
    syncedFolders.push_back(S_ISDIR(status.st_mode) ? 1 : 0);
    return Fails(syncFault) ? -1 : RealSystemCalls().fsync(descriptor);
}

int FaultyRename(const char* from, const char* to)
{
    return Fails(renameFault) ? -1 : RealSystemCalls().renameNoReplace(from, to);
}

int FaultyLink(const char* from, const char* to)
{
    return Fails(linkFault) ? -1 : RealSystemCalls().link(from, to);
}

class Kernel : public ::testing::Test {
  protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "kernel-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        before = fs::current_path();
        writeFault = readFault = syncFault = renameFault = linkFault = Fault();
        shortWrites = interruptions = 0;
        syncedFolders.clear();
        systemCalls.write = FaultyWrite;
        systemCalls.read = FaultyRead;
        systemCalls.fsync = FaultySync;
        systemCalls.renameNoReplace = FaultyRename;
        systemCalls.link = FaultyLink;
    }

    void TearDown() override
    {
        systemCalls = RealSystemCalls();
        fs::current_path(before);
        fs::remove_all(folder);
    }

    std::string Path(const std::string& name) const
    {
        return (folder / name).string();
    }

    void Put(const std::string& name, const std::string& contents) const
    {
        std::ofstream(Path(name), std::ios::binary) << contents;
    }

    std::string Contents(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    fs::path folder;
    fs::path before;
};

// ---- names ----

TEST_F(Kernel, OpensAFileByItsNameInAnotherLetterCase)
{
    Put("Map001C.DAT", "upper");
    Put("caf\xC3\xA9.dat", "accent");
    fs::create_directory(Path("Backups"));
    const std::array<std::pair<std::string, std::string>, 3> wanted = {{
        {"map001c.dat", "upper"},
        {"MAP001C.dat", "upper"},
        {"CAF\xC3\x89.DAT", "accent"},
    }};
    for (const auto& [name, contents] : wanted) {
        HFILE file = _lopen(Path(name).c_str(), OF_READ);
        ASSERT_NE(file, HFILE_ERROR) << name;
        char text[16] = {};
        EXPECT_EQ(_lread(file, text, sizeof text), contents.size());
        EXPECT_EQ(contents, text);
        EXPECT_EQ(_lclose(file), 0);
    }
    EXPECT_EQ(GetFileAttributesA(Path("BACKUPS").c_str()), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetFileAttributesA(Path("map001c.dat").c_str()), DWORD{FILE_ATTRIBUTE_NORMAL});
    // × and ÷ are no letters, although they lie 0x20 apart like the others.
    EXPECT_FALSE(SameFileName("\xC3\x97", "\xC3\xB7"));
}

TEST_F(Kernel, PrefersTheExactNameAndThenTheFirstInByteOrder)
{
    Put("MAP.dat", "1");
    Put("Map.dat", "2");
    char resolved[MAX_PATH];
    ASSERT_TRUE(ResolvePath(Path("Map.dat").c_str(), resolved, sizeof resolved));
    EXPECT_EQ(resolved, Path("Map.dat"));
    ASSERT_TRUE(ResolvePath(Path("map.dat").c_str(), resolved, sizeof resolved));
    EXPECT_EQ(resolved, Path("MAP.dat"));
    ASSERT_TRUE(ResolvePath(Path("other.dat").c_str(), resolved, sizeof resolved));
    EXPECT_EQ(resolved, Path("other.dat"));
}

TEST_F(Kernel, CreatingUnderAnotherLetterCaseEmptiesTheFileThatIsThere)
{
    Put("Map001c.dat", "old contents");
    HFILE file = _lcreat(Path("MAP001C.DAT").c_str(), 0);
    ASSERT_GE(file, 3);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(Contents("Map001c.dat"), "");
    EXPECT_FALSE(fs::exists(Path("MAP001C.DAT")));
}

TEST_F(Kernel, RefusesNamesThatAreTooLongMissingOrNoPlainFiles)
{
    fs::create_directory(Path("folder"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    const std::string longName(MAX_PATH, 'a');
    struct Case {
        std::string path;
        DWORD error;
    };
    const Case cases[] = {
        {Path("none.dat"), ERROR_FILE_NOT_FOUND},
        {Path("nowhere/none.dat"), ERROR_PATH_NOT_FOUND},
        {Path("folder"), ERROR_ACCESS_DENIED},
        {Path("pipe"), ERROR_ACCESS_DENIED},
        {"/dev/zero", ERROR_ACCESS_DENIED},
        {longName, ERROR_FILENAME_EXCED_RANGE},
        {"", ERROR_PATH_NOT_FOUND},
    };
    for (const Case& entry : cases) {
        for (int mode : {OF_READ, OF_WRITE, OF_READWRITE}) {
            SetLastError(0);
            EXPECT_EQ(_lopen(entry.path.c_str(), mode), HFILE_ERROR) << entry.path << " mode " << mode;
            EXPECT_EQ(GetLastError(), entry.error) << entry.path << " mode " << mode;
        }
    }
    EXPECT_EQ(_lcreat(Path("pipe").c_str(), 0), HFILE_ERROR);
    EXPECT_EQ(_lcreat(Path("folder").c_str(), 0), HFILE_ERROR);
    EXPECT_EQ(_lcreat(longName.c_str(), 0), HFILE_ERROR);
    EXPECT_EQ(GetFileAttributesA(longName.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(DeleteFileA(Path("folder").c_str()));
    EXPECT_TRUE(fs::exists(Path("folder")));
}

TEST_F(Kernel, RenamingNeverReplacesAFile)
{
    Put("a.dat", "a");
    Put("B.dat", "b");
    for (const char* target : {"B.dat", "b.DAT"}) {
        EXPECT_FALSE(MoveFileA(Path("a.dat").c_str(), Path(target).c_str()));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    }
    EXPECT_EQ(Contents("a.dat"), "a");
    EXPECT_EQ(Contents("B.dat"), "b");
    EXPECT_FALSE(MoveFileA(Path("none").c_str(), Path("c.dat").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});

    EXPECT_TRUE(MoveFileA(Path("A.DAT").c_str(), Path("c.dat").c_str()));
    EXPECT_EQ(Contents("c.dat"), "a");
    EXPECT_TRUE(MoveFileA(Path("c.dat").c_str(), Path("C.dat").c_str()));
    EXPECT_TRUE(fs::exists(Path("C.dat")));
    EXPECT_FALSE(fs::exists(Path("c.dat")));
}

TEST_F(Kernel, RenamesWhereTheFileSystemKnowsNoRenameWithoutReplacing)
{
    renameFault = {0, EINVAL, 0};
    for (bool links : {true, false}) {
        if (!links) {
            linkFault = {0, EPERM, 0};
        }
        Put("a", "new");
        Put("b", "kept");
        EXPECT_FALSE(MoveFileA(Path("a").c_str(), Path("b").c_str()));
        EXPECT_EQ(Contents("b"), "kept");
        EXPECT_TRUE(MoveFileA(Path("a").c_str(), Path("c").c_str()));
        EXPECT_EQ(Contents("c"), "new");
        EXPECT_FALSE(fs::exists(Path("a")));
        fs::remove(Path("c"));
    }
}

TEST_F(Kernel, DeletesByAnyLetterCaseButNotReadOnlyFiles)
{
    Put("Map_old.dat", "x");
    Put("kept.dat", "x");
    fs::permissions(Path("kept.dat"), fs::perms::owner_read);
    EXPECT_TRUE(DeleteFileA(Path("MAP_OLD.DAT").c_str()));
    EXPECT_FALSE(fs::exists(Path("Map_old.dat")));
    EXPECT_EQ(GetFileAttributesA(Path("kept.dat").c_str()), DWORD{FILE_ATTRIBUTE_READONLY});
    EXPECT_FALSE(DeleteFileA(Path("kept.dat").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(fs::exists(Path("kept.dat")));
    EXPECT_FALSE(DeleteFileA(Path("gone.dat").c_str()));
}

TEST_F(Kernel, SplitsPathsIntoTheirParts)
{
    struct Case {
        const char* path;
        const char* folder;
        const char* name;
        const char* extension;
    };
    const Case cases[] = {
        {"/maps/Map001c.dat", "/maps/", "Map001c", ".dat"},
        {"Map001c.dat", "", "Map001c", ".dat"},
        {"/a.b/name", "/a.b/", "name", ""},
        {"two.dots.bmp", "", "two.dots", ".bmp"},
        {"/", "/", "", ""},
    };
    for (const Case& entry : cases) {
        char drive[_MAX_DRIVE], part[_MAX_DIR], name[_MAX_FNAME], extension[_MAX_EXT];
        _splitpath(entry.path, drive, part, name, extension);
        EXPECT_STREQ(drive, "");
        EXPECT_STREQ(part, entry.folder) << entry.path;
        EXPECT_STREQ(name, entry.name) << entry.path;
        EXPECT_STREQ(extension, entry.extension) << entry.path;
    }
    char name[_MAX_FNAME];
    _splitpath(std::string(300, 'n').c_str(), nullptr, nullptr, name, nullptr);
    EXPECT_STREQ(name, "") << "a part that does not fit is left empty, not cut";
}

TEST_F(Kernel, TellsTheCurrentFolderAndTheProgramsPath)
{
    ASSERT_TRUE(SetCurrentDirectoryA(folder.c_str()));
    char path[MAX_PATH];
    const std::string current = fs::current_path().string();
    EXPECT_EQ(GetCurrentDirectoryA(sizeof path, path), current.size());
    EXPECT_EQ(path, current);
    EXPECT_EQ(GetCurrentDirectoryA(2, path), current.size() + 1) << "the size needed, zero byte included";
    EXPECT_FALSE(SetCurrentDirectoryA(Path("none").c_str()));

    const std::string own = fs::read_symlink("/proc/self/exe").string();
    char ownPath[4096];
    EXPECT_EQ(GetModuleFileNameA(nullptr, ownPath, sizeof ownPath), own.size());
    EXPECT_EQ(ownPath, own);
    EXPECT_EQ(GetModuleFileNameA(nullptr, ownPath, 4), 4U);
    EXPECT_EQ(std::string(ownPath), own.substr(0, 3));
}

// ---- reading and writing ----

TEST_F(Kernel, AnyMixOfTransfersReadsAndWritesWhatAPlainFileWould)
{
    std::mt19937 random(7);
    std::string model(200000, 0);
    for (char& byte : model) {
        byte = static_cast<char>(random());
    }
    Put("file", model);
    HFILE file = _lopen(Path("file").c_str(), OF_READWRITE);
    ASSERT_NE(file, HFILE_ERROR);
    size_t position = 0;
    for (int step = 0; step < 3000; step++) {
        const bool large = random() % 50 == 0;
        const size_t count = large ? random() % 150000 : random() % 40;
        switch (random() % 3) {
        case 0: {
            std::string bytes(count, 0);
            const size_t expected = position < model.size() ? std::min(count, model.size() - position) : 0;
            ASSERT_EQ(_lread(file, bytes.data(), static_cast<UINT>(count)), expected) << "step " << step;
            ASSERT_EQ(bytes.compare(0, expected, model, std::min(position, model.size()), expected), 0)
                << "step " << step;
            position += expected;
            break;
        }
        case 1: {
            std::string bytes(count, static_cast<char>(step));
            ASSERT_EQ(_lwrite(file, bytes.data(), static_cast<UINT>(count)), count);
            if (count > 0 && position + count > model.size()) {
                model.resize(position + count);
            }
            std::copy(bytes.begin(), bytes.end(), model.begin() + static_cast<ptrdiff_t>(position));
            position += count;
            break;
        }
        default: {
            const DWORD method = random() % 3;
            const LONG target = static_cast<LONG>(random() % 250000);
            const LONG base = method == FILE_BEGIN     ? 0
                              : method == FILE_CURRENT ? static_cast<LONG>(position)
                                                       : static_cast<LONG>(model.size());
            ASSERT_EQ(SetFilePointer(AsHandle(file), target - base, nullptr, method), static_cast<DWORD>(target));
            position = static_cast<size_t>(target);
            break;
        }
        }
    }
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(Contents("file"), model);
}

TEST_F(Kernel, SmallTransfersAreGathered)
{
    HFILE file = _lcreat(Path("file").c_str(), 0);
    for (int i = 0; i < 100000; i++) {
        ASSERT_EQ(_lwrite(file, "ab", 2), 2U);
    }
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file)));
    EXPECT_LE(writeFault.count, 4);
    SetFilePointer(AsHandle(file), 0, nullptr, FILE_BEGIN);
    readFault.count = 0;
    char two[2];
    for (int i = 0; i < 100000; i++) {
        ASSERT_EQ(_lread(file, two, 2), 2U);
    }
    EXPECT_EQ(_lread(file, two, 2), 0U);
    EXPECT_LE(readFault.count, 10);
    EXPECT_EQ(_lclose(file), 0);
}

TEST_F(Kernel, FlushingSyncsTheFileAndThenItsFolder)
{
    fs::current_path(folder);
    HFILE file = _lcreat("relative.dat", 0);
    ASSERT_NE(file, HFILE_ERROR);
    _lwrite(file, "map", 3);
    EXPECT_EQ(Contents("relative.dat"), "");
    fs::current_path("/"); // the folder is the one of the open
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file)));
    EXPECT_EQ(Contents("relative.dat"), "map");
    EXPECT_EQ(syncedFolders, (std::vector<int>{0, 1}));
    EXPECT_EQ(_lclose(file), 0);
}

TEST_F(Kernel, AFolderThatCannotBeReadDoesNotFailAFlush)
{
    HFILE file = _lcreat(Path("file").c_str(), 0);
    _lwrite(file, "map", 3);
    systemCalls.open = [](const char* path, int flags, mode_t mode) -> int {
        if (!(flags & O_DIRECTORY)) {
            return RealSystemCalls().open(path, flags, mode);
        }
        errno = EACCES;
        return -1;
    };
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file)));
    EXPECT_EQ(Contents("file"), "map");
    systemCalls.open = [](const char*, int, mode_t) -> int {
        errno = EIO;
        return -1;
    };
    EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
    systemCalls = RealSystemCalls();
    EXPECT_EQ(_lclose(file), 0);
}

TEST_F(Kernel, EveryFailureToWriteIsReported)
{
    struct Case {
        int error;
        DWORD expected;
    };
    for (const Case& entry :
         {Case{ENOSPC, ERROR_DISK_FULL}, Case{EIO, ERROR_WRITE_FAULT}, Case{EACCES, ERROR_ACCESS_DENIED}}) {
        writeFault = {0, entry.error, 0};
        HFILE file = _lcreat(Path("file").c_str(), 0);
        EXPECT_EQ(_lwrite(file, "gathered", 8), 8U);
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
        EXPECT_EQ(GetLastError(), entry.expected);
        writeFault = Fault();
        EXPECT_EQ(_lwrite(file, "more", 4), static_cast<UINT>(-1)) << "bytes before these are lost";
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
        EXPECT_EQ(_lclose(file), HFILE_ERROR);

        writeFault = {1, entry.error, 0};
        shortWrites = 1;
        const std::string large(100000, 'x');
        file = _lcreat(Path("file").c_str(), 0);
        EXPECT_EQ(_lwrite(file, large.data(), 100000), static_cast<UINT>(-1)) << "half a write is none";
        EXPECT_EQ(GetLastError(), entry.expected);
        writeFault = {0, entry.error, 0};
        file = _lcreat(Path("file").c_str(), 0);
        _lwrite(file, "gathered", 8);
        EXPECT_EQ(_lclose(file), HFILE_ERROR);
        writeFault = Fault();
    }
    for (int failingSync : {0, 1}) { // the file's, the folder's
        syncFault = {failingSync, EIO, 0};
        HFILE file = _lcreat(Path("file").c_str(), 0);
        _lwrite(file, "x", 1);
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
        _lclose(file);
    }
}

TEST_F(Kernel, ShortAndInterruptedWritesAreContinued)
{
    std::string bytes(300000, 0);
    for (size_t i = 0; i < bytes.size(); i++) {
        bytes[i] = static_cast<char>(i * 7);
    }
    shortWrites = 3;
    interruptions = 2;
    HFILE file = _lcreat(Path("file").c_str(), 0);
    EXPECT_EQ(_lwrite(file, bytes.data(), 300000), 300000U);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(shortWrites, 0);
    EXPECT_EQ(interruptions, 0);
    EXPECT_TRUE(Contents("file") == bytes);
}

TEST_F(Kernel, AFailedReadIsToldFromTheEndOfTheFile)
{
    Put("file", "abc");
    HFILE file = _lopen(Path("file").c_str(), OF_READ);
    char bytes[8];
    readFault = {0, EIO, 0};
    EXPECT_EQ(_lread(file, bytes, 2), static_cast<UINT>(-1));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_READ_FAULT});
    readFault = Fault();
    EXPECT_EQ(_lread(file, bytes, 8), 3U);
    EXPECT_EQ(_lread(file, bytes, 8), 0U);
    EXPECT_EQ(_lwrite(file, "x", 1), static_cast<UINT>(-1)) << "opened for reading only";
    EXPECT_EQ(SetFilePointer(AsHandle(file), -1, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(_lclose(file), HFILE_ERROR);
    EXPECT_EQ(_lread(file, bytes, 1), static_cast<UINT>(-1));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(Kernel, HandlesRunOutAndComeBack)
{
    Put("file", "x");
    std::vector<HFILE> open;
    for (HFILE file = 0; file != HFILE_ERROR && open.size() < 1000;) {
        file = _lopen(Path("file").c_str(), OF_READ);
        if (file != HFILE_ERROR) {
            open.push_back(file);
        }
    }
    EXPECT_GE(open.size(), 16U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_TOO_MANY_OPEN_FILES});
    for (HFILE file : open) {
        EXPECT_EQ(_lclose(file), 0);
    }
    HFILE again = _lopen(Path("file").c_str(), OF_READ);
    EXPECT_NE(again, HFILE_ERROR);
    _lclose(again);
}

// ---- memory and resources ----

TEST(KernelMemory, BlocksAreZeroFilledFoundByAddressAndFailOnRequest)
{
    const int before = GlobalBlocksInUse();
    HGLOBAL block = GlobalAlloc(GHND, 5000);
    ASSERT_NE(block, nullptr);
    char* bytes = static_cast<char*>(GlobalLock(block));
    EXPECT_TRUE(std::all_of(bytes, bytes + 5000, [](char byte) { return byte == 0; }));
    EXPECT_EQ(GlobalHandle(bytes), block);
    EXPECT_EQ(GlobalHandle(bytes + 1), nullptr);

    FailAllocationAfter(1);
    HGLOBAL first = GlobalAlloc(GHND, 10);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(GlobalAlloc(GHND, 10), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    HGLOBAL second = GlobalAlloc(GHND, 10);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(GlobalAlloc(GHND, SIZE_T{1} << 60), nullptr);

    EXPECT_FALSE(GlobalUnlock(block));
    for (HGLOBAL entry : {block, first, second}) {
        EXPECT_EQ(GlobalFree(entry), nullptr);
    }
    EXPECT_EQ(GlobalFree(block), block) << "freed already";
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_EQ(GlobalBlocksInUse(), before);
}

TEST(KernelResources, AreFoundByNumberAndByNameWhateverItsLetterCase)
{
    HMODULE own = GetModuleHandleA(nullptr);
    HRSRC bitmap = FindResourceA(own, MAKEINTRESOURCEA(24965), RT_BITMAP);
    ASSERT_NE(bitmap, nullptr);
    const void* header = LockResource(LoadResource(own, bitmap));
    ASSERT_GE(SizeofResource(own, bitmap), sizeof(BITMAPINFOHEADER));
    EXPECT_EQ(static_cast<const BITMAPINFOHEADER*>(header)->biWidth, 683);
    EXPECT_EQ(FindResourceA(own, "#24965", RT_BITMAP), bitmap);

    HRSRC menu = FindResourceA(own, "E_WKestrelMainMenu", RT_MENU);
    EXPECT_NE(menu, nullptr);
    EXPECT_EQ(FindResourceA(nullptr, "e_wkestrelMAINMENU", RT_MENU), menu);
    EXPECT_NE(FindResourceA(own, MAKEINTRESOURCEA(128), "wave"), nullptr);
    EXPECT_EQ(FindResourceA(own, "none", RT_MENU), nullptr);
    EXPECT_EQ(FindResourceA(own, MAKEINTRESOURCEA(24965), RT_MENU), nullptr);
    EXPECT_EQ(LoadResource(own, nullptr), nullptr);
}

TEST(KernelResources, StringsAreFoundByIdAndCutToTheBuffer)
{
    char text[64] = "before";
    EXPECT_EQ(LoadStringA(nullptr, 15018, text, sizeof text), 24);
    EXPECT_STREQ(text, "Memory Allocation Error!");
    EXPECT_EQ(LoadStringA(nullptr, 15018, text, 7), 6);
    EXPECT_STREQ(text, "Memory");
    EXPECT_EQ(LoadStringA(nullptr, 1, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
}

} // namespace
