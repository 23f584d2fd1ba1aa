// Files, paths, memory blocks and resources of the platform layer, on the real file system and with system calls that
// fail on purpose.
#include "platform/kernel/paths.h"
#include "platform/kernel/system_calls.h"
#include "platform/kernel/test_hooks.h"
#include "platform/platform.h"
#include "tests/failing_calls.h"
#include "tests/map_files.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

constexpr UINT failed = static_cast<UINT>(-1);

HANDLE AsHandle(HFILE file)
{
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file));
}

int CallsOf(CallKind kind)
{
    return static_cast<int>(std::count_if(JudgedCalls().begin(), JudgedCalls().end(),
                                          [=](const JudgedCall& call) { return call.kind == kind; }));
}

class Kernel : public testing::Test, public TemporaryFolder {
  protected:
    void SetUp() override
    {
        LetThrough();
    }

    void TearDown() override
    {
        systemCalls = RealSystemCalls();
    }

    static void LetThrough()
    {
        JudgeSystemCalls([](const JudgedCall&) { return letThrough; });
    }

    HFILE Create() const
    {
        return _lcreat(Path("file").c_str(), 0);
    }

    HFILE Open(const std::string& name = "file", int mode = OF_READ) const
    {
        return _lopen(Path(name).c_str(), mode);
    }

    bool Delete(const std::string& name) const
    {
        return DeleteFileA(Path(name).c_str()) != FALSE;
    }

    bool Move(const std::string& from, const std::string& to) const
    {
        return MoveFileA(Path(from).c_str(), Path(to).c_str()) != FALSE;
    }
};

// ---- names ----

TEST_F(Kernel, OpensAFileByItsNameInAnotherLetterCase)
{
    Write("Map001C.DAT", "upper");
    Write("caf\xC3\xA9.dat", "accent");
    fs::create_directory("Backups");
    const std::pair<const char*, std::string> wanted[] = {
        {"map001c.dat", "upper"}, {"MAP001C.dat", "upper"}, {"CAF\xC3\x89.DAT", "accent"}};
    for (const auto& [name, contents] : wanted) {
        HFILE file = Open(name);
        ASSERT_NE(file, HFILE_ERROR) << name;
        char text[16] = {};
        EXPECT_EQ(_lread(file, text, sizeof text), contents.size());
        EXPECT_EQ(contents, text);
        EXPECT_EQ(_lclose(file), 0);
    }
    EXPECT_EQ(GetFileAttributesA("BACKUPS"), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetFileAttributesA("map001c.dat"), DWORD{FILE_ATTRIBUTE_NORMAL});
    // × and ÷ are no letters, although they lie 0x20 apart like the others.
    EXPECT_FALSE(SameFileName("\xC3\x97", "\xC3\xB7"));

    HFILE file = _lcreat(Path("MAP001C.dat").c_str(), 0);
    ASSERT_GE(file, 3);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_TRUE(Exists("Map001C.DAT") && Read("Map001C.DAT").empty()) << "the file that was there is emptied";
    EXPECT_FALSE(Exists("MAP001C.dat"));
}

TEST_F(Kernel, PrefersTheExactNameAndThenTheFirstInByteOrder)
{
    Write("MAP.dat", "1");
    Write("Map.dat", "2");
    for (const auto& [name, found] : {std::pair{"Map.dat", "Map.dat"}, {"map.dat", "MAP.dat"}, {"other", "other"}}) {
        char resolved[MAX_PATH];
        ASSERT_TRUE(ResolvePath(Path(name).c_str(), resolved, sizeof resolved));
        EXPECT_EQ(resolved, Path(found));
    }
}

