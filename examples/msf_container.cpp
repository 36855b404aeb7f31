// The container file (utl_MultisectionFile): named sections, each guarded by a checksum.
// Writes a container, reads it, verifies every section, then damages it on disk and recovers it
// from the complete save file that an interrupted save leaves beside it. Works in the current
// directory (example.msf and example.msf.4711.tmp, both removed at the end).
//
// Output:
// | wrote example.msf: 2 sections
// | notes: "first notes" (11 bytes)
// | grid: 64 bytes, sum 2016
// | verify: 2 sections ok
// | one byte of grid damaged on disk
// | verify: "example.msf": Data corrupted in section "grid"
// | recovered from example.msf.4711.tmp
// | verify: 2 sections ok
#include <cstdio>
#include <fstream>
#include <vector>

#include "ZULFNDUTI_BasicUtils.h"

namespace {

const char* const kContainer = "example.msf";

// Reads every section; a section whose bytes no longer match its checksum throws.
void Verify(const char* path)
{
    try {
        utl_MultisectionFile file(path, utl_FileAccessRead);
        for (int i = 0; i < file.SectionCount(); ++i) {
            std::vector<char> bytes(static_cast<size_t>(file.getSectionLength(file.SectionName(i))) + 1);
            file.getSectionData(file.SectionName(i), bytes.data());
        }
        std::printf("verify: %d sections ok\n", file.SectionCount());
    } catch (const nex_Exception& e) {
        std::printf("verify: %s\n", e.UserReport().c_str());
    }
}

// Restores a container that no longer verifies from the newest complete save file beside it
// (under the container's lock); the save file goes once the container verifies again.
void Recover(const char* container)
{
    cow_String used;
    if (utl_MultisectionFile::RestoreFromSaveFile(container, used) == utl_MultisectionFile::RestoreDone)
        std::printf("recovered from %s\n", used.c_str());
    else
        std::printf("nothing recovered\n");
}

// Flips one bit of the file's last byte (the last section's data).
void DamageLastByte(const char* path)
{
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(-1, std::ios::end);
    const char last = static_cast<char>(file.get());
    file.seekp(-1, std::ios::end);
    file.put(static_cast<char>(last ^ 0x01));
}

}  // namespace

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);
    int status = 0;
    try {
        // Write: sections live in memory until saveChanges writes the whole container.
        {
            utl_MultisectionFile file(kContainer, utl_FileAccessWrite);
            const char notes[] = "first notes";
            file.setSectionData("notes", notes, sizeof notes - 1);
            unsigned char grid[64];
            for (int i = 0; i < 64; ++i)
                grid[i] = static_cast<unsigned char>(i);
            file.setSectionData("grid", grid, sizeof grid);
            file.saveChanges();
            std::printf("wrote %s: %d sections\n", kContainer, file.SectionCount());
        }  // the lock file goes with the object

        // Read: readers take no lock; every section read is checked against its checksum.
        {
            utl_MultisectionFile file(kContainer, utl_FileAccessRead);
            std::vector<char> notes(static_cast<size_t>(file.getSectionLength("notes")) + 1, '\0');
            file.getSectionData("notes", notes.data());
            std::printf("notes: \"%s\" (%d bytes)\n", notes.data(), file.getSectionLength("notes"));
            std::vector<unsigned char> grid(static_cast<size_t>(file.getSectionLength("grid")));
            file.getSectionData("grid", grid.data());
            int sum = 0;
            for (unsigned char v : grid)
                sum += v;
            std::printf("grid: %d bytes, sum %d\n", static_cast<int>(grid.size()), sum);
        }
        Verify(kContainer);

        // A save writes the whole container to "<container>.<pid>.tmp", flushes it, then copies it
        // over the container. A save killed during that copy leaves a damaged container and the
        // complete save file. The same state made by hand: a copy as the save file of process
        // 4711, and a damaged byte in the container.
        const char* const saveFile = "example.msf.4711.tmp";
        {
            std::ifstream in(kContainer, std::ios::binary);
            std::ofstream out(saveFile, std::ios::binary);
            out << in.rdbuf();
        }
        DamageLastByte(kContainer);
        std::printf("one byte of grid damaged on disk\n");
        Verify(kContainer);

        Recover(kContainer);
        Verify(kContainer);
    } catch (const nex_Exception& e) {
        std::fprintf(stderr, "failed: %s\n", e.UserReport().c_str());
        status = 1;
    }
    std::remove(kContainer);
    UTI_BasicUtils_finalize(count);
    return status;
}
