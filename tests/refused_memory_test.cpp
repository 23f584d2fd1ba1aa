// Sessions in which the system refuses memory, one allocation after the other: nothing is lost, and nothing breaks.
#include "platform/kernel/heap.h"
#include "platform/kernel/system_calls.h"
#include "tests/editor_session.h"

#include <cerrno>
#include <malloc.h>
#include <new>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr size_t smallestRefused = 1024;

struct Refusal {
    bool armed = false;
    int first = 0;        // the number of the first allocation that is refused, from 1
    bool forGood = false; // and all behind it, until what is given back makes room
    bool noReserve = false;
    int seen = 0;
    int64_t room = 0;
    int exempt = 0; // the test's own side is at work
};

Refusal refusal;

bool IsRefused(size_t size)
{
    if (!refusal.armed || refusal.exempt > 0 || size < smallestRefused) {
        return false;
    }
    ++refusal.seen;
    if (!refusal.forGood || refusal.seen < refusal.first) {
        return refusal.seen == refusal.first;
    }
    if (static_cast<int64_t>(size) > refusal.room) {
        return true;
    }
    refusal.room -= static_cast<int64_t>(size);
    return false;
}

void* Allocate(size_t count, size_t size)
{
    const bool taken = refusal.armed && refusal.noReserve && size == memoryReserveSize;
    return taken || IsRefused(count * size) ? nullptr : RealSystemCalls().allocate(count, size);
}

void* MapPages(size_t size)
{
    errno = ENOMEM;
    return IsRefused(size) ? MAP_FAILED : RealSystemCalls().mapPages(size);
}

// The headless host's own memory, and that of the script, which it plays, is never refused.
template <auto function>
struct Exempt;

template <typename Result, typename... Arguments, Result (*Host::*function)(Arguments...)>
struct Exempt<function> {
    static Result Call(Arguments... arguments)
    {
        struct Exemption {
            Exemption()
            {
                ++refusal.exempt;
            }
            ~Exemption()
            {
                --refusal.exempt;
            }
        } exemption;
        return (headlessHost.*function)(arguments...);
    }
};

template <auto... functions>
Host HostWithMemory()
{
    Host made = headlessHost;
    ((made.*functions = Exempt<functions>::Call), ...);
    return made;
}

const Host hostWithMemory = HostWithMemory<&Host::pump, &Host::nextEvent, &Host::createWindow, &Host::placeWindow,
                                           &Host::showWindow, &Host::setTitle, &Host::setIcons, &Host::setPicture,
                                           &Host::present, &Host::buildMenu, &Host::createScrollBar, &Host::setCursor,
                                           &Host::showOutline, &Host::chooseFile, &Host::playSound>();

enum TrialStatus { trialPassed, trialFailed = 2, nothingRefused }; // 1: the program ended itself

