/// @class utl_MultisectionFile
/// utl_MultisectionFile: a container file of named sections, each guarded by a CRC.
///
/// Format (all integers 32-bit little-endian, no padding): the magic bytes 28 C1 1D AF, the
/// version 1, the section count N, N table entries (name length L, L name bytes, data length,
/// CRC of the data), then the sections' data back to back in table order. Offsets are not
/// stored: they follow from the lengths. The CRC is CRC-32/MPEG-2 (polynomial 0x04C11DB7, most
/// significant bit first, initial value 0xFFFFFFFF, no final XOR).
///
/// Opening for update or write takes a lock: the file "<path>.lock", created exclusively (10
/// attempts, 10 ms apart), deleted when the object goes. Readers take no lock. The lock file
/// names its owner (see utl_MultisectionLockOwner.h), so that a lock left by a writer that
/// crashed can be told from a live one and removed with RemoveLock. Sections are read and
/// checked whole; setSectionData keeps new data in memory until saveChanges. Unsaved changes
/// are dropped at destruction.
///
/// Saving. saveChanges writes the whole container to the save file "<path>.<pid>.tmp" and flushes
/// it, reserves the space the container will need (utl_File::Extend), then copies the save file
/// back over the container in place (no rename), truncates and flushes it; after a success the
/// save file is deleted. Copies run in pieces of at most 1 MiB. A container opened for writing is
/// emptied when the copy-back opens it; one opened for reading refuses with utl_File's read-only
/// write failure. A failure before the first byte of the container is overwritten (a full
/// disk shows at the reservation) deletes the save file and leaves the container as it was. A
/// failure once the copy-back has begun keeps the complete save file beside the container and
/// raises a nex_TextException whose text, after the usual prefix, is
/// @code{.unparsed}
///   Save failed while the container was being rewritten; its new contents are complete in
///   "<save file>", and if the container no longer verifies, "zulutil msf recover <path>"
///   restores them
/// @endcode
/// followed by a newline and the text of the failure that stopped it. RestoreFromSaveFile (the
/// library side of that command) turns such a save file into the container.
/// The object survives any failed save: it still reads the contents it was given, and a later
/// saveChanges saves exactly them. After a failure in the copy-back it reads its sections from
/// the kept save file, and the next saveChanges first completes that copy-back.
/// A save refuses to overwrite a complete save file of its own name beside a container that does
/// not verify (it could be the only complete copy): it raises
/// @code{.unparsed}
///   Cannot save: the container does not verify and "<save file>" is a complete save file;
///   restore it first with "zulutil msf recover <path>"
/// @endcode
///
/// Errors are nex_TextException with the text `"\"<path>\": <message>"`; I/O failures come from
/// utl_File. A file that is no container of this format raises utl_MultisectionFormatException
/// with "Invalid file type" (magic) or "Unsupported file format" (version). A container whose
/// table is damaged (truncated, impossible lengths) raises utl_MultisectionCorruptException with
/// "Invalid string length", and one whose section bytes are missing or altered raises it with
/// `"Data corrupted in section \"<name>\""`; asking for an absent section raises
/// `"No section \"<name>\""`. A section whose stored bytes would run past the end
/// of the file is corrupt from the start: getSectionLength and getSectionData raise the
/// corruption message for it (so no caller sizes a buffer by a length the file cannot hold),
/// while the sections before it stay readable. Reading a container never allocates or reads
/// more than the file holds. Offsets are 32-bit: a container holds at most 2 GiB.
///
/// Indices are not checked: getSectionLength(int), getSectionData(int), SectionName, SectionCrc
/// and SectionLength need 0 <= index < SectionCount(). The by-name readers need a present section
/// (they raise "No section" otherwise), and getSectionData a buffer of getSectionLength bytes.
///
/// Thread rule: one object, one thread at a time. Two objects on one container, in one process
/// or in two, coordinate as separate writers do: through the lock file. The static functions and
/// the CRC functions may be called from any thread.
#ifndef UTL_MULTISECTIONFILE_H
#define UTL_MULTISECTIONFILE_H

#include <cstddef>
#include <cstdint>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_String.h"
#include "utl/utl_File.h"
#include "utl/utl_MultisectionLockOwner.h"
#include "zul_BasicExport.h"

/// A file that is no container of this format (magic, version).
NEX_TEXT_EXCEPTION(utl_MultisectionFormatException, nex_TextException, 0x30401u);
/// A container whose table or section data is damaged.
NEX_TEXT_EXCEPTION(utl_MultisectionCorruptException, nex_TextException, 0x30402u);

/// CRC-32/MPEG-2 of a buffer, continuing from crc (start with 0xFFFFFFFF). On processors with
/// carry-less multiplication long buffers are folded 64 bytes at a time; elsewhere, and for
/// short pieces, sixteen-byte table steps are used. Both give the byte-at-a-time result. The
/// tables are built at compile time, so the first use in a process cannot race.
ZUL_BASIC_API uint32_t utl_MultisectionCrc(const void* data, size_t length, uint32_t crc = 0xFFFFFFFFu);
/// The same checksum by table steps only, whatever the processor offers.
ZUL_BASIC_API uint32_t utl_MultisectionCrcTable(const void* data, size_t length, uint32_t crc = 0xFFFFFFFFu);

