#include "utl/utl_MultisectionFile.h"

#include <climits>
#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "utl/impl/utl_DirListing.h"
#include "utl/impl/utl_FileSystem.h"
#include "sys/impl/sys_Os.h"
#include "utl/utl_Stat.h"

namespace FS = utl_FileSystem;

namespace {

const unsigned char kMagic[4] = {0x28, 0xC1, 0x1D, 0xAF};
const int32_t kVersion = 1;
const int kLockAttempts = 10;
const int kLockPauseMs = 10;
// Sections and the save file are copied in pieces of at most this size.
const int kCopyPiece = 1 << 20;

const char kKeptText[] =
    "Save failed while the container was being rewritten; its new contents are complete in \"%1$s\", "
    "and if the container no longer verifies, \"zulutil msf recover %2$s\" restores them\n%3$s";
const char kInTheWayText[] =
    "Cannot save: the container does not verify and \"%1$s\" is a complete save file; restore it first "
    "with \"zulutil msf recover %2$s\"";

// Deletes a file through the test hook of the file layer.
void RemoveFile(const cow_String& path)
{
    uint32_t error = 0;
    if (!FS::FaultFires(utl_FileCallDelete, error))
        sys_RemoveFile(path.c_str(), error);
}

// Closes and deletes the save file when the save ends, however it ends, unless it has to be kept:
// once the copy-back has begun it may be the only complete copy.
class FileRemover {
public:
    FileRemover(utl_File& file, const cow_String& path) : m_file(file), m_path(path), m_keep(false) {}
    ~FileRemover()
    {
        if (m_keep)
            return;
        try {
            m_file.Close();
        } catch (const nex_Exception&) {
        }
        RemoveFile(m_path);
    }
    void Keep() { m_keep = true; }

private:
    utl_File& m_file;
    cow_String m_path;
    bool m_keep;
};

// A buffer from the memory layer, freed at scope end.
class Buffer {
public:
    explicit Buffer(int64_t size)
        : m_data(static_cast<char*>(mem_OperatorNewThrow(size > 0 ? static_cast<size_t>(size) : 1)))
    {
    }
    ~Buffer() { mem_Free(m_data); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    char* get() const { return m_data; }

private:
    char* m_data;
};

int PieceFor(int64_t total)
{
    return total < kCopyPiece ? static_cast<int>(total) : kCopyPiece;
}

// Copies count bytes from the position of one file to the position of another through a buffer
// of `piece` bytes; false when the source ends early. `begun` is set before the first write.
bool CopyPieces(utl_File& from, utl_File& to, int64_t count, char* buffer, int piece, bool& begun)
{
    for (int64_t done = 0; done < count;) {
        const int n = count - done < piece ? static_cast<int>(count - done) : piece;
        if (from.Read(buffer, n) != n)
            return false;
        begun = true;
        to.Write(buffer, n);
        done += n;
    }
    return true;
}

void Put(char*& out, const void* data, size_t n)
{
    if (n > 0)
        std::memcpy(out, data, n);
    out += n;
}

void PutInt(char*& out, int32_t v)
{
    Put(out, &v, 4);
}

// Collects the names "<base>.<digits>.tmp" of a directory listing.
struct SaveFileNames {
    cow_String base;
    cow_1DArrayList<cow_String> found;
};

void CollectSaveFile(void* context, const char* entry, bool isDirectory)
{
    SaveFileNames& names = *static_cast<SaveFileNames*>(context);
    const int base = names.base.Length();
    const int length = static_cast<int>(std::strlen(entry));
    if (isDirectory || length < base + 6 || std::strncmp(entry, names.base.c_str(), base) != 0 || entry[base] != '.' ||
        std::strcmp(entry + length - 4, ".tmp") != 0)
        return;
    for (int i = base + 1; i < length - 4; ++i)
        if (entry[i] < '0' || entry[i] > '9')
            return;
    names.found.Append(cow_String(entry));
}

}  // namespace

utl_MultisectionFile::utl_MultisectionFile(const cow_String& path, utl_FileAccess mode)
    : utl_MultisectionFile(path, mode, true)
{
}

utl_MultisectionFile::utl_MultisectionFile(const cow_String& path, utl_FileAccess mode, bool readTable)
    : m_file(path, mode), m_path(path), m_lockHeld(false), m_lockPath(path), m_mode(mode), m_fromSaved(false)
{
    m_lockPath += ".lock";
    try {
        // The file itself opens at its first use, after the lock is held.
        if (mode != utl_FileAccessRead && !AcquireLock())
            Fail("Cannot create the lock file.");
        if (mode != utl_FileAccessWrite && readTable)
            ReadTable();
    } catch (...) {
        ReleaseAll();
        throw;
    }
}

utl_MultisectionFile::~utl_MultisectionFile()
{
    ReleaseAll();
}

void utl_MultisectionFile::ReleaseAll()
{
    for (int i = 0; i < m_sections.Count(); ++i) {
        Section& s = m_sections.Get(i);
        mem_Free(s.newData);
        s.newData = nullptr;
    }
    // A save file kept after a failed copy-back stays on disk for the restore.
    try {
        m_saved.Close();
    } catch (const nex_Exception&) {
    }
    if (m_lockHeld) {
        // The next writer may open the container as soon as the lock is gone: close it first.
        try {
            m_file.Close();
        } catch (const nex_Exception&) {
        }
        RemoveFile(m_lockPath);
        m_lockHeld = false;
    }
}

atr_String utl_MultisectionFile::Located(const atr_String& message) const
{
    atr_String text = atr_translate("\"%s\": ").Arg(m_path).Result();
    text += message;
    return text;
}

void utl_MultisectionFile::Fail(const atr_String& message) const
{
    NEX_RAISE(nex_TextException, Located(message));
}

void utl_MultisectionFile::FailCorrupt(const Section& s) const
{
    NEX_RAISE(utl_MultisectionCorruptException,
              Located(atr_translate("Data corrupted in section \"%s\"").Arg(s.name).Result()));
}

void utl_MultisectionFile::FailKept(const nex_Exception& cause) const
{
    Fail(atr_translate(kKeptText).Arg(SavePath()).Arg(m_path).Arg(cause.UserReport()).Result());
}

bool utl_MultisectionFile::AcquireLock()
{
    if (m_lockHeld)
        return true;
    const cow_String owner = utl_MultisectionLockOwner::Current().Text();
    for (int attempt = 0; attempt < kLockAttempts; ++attempt) {
        uint32_t error = 0;
        if (!FS::FaultFires(utl_FileCallOpen, error) &&
            sys_CreateExclusive(m_lockPath.c_str(), owner.c_str(), owner.Length(), error)) {
            m_lockHeld = true;
            return true;
        }
        sys_SleepMilliseconds(kLockPauseMs);
    }
    return false;
}

template <class E>
void utl_MultisectionFile::ReadExact(void* buffer, int count, const char* message)
{
    if (count > 0 && m_file.Read(static_cast<char*>(buffer), count) != count)
        NEX_RAISE(E, Located(message));
}

template <class E>
int32_t utl_MultisectionFile::ReadInt(const char* message)
{
    int32_t v = 0;
    ReadExact<E>(&v, 4, message);
    return v;
}

void utl_MultisectionFile::ReadTable()
{
    typedef utl_MultisectionFormatException Format;
    typedef utl_MultisectionCorruptException Corrupt;
    unsigned char magic[4] = {0, 0, 0, 0};
    ReadExact<Format>(magic, 4, "Invalid file type");
    if (std::memcmp(magic, kMagic, 4) != 0)
        NEX_RAISE(Format, Located("Invalid file type"));
    if (ReadInt<Format>("Unsupported file format") != kVersion)
        NEX_RAISE(Format, Located("Unsupported file format"));

    // Every entry takes at least 12 bytes of the file, so the table costs what the file holds
    // whatever count it claims.
    const int64_t fileSize = m_file.FileSize().Value();
    const int32_t count = ReadInt<Corrupt>("Invalid string length");
    if (count < 0)
        NEX_RAISE(Corrupt, Located("Invalid string length"));
    for (int32_t i = 0; i < count; ++i) {
        const int32_t nameLength = ReadInt<Corrupt>("Invalid string length");
        // A length that runs past the end of the file is as invalid as a negative one.
        if (nameLength < 0 || nameLength > fileSize - m_file.Location().Value())
            NEX_RAISE(Corrupt, Located("Invalid string length"));
        Section s;
        if (nameLength > 0) {
            cow_String name(nameLength, atr_StringBase::PRESIZE);
            ReadExact<Corrupt>(name.GetWriteBuffer(nameLength), nameLength, "Invalid string length");
            name.SetLength(nameLength);
            s.name = name;
        }
        s.storedLength = ReadInt<Corrupt>("Invalid string length");
        if (s.storedLength < 0)
            NEX_RAISE(Corrupt, Located("Invalid string length"));
        s.crc = static_cast<uint32_t>(ReadInt<Corrupt>("Invalid string length"));
        m_sections.Append(s);
    }
    // A section whose bytes would run past the end of the file (or past the 32-bit offsets) is
    // corrupt; it is never read, and no one is told to size a buffer by its length.
    int64_t position = m_file.Location().Value();
    for (int i = 0; i < m_sections.Count(); ++i) {
        Section& s = m_sections.Get(i);
        s.pastEnd = position + s.storedLength > fileSize || position + s.storedLength > INT_MAX;
        s.offset = s.pastEnd ? 0 : static_cast<int32_t>(position);
        position += s.storedLength;
    }
}

int utl_MultisectionFile::Find(const cow_String& name) const
{
    for (int i = 0; i < m_sections.Count(); ++i)
        if (m_sections[i].name == name)
            return i;
    return -1;
}

int utl_MultisectionFile::FindExisting(const cow_String& name) const
{
    const int i = Find(name);
    if (i < 0)
        Fail(atr_translate("No section \"%s\"").Arg(name).Result());
    return i;
}

bool utl_MultisectionFile::hasSection(const cow_String& name) const
{
    return Find(name) >= 0;
}

int utl_MultisectionFile::SectionLength(int index) const
{
    const Section& s = m_sections[index];
    return s.newData ? s.newLength : s.storedLength;
}

int utl_MultisectionFile::getSectionLength(const cow_String& name) const
{
    return getSectionLength(FindExisting(name));
}

int utl_MultisectionFile::getSectionLength(int index) const
{
    const Section& s = m_sections[index];
    if (!s.newData && s.pastEnd)
        FailCorrupt(s);
    return s.newData ? s.newLength : s.storedLength;
}

void utl_MultisectionFile::getSectionData(const cow_String& name, void* buffer)
{
    getSectionData(FindExisting(name), buffer);
}

void utl_MultisectionFile::getSectionData(int index, void* buffer)
{
    const Section& s = m_sections[index];
    if (s.newData) {
        std::memcpy(buffer, s.newData, static_cast<size_t>(s.newLength));
        return;
    }
    if (s.pastEnd)
        FailCorrupt(s);
    utl_File& from = Source();
    from.Seek(s.offset);
    const int got = s.storedLength > 0 ? from.Read(static_cast<char*>(buffer), s.storedLength) : 0;
    if (got != s.storedLength || utl_MultisectionCrc(buffer, static_cast<size_t>(got)) != s.crc)
        FailCorrupt(s);
}

void utl_MultisectionFile::setSectionData(const cow_String& name, const void* data, int length)
{
    if (length < 0)
        Fail("Invalid string length");
    int i = Find(name);
    if (i < 0) {
        Section fresh;
        fresh.name = name;
        m_sections.Append(fresh);
        i = m_sections.Count() - 1;
    }
    char* copy = static_cast<char*>(mem_OperatorNewThrow(length > 0 ? static_cast<size_t>(length) : 1));
    std::memcpy(copy, data, static_cast<size_t>(length));
    Section& s = m_sections.Get(i);
    mem_Free(s.newData);
    s.newData = copy;
    s.newLength = length;
    s.crc = utl_MultisectionCrc(copy, static_cast<size_t>(length));
}

cow_String utl_MultisectionFile::SavePath() const
{
    cow_String path(m_path);
    path += ".";
    path += cow_String(sys_ProcessId());
    path += ".tmp";
    return path;
}

int64_t utl_MultisectionFile::TableSize() const
{
    int64_t size = 12;
    for (int i = 0; i < m_sections.Count(); ++i)
        size += 12 + m_sections[i].name.Length();
    return size;
}

bool utl_MultisectionFile::AllSectionsCheck()
{
    int64_t largest = 0;
    for (int i = 0; i < m_sections.Count(); ++i)
        if (!m_sections[i].pastEnd && m_sections[i].storedLength > largest)
            largest = m_sections[i].storedLength;
    const int piece = PieceFor(largest);
    Buffer buffer(piece);
    utl_File& from = Source();
    for (int i = 0; i < m_sections.Count(); ++i) {
        const Section& s = m_sections[i];
        if (s.newData)
            continue;
        if (s.pastEnd)
            return false;
        from.Seek(s.offset);
        uint32_t crc = 0xFFFFFFFFu;
        for (int done = 0; done < s.storedLength;) {
            const int n = s.storedLength - done < piece ? s.storedLength - done : piece;
            if (from.Read(buffer.get(), n) != n)
                return false;
            crc = utl_MultisectionCrc(buffer.get(), static_cast<size_t>(n), crc);
            done += n;
        }
        if (crc != s.crc)
            return false;
    }
    return true;
}

bool utl_MultisectionFile::Verifies(const cow_String& path)
{
    try {
        utl_MultisectionFile container(path, utl_FileAccessRead);
        return container.AllSectionsCheck();
    } catch (const nex_Exception&) {
        return false;
    }
}

void utl_MultisectionFile::WriteSaveFile(int64_t size)
{
    // The header and the table in one piece, then the sections.
    const int64_t tableSize = TableSize();
    {
        Buffer table(tableSize);
        char* out = table.get();
        Put(out, kMagic, 4);
        PutInt(out, kVersion);
        PutInt(out, m_sections.Count());
        for (int i = 0; i < m_sections.Count(); ++i) {
            const Section& s = m_sections[i];
            PutInt(out, s.name.Length());
            Put(out, s.name.c_str(), static_cast<size_t>(s.name.Length()));
            PutInt(out, SectionLength(i));
            PutInt(out, static_cast<int32_t>(s.crc));
        }
        m_saved.Write(table.get(), static_cast<int>(tableSize));
    }
    const int piece = PieceFor(size - tableSize);
    Buffer buffer(piece);
    for (int i = 0; i < m_sections.Count(); ++i) {
        const Section& s = m_sections[i];
        if (s.newData) {
            m_saved.Write(s.newData, s.newLength);
        } else if (s.storedLength > 0) {
            utl_File& from = Source();
            from.Seek(s.offset);
            bool unused = false;
            if (!CopyPieces(from, m_saved, s.storedLength, buffer.get(), piece, unused))
                FailCorrupt(s);
        }
    }
}

void utl_MultisectionFile::CopyBack(utl_File& from, int size, bool& begun)
{
    const int piece = PieceFor(size);
    Buffer buffer(piece);
    if (!m_file.IsOpen()) {
        m_file.Init();
        // Opening for writing has emptied the container.
        begun = m_mode == utl_FileAccessWrite;
    }
    // The space comes first: a full disk stops the save before the container is touched.
    const int64_t old = m_file.FileSize().Value();
    if (size > old)
        m_file.Extend(size);
    m_file.Seek(0);
    from.Seek(0);
    if (!CopyPieces(from, m_file, size, buffer.get(), piece, begun))
        Fail("Cannot read back the temporary save file.");
    if (size < old)
        m_file.Extend(size);
    m_file.Flush();
}

void utl_MultisectionFile::CommitLayout()
{
    int64_t position = TableSize();
    for (int i = 0; i < m_sections.Count(); ++i) {
        Section& s = m_sections.Get(i);
        s.storedLength = SectionLength(i);
        s.offset = static_cast<int32_t>(position);
        s.pastEnd = false;
        mem_Free(s.newData);
        s.newData = nullptr;
        s.newLength = 0;
        position += s.storedLength;
    }
}

void utl_MultisectionFile::CompleteInterruptedSave()
{
    const int size = m_saved.FileSize().DiffAsInt32(0);
    bool begun = false;
    try {
        CopyBack(m_saved, size, begun);
    } catch (const nex_Exception& e) {
        FailKept(e);
    }
    m_fromSaved = false;
    try {
        m_saved.Close();
    } catch (const nex_Exception&) {
    }
    RemoveFile(SavePath());
}

void utl_MultisectionFile::saveChanges()
{
    if (m_fromSaved) {
        CompleteInterruptedSave();
        bool changed = false;
        for (int i = 0; i < m_sections.Count(); ++i)
            changed = changed || m_sections[i].newData;
        if (!changed)
            return;
    }
    // A container opened for reading refuses with the file's own read-only failure, before any
    // file is written.
    if (m_mode == utl_FileAccessRead)
        m_file.Write(nullptr, 0);
    const cow_String savePath = SavePath();
    if (utl_Stat(savePath).Found() && Verifies(savePath) && !Verifies(m_path))
        Fail(atr_translate(kInTheWayText).Arg(savePath).Arg(m_path).Result());

    int64_t total = TableSize();
    for (int i = 0; i < m_sections.Count(); ++i) {
        if (!m_sections[i].newData && m_sections[i].pastEnd)
            FailCorrupt(m_sections[i]);
        total += SectionLength(i);
    }
    const int size = utl_FileOffset(total).DiffAsInt32(0);

    // Nothing of the object changes until the container holds the new contents: a failure
    // leaves it reading what it was given, and a retry saves exactly that.
    FileRemover remover(m_saved, savePath);
    m_saved.Open(savePath, utl_FileAccessWrite);
    WriteSaveFile(size);
    m_saved.Flush();
    bool begun = false;
    try {
        CopyBack(m_saved, size, begun);
    } catch (...) {
        if (!begun)
            throw;
        // The container may be half overwritten: the complete save file stays, and the object
        // reads from it from now on.
        remover.Keep();
        CommitLayout();
        m_fromSaved = true;
        try {
            throw;
        } catch (const nex_Exception& e) {
            FailKept(e);
        }
    }
    CommitLayout();
}

utl_MultisectionFile::RestoreEnm utl_MultisectionFile::RestoreFromSaveFile(const cow_String& path, cow_String& saveFile)
{
    // The lock keeps a live writer's save (and another restore) out; the table is not read.
    utl_MultisectionFile holder(path, utl_FileAccessUpdate, false);
    if (Verifies(path))
        return RestoreNotNeeded;

    const int slash = path.rfind('/') > path.rfind('\\') ? path.rfind('/') : path.rfind('\\');
    const cow_String directory = slash < 0 ? cow_String(".") : cow_String(path.Substr(0, slash > 0 ? slash : 1));
    SaveFileNames names;
    names.base = path.Substr(slash + 1);
    utl_DirListing::ForEachEntry(directory, CollectSaveFile, &names);
    bool found = false;
    int64_t newest = 0;
    for (int i = 0; i < names.found.Count(); ++i) {
        cow_String candidate = slash < 0 ? cow_String() : cow_String(path.Substr(0, slash + 1));
        candidate += names.found[i];
        if (!Verifies(candidate))
            continue;
        const int64_t written = utl_Stat(candidate).LastWriteTime();
        if (!found || written > newest) {
            saveFile = candidate;
            newest = written;
            found = true;
        }
    }
    if (!found)
        return RestoreNoSaveFile;

    if (!utl_Stat(path).Found())
        holder.m_file.Open(path, utl_FileAccessWrite);
    holder.m_saved.Open(saveFile, utl_FileAccessRead);
    bool begun = false;
    holder.CopyBack(holder.m_saved, holder.m_saved.FileSize().DiffAsInt32(0), begun);
    if (!Verifies(path))
        holder.Fail(atr_translate("The container does not verify after the copy from \"%s\", which is kept").Arg(saveFile).Result());
    holder.m_saved.Close();
    RemoveFile(saveFile);
    return RestoreDone;
}
