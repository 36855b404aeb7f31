/// @class atr_translate
/// atr_translate: message texts with numbered arguments, formatted by the library itself (the
/// Windows C runtime has no positional printf).
///
/// @code
///   atr_String msg = atr_translate("*** Error: %1$s\nfile: %2$s").Arg(step).Arg(path);
/// @endcode
///
/// Translation is the identity: there is no message catalogue, the format is used as given.
///
/// Conversions: "%%" gives '%'; otherwise
/// @code{.unparsed}
///   %[N$][flags][width][.precision][hh|h|l|ll|z|j|t|L]conv   conv in d i u x X o c s f F e E g G p
/// @endcode
/// flags are any of "-+ #0"; width and precision are digits, "*" (the next sequential argument,
/// an integer) or "*M$" (argument M). "N$" picks argument N (1-based). Conversions without "N$" take
/// the arguments in order, counting only such conversions (and "*" widths) from argument 1, whatever
/// positional conversions stand between them.
///
/// Each piece is printed with the C runtime's snprintf without the "N$". Argument kinds: text
/// (for s), integer (d i u x X o c; the length modifier narrows the value as printf would),
/// floating (f F e E g G) and pointer (p). A conversion whose argument is missing or of another kind
/// renders as nothing; so does "%n". An incomplete or unknown conversion is copied to the output as
/// written. A null text argument prints as "(null)".
///
/// Thread rule: one object, one thread at a time. Its text arguments share their representations
/// with the strings they were given and with the object's copies, so atr_StringBase's rule covers
/// all of them.
#ifndef ATR_TRANSLATE_H
#define ATR_TRANSLATE_H

#include "atr/atr_String.h"

class ZUL_CORE_API atr_translate {
public:
    /// The kind of an argument: none (missing), text, signed or unsigned integer, floating, pointer.
    enum ArgKind { ARG_NONE = 0, ARG_TEXT, ARG_SIGNED, ARG_UNSIGNED, ARG_DOUBLE, ARG_POINTER };

    explicit atr_translate(const char* format);
    atr_translate(const atr_translate& o);
    atr_translate& operator=(const atr_translate& o);
    ~atr_translate();

    /// Appends the next argument (number = ArgCount() + 1).
    ///@{
    atr_translate& Arg(const char* s);
    atr_translate& Arg(const atr_StringBase& s);
    atr_translate& Arg(int v);
    atr_translate& Arg(unsigned v);
    atr_translate& Arg(long v);
    atr_translate& Arg(unsigned long v);
    atr_translate& Arg(long long v);
    atr_translate& Arg(unsigned long long v);
    atr_translate& Arg(double v);
    atr_translate& Arg(const void* p);
    ///@}

    /// Sets argument `place` (1-based) to a text; places in between stay missing. place < 1 is
    /// ignored.
    atr_translate& SetArg(int place, const atr_StringBase& s);

    int ArgCount() const { return m_count; }
    const atr_String& FormatText() const { return m_format; }

    /// Formats now.
    ///@{
    atr_String Result() const;
    operator atr_String() const { return Result(); }
    ///@}

    /// One argument: its kind and its value in the member of that kind.
    struct Argument {
        int kind;
        long long i;
        unsigned long long u;
        double d;
        const void* p;
        atr_String s;
    };

private:
    Argument& Slot(int place);  ///< grows the table; strong guarantee

    atr_String m_format;
    Argument* m_args;
    int m_count;
    int m_capacity;
};

/// Sets argument `place` (1-based) of t to s.
ZUL_CORE_API void atr_SubstituteFormat(atr_translate& t, int place, const atr_StringBase& s);

#endif
