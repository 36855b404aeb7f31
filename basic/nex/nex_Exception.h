/// @file
/// The library's exceptions: the root nex_Exception and the general-purpose classes.
///
/// Every failure is reported by throwing an object derived from nex_Exception. A throw site builds
/// the exception on the stack and calls Throw(file, line) with its source name and line; Throw
/// records them and calls Propagate(), which throws a copy as the object's own dynamic type, so
/// handlers can catch the concrete class or any base. Copy() makes a heap copy of the dynamic
/// type (used to hold exceptions in cow_COW<nex_Exception, cow_Virtual<nex_Exception>>).
///
/// Type ids (module 31 = 0x1F in the high 16 bits): nex_Exception 0x1F0001, nex_TextException
/// 0x1F0002, nex_CommandException 0x1F0003, nex_AssertException 0x1F0004, nex_BadCastException
/// 0x1F0005, nex_ExitException 0x1F0006, nex_InvalidObjException 0x1F0007,
/// nex_SystemErrorException 0x1F0008, nex_OutOfMemoryException 0x1F0009.
///
/// Persistence: DBWrite writes an exception's persistent fields through a write visitor (base
/// class fields first) and every class has a constructor from a read visitor that reads them back
/// in the same order. The nex module registers the nine classes with the class registry at
/// start-up (class ids = type ids, version 1, nex_Exception based on the root id 1), so that a
/// reader builds the class that was written. Field keys: m_Value (text, condition or message),
/// m_Value.m_Msg / m_Value.m_Err (exit), m_Value.m_NativeErrorCode / m_Value.m_CRTErrorCode
/// (system error), m_Msg / m_Err / m_Uid (out of memory). The uid of nex_Exception itself is an
/// identity kept by the persistence layer and is not among the written fields.
///
/// A module deriving its own exception class writes NEX_EXCEPTION_CLASS(Class, id) in its body
/// to get TypeId, DynTypeId, Propagate and Copy; a class that is its base's message and nothing
/// more is declared whole by NEX_TEXT_EXCEPTION(Class, Base, id). A throw site writes
/// NEX_RAISE(Class, constructor arguments...), which records its source name and line.
///
/// Thread rule: an exception and its copies (the one in flight, Copy()'s, a cow_COW holder's)
/// share their texts, whose counts are plain integers: they are used by one thread at a time, so
/// an exception passes to another thread only when the first has let go of its copies. Throwing
/// touches no shared state; the class registration is part of the nex module's start-up.
#ifndef NEX_EXCEPTION_H
#define NEX_EXCEPTION_H

#include <cstdint>
#include <utility>

#include "atr/atr_String.h"
#include "cls/cls_Uid.h"
#include "mem/mem_AllocationOperators.h"
#include "omi/omi_SystemErrorCode.h"
#include "zul_BasicExport.h"

#define NEX_EXCEPTION_CLASS(Class, id)                                              \
public:                                                                             \
    static unsigned TypeId() { return (id); }                                       \
    unsigned DynTypeId() const override { return (id); }                            \
    [[noreturn]] void Propagate() const override { throw Class(*this); }            \
    [[nodiscard]] nex_Exception* Copy() const override { return new Class(*this); }

/// The members of a class whose one persistent field is a text, m_Value (key m_Value): made from
/// the text or read back from a reader, written by DBWrite, rendered by AsString. Written last in
/// the class body.
#define NEX_MESSAGE_FIELD(Class)                                 \
public:                                                          \
    explicit Class(const atr_String& text);                      \
    explicit Class(const cls_ReadVisitor& reader);               \
    void DBWrite(const cls_WriteVisitor& writer) const override; \
    atr_String AsString() const override;                        \
                                                                 \
protected:                                                       \
    atr_String m_Value;

#define NEX_TEXT_EXCEPTION(Class, Base, id)                    \
    class ZUL_BASIC_API Class : public Base {                  \
        NEX_EXCEPTION_CLASS(Class, id)                         \
    public:                                                    \
        explicit Class(const atr_String& text) : Base(text) {} \
    }

class cls_ReadVisitor;
class cls_WriteVisitor;

/// The root of every exception of the library; nex_Exception.h gives its rules.
class ZUL_BASIC_API nex_Exception : public mem_AllocationOperators {
public:
    virtual ~nex_Exception();

    /// "Exception: <UserReport()> in file <file> at line <line>" (an empty file and line 0 until
    /// the exception has been thrown).
    virtual atr_String DeveloperReport() const;
    /// AsString().
    virtual atr_String UserReport() const;
    virtual atr_String AsString() const = 0;
    /// Throws a copy of the object as its own dynamic type.
    [[noreturn]] virtual void Propagate() const = 0;
    /// A new heap copy of the dynamic type.
    [[nodiscard]] virtual nex_Exception* Copy() const = 0;
    virtual unsigned DynTypeId() const;
    /// Writes the persistent fields (nex_Exception itself has none).
    virtual void DBWrite(const cls_WriteVisitor& writer) const;
    static unsigned TypeId();