class ZUL_BASIC_API utl_MultisectionFile {
public:
    utl_MultisectionFile(const cow_String& path, utl_FileAccess mode);
    ~utl_MultisectionFile();
    utl_MultisectionFile(const utl_MultisectionFile&) = delete;
    utl_MultisectionFile& operator=(const utl_MultisectionFile&) = delete;

    bool hasSection(const cow_String& name) const;
    /// The new length when the section has new data, else the stored length (a stored section
    /// that runs past the end of the file raises the corruption message instead).
    int getSectionLength(const cow_String& name) const;
    /// Copies the section into a buffer of getSectionLength bytes; a stored section is checked
    /// against its CRC.
    void getSectionData(const cow_String& name, void* buffer);
    /// The same two by table position (0 <= index < SectionCount()): they reach every entry,
    /// repeated names included, and let a listing check all sections in linear time.
    ///@{
    int getSectionLength(int index) const;
    void getSectionData(int index, void* buffer);
    ///@}
    /// Replaces (or appends) a section in memory.
    void setSectionData(const cow_String& name, const void* data, int length);
    void saveChanges();

    /// Table order, for listings. SectionLength is the length the table gives (the new length
    /// once set), unchecked: a listing may show it, a reader sizes by getSectionLength.
    ///@{
    int SectionCount() const { return m_sections.Count(); }
    cow_String SectionName(int index) const { return m_sections[index].name; }
    uint32_t SectionCrc(int index) const { return m_sections[index].crc; }
    int SectionLength(int index) const;
    ///@}

    /// What RestoreFromSaveFile did.
    enum RestoreEnm {
        RestoreNotNeeded,  ///< the container verifies; nothing was done
        RestoreDone,       ///< a complete save file was copied over the container and deleted
        RestoreNoSaveFile  ///< the container does not verify and no complete save file was found
    };
    /// Restores a container that does not verify from a complete save file "<path>.<pid>.tmp"
    /// beside it (the newest when there are several), under the container's lock: the save file
    /// is copied over the container and deleted once the container verifies. A container that
    /// verifies is never touched, and nothing changes when no save file is complete. `saveFile`
    /// receives the save file used. Failures raise (the lock held by a live writer gives
    /// "Cannot create the lock file."); the save file is then kept.
    static RestoreEnm RestoreFromSaveFile(const cow_String& path, cow_String& saveFile);

    /// The owner of the lock on the container at `path`; false when the container is not locked
    /// (owner then unknown).
    static bool LockOwner(const cow_String& path, utl_MultisectionLockOwner& owner);
    /// Removes the lock on the container at `path` when it is stale, or whatever its owner when
    /// `force`; `owner` tells who held it. A lock file that cannot be removed raises
    /// "Cannot remove the lock file.". Between reading the owner and removing the file no other
    /// process is excluded: remove locks while no writer may be starting on the container.
    static utl_MultisectionUnlockEnm RemoveLock(const cow_String& path, bool force, utl_MultisectionLockOwner& owner);

private:
    struct Section {
        cow_String name;
        int32_t offset = 0;
        int32_t storedLength = 0;
        char* newData = nullptr;  ///< owned
        int32_t newLength = 0;
        uint32_t crc = 0;
        bool pastEnd = false;  ///< the stored bytes run past the end of the file
        bool operator==(const Section& o) const { return name == o.name; }
    };

    utl_MultisectionFile(const cow_String& path, utl_FileAccess mode, bool readTable);
    /// "\"<path>\": <message>"
    atr_String Located(const atr_String& message) const;
    [[noreturn]] void Fail(const atr_String& message) const;
    [[noreturn]] void FailCorrupt(const Section& s) const;
    void ReleaseAll();
    int Find(const cow_String& name) const;
    int FindExisting(const cow_String& name) const;
    void ReadTable();
    /// Reads the bytes, or raises E with the message.
    template <class E>
    void ReadExact(void* buffer, int count, const char* message);
    template <class E>
    int32_t ReadInt(const char* message);
    bool AcquireLock();
    cow_String SavePath() const;
    /// Where the stored sections are: the container, or the kept save file after a failed
    /// copy-back.
    utl_File& Source() { return m_fromSaved ? m_saved : m_file; }
    int64_t TableSize() const;
    /// Whether every stored section reads whole and matches its CRC.
    bool AllSectionsCheck();
    /// Whether the file opens as a container whose every section checks.
    static bool Verifies(const cow_String& path);
    void WriteSaveFile(int64_t size);
    void CopyBack(utl_File& from, int size, bool& begun);
    void CommitLayout();
    void CompleteInterruptedSave();
    [[noreturn]] void FailKept(const nex_Exception& cause) const;

    utl_File m_file;
    cow_String m_path;
    bool m_lockHeld;
    cow_String m_lockPath;
    cow_1DArrayList<Section> m_sections;
    utl_FileAccess m_mode;
    utl_File m_saved;    ///< the save file while a save writes it, and after a failed copy-back
    bool m_fromSaved;    ///< the stored sections are read from m_saved
};

#endif
