#include "companion/report.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <system_error>

namespace {

// A place of an output file that was written beside it; removed unless it came to its place.
struct Written {
    std::string beside;
    std::string place;
};

bool WriteFile(const std::string& path, const std::string& bytes)
{
    FILE* file = fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool written = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && fflush(file) == 0;
    const int error = errno;
    const bool closed = fclose(file) == 0;
    if (!written) {
        errno = error;
    }
    return written && closed;
}

// Where a link leads to the file behind it is what is replaced.
std::string PlaceOf(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

bool IsDevice(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    return !error && std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
           !std::filesystem::is_directory(status);
}

bool PrepareOutput(const OutputFile& file, std::vector<Written>* written)
{
    if (IsDevice(file.path)) {
        return WriteFile(file.path, file.bytes);
    }
    if (std::filesystem::is_directory(file.path)) {
        errno = EISDIR;
        return false;
    }
    const std::string place = PlaceOf(file.path);
    written->push_back({place + ".kestrel-new", place});
    return WriteFile(written->back().beside, file.bytes);
}

} // namespace

int Fail(Report* report, const std::string& file, const std::string& what)
{
    report->errors += "kestrel-map: " + (file.empty() ? file : file + ": ") + what + "\n";
    return statusFailed;
}

std::string SystemReason()
{
    return std::generic_category().message(errno);
}

bool ReadBytes(Report* report, const std::string& path, size_t limit, std::string* bytes, std::string* fault)
{
    bytes->clear();
    if (path == standardStream) {
        if (!report->inputIsRead) {
            report->standardInput.assign(std::istreambuf_iterator<char>(std::cin), {});
            report->inputIsRead = true;
        }
        *bytes = report->standardInput.substr(0, limit + 1);
        return true;
    }
    FILE* file = fopen(path.c_str(), "rb");
    if (file == nullptr) {
        *fault = SystemReason();
        return false;
    }
    const std::unique_ptr<FILE, int (*)(FILE*)> closer(file, fclose);
    constexpr size_t blockSize = 256 * 1024;
    size_t count = 0;
    do {
        const size_t start = bytes->size();
        const size_t wanted = std::min(blockSize, limit + 1 - start);
        bytes->resize(start + wanted);
        count = fread(bytes->data() + start, 1, wanted, file);
        bytes->resize(start + count);
    } while (count != 0 && bytes->size() <= limit);
    if (ferror(file) != 0) {
        *fault = SystemReason();
        return false;
    }
    return true;
}

bool WriteOutput(Report* report, const std::vector<OutputFile>& files)
{
    std::vector<Written> written;
    bool isWritten = true;
    for (const OutputFile& file : files) {
        if (file.path == standardStream) {
            report->out += file.bytes;
        } else if (!PrepareOutput(file, &written)) {
            Fail(report, file.path, "cannot be written: " + SystemReason());
            isWritten = false;
            break;
        }
    }
    std::error_code error;
    for (const Written& file : written) {
        if (isWritten) {
            std::filesystem::rename(file.beside, file.place, error);
            if (error) {
                Fail(report, file.place, "cannot be written: " + error.message());
                isWritten = false;
            }
        }
        if (!isWritten) {
            std::filesystem::remove(file.beside, error);
        }
    }
    return isWritten;
}

std::string Percent(int part, int whole)
{
    char text[32];
    snprintf(text, sizeof text, "%.1f %%", whole > 0 ? 100.0 * part / whole : 0.0);
    return text;
}

std::string Count(long count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Coloured(const Report& report, const char* colour, const std::string& text)
{
    return report.outIsTerminal ? std::string("\033[") + colour + "m" + text + "\033[0m" : text;
}

std::string Printable(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char next) { return iscntrl(static_cast<unsigned char>(next)); }, '?');
    return text;
}
