/// @class rgx_ReCompileCache
/// rgx_ReCompileCache: each thread's compiled regular expressions, keyed by pattern text.
///
/// A thread's cache is made on its first match (or by rgx_initialize for the thread that brings
/// the library up) and reached through thr_ThreadSingleton<rgx_ReCompileCache>; rgx_finalize
/// releases the calling thread's cache, and every other thread's goes when the thread ends.
///
/// Patterns are compiled by PCRE2 (8-bit code units) with no options and then JIT-compiled when the
/// engine has a JIT and the cache's JIT switch is on (the default); the JIT changes speed, not
/// results (a match too deep for the JIT's stack is run again by the interpreter). The map holds
/// at most kCapacity patterns: inserting into a full cache first drops the kCapacity / 2 patterns
/// that sort lowest byte-wise, however recently or often they were used.
///
/// The map is a cow_Map<cow_String, cow_CountedHld<rgx_CompiledRe>>: the counted holder keeps a
/// compiled pattern alive for a caller that looked it up even when a later lookup evicts it.
///
/// Thread rule: each thread has its own cache, used without a lock; a holder looked up on one
/// thread stays on it (its count is a plain integer).
#ifndef RGX_RECOMPILECACHE_H
#define RGX_RECOMPILECACHE_H

#include "cow/cow_COW.h"
#include "cow/cow_Map.h"
#include "cow/cow_String.h"
#include "zul_BasicExport.h"

// The engine's types for 8-bit code units (pcre2_code, pcre2_match_data, ...), declared here so that
// users of the library do not need the engine's header.
struct pcre2_real_code_8;
struct pcre2_real_match_data_8;
struct pcre2_real_match_context_8;
struct pcre2_real_jit_stack_8;

/// One compiled pattern, owned: the engine's code is freed with the object.
class ZUL_BASIC_API rgx_CompiledRe {
public:
    /// `jit`: the JIT compiled the pattern. `direct`: matches may call the JIT code directly,
    /// skipping the engine's subject checks (only for patterns that do not read UTF-8).
    rgx_CompiledRe(pcre2_real_code_8* code, bool jit, bool direct) : m_code(code), m_jit(jit), m_direct(direct) {}
    ~rgx_CompiledRe();
    rgx_CompiledRe(const rgx_CompiledRe&) = delete;
    rgx_CompiledRe& operator=(const rgx_CompiledRe&) = delete;

    pcre2_real_code_8* Code() const { return m_code; }
    /// Whether the engine's JIT compiled the pattern.
    bool IsJit() const { return m_jit; }
    bool IsDirect() const { return m_direct; }

private:
    pcre2_real_code_8* m_code;
    bool m_jit;
    bool m_direct;
};

class ZUL_BASIC_API rgx_ReCompileCache {
public:
    /// The most patterns the map holds.
    enum { kCapacity = 100 };
    typedef cow_CountedHld<rgx_CompiledRe> Holder;

    rgx_ReCompileCache();
    ~rgx_ReCompileCache();
    rgx_ReCompileCache(const rgx_ReCompileCache&) = delete;
    rgx_ReCompileCache& operator=(const rgx_ReCompileCache&) = delete;

    /// The calling thread's cache, made on first use.
    static rgx_ReCompileCache& Instance();

    /// The compiled pattern; compiles and stores it on a miss. A pattern that does not compile
    /// throws nex_TextException "rgx_match: error in regex at offset <offset>: <engine message>".
    Holder Lookup(const cow_String& pattern);

    int Count() const { return m_map.Count(); }
    bool Contains(const cow_String& pattern) const { return m_map.IsMember(pattern); }
    /// Patterns compiled by this cache so far (diagnostics and tests).
    int Compilations() const { return m_compilations; }
    /// Drops every pattern.
    void Clear();

    /// Whether the engine of this build has a JIT.
    static bool JitAvailable();
    /// Whether patterns compiled from now on are JIT-compiled; switching empties the cache so that
    /// every pattern is compiled again the new way.
    ///@{
    void SetJit(bool on);
    bool Jit() const { return m_jit; }
    ///@}

    /// This thread's match data with room for ten offset pairs, reused by every match.
    pcre2_real_match_data_8* MatchData() const { return m_matchData; }
    /// This thread's match context: it gives the JIT a stack that grows to kJitStackMax bytes.
    pcre2_real_match_context_8* MatchContext() const { return m_matchContext; }
    /// The most bytes the JIT's stack grows to.
    enum { kJitStackMax = 1 << 20 };

private:
    Holder Compile(const cow_String& pattern);
    void Evict();
    /// Frees the engine's match objects.
    void Release();

    cow_Map<cow_String, Holder> m_map;
    /// The last pattern looked up: loops that match one pattern again and again skip the map.
    cow_String m_lastPattern;
    Holder m_lastCompiled;
    pcre2_real_match_data_8* m_matchData;
    pcre2_real_match_context_8* m_matchContext;
    pcre2_real_jit_stack_8* m_jitStack;
    int m_compilations;
    bool m_jit;
};

#endif
