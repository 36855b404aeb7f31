#include "uti/uti_Spawn.h"

#include <cstdlib>
#include <cstring>
#include <ctime>

#include "aio/aio_ostream.h"
#include "atr/atr_translate.h"
#include "mem/mem_Memory.h"
#include "pnt/pnt_DebugMarks.h"
#include "typ/typ_DebugFlags.h"
#include "uti/impl/uti_SpawnPlatform.h"

namespace P = uti_SpawnPlatform;

namespace {

const unsigned kUtiFacility = 2;
const int kDetachedStatus = 86;

int TraceLevel()
{
    return typ_DebugFlags::GetDebugFlags(kUtiFacility);
}

bool NeedsQuotes(const cow_String& s)
{
    if (s.IsEmpty())
        return true;
    for (const char* p = s.c_str(); *p; ++p)
        if (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\v' || *p == '"')
            return true;
    return false;
}

// Owns the descriptors handed over for redirection: whatever happens while starting, each one
// of 3 or more is closed once and every entry used is reset to -1.
class HandedOver {
public:
    explicit HandedOver(uti_Redirection& redirection) : m_redirection(redirection)
    {
        for (int i = 0; i < uti_Redirection::Count; ++i)
            m_descriptors[i] = redirection.Descriptor(i);
    }
    ~HandedOver()
    {
        for (int i = 0; i < uti_Redirection::Count; ++i) {
            const int d = m_descriptors[i];
            if (d <= 0)
                continue;
            bool closed = false;
            for (int j = 0; j < i; ++j)
                closed = closed || m_descriptors[j] == d;
            if (d >= 3 && !closed)
                P::CloseDescriptor(d);
            m_redirection.SetDescriptor(i, -1);
        }
    }
    HandedOver(const HandedOver&) = delete;
    HandedOver& operator=(const HandedOver&) = delete;

    int Descriptor(int i) const { return m_descriptors[i]; }

private:
    uti_Redirection& m_redirection;
    int m_descriptors[uti_Redirection::Count];
};

// A block of memory from the library's allocator, freed at scope end.
struct Scratch {
    explicit Scratch(size_t bytes) : p(mem_OperatorNewThrow(bytes)) {}
    ~Scratch() { mem_Free(p); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    void* p;
};

struct Announcement {
    const cow_String* commandLine;
    const cow_1DArrayList<cow_String>* arguments;
    const cow_String* block;
};

void PrintEntries(const char* const* entries)
{
    for (; *entries; ++entries)
        aio_cout().print("              env: ").print(*entries).print("\n");
}

void Announce(const void* context)
{
    const Announcement& a = *static_cast<const Announcement*>(context);
    const int level = TraceLevel();
    if (level < 1)
        return;
    aio_cout().print("uti_Spawn - spawning: ").print(a.commandLine->c_str()).print("\n");
    if (level >= 2) {
        for (int i = 0; i < a.arguments->Count(); ++i)
            aio_cout().print("              argument ").print_int(i).print(": ").print((*a.arguments)[i].c_str()).print("\n");
    }
    if (level >= 3) {
        if (a.block->IsEmpty()) {
            PrintEntries(P::EnvironmentTable());
        } else {
            for (const char* entry = a.block->c_str(); *entry; entry += std::strlen(entry) + 1)
                aio_cout().print("              env: ").print(entry).print("\n");
        }
    }
    aio_cout().flush();
}

}  // namespace

void uti_SpawnTraceRedirection(int stream, intptr_t handle)
{
    aio_cout().print("uti_Spawn: redirecting standard handle ").print_int(stream).print(" to ")
        .print_longlong(static_cast<long long>(handle)).print("\n");
}

// --- texts ---

cow_String uti_Spawn::QuoteArgument(const cow_String& argument)
{
    if (!NeedsQuotes(argument))
        return argument;
    cow_String quoted("\"");
    int backslashes = 0;
    for (const char* p = argument.c_str(); *p; ++p) {
        if (*p == '\\') {
            ++backslashes;
            continue;
        }
        // Backslashes before a quote escape it: double them and escape the quote itself.
        if (*p == '"')
            quoted.append('\\', backslashes * 2 + 1);
        else if (backslashes)
            quoted.append('\\', backslashes);
        backslashes = 0;
        quoted += *p;
    }
    if (backslashes)
        quoted.append('\\', backslashes * 2);  // they stand before the closing quote
    quoted += '"';
    return quoted;
}

cow_String uti_Spawn::BuildCommandLine(const cow_String& command, const cow_1DArrayList<cow_String>& arguments)
{
    cow_String line = QuoteArgument(command);
    for (int i = 0; i < arguments.Count(); ++i) {
        line += ' ';
        line += QuoteArgument(arguments[i]);
    }
    return line;
}

cow_String uti_Spawn::BuildEnvironmentBlock(const Environment& environment)
{
    int size = 0;
    cow_ConstMapSortedIt<cow_String, cow_String> it(environment);
    for (it.First(); it.NotDone(); it.Next())
        size += it.Key().Length() + it.Value().Length() + 2;
    cow_String block;
    if (size == 0)
        return block;
    char* out = block.GetWriteBuffer(size);
    for (it.First(); it.NotDone(); it.Next()) {
        std::memcpy(out, it.Key().c_str(), static_cast<size_t>(it.Key().Length()));
        out += it.Key().Length();
        *out++ = '=';
        std::memcpy(out, it.Value().c_str(), static_cast<size_t>(it.Value().Length()));
        out += it.Value().Length();
        *out++ = '\0';
    }
    block.SetLength(size);
    return block;
}

uti_Spawn::Environment uti_Spawn::getEnvironment()
{
    Environment environment;
    for (char** entry = P::EnvironmentTable(); entry && *entry; ++entry) {
        // Windows keeps per-drive directories as "=C:=C:\dir": the key starts after a leading "=".
        const char* text = *entry;
        const char* equals = text[0] ? std::strchr(text + 1, '=') : nullptr;
        if (!equals)
            continue;
        environment.Insert(cow_String(text, static_cast<int>(equals - text)), cow_String(equals + 1));
    }
    return environment;
}

// --- locating ---

utl_FilePath uti_Spawn::FindCommand(cow_String command)
{
    const cow_String name = P::CommandFileName(command);
    const utl_FilePath given(name, cow_String());
    if (P::TriesNameAsGiven(name) && (given.AbsolutePathName() == given.PathName() || P::IsStartable(given)))
        return given;

    const char* list = std::getenv("PATH");
    while (list && *list) {
        const char* end = std::strchr(list, P::kPathListSeparator);
        const int length = end ? static_cast<int>(end - list) : static_cast<int>(std::strlen(list));
        if (length > 0) {
            const utl_FilePath candidate(name, cow_String(list, length));
            if (candidate.Exists() && !candidate.IsDir()) {
                if (!P::IsStartable(candidate))
                    NEX_RAISE(
                        uti_CmdFailedException,
                        atr_translate("Command is not executable: %1$s").Arg(candidate.AbsolutePathName()).Result());
                return candidate;
            }
        }
        list = end ? end + 1 : nullptr;
    }
    NEX_RAISE(uti_CommandNotFoundException, command);
}

// --- starting ---

uti_Spawn::uti_Spawn() : m_handle(P::kNoProcess), m_status(-1), m_running(0) {}

uti_Spawn::~uti_Spawn()
{
    Forget();
}

void uti_Spawn::Forget()
{
    if (m_handle != P::kNoProcess)
        P::Release(m_handle);
    m_handle = P::kNoProcess;
}

void uti_Spawn::spawn(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                      uti_Redirection& redirection, const Environment& environment, int window)
{
    HandedOver handedOver(redirection);
    if (m_running)
        NEX_RAISE(uti_CmdFailedException, atr_String("uti_Spawn: a child is still tracked"));

    const cow_String commandLine = BuildCommandLine(command, arguments);
    const cow_String block = environment.IsEmpty() ? cow_String() : BuildEnvironmentBlock(environment);
    const cow_String path = program.AbsolutePathName();

    const int argc = arguments.Count() + 1;
    Scratch argvMemory(sizeof(char*) * static_cast<size_t>(argc + 1));
    char** argv = static_cast<char**>(argvMemory.p);
    argv[0] = const_cast<char*>(command.c_str());
    for (int i = 1; i < argc; ++i)
        argv[i] = const_cast<char*>(arguments[i - 1].c_str());
    argv[argc] = nullptr;

    const Announcement announcement = {&commandLine, &arguments, &block};
    const int level = TraceLevel();
    P::StartRequest request;
    request.commandLine = commandLine.c_str();
    request.program = path.c_str();
    request.argv = argv;
    request.environmentBlock = block.IsEmpty() ? nullptr : block.c_str();
    request.window = window;
    for (int i = 0; i < uti_Redirection::Count; ++i)
        request.descriptors[i] = handedOver.Descriptor(i);
    request.traceRedirections = level >= 2;
    request.announce = &Announce;
    request.announceContext = &announcement;

    if (level >= 1)
        aio_cout().print(pnt_DebugStartMark());
    intptr_t process = P::kNoProcess;
    uint32_t error = 0;
    const bool started = P::Start(request, process, error);
    if (level >= 1)
        aio_cout().print(pnt_DebugEndMark()).flush();
    if (!started)
        NEX_RAISE(uti_IOErrorException, P::kStartCall, this, static_cast<int>(error));
    Forget();
    m_handle = process;
    m_running = 1;
}

void uti_Spawn::Start(const cow_String& command, const cow_1DArrayList<cow_String>& arguments, uti_Redirection& redirection,
                      const Environment& environment, int window)
{
    utl_FilePath program;
    try {
        program = FindCommand(command);
    } catch (...) {
        HandedOver release(redirection);
        throw;
    }
    spawn(program.AbsolutePathName(), program, arguments, redirection, environment, window);
}

// --- waiting ---

void uti_Spawn::Finish(int status)
{
    m_status = status;
    m_running = 0;
    Forget();
}

int uti_Spawn::Wait(int seconds)
{
    if (!m_running)
        return m_status;
    int status = 0;
    uint32_t error = 0;
    switch (P::Wait(m_handle, seconds, status, error)) {
    case P::Failed:
        NEX_RAISE(uti_IOErrorException, P::kWaitCall, this, static_cast<int>(error));
    case P::Exited:
        Finish(status);
        break;
    case P::Running:
        break;
    }
    return m_status;
}

bool uti_Spawn::IsRunning()
{
    Wait(-1);
    return m_running != 0;
}

int uti_Spawn::Reap(int seconds)
{
    return Wait(seconds);
}

void uti_Spawn::Detach()
{
    if (m_running && m_status >= 0)
        Reap(0);
    m_running = 0;
    m_status = kDetachedStatus;
    Forget();
}

int uti_Spawn::Kill()
{
    return m_running && P::Terminate(m_handle) ? 0 : -1;
}

int uti_Spawn::Interrupt()
{
    return Kill();
}

uti_Spawn* uti_Spawn::waitForAny(uti_Spawn** children, int count)
{
    if (count <= 0)
        return nullptr;
    for (int i = 0; i < count; ++i)
        if (!children[i]->IsRunning())
            return children[i];
    Scratch memory(sizeof(intptr_t) * static_cast<size_t>(count));
    intptr_t* handles = static_cast<intptr_t*>(memory.p);
    for (int i = 0; i < count; ++i)
        handles[i] = children[i]->m_handle;
    int status = 0;
    uint32_t error = 0;
    const int which = P::WaitAny(handles, count, status, error);
    if (which < 0)
        NEX_RAISE(uti_IOErrorException, P::kWaitCall, nullptr, static_cast<int>(error));
    uti_Spawn* child = children[which];
    if (status != P::kStillActive)
        child->Finish(status);
    return child;
}

// The budget is in whole seconds from the start of the call; once less than one second is left
// the remaining children are waited for without limit.
int uti_Spawn::waitForAll(uti_Spawn** children, int count, int seconds)
{
    const std::time_t start = std::time(nullptr);
    int finished = 0;
    for (int i = 0; i < count; ++i) {
        const int left = seconds - static_cast<int>(std::time(nullptr) - start);
        children[i]->Reap(left < 1 ? 0 : left);
        if (TraceLevel() >= 1)
            aio_cout().print("uti_Spawn::waitForAll reaped process #").print_int(i).print("\n").flush();
        if (!children[i]->IsRunning())
            ++finished;
    }
    return count - finished;
}

// --- one-call runs ---

int uti_Spawn::AndWait(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                       uti_Redirection& redirection, const Environment& environment)
{
    uti_Spawn child;
    child.spawn(command, program, arguments, redirection, environment, 0);
    return child.Reap(0);
}

void uti_Spawn::AndExit(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                        uti_Redirection& redirection, const Environment& environment)
{
    {
        uti_Spawn child;
        child.spawn(command, program, arguments, redirection, environment, 0);
        child.Detach();
    }
    std::exit(0);
}

void uti_Spawn::Daemon(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                       uti_Redirection& redirection, const Environment& environment)
{
    uti_Spawn child;
    child.spawn(command, program, arguments, redirection, environment, -1);
    child.Detach();
}

int uti_Spawn::AndWait(cow_String command, const Environment& environment)
{
    const utl_FilePath program = FindCommand(command);
    uti_Redirection inherit;
    return AndWait(program.AbsolutePathName(), program, cow_1DArrayList<cow_String>(), inherit, environment);
}

void uti_Spawn::AndExit(cow_String command, const Environment& environment)
{
    const utl_FilePath program = FindCommand(command);
    uti_Redirection inherit;
    AndExit(program.AbsolutePathName(), program, cow_1DArrayList<cow_String>(), inherit, environment);
}

void uti_Spawn::Daemon(cow_String command, const Environment& environment)
{
    const utl_FilePath program = FindCommand(command);
    uti_Redirection inherit;
    Daemon(program.AbsolutePathName(), program, cow_1DArrayList<cow_String>(), inherit, environment);
}
