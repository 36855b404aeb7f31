/// @class uti_Spawn
/// uti_Spawn: a child program, started with redirected standard streams and tracked until it ends.
///
/// Starting: the command is located (FindCommand), the arguments are joined into a command line
/// and a non-empty environment map becomes the child's whole environment, in ascending key order
/// (an empty map lets the child inherit the parent's environment). Windows starts the command
/// line with CreateProcessA and inheritable standard handles; POSIX systems start the program
/// with posix_spawn, passing the arguments directly as argv (argv[0] is the command string), and
/// the command line is only shown in the trace.
///
/// Tracking: IsRunning polls, Reap waits (0 = without limit) and returns the exit status, Detach
/// stops tracking (status 86), Kill ends the child (its status then reads -1). On POSIX systems
/// a child ended by a signal has status -1 too, and a detached child that ends stays a zombie
/// until the parent process ends.
///
/// Tracing: with debug flag 2 (uti) at level 1 the command line is printed on the standard
/// output, at level 2 also the arguments and the redirected handles, at level 3 the environment;
/// waitForAll reports each reaped child at level 1.
///
/// Thread rule: one object, one thread at a time. Starting a child (Start, AndWait, AndExit,
/// Daemon) changes the inheritance of the parent's standard handles (Windows) and reads the
/// environment, without a lock: start children from one thread at a time, while no thread changes
/// the environment. waitForAny and waitForAll take `count` children from the array, unchecked.
#ifndef UTI_SPAWN_H
#define UTI_SPAWN_H

#include <cstdint>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_Map.h"
#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "uti/uti_Redirection.h"
#include "utl/utl_FilePath.h"
#include "zul_BasicExport.h"

class uti_Spawn;

/// A failed system call of a spawn: the call's name ("CreateProcess", "GetExitCodeProcess" on
/// Windows; "posix_spawn", "waitpid" on POSIX systems), the spawn object and the error number.
class ZUL_BASIC_API uti_IOErrorException : public nex_CommandException {
    NEX_EXCEPTION_CLASS(uti_IOErrorException, 0x20201u)
public:
    uti_IOErrorException(const char* call, const uti_Spawn* spawn, int error);
    /// Persistence: the call's name and the error number (a read-back exception has no spawn).
    explicit uti_IOErrorException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    /// "<call> failed (error <number>): <system text>"
    atr_String JournalMessage() const override;
    /// "IOError"
    atr_String PythonType() const override;

    const atr_String& Call() const { return m_call; }
    const uti_Spawn* Spawn() const { return m_spawn; }
    int Error() const { return m_error; }

protected:
    atr_String m_call;
    const uti_Spawn* m_spawn;
    int32_t m_error;
};

/// A command that cannot be run or did not succeed; the message says why.
class ZUL_BASIC_API uti_CmdFailedException : public nex_CommandException {
    NEX_EXCEPTION_CLASS(uti_CmdFailedException, 0x20202u)
public:
    explicit uti_CmdFailedException(const atr_String& message);
    explicit uti_CmdFailedException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    atr_String JournalMessage() const override;
    /// "CommandError"
    atr_String PythonType() const override;

protected:
    atr_String m_message;
};

/// A command interrupted before it finished.
class ZUL_BASIC_API uti_InterruptedException : public nex_CommandException {
    NEX_EXCEPTION_CLASS(uti_InterruptedException, 0x20203u)
public:
    explicit uti_InterruptedException(const atr_String& message);
    explicit uti_InterruptedException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    atr_String JournalMessage() const override;
    /// "KeyboardInterrupt"
    atr_String PythonType() const override;

protected:
    atr_String m_message;
};

/// A command found neither as given nor on the PATH: "Command not found: <command>".
class ZUL_BASIC_API uti_CommandNotFoundException : public uti_CmdFailedException {
    NEX_EXCEPTION_CLASS(uti_CommandNotFoundException, 0x20204u)
public:
    explicit uti_CommandNotFoundException(const cow_String& command);
    explicit uti_CommandNotFoundException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    const cow_String& Command() const { return m_command; }

protected:
    cow_String m_command;
};

