// Shared pieces of the fuzz targets: library start-up, property checks that abort (so that
// libFuzzer records the input), a scratch directory, and a guard that lets only the expected
// library exceptions out of a fuzzed call.
#ifndef ZUL_FUZZSUPPORT_H
#define ZUL_FUZZSUPPORT_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <typeinfo>

#include <unistd.h>

#include "cow/cow_String.h"
#include "mem/mem_Memory.h"
#include "nex/nex_Exception.h"
#include "uti/uti_BasicUtils.h"

namespace zul_fuzz {

// Brings the library up once for the whole run (the fuzzer never takes it down).
inline void Initialize()
{
    static int count = 0;
    static bool done = false;
    if (!done) {
        UTI_BasicUtils_initialize(count);
        done = true;
    }
}

// Byte-exact conversions: a cow_String built from a pointer and a count stops at a zero byte,
// an adopted buffer keeps all of its bytes.
inline cow_String Cow(const std::string& s)
{
    char* buffer = static_cast<char*>(mem_OperatorNewThrow(s.size() + 1));
    if (!s.empty())
        std::memcpy(buffer, s.data(), s.size());
    return cow_String(buffer, static_cast<int>(s.size()), atr_StringBase::ADOPT);
}

inline std::string Str(const cow_String& s)
{
    return std::string(s.c_str(), static_cast<size_t>(s.Length()));
}

[[noreturn]] inline void Fail(const char* file, int line, const char* what)
{
    std::fprintf(stderr, "%s:%d: property violated: %s\n", file, line, what);
    std::fflush(stderr);
    std::abort();
}

// A directory of its own for this process, removed at exit. It lives in memory (/dev/shm)
// where there is one, since the container saves flush to disk on every input.
inline const std::string& ScratchDirectory()
{
    static std::string path;
    if (path.empty()) {
        const char* base = std::getenv("ZUL_FUZZ_SCRATCH");
        if (!base || !*base)
            base = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::getenv("TMPDIR");
        std::string pattern = std::string(base && *base ? base : "/tmp") + "/zul_fuzz_XXXXXX";
        if (!::mkdtemp(&pattern[0]))
            Fail(__FILE__, __LINE__, "cannot create the scratch directory");
        path = pattern;
        std::atexit([] {
            std::string command = "rm -rf '" + path + "'";
            if (std::system(command.c_str()) != 0)
                std::fprintf(stderr, "could not remove %s\n", path.c_str());
        });
    }
    return path;
}

// Runs body; an exception of one of the Allowed library classes ends the input quietly,
// anything else (another library exception, a standard one) is a finding.
template <class... Allowed>
struct Expect {
    template <class Body>
    static bool Run(Body body)
    {
        try {
            body();
            return true;
        } catch (const nex_Exception& e) {
            if (!(IsOneOf<Allowed>(e) || ...)) {
                std::fprintf(stderr, "unexpected library exception %s: %s\n", typeid(e).name(),
                             e.DeveloperReport().c_str());
                std::abort();
            }
            return false;
        } catch (const std::exception& e) {
            std::fprintf(stderr, "unexpected exception %s: %s\n", typeid(e).name(), e.what());
            std::abort();
        } catch (...) {
            std::fprintf(stderr, "unexpected exception of unknown type\n");
            std::abort();
        }
    }

private:
    template <class T>
    static bool IsOneOf(const nex_Exception& e)
    {
        return dynamic_cast<const T*>(&e) != nullptr;
    }
};

}  // namespace zul_fuzz

#define ZUL_FUZZ_CHECK(cond)                                  \
    do {                                                      \
        if (!(cond))                                          \
            ::zul_fuzz::Fail(__FILE__, __LINE__, #cond);      \
    } while (0)

#endif
