#include "utl/utl_File.h"

#include <atomic>
#include <exception>

#include "atr/atr_translate.h"
#include "cow/cow_SystemErrorCode.h"
#include "utl/impl/utl_FileSystem.h"

namespace FS = utl_FileSystem;

namespace {

const char kOpenText[] = "*** Error: File open failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kNoFileText[] = "*** Error: No such file (utl_File: %1$s)\nfile name: %2$s";
const char kCloseText[] = "***ERROR: File close failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kSeekText[] = "*** Error: Seek failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kLocationText[] = "*** Error: Get file location failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kFlushReadOnlyText[] = "*** Error: Flush failed (utl_File: %1$s)\nfile name: %2$s";
const char kFlushText[] = "*** Error: Flush failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kReadText[] = "*** Error: Read failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kWriteReadOnlyText[] = "*** Error: Write failed (utl_File: %1$s)\nfile name: %2$s";
const char kWriteText[] = "*** Error: Write failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kFullText[] = "*** Error: Free disk space depleted\nfile name: %2$s";
const char kSizeText[] = "*** Error: Get file size failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";
const char kExtendText[] = "*** Error: Extend failed (utl_File: %1$s)\nerror: %2$s\nfile: %3$s";

atr_String WithError(const char* format, const char* step, uint32_t error, const cow_String& name)
{
    return atr_translate(format).Arg(step).Arg(cow_SystemErrorCode(error).GetText()).Arg(name).Result();
}

atr_String WithName(const char* format, const char* step, const cow_String& name)
{
    return atr_translate(format).Arg(step).Arg(name).Result();
}

// The test hook's state: constant-initialised, so there is no start-up work.
std::atomic<bool> g_hookOn{false};
std::atomic<long> g_calls[utl_FileCallKinds] = {};
std::atomic<int> g_failKind{-1};
std::atomic<long> g_failAt{0};
std::atomic<uint32_t> g_failError{0};
std::atomic<bool> g_fired{false};

// A system call behind the test hook.
template <class Call>
bool Sys(utl_FileCallEnm kind, uint32_t& error, Call call)
{
    return !FS::FaultFires(kind, error) && call();
}

// Closing behind the hook: a failed close releases the handle all the same, as systems do.
bool CloseBehindHook(intptr_t handle, uint32_t& error)
{
    uint32_t injected = 0;
    const bool fault = FS::FaultFires(utl_FileCallClose, injected);
    const bool closed = FS::Close(handle, error);
    if (fault)
        error = injected;
    return closed && !fault;
}

// Read and write behind the hook, where the error 0 stands for a short transfer.
template <class Call>
bool Transfer(utl_FileCallEnm kind, int count, int& done, uint32_t& error, Call call)
{
    if (FS::FaultFires(kind, error)) {
        if (error != 0)
            return false;
        count /= 2;
        done = 0;
        if (count == 0)
            return true;
    }
    return call(count);
}

FS::Share ShareFor(utl_FileAccess access, utl_FileSharing sharing)
{
    if (sharing == utl_FileShareRead)
        return FS::ShareRead;
    if (sharing == utl_FileShareReadWrite)
        return FS::ShareReadWrite;
    return access == utl_FileAccessRead ? FS::ShareReadWrite : FS::ShareRead;
}

}  // namespace

bool FS::FaultFires(utl_FileCallEnm kind, uint32_t& error)
{
    if (!g_hookOn.load(std::memory_order_relaxed))
        return false;
    const long n = g_calls[kind].fetch_add(1, std::memory_order_relaxed) + 1;
    if (g_failKind.load(std::memory_order_relaxed) != kind || g_failAt.load(std::memory_order_relaxed) != n)
        return false;
    error = g_failError.load(std::memory_order_relaxed);
    g_fired.store(true, std::memory_order_relaxed);
    return true;
}

void utl_FileTestFaults(utl_FileCallEnm kind, long n, uint32_t error)
{
    g_hookOn.store(false, std::memory_order_relaxed);
    for (std::atomic<long>& count : g_calls)
        count.store(0, std::memory_order_relaxed);
    g_failKind.store(n > 0 ? kind : -1, std::memory_order_relaxed);
    g_failAt.store(n, std::memory_order_relaxed);
    g_failError.store(error, std::memory_order_relaxed);
    g_fired.store(false, std::memory_order_relaxed);
    g_hookOn.store(true, std::memory_order_seq_cst);
}

