/// @class utl_CommandLine
/// utl_CommandLine: the process's arguments, read-only, with options by name.
///
/// One instance per process (thr_GlobalSingleton<utl_CommandLine>), filled from the process's own
/// arguments when it is made (at library start-up) and refilled by callers that build their own
/// list. Option rule: an argument beginning with "-" names an option (exactly one "-" removed,
/// so `--x` names `-x`); the argument after it is its value unless it too begins with "-" (then the
/// first option is a flag with an empty value); an option as last argument is a flag. Other
/// arguments are positional only. Every argument stays in the list, the program name first.
/// Options are entered in argument order; a repeated option keeps the later value.
///
/// The option error, as in -error mem=3,io, sets debug flags (mem to 3, io to 1).
///
/// Thread rule: the instance is made once under its own mutex; queries may come from any thread
/// and are served under the object's mutex. Refilling is for start-up, before threads query.
#ifndef UTL_COMMANDLINE_H
#define UTL_COMMANDLINE_H

#include <cstdint>

#include "cow/cow_1DArrayList.h"
#include "cow/cow_Map.h"
#include "cow/cow_String.h"
#include "nex/nex_Exception.h"
#include "thr/thr_GlobalSingleton.h"
#include "thr/thr_Mutex.h"
#include "zul_BasicExport.h"

/// A required option that is missing.
class ZUL_BASIC_API utl_MissingCmdLineArgException : public nex_TextException {
    NEX_EXCEPTION_CLASS(utl_MissingCmdLineArgException, 0x30601u)
public:
    /// "Command line argument <name> is required."
    explicit utl_MissingCmdLineArgException(const cow_String& option);
};

/// An option whose value does not have the type asked for.
class ZUL_BASIC_API utl_CmdLineArgFormatException : public nex_TextException {
    NEX_EXCEPTION_CLASS(utl_CmdLineArgFormatException, 0x30602u)
public:
    /// "Command line argument <name> must have type <type>"
    utl_CmdLineArgFormatException(const cow_String& option, const char* type);
};

class ZUL_BASIC_API utl_CommandLine {
public:
    /// The process's instance.
    static utl_CommandLine& Instance();

    int Size() const;
    /// The i-th argument, 0 being the program name; empty outside the list.
    cow_String ConstGet(int i) const;
    bool IsMember(const cow_String& name) const;
    cow_String ConstGetValue(const cow_String& name) const;
    cow_String ConstGetValue(const cow_String& name, const cow_String& dflt) const;
    int ConstGetValueAsInt(const cow_String& name) const;
    int ConstGetValueAsInt(const cow_String& name, int dflt) const;
    uint64_t ConstGetValueAsSizeT(const cow_String& name) const;
    uint64_t ConstGetValueAsSizeT(const cow_String& name, uint64_t dflt) const;
    /// "k1=v1,k2,k3=v3" as a map (k2 -> empty).
    cow_Map<cow_String, cow_String> ConstGetValueAsDictionary(const cow_String& name) const;

    /// Replaces the contents with a list built by the caller. There is no program-name slot in
    /// this form: the rule starts at element 0, so an option may come first.
    void SetArgsList(const cow_1DArrayList<cow_String>& args);
    /// Replaces the contents with argv[0 .. argc-1], argv[0] being the program name.
    void SetArgs(int argc, char** argv);

    /// "k1=v1,k2" split into a map, as the dictionary values are read.
    static cow_Map<cow_String, cow_String> ParseDictionary(const cow_String& text);

private:
    friend class thr_GlobalSingleton<utl_CommandLine>;
    friend class thr_GlobalSingletonBase<utl_CommandLine>;
    utl_CommandLine();
    ~utl_CommandLine();
    utl_CommandLine(const utl_CommandLine&) = delete;
    utl_CommandLine& operator=(const utl_CommandLine&) = delete;

    void Fill(const cow_1DArrayList<cow_String>& args, int first);
    void ApplyErrorOption();
    bool Lookup(const cow_String& name, cow_String& value) const;
    cow_String Required(const cow_String& name) const;
    static void CheckDigits(const cow_String& name, const cow_String& value);

    mutable thr_Mutex m_mutex;
    cow_Map<cow_String, cow_String> m_options;
    int m_count;
    cow_1DArrayList<cow_String> m_args;
};

/// The process's own arguments, as the system gives them (platform part).
cow_1DArrayList<cow_String> utl_ProcessArguments();

/// @name Flat entry points for Fortran and C
/// The trailing integers of the upper-case ones are the hidden lengths of their character arguments.
///@{
extern "C" {
/// result = the option's value as an integer when present, else 0 (name trimmed of blanks).
ZUL_BASIC_API void UTL_COMMANDLINEINTEGER(const char* name, int* result, int nameLength);
/// result = 0 when the option IS present, 1 when it is absent (a status code).
ZUL_BASIC_API void UTL_COMMANDLINEISMEMBER(const char* name, int* result, int nameLength);
/// As utl_CommandLineStringC with the name trimmed of blanks; *length receives the result.
ZUL_BASIC_API void UTL_COMMANDLINESTRING(const char* name, char* out, int* length, int nameLength, int outLength);
/// 0 when absent or when the value is longer than outLength (out untouched); otherwise the value
/// without terminator, blank-padded to outLength, and its length.
ZUL_BASIC_API int utl_CommandLineStringC(const char* name, char* out, int outLength);
/// 0 when absent; otherwise the value with its terminating zero (no bound) and its length.
ZUL_BASIC_API int utl_getArgs(const char* name, char* out);
}
///@}

#endif
