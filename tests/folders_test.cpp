// Folders, searches, replacing renames, exclusive opens and times of the platform layer.
#include "platform/kernel/system_calls.h"
#include "platform/platform.h"
#include "tests/failing_calls.h"
#include "tests/map_files.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Folders : public testing::Test, public TemporaryFolder {
  protected:
    void SetUp() override
    {
        for (const char* variable : {"HOME", "XDG_STATE_HOME", "TZ"}) {
            const char* value = getenv(variable);
            environment[variable] = {value != nullptr, value != nullptr ? value : ""};
        }
    }

    void TearDown() override
    {
        systemCalls = RealSystemCalls();
        for (const auto& [variable, value] : environment) {
            SetVariable(variable, value.first ? value.second.c_str() : nullptr);
        }
        tzset();
    }

    static void SetVariable(const std::string& variable, const char* value)
    {
        if (value != nullptr) {
            setenv(variable.c_str(), value, 1);
        } else {
            unsetenv(variable.c_str());
        }
    }

    // The names that a search finds, sorted, then the error that ended it.
    std::string Find(const std::string& pattern) const
    {
        std::vector<std::string> names;
        WIN32_FIND_DATAA data = {};
        const HANDLE search = FindFirstFileA(Path(pattern).c_str(), &data);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                names.emplace_back(data.cFileName);
            } while (FindNextFileA(search, &data));
        }
        std::string result = std::to_string(GetLastError());
        EXPECT_EQ(FindClose(search), search != INVALID_HANDLE_VALUE ? TRUE : FALSE);
        std::sort(names.rbegin(), names.rend());
        for (const std::string& name : names) {
            result = name + " " + result;
        }
        return result;
    }

    std::map<std::string, std::pair<bool, std::string>> environment;
};

TEST_F(Folders, AreMadeForTheUserAlone)
{
    Write("file", "");
    const std::pair<const char*, DWORD> rows[] = {
        {"new", ERROR_SUCCESS},         {"new", ERROR_ALREADY_EXISTS},         {"NEW", ERROR_ALREADY_EXISTS},
        {"file", ERROR_ALREADY_EXISTS}, {"missing/new", ERROR_PATH_NOT_FOUND}, {"file/new", ERROR_PATH_NOT_FOUND},
        {"new/inner", ERROR_SUCCESS},
    };
    for (const auto& [name, error] : rows) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(CreateDirectoryA(Path(name).c_str(), nullptr) != FALSE, error == ERROR_SUCCESS) << name;
        EXPECT_EQ(GetLastError(), error) << name;
    }
    EXPECT_EQ(fs::status(Path("new")).permissions(), fs::perms::owner_all);
    SECURITY_ATTRIBUTES attributes = {};
    EXPECT_FALSE(CreateDirectoryA(Path("other").c_str(), &attributes));
    EXPECT_FALSE(fs::exists(Path("other")));
}

TEST_F(Folders, TheStateFolderComesFromTheEnvironment)
{
    const std::string state = Path("state");
    const std::string stateAndSlash = state + "/";
    const std::string home = Path("home");
    const std::string longPath = Path(std::string(MAX_PATH, 'x'));
    Write("file", "");
    struct {
        const char* state;
        const char* home;
        int csidl;
        HRESULT result;
        std::string path;
    } rows[] = {
        {state.c_str(), home.c_str(), CSIDL_LOCAL_APPDATA, E_FAIL, ""}, // not there yet
        {stateAndSlash.c_str(), home.c_str(), CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, S_OK, state},
        {state.c_str(), nullptr, CSIDL_LOCAL_APPDATA, S_OK, state},
        {"relative", home.c_str(), CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, S_OK, home + "/.local/state"},
        {nullptr, home.c_str(), CSIDL_LOCAL_APPDATA, S_OK, home + "/.local/state"},
        {"", nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, E_FAIL, ""},
        {nullptr, "relative", CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, E_FAIL, ""},
        {longPath.c_str(), nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, E_FAIL, ""},
        {state.c_str(), home.c_str(), 0x001A, E_INVALIDARG, ""},
    };
    for (const auto& row : rows) {
        SetVariable("XDG_STATE_HOME", row.state);
        SetVariable("HOME", row.home);
        char path[MAX_PATH] = "left over";
        EXPECT_EQ(SHGetFolderPathA(nullptr, row.csidl, nullptr, SHGFP_TYPE_CURRENT, path), row.result) << row.path;
        EXPECT_EQ(path, row.path);
    }
    SetVariable("XDG_STATE_HOME", Path("file/state").c_str());
    char path[MAX_PATH];
    EXPECT_EQ(SHGetFolderPathA(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, path), E_FAIL);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS)) << "a file stands where the folder belongs";
}

