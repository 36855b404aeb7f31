// utl_MultisectionFile: a container file of named sections, each guarded by a CRC.
//
// Format (all integers 32-bit little-endian, no padding): the magic bytes 28 C1 1D AF, the
// version 1, the section count N, N table entries (name length L, L name bytes, data length,
// CRC of the data), then the sections' data back to back in table order. Offsets are not
// stored: they follow from the lengths. The CRC is CRC-32/MPEG-2 (polynomial 0x04C11DB7, most
// significant bit first, initial value 0xFFFFFFFF, no final XOR).
//
// Opening for update or write takes a lock: the file "<path>.lock", created exclusively (10
// attempts, 10 ms apart), deleted when the object goes. Readers take no lock. The lock file
// names its owner (see utl_MultisectionLockOwner.h), so that a lock left by a writer that
// crashed can be told from a live one and removed with RemoveLock. Sections are read
// and checked whole; setSectionData keeps new data in memory until saveChanges, which writes
// the whole container to "<path>.<pid>.tmp", copies it back over the container in place and
// deletes the temporary file whatever happens. Unsaved changes are dropped at destruction.
//
// Errors are nex_TextException with the text "\"<path>\": <message>"; I/O failures come from
// utl_File. A damaged table (truncated, impossible lengths) raises "Invalid string length" (or
// "Invalid file type" / "Unsupported file format" for the header); a section whose bytes are
// missing or altered raises "Data corrupted in section \"<name>\""; asking for an absent
// section raises "No section \"<name>\"". Offsets are 32-bit: a container holds at most 2 GiB.
// One object is used by one thread at a time.
#ifndef UTL_MULTISECTIONFILE_H
#define UTL_MULTISECTIONFILE_H

#include <cstddef>
#include <cstdint>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_String.h"
#include "utl/utl_File.h"
#include "utl/utl_MultisectionLockOwner.h"
#include "zul_BasicExport.h"

// CRC-32/MPEG-2 of a buffer, continuing from crc (start with 0xFFFFFFFF). On processors with
// carry-less multiplication long buffers are folded 64 bytes at a time; elsewhere, and for
// short pieces, sixteen-byte table steps are used. Both give the byte-at-a-time result. The
// tables are built at compile time, so the first use in a process cannot race.
ZUL_BASIC_API uint32_t utl_MultisectionCrc(const void* data, size_t length, uint32_t crc = 0xFFFFFFFFu);
// The same checksum by table steps only, whatever the processor offers.
ZUL_BASIC_API uint32_t utl_MultisectionCrcTable(const void* data, size_t length, uint32_t crc = 0xFFFFFFFFu);

class ZUL_BASIC_API utl_MultisectionFile {
public:
    utl_MultisectionFile(const cow_String& path, utl_FileAccess mode);
    ~utl_MultisectionFile();
    utl_MultisectionFile(const utl_MultisectionFile&) = delete;
    utl_MultisectionFile& operator=(const utl_MultisectionFile&) = delete;

    bool hasSection(const cow_String& name) const;
    // The new length when the section has new data, else the stored length.
    int getSectionLength(const cow_String& name) const;
    // Copies the section into a buffer of getSectionLength bytes; a stored section is checked
    // against its CRC.
    void getSectionData(const cow_String& name, void* buffer);
    // Replaces (or appends) a section in memory.
    void setSectionData(const cow_String& name, const void* data, int length);
    void saveChanges();

    // Table order, for listings.
    int SectionCount() const { return m_sections.Count(); }
    cow_String SectionName(int index) const { return m_sections[index].name; }
    uint32_t SectionCrc(int index) const { return m_sections[index].crc; }

    // The owner of the lock on the container at `path`; false when the container is not locked
    // (owner then unknown).
    static bool LockOwner(const cow_String& path, utl_MultisectionLockOwner& owner);
    // Removes the lock on the container at `path` when it is stale, or whatever its owner when
    // `force`; `owner` tells who held it. A lock file that cannot be removed raises "Cannot
    // remove the lock file.". Between reading the owner and removing the file no other process
    // is excluded: remove locks while no writer may be starting on the container.
    static utl_MultisectionUnlockEnm RemoveLock(const cow_String& path, bool force, utl_MultisectionLockOwner& owner);

    struct Section {
        cow_String name;
        int32_t offset = 0;
        int32_t storedLength = 0;
        char* newData = nullptr;  // owned
        int32_t newLength = 0;
        uint32_t crc = 0;
        bool operator==(const Section& o) const { return name == o.name; }
    };

private:
    [[noreturn]] void Fail(const atr_String& message) const;
    void ReleaseAll();
    int Find(const cow_String& name) const;
    int FindExisting(const cow_String& name) const;
    void ReadTable();
    void ReadExact(void* buffer, int count, const char* message);
    int32_t ReadInt(const char* message);
    bool AcquireLock();

    utl_File m_file;
    cow_String m_path;
    bool m_lockHeld;
    cow_String m_lockPath;
    cow_1DArrayList<Section> m_sections;
};

#endif