    /// Records the throw site and propagates. Never returns.
    [[noreturn]] void Throw(const char* file, int line);

    const atr_String& File() const { return m_file; }
    int Line() const { return m_line; }
    const cls_Uid& Uid() const { return m_uid; }
    void SetUid(const cls_Uid& uid) { m_uid = uid; }

protected:
    nex_Exception();
    explicit nex_Exception(const cls_ReadVisitor& reader);
    nex_Exception(const nex_Exception&);
    nex_Exception& operator=(const nex_Exception&);

private:
    atr_String m_file;
    int32_t m_line;
    cls_Uid m_uid;
};

/// An error described by its message alone.
/// AsString: the message as it stands.
class ZUL_BASIC_API nex_TextException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_TextException, 0x1F0002u)
public:
    explicit nex_TextException(const char* message);
    const atr_String& Message() const { return m_Value; }
    NEX_MESSAGE_FIELD(nex_TextException)
};

/// An error visible to the product's scripting layer: reported as "<PythonType()>: <JournalMessage()>".
class ZUL_BASIC_API nex_CommandException : public nex_Exception {
public:
    static unsigned TypeId() { return 0x1F0003u; }
    unsigned DynTypeId() const override { return 0x1F0003u; }
    atr_String AsString() const override;
    virtual atr_String JournalMessage() const = 0;
    /// The name under which the scripting layer knows the exception.
    virtual atr_String PythonType() const = 0;

protected:
    nex_CommandException() {}
    explicit nex_CommandException(const cls_ReadVisitor& reader) : nex_Exception(reader) {}
};

/// A failed internal condition; the text is the condition as written in the source.
class ZUL_BASIC_API nex_AssertException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_AssertException, 0x1F0004u)
public:
    explicit nex_AssertException(const char* condition);
    const atr_String& Condition() const { return m_Value; }
    NEX_MESSAGE_FIELD(nex_AssertException)
};

/// A checked downcast that is not allowed (see nex_canDynamicCastRef).
class ZUL_BASIC_API nex_BadCastException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_BadCastException, 0x1F0005u)
    NEX_MESSAGE_FIELD(nex_BadCastException)
};

/// A request to end the program with an exit code.
class ZUL_BASIC_API nex_ExitException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_ExitException, 0x1F0006u)
public:
    explicit nex_ExitException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    /// The persistent fields: the message and the exit code.
    struct Value {
        atr_String m_Msg;
        int32_t m_Err;
    };
    nex_ExitException(const atr_String& message, int exitCode);
    /// The message if it is not empty, else "Exit code: " and the code in decimal.
    atr_String AsString() const override;
    int ExitCode() const { return m_Value.m_Err; }
    const atr_String& Message() const { return m_Value.m_Msg; }

protected:
    Value m_Value;
};

/// An object found in an invalid state.
class ZUL_BASIC_API nex_InvalidObjException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_InvalidObjException, 0x1F0007u)
    NEX_MESSAGE_FIELD(nex_InvalidObjException)
};

/// A failed system call, carrying its error code; reported as the code's own text.
class ZUL_BASIC_API nex_SystemErrorException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_SystemErrorException, 0x1F0008u)
public:
    explicit nex_SystemErrorException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;
    explicit nex_SystemErrorException(const omi_SystemErrorCode& code);
    atr_String AsString() const override;
    const omi_SystemErrorCode& Code() const { return m_Value; }

protected:
    omi_SystemErrorCode m_Value;
};

/// Builds an E from the arguments and throws it from the given source and line.
template <class E, class... A>
[[noreturn]] void nex_Raise(const char* source, int line, A&&... arguments)
{
    E failure(std::forward<A>(arguments)...);
    failure.Throw(source, line);
}
#define NEX_RAISE(E, ...) nex_Raise<E>(ZUL_SOURCE_NAME, __LINE__, __VA_ARGS__)

/// Throws nex_AssertException with the condition's text from this source file and line. The text
/// is taken where the condition is written, before any macro in it is expanded.
///@{
#define NEX_ASSERT_TEXT_AT(cond, text, source)                          \
    do {                                                                \
        if (!(cond))                                                    \
            nex_Raise<nex_AssertException>((source), __LINE__, (text)); \
    } while (0)
#define NEX_ASSERT_AT(cond, source) NEX_ASSERT_TEXT_AT(cond, #cond, source)
#define NEX_ASSERT(cond) NEX_ASSERT_TEXT_AT(cond, #cond, ZUL_SOURCE_NAME)
///@}

/// Entry points that a client can reference; they do nothing.
ZUL_BASIC_API void nex_formalize();
/// Does nothing and answers false.
ZUL_BASIC_API bool nex_assertFormalize();

#endif