TEST_F(Kernel, RefusesNamesThatAreTooLongMissingOrNoPlainFiles)
{
    fs::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const std::string longName(MAX_PATH, 'a');
    const std::pair<std::string, DWORD> cases[] = {
        {Path("none.dat"), ERROR_FILE_NOT_FOUND},
        {Path("nowhere/none.dat"), ERROR_PATH_NOT_FOUND},
        {Path("folder"), ERROR_ACCESS_DENIED},
        {Path("pipe"), ERROR_ACCESS_DENIED},
        {"/dev/zero", ERROR_ACCESS_DENIED},
        {longName, ERROR_FILENAME_EXCED_RANGE},
        {"", ERROR_PATH_NOT_FOUND},
    };
    for (const auto& [path, error] : cases) {
        for (int mode : {OF_READ, OF_READWRITE}) {
            SetLastError(0);
            EXPECT_EQ(_lopen(path.c_str(), mode), HFILE_ERROR) << path << " mode " << mode;
            EXPECT_EQ(GetLastError(), error) << path << " mode " << mode;
        }
    }
    for (const std::string& path : {Path("pipe"), Path("folder"), longName}) {
        EXPECT_EQ(_lcreat(path.c_str(), 0), HFILE_ERROR);
    }
    EXPECT_EQ(GetFileAttributesA(longName.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(Delete("folder"));
    EXPECT_TRUE(Exists("folder"));
}

TEST_F(Kernel, RenamingNeverReplacesAFile)
{
    Write("a.dat", "a");
    Write("B.dat", "b");
    for (const char* target : {"B.dat", "b.DAT"}) {
        EXPECT_FALSE(Move("a.dat", target));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    }
    EXPECT_TRUE(Read("a.dat") == "a" && Read("B.dat") == "b");
    EXPECT_FALSE(Move("none", "c.dat"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_TRUE(Move("A.DAT", "c.dat") && Move("c.dat", "C.dat"));
    EXPECT_EQ(Read("C.dat"), "a");
    EXPECT_FALSE(Exists("c.dat"));

    // Also where the file system knows no rename without replacing, and where it tells nothing of files.
    for (const bool blind : {false, true}) {
        JudgeSystemCalls([=](const JudgedCall& call) {
            return call.kind == renameNoReplaceCall ? EINVAL : call.kind == statCall && blind ? EIO : letThrough;
        });
        Write("a", "new");
        EXPECT_FALSE(Move("a", "B.dat"));
        EXPECT_EQ(Read("B.dat"), "b");
        EXPECT_TRUE(Move("a", "c"));
        EXPECT_TRUE(Read("c") == "new" && !Exists("a"));
        fs::remove("c");
    }
    JudgeSystemCalls([](const JudgedCall& call) {
        return call.kind == renameNoReplaceCall                     ? EINVAL
               : call.kind == unlinkCall || call.kind == renameCall ? EIO
                                                                    : letThrough;
    });
    Write("a", "new");
    EXPECT_FALSE(Move("a", "c"));
    EXPECT_TRUE(Read("a") == "new" && Read("c").empty()) << "never one file under two names";
}

TEST_F(Kernel, DeletesByAnyLetterCaseButNotReadOnlyFiles)
{
    Write("Map_old.dat", "x");
    Write("kept.dat", "x");
    fs::permissions("kept.dat", fs::perms::owner_read);
    EXPECT_TRUE(Delete("MAP_OLD.DAT"));
    EXPECT_FALSE(Exists("Map_old.dat"));
    EXPECT_EQ(GetFileAttributesA("kept.dat"), DWORD{FILE_ATTRIBUTE_READONLY});
    EXPECT_FALSE(Delete("kept.dat"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(Exists("kept.dat"));
    EXPECT_FALSE(Delete("gone.dat"));
}

TEST_F(Kernel, SplitsPathsIntoTheirParts)
{
    const char* const cases[][4] = {
        {"/maps/Map001c.dat", "/maps/", "Map001c", ".dat"},
        {"Map001c.dat", "", "Map001c", ".dat"},
        {"/a.b/name", "/a.b/", "name", ""},
        {"two.dots.bmp", "", "two.dots", ".bmp"},
        {"/", "/", "", ""},
    };
    for (const auto& [path, wantedFolder, wantedName, wantedExtension] : cases) {
        char drive[_MAX_DRIVE], part[_MAX_DIR], name[_MAX_FNAME], extension[_MAX_EXT];
        _splitpath(path, drive, part, name, extension);
        EXPECT_STREQ(drive, "");
        EXPECT_STREQ(part, wantedFolder) << path;
        EXPECT_STREQ(name, wantedName) << path;
        EXPECT_STREQ(extension, wantedExtension) << path;
    }
    char name[_MAX_FNAME];
    _splitpath(std::string(300, 'n').c_str(), nullptr, nullptr, name, nullptr);
    EXPECT_STREQ(name, "") << "a part that does not fit is left empty, not cut";
}

TEST_F(Kernel, TellsTheCurrentFolderAndTheProgramsPath)
{
    ASSERT_TRUE(SetCurrentDirectoryA(folder.c_str()));
    char path[4096];
    const std::string current = fs::current_path();
    EXPECT_EQ(GetCurrentDirectoryA(sizeof path, path), current.size());
    EXPECT_EQ(path, current);
    EXPECT_EQ(GetCurrentDirectoryA(2, path), current.size() + 1) << "the size needed, zero byte included";
    EXPECT_FALSE(SetCurrentDirectoryA(Path("none").c_str()));

    const std::string own = fs::read_symlink("/proc/self/exe");
    EXPECT_EQ(GetModuleFileNameA(nullptr, path, sizeof path), own.size());
    EXPECT_EQ(path, own);
    EXPECT_EQ(GetModuleFileNameA(nullptr, path, 4), 4U);
    EXPECT_EQ(std::string(path), own.substr(0, 3));
}

// ---- reading and writing ----

TEST_F(Kernel, AnyMixOfTransfersReadsAndWritesWhatAPlainFileWould)
{
    std::mt19937 random(7);
    std::string model(200000, 0);
    for (char& byte : model) {
        byte = static_cast<char>(random());
    }
    Write("file", model);
    HFILE file = Open("file", OF_READWRITE);
    ASSERT_NE(file, HFILE_ERROR);
    size_t position = 0;
    for (int step = 0; step < 3000; step++) {
        SCOPED_TRACE(step);
        const bool large = random() % 50 == 0;
        const size_t count = large ? random() % 150000 : random() % 40;
        const unsigned action = random() % 3;
        if (action == 0) {
            std::string bytes(count, 0);
            const size_t expected = position < model.size() ? std::min(count, model.size() - position) : 0;
            ASSERT_EQ(_lread(file, bytes.data(), static_cast<UINT>(count)), expected);
            ASSERT_EQ(bytes.compare(0, expected, model, std::min(position, model.size()), expected), 0);
            position += expected;
        } else if (action == 1) {
            std::string bytes(count, static_cast<char>(step));
            ASSERT_EQ(_lwrite(file, bytes.data(), static_cast<UINT>(count)), count);
            if (count > 0 && position + count > model.size()) {
                model.resize(position + count);
            }
            std::copy(bytes.begin(), bytes.end(), model.begin() + static_cast<ptrdiff_t>(position));
            position += count;
        } else {
            const DWORD target = random() % 250000;
            ASSERT_EQ(SetFilePointer(AsHandle(file), static_cast<LONG>(target), nullptr, FILE_BEGIN), target);
            position = target;
        }
    }
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_TRUE(Read("file") == model);
}

TEST_F(Kernel, SmallTransfersAreGathered)
{
    HFILE file = Create();
    for (int i = 0; i < 100000; i++) {
        ASSERT_EQ(_lwrite(file, "ab", 2), 2U);
    }
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file)));
    EXPECT_LE(CallsOf(writeCall), 4);
    SetFilePointer(AsHandle(file), 0, nullptr, FILE_BEGIN);
    char two[2];
    for (int i = 0; i < 100000; i++) {
        ASSERT_EQ(_lread(file, two, 2), 2U);
    }
    EXPECT_EQ(_lread(file, two, 2), 0U);
    EXPECT_LE(CallsOf(readCall), 10);
    EXPECT_EQ(_lclose(file), 0);
}

TEST_F(Kernel, FlushingSyncsTheFileAndThenItsFolder)
{
    HFILE file = _lcreat("relative.dat", 0);
    ASSERT_NE(file, HFILE_ERROR);
    _lwrite(file, "map", 3);
    EXPECT_EQ(Read("relative.dat"), "");
    fs::current_path("/"); // the folder is the one of the open
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file)));
    EXPECT_EQ(Read("relative.dat"), "map");
    std::vector<bool> foldersSynced;
    for (const JudgedCall& call : JudgedCalls()) {
        if (call.kind == syncCall) {
            foldersSynced.push_back((call.flags & O_DIRECTORY) != 0);
        }
    }
    EXPECT_EQ(foldersSynced, (std::vector<bool>{false, true}));

    JudgeSystemCalls(Refuse(openCall, EACCES));
    EXPECT_TRUE(FlushFileBuffers(AsHandle(file))) << "a folder that cannot be read does not fail it";
    JudgeSystemCalls(Refuse(openCall, EIO));
    EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
    for (const int good : {0, 1}) { // the file's sync fails, and the folder's
        JudgeSystemCalls(Refuse(syncCall, EIO, good));
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
    }
    _lclose(file);
}

