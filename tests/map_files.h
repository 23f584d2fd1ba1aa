// Files that tests put before the program, made byte by byte, and a folder of a test's own for them.
#pragma once

#include "mapdata/map_record.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

inline void Put(std::string* bytes, uint32_t value, int width)
{
    for (int i = 0; i < width; i++) {
        bytes->push_back(static_cast<char>(value >> 8 * i & 0xFF));
    }
}

// The current folder while it lives, and removed with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder()
    {
        if (mkdtemp(folder.data()) == nullptr) {
            std::abort();
        }
        std::filesystem::current_path(folder);
        std::filesystem::create_directory(StateFolder());
        // The environment keeps every value of setenv for ever, which a fuzzer would take for a leak.
        static std::string variable;
        variable = "XDG_STATE_HOME=" + StateFolder();
        putenv(variable.data());
    }

    ~TemporaryFolder()
    {
        std::filesystem::current_path(startFolder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(folder);
        std::filesystem::remove_all(StateFolder());
    }

    std::string StateFolder() const // where rescue copies go, beside the folder
    {
        return folder + "-state";
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string Path(const std::string& name) const
    {
        return folder + "/" + name;
    }

    void Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }

    std::string Read(const std::string& name) const // empty when there is no such file
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool Exists(const std::string& name) const
    {
        return std::filesystem::exists(Path(name));
    }

    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    const std::filesystem::path startFolder = std::filesystem::current_path();
    std::string folder = std::filesystem::temp_directory_path() / "kestrel-test-XXXXXX"; // no separator at its end
};

enum HeaderWord {
    idWord = 0,
    columnsWord = 3,
    rowsWord = 4,
    leftWord = 5,
    topWord = 6,
    rightWord = 7,
    bottomWord = 8,
    markerFieldWord = 24,
    eastingWord = 25,
    northingWord = 26,
    versionWord = 27,
};

// What a map data file holds.
struct MapFile {
    int16_t words[28] = {};
    std::string text;
    std::vector<uint16_t> cells; // row by row

    MapFile(int id, int width, int height) // without terrain
    {
        const auto set = [this](HeaderWord word, int value) { words[word] = static_cast<int16_t>(value); };
        set(idWord, id);
        set(columnsWord, CellCountOf(width));
        set(rowsWord, CellCountOf(height));
        set(rightWord, width);
        set(bottomWord, height);
        set(markerFieldWord, 1);
        set(versionWord, 100);
        SizeCells();
    }

    void SizeCells(uint16_t word = 0) // as many as the words say
    {
        cells.assign(static_cast<size_t>(words[columnsWord]) * static_cast<size_t>(words[rowsWord]), word);
    }

    uint16_t& Cell(int x, int y)
    {
        return cells.at(static_cast<size_t>(y * words[columnsWord] + x));
    }

    std::string Bytes() const
    {
        std::string bytes;
        for (const int word : words) {
            Put(&bytes, static_cast<uint32_t>(word), 2);
        }
        bytes += text + '\0';
        for (const uint16_t cell : cells) {
            Put(&bytes, cell, 2);
        }
        return bytes;
    }
};

// A bitmap file up to its pixels, whose rows take whole 32-bit words and stand bottom-up.
inline std::string BitmapHead(int width, int height, int bits, const std::vector<uint32_t>& table = {})
{
    const int count = static_cast<int>(table.size());
    const int offset = 54 + 4 * count;
    const int pixels = (width * bits + 31) / 32 * 4 * height;
    std::string bytes = "BM";
    for (const int value :
         {offset + pixels, 0, offset, 40, width, height, bits << 16 | 1, 0, pixels, 0, 0, count, count}) {
        Put(&bytes, static_cast<uint32_t>(value), 4);
    }
    for (const uint32_t colour : table) {
        Put(&bytes, colour, 4);
    }
    return bytes;
}