class RefusedMemory : public EditorSession {
  protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        host = &hostWithMemory;
    }

    // Answers what came up instead of, or besides, what was asked for.
    static void AnswerAlerts()
    {
        for (int i = 0; i < 3; ++i) {
            ThenCheck([] {
                if (TextsOf(TopDialog()) == MessageText(memoryErrorText)) {
                    ScriptButton("Continue");
                } else if (TopDialog() != nullptr && !shell.featuresPaletteOpen) {
                    ScriptKey(VK_RETURN);
                }
            });
        }
    }

    static void Paint(int h, int v)
    {
        ScriptControl('t');
        ThenCheck([=] {
            if (shell.featuresPaletteOpen) {
                const HostRect& place = HeadlessPopup()->client;
                ScriptDrag({{place.left + 150, place.top + 8}, {950, 108}});
                ClickItem(woodsTool);
                DragOnMap({{h, v}, {h + 100, v}});
                ClosePalette();
            }
        });
        AnswerAlerts();
    }

    static void Save()
    {
        ScriptControl('s');
        ThenCheck([] {
            if (TopDialog() != nullptr) {
                ScriptButton(TextsOf(TopDialog()) == MessageText(memoryErrorText) ? "Continue" : "Yes");
            }
        });
        AnswerAlerts();
    }

    void Play()
    {
        ThenCheck([] {
            refusal.armed = true;
            if (refusal.noReserve) {
                GiveUpMemoryReserve();
            }
        });
        OpenMap();
        AnswerAlerts();
        Paint(105, 105);
        ScriptResize(700, 500);
        Paint(105, 205);
        Save();
        ThenCheck([this] {
            refusal.armed = false;
            KeepMemoryReserve();
            const std::string file = Read("Map101c.dat");
            EXPECT_EQ(file.size(), original.size()) << "neither the old map nor a new one";
            if (!shell.mapShown) {
                OpenMap();
                AnswerAlerts();
            }
        });
        Paint(105, 305);
        ScriptResize(650, 480);
        Save();
        ThenCheck([this] {
            EXPECT_TRUE(shell.mapShown);
            MapFile expected(101, 600, 400);
            for (const int x : {10, 20}) {
                expected.Cell(x, 30) = 0x40;
                for (const int y : {10, 20}) { // painted when there was a palette to paint with
                    expected.Cell(x, y) = CellWord(10, y);
                }
            }
            EXPECT_TRUE(Read("Map101c.dat") == expected.Bytes()) << MarkedCells();
            ExpectArtOutsideMarks();
        });
        QuitAndRun();
    }

    static void ExpectArtOutsideMarks()
    {
        EXPECT_EQ(SeenAt(305, 55), ArtColour(305, 55));
        EXPECT_EQ(SeenAt(5, 355), ArtColour(5, 355));
    }

    // In a process of its own, whatever becomes of it.
    int Try(int number, const Refusal& how)
    {
        WriteMap(MapFile(101, 600, 400));
        original = Read("Map101c.dat");
        const pid_t child = fork();
        if (child == 0) {
            refusal = how;
            refusal.first = number;
            systemCalls.allocate = Allocate;
            systemCalls.mapPages = MapPages;
            [this]() noexcept { Play(); }(); // what is thrown ends the process, as it does the program
            _exit(HasFailure() ? trialFailed : refusal.seen < number ? nothingRefused : trialPassed);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string original;
};

TEST_F(RefusedMemory, LosesNothingWhicheverAllocationItIs)
{
    int trials = 0;
    for (const Refusal& how : {Refusal{}, Refusal{.forGood = true}, Refusal{.noReserve = true}}) {
        int status = trialPassed;
        for (int number = 1; status != nothingRefused && number < 1000; ++number) {
            status = Try(number, how);
            ASSERT_TRUE(status == trialPassed || status == nothingRefused)
                << "allocation " << number << (how.forGood ? " and all behind it" : "") << ": status " << status;
            ++trials;
        }
    }
    EXPECT_GT(trials, 30);
}

TEST_F(RefusedMemory, WhereItCannotBeHadTheWorkIsKeptBeforeTheEnd)
{
    WriteMap(MapFile(101, 600, 400));
    const auto paintAndRunOut = [this]() noexcept {
        OpenMap();
        Paint(105, 105);
        ThenCheck([] {
            GiveUpMemoryReserve();
            throw std::bad_alloc();
        });
        QuitAndRun();
    };
    EXPECT_EXIT(paintAndRunOut(), testing::ExitedWithCode(EXIT_FAILURE), "no memory left");
    OpenMap();
    ClickButton("Yes");
    ThenCheck([] { EXPECT_EQ(MarkedCells(), "10,10=0040 20,10=0040"); });
    QuitAndRun();
}

} // namespace

// The heap of the whole test program, so that a test can refuse its memory.
void* operator new(size_t size)
{
    for (;;) {
        void* block = IsRefused(size) ? nullptr : malloc(size > 0 ? size : 1);
        if (block != nullptr) {
            return block;
        }
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) {
            throw std::bad_alloc();
        }
        handler();
        refusal.room += memoryReserveSize; // it gave the reserve up
    }
}

void operator delete(void* block) noexcept
{
    if (refusal.armed && refusal.exempt == 0 && block != nullptr && malloc_usable_size(block) >= smallestRefused) {
        refusal.room += static_cast<int64_t>(malloc_usable_size(block));
    }
    free(block);
}

void operator delete(void* block, size_t) noexcept
{
    operator delete(block);
}

// The sanitizers have all the other forms of their own, which do not come here by themselves.
void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](size_t size)
{
    return operator new(size);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, size_t) noexcept
{
    operator delete(block);
}