TEST_F(Kernel, EveryFailureToWriteIsReported)
{
    const std::string large(100000, 'x');
    for (const auto& [error, expected] :
         {std::pair<int, DWORD>{ENOSPC, ERROR_DISK_FULL}, {EIO, ERROR_WRITE_FAULT}, {EACCES, ERROR_ACCESS_DENIED}}) {
        JudgeSystemCalls(Refuse(writeCall, error));
        HFILE file = Create();
        EXPECT_EQ(_lwrite(file, "gathered", 8), 8U);
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
        EXPECT_EQ(GetLastError(), expected);
        LetThrough();
        EXPECT_EQ(_lwrite(file, "more", 4), failed) << "bytes before these are lost";
        EXPECT_FALSE(FlushFileBuffers(AsHandle(file)));
        EXPECT_EQ(_lclose(file), HFILE_ERROR);

        file = Create();
        _lwrite(file, "gathered", 8);
        JudgeSystemCalls(Refuse(writeCall, error));
        EXPECT_EQ(_lclose(file), HFILE_ERROR);

        JudgeSystemCalls([failure = error](const JudgedCall& call) {
            return call.kind != writeCall ? letThrough : CallsOf(writeCall) == 0 ? halfTransfer : failure;
        });
        file = Create();
        EXPECT_EQ(_lwrite(file, large.data(), 100000), failed) << "half a write is none";
        EXPECT_EQ(GetLastError(), expected);
        _lclose(file);
    }
}