TEST_F(Folders, SearchesMatchNamesAsWindowsDoes)
{
    for (const char* name : {"Map101c.dat", "map102.DAT", "Map101c.bmp", "été.txt", "a", "ab"}) {
        Write(name, "");
    }
    fs::create_directory(Path("inner"));
    fs::create_symlink("nowhere", Path("dangling"));
    const std::pair<const char*, const char*> rows[] = {
        {"*.dat", "Map101c.dat map102.DAT 18"},
        {"MAP???C.*", "Map101c.bmp Map101c.dat 18"},
        {"m*1*.d*t", "Map101c.dat map102.DAT 18"},
        {"*", "Map101c.bmp Map101c.dat a ab inner map102.DAT été.txt 18"},
        {"?", "a 18"},
        {"?T?.txt", "été.txt 18"},
        {"*É.txt", "été.txt 18"},
        {"a?*", "ab 18"},
        {"*.none", "2"},
        {"MAP101C.dat", "Map101c.dat 18"},
        {"inner", "inner 18"},
        {"none", "2"},
        {"dangling", "2"},
        {"", "2"},
        {"missing/*", "3"},
        {"missing/none", "3"},
        {"a/*", "3"},
    };
    for (const auto& [pattern, found] : rows) {
        EXPECT_EQ(Find(pattern), found) << pattern;
    }
}

TEST_F(Folders, ASearchTellsSizeTimeAndKind)
{
    struct {
        const char* name;
        off_t size;
        timespec time;
        uint64_t units; // of 100 nanoseconds since 1601
        DWORD attributes;
    } rows[] = {
        {"small", 5, {0, 0}, 116444736000000000, FILE_ATTRIBUTE_NORMAL},
        {"large", 5'000'000'000, {1'700'000'000, 123'456'789}, 133444736001234567, FILE_ATTRIBUTE_READONLY},
        {"old", 0, {-1, 999'999'999}, 116444735999999999, FILE_ATTRIBUTE_NORMAL},
    };
    for (const auto& row : rows) {
        Write(row.name, "");
        ASSERT_EQ(truncate(Path(row.name).c_str(), row.size), 0);
        const timespec times[] = {{0, UTIME_OMIT}, row.time};
        ASSERT_EQ(utimensat(AT_FDCWD, Path(row.name).c_str(), times, 0), 0);
        if (row.attributes == FILE_ATTRIBUTE_READONLY) {
            chmod(Path(row.name).c_str(), 0444);
        }
        for (const std::string& pattern : {std::string(row.name), std::string(row.name) + "*"}) {
            WIN32_FIND_DATAA data = {};
            const HANDLE search = FindFirstFileA(Path(pattern).c_str(), &data);
            ASSERT_NE(search, INVALID_HANDLE_VALUE) << pattern;
            FindClose(search);
            const auto Joined = [](DWORD high, DWORD low) { return static_cast<uint64_t>(high) << 32 | low; };
            EXPECT_EQ(Joined(data.nFileSizeHigh, data.nFileSizeLow), static_cast<uint64_t>(row.size)) << pattern;
            EXPECT_EQ(Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime), row.units)
                << pattern;
            EXPECT_EQ(data.dwFileAttributes, row.attributes) << pattern;
        }
    }
}

