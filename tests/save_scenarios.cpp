#include "tests/save_scenarios.h"

#include "mapdata/data_file.h"
#include "mapdata/map_bytes.h"
#include "platform/kernel/system_calls.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

constexpr int newColumns = 310; // the file takes several writes
constexpr int newRows = 130;

const std::map<std::string, std::string> bystanders = {
    {"Map101c.bmp", "the art"},
    {"Map103c.dat", "another map"},
    {"notes", "of the user"},
};

MapRecord RecordOf(int columns, int rows)
{
    MapRecord record;
    record.mapID = 101;
    record.columnCount = static_cast<int16_t>(columns);
    record.rowCount = static_cast<int16_t>(rows);
    record.mapRect = {0, 0, 400, 600};
    record.markerWord = 1;
    record.versionNumber = 100;
    return record;
}

uint16_t NewCell(int x, int y)
{
    return static_cast<uint16_t>(x * 7 + y * 31 + 1);
}

std::string Header(const MapRecord& record)
{
    std::string bytes(maxMapHeaderBytes, '\0');
    bytes.resize(EncodeMapHeader(&record, reinterpret_cast<uint8_t*>(bytes.data())));
    return bytes;
}

std::string SmallMap(char fill)
{
    return Header(RecordOf(60, 40)) + std::string(2 * 60 * 40, fill);
}

} // namespace

const std::string oldContent = SmallMap('\x11');
const std::string olderContent = SmallMap('\x22');
const std::string otherContent = SmallMap('\x33');

CallJudge OnFileSystem(FileSystemKind kind, CallJudge judge)
{
    return [=](const JudgedCall& call) {
        const int verdict = judge(call);
        if (verdict == letThrough && kind != wholeFileSystem && call.kind == renameNoReplaceCall) {
            return EINVAL;
        }
        return verdict == letThrough && kind == noLinks && call.kind == linkCall ? EPERM : verdict;
    };
}

void SaveScenarioTest::SetUp()
{
    DialogDriver::SetUp();
    std::string pattern = std::filesystem::temp_directory_path() / "kestrel-save-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern + "/";
    currentMap.record = RecordOf(newColumns, newRows);
    ASSERT_EQ(AllocateCellColumns(), 0);
    for (int y = 0; y < newRows; y++) {
        for (int x = 0; x < newColumns; x++) {
            const uint16_t cell = NewCell(x, y);
            *CellAt(x, y) = cell;
            newCells.push_back(static_cast<char>(cell & 0xFF));
            newCells.push_back(static_cast<char>(cell >> 8));
        }
    }
}

void SaveScenarioTest::TearDown()
{
    systemCalls = RealSystemCalls();
    DialogDriver::TearDown();
    std::filesystem::remove_all(folder);
}

void SaveScenarioTest::Prepare(const SaveScenario& scenario)
{
    systemCalls = RealSystemCalls();
    CloseMapDataFile();
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    std::map<std::string, std::string> files = bystanders;
    if (scenario.hasDataFile) {
        files["Map101c.dat"] = oldContent;
    }
    if (scenario.hasBackup) {
        files["Map101c.dat_old"] = olderContent;
    }
    if (scenario.changedID && scenario.targetIsThere) {
        files["Map102c.dat"] = otherContent;
    }
    for (const auto& [name, content] : files) {
        std::ofstream(folder + name, std::ios::binary) << content;
    }

    currentMap.record = RecordOf(newColumns, newRows);
    currentMap.record.mapID = scenario.changedID ? 102 : 101;
    currentMap.loadedMapID = 101;
    currentMap.mapModified = 1;
    newContent = Header(currentMap.record) + newCells;
    ASSERT_EQ(MakeFileSpec(folder.c_str(), "Map101c.dat", &currentMap.dataFileSpec), 0);
    openBefore = OpenDescriptors();
    if (scenario.hasDataFile) {
        ASSERT_EQ(OpenFileSpecRead(&currentMap.dataFileSpec, &currentMap.openDataFile), 0);
    }
}

// The looks come while a message's loop runs; without one they are played afterwards and find nothing.
void SaveScenarioTest::AnswerMessages(int looks)
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

int SaveScenarioTest::Save()
{
    messages.clear();
    AnswerMessages(3);
    const int status = SaveMap(false);
    while (HeadlessStepsLeft() > 0) {
        host->pump(100);
    }
    return status;
}

void SaveScenarioTest::ExpectSound(const SaveScenario& scenario, int status)
{
    systemCalls = RealSystemCalls();
    EXPECT_EQ(shell.quitRequested, 0u) << "a message was never answered";
    EXPECT_EQ(currentMap.openDataFile, noFile);
    EXPECT_EQ(OpenDescriptors(), openBefore);
    EXPECT_EQ(currentMap.mapModified, status == 0 ? 0 : 1);
    if (status == 0) {
        EXPECT_TRUE(Content(currentMap.dataFileSpec.name) == newContent) << "the save counts as done";
    }
    if (scenario.changedID) {
        EXPECT_TRUE(Content("Map101c.dat") == oldContent);
        EXPECT_TRUE(Content("Map101c.dat_old") == (scenario.hasBackup ? olderContent : ""));
    }
    const std::string target = scenario.changedID ? "Map102c.dat" : "Map101c.dat";
    EXPECT_EQ(currentMap.dataFileSpec.name, target);
    size_t others = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        const auto bystander = bystanders.find(name);
        if (bystander != bystanders.end()) {
            EXPECT_EQ(Content(name.c_str()), bystander->second);
            others++;
        } else {
            EXPECT_TRUE(name == "Map101c.dat" || name == "Map101c.dat_old" || name == target) << name;
        }
    }
    EXPECT_EQ(others, bystanders.size());
}

bool SaveScenarioTest::WorkIsWhole(const SaveScenario& scenario) const
{
    if (!scenario.hasDataFile) {
        return true;
    }
    const std::string data = Content("Map101c.dat");
    return data == oldContent || data == newContent || Content("Map101c.dat_old") == oldContent;
}

std::string SaveScenarioTest::Content(const char* name) const
{
    std::ifstream file(folder + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
