#include "utl/utl_MultisectionFile.h"

#include <cstring>

#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "utl/impl/utl_LockFile.h"

namespace {

const unsigned char kMagic[4] = {0x28, 0xC1, 0x1D, 0xAF};
const int32_t kVersion = 1;
const int kLockAttempts = 10;
const int kLockPauseMs = 10;
// The copy-back from the temporary file runs in pieces of this size.
const int kCopyPiece = 4 << 20;

// Deletes the temporary save file when the save ends, however it ends.
class FileRemover {
public:
    explicit FileRemover(const cow_String& path) : m_path(path) {}
    ~FileRemover() { utl_LockFile::Remove(m_path); }

private:
    cow_String m_path;
};

// A buffer from the memory layer, freed at scope end.
class Buffer {
public:
    explicit Buffer(int size) : m_data(static_cast<char*>(mem_OperatorNewThrow(size > 0 ? static_cast<size_t>(size) : 1))) {}
    ~Buffer() { mem_Free(m_data); }
    char* get() const { return m_data; }

private:
    char* m_data;
};

void WriteInt(utl_File& file, int32_t v)
{
    file.Write(reinterpret_cast<const char*>(&v), 4);
}

}  // namespace

utl_MultisectionFile::utl_MultisectionFile(const cow_String& path, utl_FileAccess mode)
    : m_file(path, mode), m_path(path), m_lockHeld(false), m_lockPath(path)
{
    m_lockPath += ".lock";
    try {
        // The file itself opens at its first use, after the lock is held.
        if (mode != utl_FileAccessRead && !AcquireLock())
            Fail("Cannot create the lock file.");
        if (mode != utl_FileAccessWrite)
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
    if (m_lockHeld) {
        // The next writer may open the container as soon as the lock is gone: close it first.
        try {
            m_file.Close();
        } catch (const nex_Exception&) {
        }
        utl_LockFile::Remove(m_lockPath);
        m_lockHeld = false;
    }
}

void utl_MultisectionFile::Fail(const atr_String& message) const
{
    atr_String text = atr_translate("\"%s\": ").Arg(m_path).Result();
    text += message;
    nex_TextException failure(text);
    failure.Throw(ZUL_SOURCE_NAME, __LINE__);
}

bool utl_MultisectionFile::AcquireLock()
{
    if (m_lockHeld)
        return true;
    const cow_String owner = utl_MultisectionLockOwner::Current().Text();
    for (int attempt = 0; attempt < kLockAttempts; ++attempt) {
        if (utl_LockFile::Create(m_lockPath, owner)) {
            m_lockHeld = true;
            return true;
        }
        sys_SleepMilliseconds(kLockPauseMs);
    }
    return false;
}

void utl_MultisectionFile::ReadExact(void* buffer, int count, const char* message)
{
    if (count > 0 && m_file.Read(static_cast<char*>(buffer), count) != count)
        Fail(message);
}

int32_t utl_MultisectionFile::ReadInt(const char* message)
{
    int32_t v = 0;
    ReadExact(&v, 4, message);
    return v;
}

void utl_MultisectionFile::ReadTable()
{
    unsigned char magic[4] = {0, 0, 0, 0};
    ReadExact(magic, 4, "Invalid file type");
    if (std::memcmp(magic, kMagic, 4) != 0)
        Fail("Invalid file type");
    if (ReadInt("Unsupported file format") != kVersion)
        Fail("Unsupported file format");

    const int64_t fileSize = m_file.FileSize().Value();
    const int32_t count = ReadInt("Invalid string length");
    if (count < 0)
        Fail("Invalid string length");
    for (int32_t i = 0; i < count; ++i) {
        const int32_t nameLength = ReadInt("Invalid string length");
        // A length that runs past the end of the file is as invalid as a negative one.
        if (nameLength < 0 || nameLength > fileSize - m_file.Location().Value())
            Fail("Invalid string length");
        Section s;
        if (nameLength > 0) {
            cow_String name(nameLength, atr_StringBase::PRESIZE);
            ReadExact(name.GetWriteBuffer(nameLength), nameLength, "Invalid string length");
            name.SetLength(nameLength);
            s.name = name;
        }
        s.storedLength = ReadInt("Invalid string length");
        if (s.storedLength < 0)
            Fail("Invalid string length");
        s.crc = static_cast<uint32_t>(ReadInt("Invalid string length"));
        m_sections.Append(s);
    }
    int64_t position = m_file.Location().Value();
    for (int i = 0; i < m_sections.Count(); ++i) {
        Section& s = m_sections.Get(i);
        s.offset = static_cast<int32_t>(position);
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

int utl_MultisectionFile::getSectionLength(const cow_String& name) const
{
    const Section& s = m_sections[FindExisting(name)];
    return s.newData ? s.newLength : s.storedLength;
}

void utl_MultisectionFile::getSectionData(const cow_String& name, void* buffer)
{
    const Section& s = m_sections[FindExisting(name)];
    if (s.newData) {
        std::memcpy(buffer, s.newData, static_cast<size_t>(s.newLength));
        return;
    }
    m_file.Seek(s.offset);
    const int got = s.storedLength > 0 ? m_file.Read(static_cast<char*>(buffer), s.storedLength) : 0;
    if (got != s.storedLength || utl_MultisectionCrc(buffer, static_cast<size_t>(got)) != s.crc)
        Fail(atr_translate("Data corrupted in section \"%s\"").Arg(s.name).Result());
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

void utl_MultisectionFile::saveChanges()
{
    cow_String tempPath(m_path);
    tempPath += ".";
    tempPath += cow_String(utl_LockFile::ProcessId());
    tempPath += ".tmp";
    FileRemover remover(tempPath);

    utl_File temp(tempPath, utl_FileAccessWrite);
    temp.Write(reinterpret_cast<const char*>(kMagic), 4);
    WriteInt(temp, kVersion);
    WriteInt(temp, m_sections.Count());
    for (int i = 0; i < m_sections.Count(); ++i) {
        const Section& s = m_sections[i];
        WriteInt(temp, s.name.Length());
        temp.Write(s.name.c_str(), s.name.Length());
        WriteInt(temp, s.newData ? s.newLength : s.storedLength);
        WriteInt(temp, static_cast<int32_t>(s.crc));
    }
    // One buffer serves every stored section and then the copy-back.
    int largest = kCopyPiece;
    for (int i = 0; i < m_sections.Count(); ++i)
        if (!m_sections[i].newData && m_sections[i].storedLength > largest)
            largest = m_sections[i].storedLength;
    Buffer copy(largest);
    for (int i = 0; i < m_sections.Count(); ++i) {
        Section& s = m_sections.Get(i);
        const int32_t q = static_cast<int32_t>(temp.Location().Value());
        if (s.newData) {
            temp.Write(s.newData, s.newLength);
            s.storedLength = s.newLength;
            s.newLength = 0;
            mem_Free(s.newData);
            s.newData = nullptr;
        } else if (s.storedLength > 0) {
            m_file.Seek(s.offset);
            if (m_file.Read(copy.get(), s.storedLength) != s.storedLength)
                Fail(atr_translate("Data corrupted in section \"%s\"").Arg(s.name).Result());
            temp.Write(copy.get(), s.storedLength);
        }
        s.offset = q;
    }
    temp.Flush();
    const int size = temp.FileSize().DiffAsInt32(0);

    m_file.Extend(size);
    m_file.Seek(0);
    temp.Seek(0);
    for (int done = 0; done < size;) {
        const int piece = size - done < kCopyPiece ? size - done : kCopyPiece;
        if (temp.Read(copy.get(), piece) != piece)
            Fail("Cannot read back the temporary save file.");
        m_file.Write(copy.get(), piece);
        done += piece;
    }
    m_file.Flush();
}
