// The container reader on arbitrary file contents, and the writer on sections made from the
// input. Reading may only fail with the library's text exceptions; no section length handed to
// a caller exceeds the file; every section that reads back must match its stored CRC; an unchanged update-and-save keeps every section's bytes;
// written containers read back with the same names, order and data, and the exact size that
// the format gives.
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "utl/utl_MultisectionFile.h"
#include "zul_FuzzSupport.h"

namespace {

using zul_fuzz::Cow;
using zul_fuzz::Str;

using Guard = zul_fuzz::Expect<nex_TextException>;

void WriteFile(const std::string& path, const uint8_t* data, size_t size)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    ZUL_FUZZ_CHECK(f != nullptr);
    ZUL_FUZZ_CHECK(size == 0 || std::fwrite(data, 1, size, f) == size);
    ZUL_FUZZ_CHECK(std::fclose(f) == 0);
}

// Every section by name (the first of equal names wins a lookup), or an empty list with false
// when some section cannot be read whole.
bool ReadAll(const std::string& path, size_t fileSize, std::vector<std::pair<std::string, std::string>>& out)
{
    bool complete = true;
    const bool opened = Guard::Run([&] {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        for (int i = 0; i < f.SectionCount(); ++i) {
            const cow_String name = f.SectionName(i);
            ZUL_FUZZ_CHECK(f.hasSection(name));
            // A caller sizes its buffer by getSectionLength, which refuses a length the file
            // cannot hold (the run's memory limit catches a reader that does not).
            int length = 0;
            if (!Guard::Run([&] { length = f.getSectionLength(name); })) {
                complete = false;
                continue;
            }
            ZUL_FUZZ_CHECK(length >= 0 && static_cast<size_t>(length) <= fileSize);
            int first = 0;
            while (f.SectionName(first) != name)
                ++first;
            if (first != i) {
                // Only the first of equal names can be looked up: the lengths of the others
                // are unknown, so the container is not known to read completely.
                complete = false;
                continue;
            }
            std::string data(static_cast<size_t>(length), '\0');
            if (!Guard::Run([&] { f.getSectionData(name, &data[0]); })) {
                complete = false;
                continue;
            }
            ZUL_FUZZ_CHECK(utl_MultisectionCrc(data.data(), data.size()) == f.SectionCrc(i));
            out.emplace_back(Str(name), data);
        }
    });
    return opened && complete;
}

void ReadGiven(const uint8_t* data, size_t size)
{
    const std::string path = zul_fuzz::ScratchDirectory() + "/given.msf";
    WriteFile(path, data, size);
    std::vector<std::pair<std::string, std::string>> before;
    if (!ReadAll(path, size, before))
        return;

    // A container that reads completely survives an update that changes nothing, and one that
    // replaces the first section and appends another: the stored sections are copied, the new
    // data lands where the table says.
    bool saved = Guard::Run([&] {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        f.saveChanges();
    });
    ZUL_FUZZ_CHECK(saved);
    std::vector<std::pair<std::string, std::string>> after;
    ZUL_FUZZ_CHECK(ReadAll(path, size, after));
    ZUL_FUZZ_CHECK(before == after);

    std::vector<std::pair<std::string, std::string>> expected = before;
    if (!expected.empty())
        expected[0].second.assign(expected[0].second.rbegin(), expected[0].second.rend());
    const std::string added(reinterpret_cast<const char*>(data), size < 300 ? size : 300);
    bool appended = false;
    for (auto& section : expected)
        if (section.first == "zz-added") {
            section.second = added;
            appended = true;
        }
    if (!appended)
        expected.emplace_back("zz-added", added);
    saved = Guard::Run([&] {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessUpdate);
        if (!before.empty())
            f.setSectionData(Cow(before[0].first), expected[0].second.data(), static_cast<int>(expected[0].second.size()));
        f.setSectionData("zz-added", added.data(), static_cast<int>(added.size()));
        f.saveChanges();
    });
    ZUL_FUZZ_CHECK(saved);
    after.clear();
    ZUL_FUZZ_CHECK(ReadAll(path, size + added.size(), after));
    ZUL_FUZZ_CHECK(expected == after);
}

void WriteAndReadBack(const uint8_t* data, size_t size)
{
    FuzzedDataProvider in(data, size);
    std::vector<std::pair<std::string, std::string>> model;
    const std::string path = zul_fuzz::ScratchDirectory() + "/written.msf";
    std::remove(path.c_str());
    bool written = Guard::Run([&] {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessWrite);
        while (in.remaining_bytes() > 0 && model.size() < 64) {
            const std::string name = in.ConsumeRandomLengthString(32);
            const std::string bytes = in.ConsumeRandomLengthString(512);
            f.setSectionData(Cow(name), bytes.data(),
                             static_cast<int>(bytes.size()));
            bool replaced = false;
            for (auto& section : model)
                if (section.first == name) {
                    section.second = bytes;
                    replaced = true;
                }
            if (!replaced)
                model.emplace_back(name, bytes);
        }
        f.saveChanges();
    });
    ZUL_FUZZ_CHECK(written);

    size_t expectedSize = 12;
    for (const auto& section : model)
        expectedSize += 12 + section.first.size() + section.second.size();
    FILE* file = std::fopen(path.c_str(), "rb");
    ZUL_FUZZ_CHECK(file != nullptr);
    std::fseek(file, 0, SEEK_END);
    ZUL_FUZZ_CHECK(static_cast<size_t>(std::ftell(file)) == expectedSize);
    std::fclose(file);

    bool read = Guard::Run([&] {
        utl_MultisectionFile f(path.c_str(), utl_FileAccessRead);
        ZUL_FUZZ_CHECK(f.SectionCount() == static_cast<int>(model.size()));
        for (size_t i = 0; i < model.size(); ++i) {
            const cow_String name = Cow(model[i].first);
            ZUL_FUZZ_CHECK(Str(f.SectionName(static_cast<int>(i))) == model[i].first);
            ZUL_FUZZ_CHECK(f.getSectionLength(name) == static_cast<int>(model[i].second.size()));
            std::string back(model[i].second.size(), '\0');
            f.getSectionData(name, &back[0]);
            ZUL_FUZZ_CHECK(back == model[i].second);
        }
    });
    ZUL_FUZZ_CHECK(read);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zul_fuzz::Initialize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ReadGiven(data, size);
    WriteAndReadBack(data, size);
    return 0;
}
