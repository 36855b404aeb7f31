/// @class nex_OutOfMemoryException
/// nex_OutOfMemoryException: raised when memory runs out (the memory layer's failure path).
///
/// The module keeps two texts, built by the nex module's start-up and freed by its tear-down:
/// the product message addressed to the product's users, and a generic one. Constructing an
/// exception with a message appends that message to the end of both texts (product text first),
/// every time; nothing resets them until the module's tear-down. This is intended.
///
/// Thread rule: raising from the memory layer (nex_ThrowOutOfMemory, the constructors without a
/// message) touches no shared state: any thread. The module-wide texts are changed and copied
/// without a lock: the constructor with a message, JournalMessage, AsString and the two getters'
/// texts are used by one thread at a time across the process.
#ifndef NEX_OUTOFMEMORYEXCEPTION_H
#define NEX_OUTOFMEMORYEXCEPTION_H

#include "nex/nex_Exception.h"

/// Why memory ran out.
enum nex_OutOfMemoryErrEnm {
    nex_OutOfMemoryUnknown = 0,
    nex_OutOfMemoryAllocation = 1,  ///< an allocation of the memory layer failed
    nex_OutOfMemoryLimit = 2,       ///< a memory limit of the product was reached
};

class ZUL_BASIC_API nex_OutOfMemoryException : public nex_Exception {
    NEX_EXCEPTION_CLASS(nex_OutOfMemoryException, 0x1F0009u)
public:
    /// An empty message.
    explicit nex_OutOfMemoryException(nex_OutOfMemoryErrEnm reason);
    /// Stores the message and appends it to both module-wide texts.
    nex_OutOfMemoryException(const atr_String& message, nex_OutOfMemoryErrEnm reason);
    /// Reads m_Msg, m_Err and m_Uid (the module-wide texts are left alone); a reason outside
    /// nex_OutOfMemoryErrEnm raises cls_BadDataException.
    explicit nex_OutOfMemoryException(const cls_ReadVisitor& reader);
    void DBWrite(const cls_WriteVisitor& writer) const override;

    /// JournalMessage().
    atr_String AsString() const override;
    /// A copy of the product message (empty while the nex module is down).
    virtual atr_String JournalMessage() const;
    /// The scripting layer's name of this exception: "OutOfMemory".
    virtual atr_String PythonType() const;

    const atr_String& Message() const { return m_Msg; }
    nex_OutOfMemoryErrEnm Reason() const { return m_Err; }
    /// A second identity kept with the exception (persistent, unlike nex_Exception's own uid).
    const cls_Uid& SecondUid() const { return m_Uid; }
    void SetSecondUid(const cls_Uid& uid) { m_Uid = uid; }

    /// The generic text, for callers that print it without the product wording (null while the
    /// nex module is down).
    static atr_String* GetOutOfMemoryMsgGeneric();
    static atr_String* GetOutOfMemoryMsgProduct();

    /// Module start-up and tear-down of the two texts.
    ///@{
    static void BuildMessages();
    static void FreeMessages();
    ///@}

protected:
    atr_String m_Msg;
    nex_OutOfMemoryErrEnm m_Err;
    cls_Uid m_Uid;
};

/// The out-of-memory thrower installed into the memory layer while the library is up: raises
/// nex_OutOfMemoryException (reason nex_OutOfMemoryAllocation, empty message).
ZUL_BASIC_API void nex_ThrowOutOfMemory(size_t requested);

#endif