long utl_FileTestCalls(utl_FileCallEnm kind)
{
    return g_calls[kind].load(std::memory_order_relaxed);
}

bool utl_FileTestFaultFired()
{
    return g_fired.load(std::memory_order_relaxed);
}

void utl_FileTestFaultsOff()
{
    g_hookOn.store(false, std::memory_order_seq_cst);
    g_failKind.store(-1, std::memory_order_relaxed);
}

utl_File::utl_File()
    : m_opened(0), m_handle(-1), m_access(utl_FileAccessRead), m_sharing(utl_FileShareReadWrite)
{
}

utl_File::utl_File(const cow_String& name, utl_FileAccess access, utl_FileSharing sharing)
    : m_opened(0), m_handle(-1), m_name(name), m_access(access), m_sharing(sharing)
{
}

utl_File::~utl_File() noexcept(false)
{
    if (!m_opened)
        return;
    m_opened = 0;
    uint32_t error = 0;
    if (!CloseBehindHook(m_handle, error) && std::uncaught_exceptions() == 0)
        NEX_RAISE(utl_FileExceptionClose, WithError(kCloseText, "CloseHandle", error, m_name));
}

void utl_File::Close()
{
    if (!m_opened)
        return;
    m_opened = 0;
    uint32_t error = 0;
    if (!CloseBehindHook(m_handle, error))
        NEX_RAISE(utl_FileExceptionClose, WithError(kCloseText, "CloseHandle", error, m_name));
}

void utl_File::Open(const cow_String& name, utl_FileAccess access, utl_FileSharing sharing)
{
    m_name = name;
    m_access = access;
    m_sharing = sharing;
    Init();
}

void utl_File::Init()
{
    if (m_opened)
        return;
    switch (m_access) {
    case utl_FileAccessRead:
        m_handle = OpenRead(m_name);
        break;
    case utl_FileAccessUpdate:
        m_handle = OpenUpdate(m_name);
        break;
    case utl_FileAccessWrite:
        m_handle = OpenWrite(m_name);
        break;
    }
    m_opened = 1;
}

intptr_t utl_File::OpenRead(const cow_String& name)
{
    return OpenWith(name, utl_FileAccessRead, "CreateFile in OpenRead", "in OpenRead");
}

intptr_t utl_File::OpenUpdate(const cow_String& name)
{
    return OpenWith(name, utl_FileAccessUpdate, "CreateFile in OpenUpdate", "in OpenUpdate");
}

intptr_t utl_File::OpenWrite(const cow_String& name)
{
    return OpenWith(name, utl_FileAccessWrite, "CreateFile in OpenWrite", nullptr);
}

intptr_t utl_File::OpenWith(const cow_String& name, int access, const char* step, const char* missingStep)
{
    intptr_t handle = -1;
    uint32_t error = 0;
    if (Sys(utl_FileCallOpen, error, [&] { return FS::Open(name, access, ShareFor(m_access, m_sharing), handle, error); }))
        return handle;
    if (missingStep && FS::IsNoSuchFile(error, name))
        NEX_RAISE(utl_FileExceptionNoFile, WithName(kNoFileText, missingStep, name));
    NEX_RAISE(utl_FileExceptionOpen, WithError(kOpenText, step, error, name));
}

void utl_File::Seek(const utl_FileOffset& position)
{
    Init();
    uint32_t error = 0;
    if (!Sys(utl_FileCallSeek, error, [&] { return FS::SetPosition(m_handle, position.Value(), error); }))
        NEX_RAISE(utl_FileExceptionSeek, WithError(kSeekText, "SetFilePointer", error, m_name));
}

utl_FileOffset utl_File::Location()
{
    Init();
    int64_t position = 0;
    uint32_t error = 0;
    if (!Sys(utl_FileCallSeek, error, [&] { return FS::GetPosition(m_handle, position, error); }))
        NEX_RAISE(utl_FileExceptionLocation, WithError(kLocationText, "SetFilePointer", error, m_name));
    return utl_FileOffset(position);
}