class ZUL_BASIC_API uti_Spawn {
public:
    typedef cow_Map<cow_String, cow_String> Environment;

    uti_Spawn();
    /// Stops tracking; the child is not ended.
    virtual ~uti_Spawn();
    uti_Spawn(const uti_Spawn&) = delete;
    uti_Spawn& operator=(const uti_Spawn&) = delete;

    /// Polls without waiting.
    virtual bool IsRunning();
    /// Waits up to `seconds` (0: without limit; negative: not at all) and returns the exit status
    /// (the last known one while the child still runs).
    virtual int Reap(int seconds);
    /// Stops tracking: the status becomes 86.
    virtual void Detach();
    /// End the child: 0 on success, -1 on failure (also when no child is tracked). The status is
    /// recorded by the next poll or reap.
    ///@{
    int Kill();
    int Interrupt();
    ///@}

    int Status() const { return m_status; }

    /// Locates `command` and starts it with the arguments; see uti_Redirection for `redirection`
    /// (the descriptors it hands over are closed also when the command is not found). An empty
    /// environment lets the child inherit the parent's; a negative window starts it without a
    /// console window (Windows) or in a session of its own (POSIX).
    void Start(const cow_String& command, const cow_1DArrayList<cow_String>& arguments, uti_Redirection& redirection,
               const Environment& environment = Environment(), int window = 0);

    /// Run the command without arguments: wait for its exit status; end the calling process
    /// (exit code 0) once the child is started; start it detached, without a window.
    ///@{
    static int AndWait(cow_String command, const Environment& environment);
    [[noreturn]] static void AndExit(cow_String command, const Environment& environment);
    static void Daemon(cow_String command, const Environment& environment);
    ///@}

    /// The parent's environment.
    static Environment getEnvironment();

    /// The first child that is no longer running, waiting for one when all are; null for count <= 0.
    static uti_Spawn* waitForAny(uti_Spawn** children, int count);
    /// Reaps each child in order with the time left of `seconds` (without limit once less than a
    /// second is left, or when `seconds` is 0); returns the number still running.
    static int waitForAll(uti_Spawn** children, int count, int seconds);

    /// One argument as the Windows runtime parses it back: unchanged unless it is empty or holds a
    /// blank, tab, newline, vertical tab or double quote; then in double quotes, with backslashes
    /// doubled before a quote (and before the closing quote) and each quote escaped by a backslash.
    static cow_String QuoteArgument(const cow_String& argument);
    /// The command, then a blank and each argument, all quoted.
    static cow_String BuildCommandLine(const cow_String& command, const cow_1DArrayList<cow_String>& arguments);
    /// KEY=VALUE and a zero byte per entry in ascending key order; the string's terminator is the
    /// block's final zero (block size = Length() + 1).
    static cow_String BuildEnvironmentBlock(const Environment& environment);

protected:
    /// Starts `program` with the command line made of `command` and `arguments`. On Windows the
    /// command line alone decides what runs (pass the located path as `command`); on POSIX systems
    /// `program` is run and `command` becomes argv[0].
    void spawn(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
               uti_Redirection& redirection, const Environment& environment, int window);
    /// Windows: ".exe" is appended unless the name ends in it (in any case); the name is used as
    /// given when absolute or executable, else searched on the PATH. POSIX: nothing is appended and
    /// only names with a "/" are used as given. Raises uti_CommandNotFoundException, or
    /// uti_CmdFailedException naming the absolute path of a found file that cannot be executed.
    static utl_FilePath FindCommand(cow_String command);

private:
    static int AndWait(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                       uti_Redirection& redirection, const Environment& environment);
    [[noreturn]] static void AndExit(const cow_String& command, const utl_FilePath& program,
                                     const cow_1DArrayList<cow_String>& arguments, uti_Redirection& redirection,
                                     const Environment& environment);
    static void Daemon(const cow_String& command, const utl_FilePath& program, const cow_1DArrayList<cow_String>& arguments,
                       uti_Redirection& redirection, const Environment& environment);

    int Wait(int seconds);
    void Finish(int status);
    void Forget();

    intptr_t m_handle;
    int32_t m_status;
    uint8_t m_running;
};

#endif