TEST_F(Folders, SearchesRunOutAndLeaveNothingOpen)
{
    Write("a", "");
    const int before = OpenDescriptors();
    std::vector<HANDLE> searches;
    WIN32_FIND_DATAA data = {};
    HANDLE search = nullptr;
    while ((search = FindFirstFileA(Path("*").c_str(), &data)) != INVALID_HANDLE_VALUE && searches.size() < 100) {
        searches.push_back(search);
    }
    EXPECT_EQ(searches.size(), 16u);
    for (const HANDLE open : searches) {
        EXPECT_TRUE(FindClose(open));
        EXPECT_FALSE(FindClose(open));
    }
    EXPECT_EQ(Find("*"), "a 18");
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(Folders, ARenameReplacesTheFileButNoFolderAndNoReadOnlyFile)
{
    for (const char* name : {"from", "plain", "fixed"}) {
        Write(name, name);
    }
    fs::create_directory(Path("folder"));
    chmod(Path("fixed").c_str(), 0444);
    struct {
        const char* from;
        const char* to;
        DWORD flags;
        DWORD error;
    } rows[] = {
        {"from", "plain", 0, ERROR_ALREADY_EXISTS},
        {"from", "fixed", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED},
        {"from", "folder", MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED},
        {"from", "missing/to", MOVEFILE_REPLACE_EXISTING, ERROR_PATH_NOT_FOUND},
        {"missing", "plain", MOVEFILE_REPLACE_EXISTING, ERROR_FILE_NOT_FOUND},
        {"missing/from", "plain", MOVEFILE_REPLACE_EXISTING, ERROR_PATH_NOT_FOUND},
        {"from", "plain", MOVEFILE_REPLACE_EXISTING | 2, ERROR_INVALID_PARAMETER},
        {"from", "PLAIN", MOVEFILE_REPLACE_EXISTING, ERROR_SUCCESS},
        {"plain", "Plain", MOVEFILE_REPLACE_EXISTING, ERROR_SUCCESS},
        {"Plain", "new", MOVEFILE_REPLACE_EXISTING, ERROR_SUCCESS},
    };
    for (const auto& row : rows) {
        SetLastError(ERROR_SUCCESS);
        const BOOL moved = MoveFileExA(Path(row.from).c_str(), Path(row.to).c_str(), row.flags);
        EXPECT_EQ(moved != FALSE, row.error == ERROR_SUCCESS) << row.from << " to " << row.to;
        EXPECT_EQ(GetLastError(), row.error) << row.from << " to " << row.to;
    }
    EXPECT_EQ(Find("*"), "fixed folder new 18");
    EXPECT_EQ(Read("new") + Read("fixed"), "fromfixed");
}

constexpr int exclusive = OF_READWRITE | OF_SHARE_EXCLUSIVE;

// Runs the work in a process of its own; returns when it has closed the descriptor that it is given.
pid_t StartProcess(const std::function<void(int)>& work)
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        work(ends[1]);
        _exit(1);
    }
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 0);
    close(ends[0]);
    return child;
}

void EndProcess(pid_t child)
{
    kill(child, SIGKILL);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(Folders, AnExclusiveOpenHoldsItsFileUntilItsEnd)
{
    Write("file", "");
    const std::string path = Path("file");
    const auto OpensExclusively = [&] {
        SetLastError(ERROR_SUCCESS);
        const HFILE file = _lopen(path.c_str(), exclusive);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(file == HFILE_ERROR ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS));
        return file != HFILE_ERROR && _lclose(file) == 0;
    };
    EXPECT_TRUE(OpensExclusively());

    const HFILE holder = _lopen(path.c_str(), exclusive);
    EXPECT_FALSE(OpensExclusively());
    const HFILE plain = _lopen(path.c_str(), OF_READ);
    EXPECT_NE(plain, HFILE_ERROR);
    _lclose(plain);
    EXPECT_FALSE(OpensExclusively());
    const pid_t started = StartProcess([](int) { execlp("sleep", "sleep", "60", static_cast<char*>(nullptr)); });
    _lclose(holder);
    EXPECT_TRUE(OpensExclusively()) << "a program that was started holds the file";
    EndProcess(started);

    const pid_t other = StartProcess([&](int ready) {
        _lopen(path.c_str(), exclusive);
        close(ready);
        pause();
    });
    EXPECT_FALSE(OpensExclusively());
    EndProcess(other);
    EXPECT_TRUE(OpensExclusively());
}