TEST_F(Kernel, ShortAndInterruptedWritesAreContinued)
{
    std::string bytes(300000, 0);
    for (size_t i = 0; i < bytes.size(); i++) {
        bytes[i] = static_cast<char>(i * 7);
    }
    JudgeSystemCalls([](const JudgedCall& call) {
        const int writes = call.kind == writeCall ? CallsOf(writeCall) : 100;
        return writes < 2 ? EINTR : writes < 5 ? halfTransfer : letThrough;
    });
    HFILE file = Create();
    EXPECT_EQ(_lwrite(file, bytes.data(), 300000), 300000U);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_GE(CallsOf(writeCall), 6);
    EXPECT_TRUE(Read("file") == bytes);
}

TEST_F(Kernel, AFailedReadIsToldFromTheEndOfTheFile)
{
    Write("file", "abc");
    HFILE file = Open();
    char bytes[8];
    JudgeSystemCalls(Refuse(readCall, EIO));
    EXPECT_EQ(_lread(file, bytes, 2), failed);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_READ_FAULT});
    LetThrough();
    EXPECT_EQ(_lread(file, bytes, 8), 3U);
    EXPECT_EQ(_lread(file, bytes, 8), 0U);
    EXPECT_EQ(_lwrite(file, "x", 1), failed) << "opened for reading only";
    EXPECT_EQ(SetFilePointer(AsHandle(file), -1, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(_lclose(file), HFILE_ERROR);
    EXPECT_EQ(_lread(file, bytes, 1), failed);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(Kernel, HandlesRunOutAndComeBack)
{
    Write("file", "x");
    for (int round = 0; round < 2; round++) {
        std::vector<HFILE> open;
        for (HFILE file = Open(); file != HFILE_ERROR && open.size() < 1000; file = Open()) {
            open.push_back(file);
        }
        EXPECT_GE(open.size(), 16U);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_TOO_MANY_OPEN_FILES});
        for (HFILE file : open) {
            EXPECT_EQ(_lclose(file), 0);
        }
    }
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
    EXPECT_EQ(static_cast<const BITMAPINFOHEADER*>(header)->biWidth, 683);
    HRSRC menu = FindResourceA(own, "E_WKestrelMainMenu", RT_MENU);
    EXPECT_NE(menu, nullptr);
    EXPECT_EQ(FindResourceA(nullptr, "e_wkestrelMAINMENU", RT_MENU), menu);
    EXPECT_NE(FindResourceA(own, MAKEINTRESOURCEA(128), "wave"), nullptr);
    EXPECT_EQ(FindResourceA(own, "none", RT_MENU), nullptr);
    EXPECT_EQ(FindResourceA(own, MAKEINTRESOURCEA(24965), RT_MENU), nullptr);
    EXPECT_EQ(LoadResource(own, nullptr), nullptr);

    char text[64] = "before";
    EXPECT_EQ(LoadStringA(nullptr, 15018, text, sizeof text), 24);
    EXPECT_STREQ(text, "Memory Allocation Error!");
    EXPECT_EQ(LoadStringA(nullptr, 15018, text, 7), 6);
    EXPECT_STREQ(text, "Memory") << "cut to the buffer";
    EXPECT_EQ(LoadStringA(nullptr, 1, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
}

} // namespace