int utl_File::Read(char* buffer, int count)
{
    Init();
    int done = 0;
    uint32_t error = 0;
    if (count > 0 && !Transfer(utl_FileCallRead, count, done, error, [&](int n) { return FS::Read(m_handle, buffer, n, done, error); }))
        NEX_RAISE(utl_FileExceptionRead, WithError(kReadText, "ReadFile", error, m_name));
    return done;
}

void utl_File::RejectReadOnly(bool flush)
{
    if (m_access != utl_FileAccessRead)
        return;
    if (flush)
        NEX_RAISE(utl_FileExceptionFlush, WithName(kFlushReadOnlyText, "attempt to flush a read-only file.", m_name));
    NEX_RAISE(utl_FileExceptionWrite, WithName(kWriteReadOnlyText, "attempt to write to a read-only file.", m_name));
}

int utl_File::WriteShortAllowed(const char* buffer, int count)
{
    Init();
    RejectReadOnly(false);
    int done = 0;
    uint32_t error = 0;
    if (count > 0 && !Transfer(utl_FileCallWrite, count, done, error, [&](int n) { return FS::Write(m_handle, buffer, n, done, error); }))
        NEX_RAISE(utl_FileExceptionWrite, WithError(kWriteText, "WriteFile", error, m_name));
    return done;
}

int utl_File::Write(const char* buffer, int count)
{
    const int done = WriteShortAllowed(buffer, count);
    if (count > 0 && done < count)
        NEX_RAISE(utl_FileExceptionFull, WithName(kFullText, "WriteFile", m_name));
    return done;
}

void utl_File::Flush()
{
    Init();
    RejectReadOnly(true);
    uint32_t error = 0;
    if (!Sys(utl_FileCallFlush, error, [&] { return FS::Flush(m_handle, error); }))
        NEX_RAISE(utl_FileExceptionFlush, WithError(kFlushText, "FlushFileBuffers", error, m_name));
}

utl_FileOffset utl_File::FileSize()
{
    Init();
    int64_t size = 0;
    uint32_t error = 0;
    if (!Sys(utl_FileCallSize, error, [&] { return FS::Size(m_handle, size, error); }))
        NEX_RAISE(utl_FileExceptionSize, WithError(kSizeText, "GetFileSize", error, m_name));
    return utl_FileOffset(size);
}

void utl_File::Extend(const utl_FileOffset& size)
{
    Init();
    if (m_access == utl_FileAccessRead)
        NEX_RAISE(nex_TextException, atr_String("utl_File::Extend - attempt to extend a read-only file."));
    uint32_t error = 0;
    auto check = [&](bool ok, const char* step) {
        if (ok)
            return;
        if (FS::IsDiskFull(error))
            NEX_RAISE(utl_FileExceptionFull, WithName(kFullText, step, m_name));
        NEX_RAISE(utl_FileExceptionExtend, WithError(kExtendText, step, error, m_name));
    };
    auto seek = [&](int64_t to) { return Sys(utl_FileCallSeek, error, [&] { return FS::SetPosition(m_handle, to, error); }); };
    int64_t remembered = 0;
    check(Sys(utl_FileCallSeek, error, [&] { return FS::GetPosition(m_handle, remembered, error); }), "SetFilePointer 1");
    check(seek(size.Value()), "SetFilePointer 2");
    check(Sys(utl_FileCallExtend, error, [&] { return FS::SetEnd(m_handle, error); }), "SetEndOfFile");
    const int64_t tail = static_cast<int64_t>(static_cast<double>(size.Value()) - 4.0);
    char bytes[4] = {0, 0, 0, 0};
    int got = 0, put = 0;
    check(seek(tail), "SetFilePointer 3");
    check(Transfer(utl_FileCallRead, 4, got, error, [&](int n) { return FS::Read(m_handle, bytes, n, got, error); }), "ReadFile");
    check(seek(tail), "SetFilePointer 4");
    check(got == 0 || Transfer(utl_FileCallWrite, got, put, error, [&](int n) { return FS::Write(m_handle, bytes, n, put, error); }),
          "WriteFile");
    check(seek(remembered), "SetFilePointer 5");
}