TEST_F(Folders, FailingSystemCallsAreToldAndInterruptedOnesMadeAgain)
{
    const std::string inner = Path("inner");
    const auto Change = [&] {
        const bool made = CreateDirectoryA(inner.c_str(), nullptr);
        const HFILE file = _lopen(Path("from").c_str(), exclusive);
        const bool held = file != HFILE_ERROR && _lclose(file) == 0;
        return MoveFileExA(Path("from").c_str(), Path("to").c_str(), MOVEFILE_REPLACE_EXISTING) && made && held;
    };
    const auto Search = [&] {
        WIN32_FIND_DATAA data = {};
        const HANDLE search = FindFirstFileA(Path("t*").c_str(), &data);
        const bool ended = !FindNextFileA(search, &data) && GetLastError() == ERROR_NO_MORE_FILES;
        return FindClose(search) && ended;
    };
    const std::set<CallKind> mayFail = {statCall, openFolderCall, readFolderCall, closeFolderCall};
    const std::tuple<std::function<bool()>, std::set<CallKind>, int> rows[] = {
        {Change, mayFail, 10},
        {Search, {closeFolderCall}, 5},
    };
    const int before = OpenDescriptors();
    for (const int error : {EINTR, EIO}) {
        for (const auto& [work, harmless, fewestCalls] : rows) {
            int number = 0;
            for (bool reached = true; reached;) {
                number++;
                fs::remove(inner);
                Write("from", "from");
                Write("to", "to");
                JudgeSystemCalls(FailFrom(number, error, failOnce));
                const bool good = work();
                reached = JudgedCalls().size() >= static_cast<size_t>(number);
                const CallKind kind = reached ? JudgedCalls()[static_cast<size_t>(number) - 1].kind : statCall;
                systemCalls = RealSystemCalls();
                EXPECT_EQ(good, error == EINTR || !reached || harmless.count(kind) > 0)
                    << "call " << number << ", kind " << kind << ", error " << error;
                EXPECT_EQ(OpenDescriptors(), before) << "call " << number;
            }
            EXPECT_GE(number, fewestCalls);
        }
    }
}

TEST_F(Folders, FileTimesBecomeDates)
{
    const auto At = [](uint64_t units) {
        return FILETIME{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    };
    struct {
        uint64_t units;
        std::array<WORD, 8> parts; // year, month, day of the week, day, hour, minute, second, millisecond
    } rows[] = {
        {0, {1601, 1, 1, 1, 0, 0, 0, 0}},
        {116444736000000000, {1970, 1, 4, 1, 0, 0, 0, 0}},
        {133537247998765432, {2024, 2, 4, 29, 23, 59, 59, 876}},
    };
    for (const auto& row : rows) {
        const FILETIME time = At(row.units);
        SYSTEMTIME date = {};
        ASSERT_TRUE(FileTimeToSystemTime(&time, &date));
        const std::array<WORD, 8> parts = {date.wYear, date.wMonth,  date.wDayOfWeek, date.wDay,
                                           date.wHour, date.wMinute, date.wSecond,    date.wMilliseconds};
        EXPECT_EQ(parts, row.parts) << row.units;
    }
    const FILETIME tooLate = At(uint64_t{1} << 63);
    SYSTEMTIME date = {};
    EXPECT_FALSE(FileTimeToSystemTime(&tooLate, &date));

    SetVariable("TZ", "EAST-5:30");
    tzset();
    const FILETIME begin = At(116444736000000000);
    FILETIME local = {};
    ASSERT_TRUE(FileTimeToLocalFileTime(&begin, &local));
    ASSERT_TRUE(FileTimeToSystemTime(&local, &date));
    EXPECT_EQ(date.wHour * 60 + date.wMinute, 5 * 60 + 30);

    // A file that is written now has the local clock's time, a few seconds apart at most.
    Write("now", "");
    WIN32_FIND_DATAA data = {};
    FindClose(FindFirstFileA(Path("now").c_str(), &data));
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    FileTimeToLocalFileTime(&data.ftLastWriteTime, &local);
    FileTimeToSystemTime(&local, &date);
    const auto SecondOfHour = [](const SYSTEMTIME& time) { return time.wMinute * 60 + time.wSecond; };
    EXPECT_LT((SecondOfHour(now) - SecondOfHour(date) + 3600) % 3600, 30);
    EXPECT_EQ(now.wYear, date.wYear);
}

} // namespace
