#include "rgx/rgx_ReCompileCache.h"

#include <pcre2.h>

#include "atr/atr_translate.h"
#include "mem/mem_OutOfMemory.h"
#include "nex/nex_Exception.h"
#include "thr/thr_ThreadSingleton.h"

namespace {
// The calling thread's cache once looked up: every match asks for it, and the per-thread
// singleton registry takes several calls to answer. Cleared by the cache's destructor, which
// always runs on the cache's own thread (module tear-down or the thread's exit).
thread_local rgx_ReCompileCache* t_current = nullptr;
}  // namespace

rgx_CompiledRe::~rgx_CompiledRe() { pcre2_code_free(m_code); }

rgx_ReCompileCache::rgx_ReCompileCache()
    : m_matchData(pcre2_match_data_create(10, nullptr)),
      m_matchContext(pcre2_match_context_create(nullptr)),
      m_jitStack(JitAvailable() ? pcre2_jit_stack_create(32 * 1024, kJitStackMax, nullptr) : nullptr),
      m_compilations(0),
      m_jit(true)
{
    if (!m_matchData || !m_matchContext) {
        Release();
        mem_ThrowOutOfMemory(sizeof(PCRE2_SIZE) * 2 * 10);
    }
    // Without its own stack the JIT has 32 KiB; a match that needs more than kJitStackMax is run
    // again by the interpreter (see Exec in rgx_funcs), so the JIT never changes a result.
    if (m_jitStack)
        pcre2_jit_stack_assign(m_matchContext, nullptr, m_jitStack);
}

rgx_ReCompileCache::~rgx_ReCompileCache()
{
    if (t_current == this)
        t_current = nullptr;
    Release();
}

void rgx_ReCompileCache::Release()
{
    pcre2_jit_stack_free(m_jitStack);
    pcre2_match_context_free(m_matchContext);
    pcre2_match_data_free(m_matchData);
}

rgx_ReCompileCache& rgx_ReCompileCache::Instance()
{
    if (!t_current)
        t_current = &thr_ThreadSingleton<rgx_ReCompileCache>::Instance();
    return *t_current;
}

rgx_ReCompileCache::Holder rgx_ReCompileCache::Lookup(const cow_String& pattern)
{
    if (m_lastCompiled.GetPtr()) {
        if (pattern.SharesWith(m_lastPattern))
            return m_lastCompiled;
        if (pattern == m_lastPattern) {
            m_lastPattern = pattern;  // the caller's copy: its next lookup needs no comparison
            return m_lastCompiled;
        }
    }
    Holder found = m_map.IsMember(pattern) ? m_map.ConstGet(pattern) : Compile(pattern);
    m_lastPattern = pattern;
    m_lastCompiled = found;
    return found;
}

rgx_ReCompileCache::Holder rgx_ReCompileCache::Compile(const cow_String& pattern)
{
    int error = 0;
    PCRE2_SIZE offset = 0;
    pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()),
                                     static_cast<PCRE2_SIZE>(pattern.Length()), 0, &error, &offset, nullptr);
    if (!code) {
        PCRE2_UCHAR message[256];
        if (pcre2_get_error_message(error, message, sizeof message) < 0)
            message[0] = 0;
        NEX_RAISE(nex_TextException, atr_translate("rgx_match: error in regex at offset %s: %s")
                                         .Arg(atr_String(static_cast<unsigned>(offset)))
                                         .Arg(reinterpret_cast<const char*>(message))
                                         .Result());
    }
    // A pattern the JIT cannot take (or a system that refuses executable memory) is still run by
    // the interpreter, with the same results.
    const bool jit = m_jit && JitAvailable() && pcre2_jit_compile(code, PCRE2_JIT_COMPLETE) == 0;
    // The engine's subject checks matter only for UTF-8 (a pattern may switch it on itself).
    uint32_t options = 0;
    pcre2_pattern_info(code, PCRE2_INFO_ALLOPTIONS, &options);
    Holder compiled(cow_New<rgx_CompiledRe>(code, jit, jit && (options & PCRE2_UTF) == 0));
    ++m_compilations;
    if (m_map.Count() >= kCapacity)
        Evict();
    m_map.Insert(pattern, compiled);
    return compiled;
}

void rgx_ReCompileCache::Evict()
{
    cow_1DArrayList<cow_String> lowest;
    {
        cow_ConstMapSortedIt<cow_String, Holder> it(m_map);
        for (it.First(); it.NotDone() && lowest.Count() < kCapacity / 2; it.Next())
            lowest.Append(it.Key());
    }
    for (int i = 0; i < lowest.Count(); ++i)
        m_map.Remove(lowest[i]);
    m_lastPattern = cow_String();
    m_lastCompiled = Holder();
}

void rgx_ReCompileCache::Clear()
{
    m_map = cow_Map<cow_String, Holder>();
    m_lastPattern = cow_String();
    m_lastCompiled = Holder();
}

bool rgx_ReCompileCache::JitAvailable()
{
    uint32_t jit = 0;
    return pcre2_config(PCRE2_CONFIG_JIT, &jit) >= 0 && jit != 0;
}

void rgx_ReCompileCache::SetJit(bool on)
{
    if (on != m_jit)
        Clear();
    m_jit = on;
}
