#include "nex/nex_Exception.h"

#include <exception>

#include "atr/atr_translate.h"
#include "cls/cls_Visitor.h"
#include "nex/impl/nex_PersistentFields.h"

nex_Exception::nex_Exception() : m_line(0) {}
nex_Exception::nex_Exception(const cls_ReadVisitor&) : m_line(0) {}
nex_Exception::nex_Exception(const nex_Exception& o)
    : mem_AllocationOperators(), m_file(o.m_file), m_line(o.m_line), m_uid(o.m_uid)
{
}
nex_Exception& nex_Exception::operator=(const nex_Exception& o)
{
    m_file = o.m_file;
    m_line = o.m_line;
    m_uid = o.m_uid;
    return *this;
}
nex_Exception::~nex_Exception() {}

unsigned nex_Exception::TypeId()
{
    return 0x1F0001u;
}

unsigned nex_Exception::DynTypeId() const
{
    return 0x1F0001u;
}

void nex_Exception::DBWrite(const cls_WriteVisitor&) const {}

atr_String nex_Exception::UserReport() const
{
    return AsString();
}

atr_String nex_Exception::DeveloperReport() const
{
    return atr_translate("Exception: %s in file %s at line %d").Arg(UserReport()).Arg(m_file).Arg(m_line).Result();
}

void nex_Exception::Throw(const char* file, int line)
{
    m_file = file ? file : "";
    m_line = line;
    Propagate();
    std::terminate();  // Propagate always throws
}

// The members that NEX_MESSAGE_FIELD declares, but for AsString.
#define NEX_MESSAGE_FIELD_MEMBERS(Class)                                                         \
    Class::Class(const atr_String& text) : m_Value(text) {}                                      \
    Class::Class(const cls_ReadVisitor& reader)                                                  \
        : nex_Exception(reader), m_Value(reader.ReadString(nex_fields::Value))                   \
    {                                                                                            \
    }                                                                                            \
    void Class::DBWrite(const cls_WriteVisitor& writer) const                                    \
    {                                                                                            \
        nex_Exception::DBWrite(writer);                                                          \
        writer.WriteString(nex_fields::Value, m_Value);                                          \
    }

NEX_MESSAGE_FIELD_MEMBERS(nex_TextException)
NEX_MESSAGE_FIELD_MEMBERS(nex_AssertException)
NEX_MESSAGE_FIELD_MEMBERS(nex_BadCastException)
NEX_MESSAGE_FIELD_MEMBERS(nex_InvalidObjException)

nex_TextException::nex_TextException(const char* message) : m_Value(message) {}
atr_String nex_TextException::AsString() const
{
    return m_Value;
}

atr_String nex_CommandException::AsString() const
{
    atr_String text = atr_translate("%s: ").Arg(PythonType()).Result();
    text += JournalMessage();
    return text;
}

nex_AssertException::nex_AssertException(const char* condition) : m_Value(condition) {}
atr_String nex_AssertException::AsString() const
{
    return atr_translate("%s").Arg(m_Value).Result();
}

atr_String nex_BadCastException::AsString() const
{
    return m_Value;
}

nex_ExitException::nex_ExitException(const atr_String& message, int exitCode) : m_Value{message, exitCode} {}
nex_ExitException::nex_ExitException(const cls_ReadVisitor& reader) : nex_Exception(reader), m_Value{atr_String(), 0}
{
    m_Value.m_Msg = reader.ReadString(nex_fields::ExitMsg);
    m_Value.m_Err = reader.ReadInt(nex_fields::ExitErr);
}
void nex_ExitException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_Exception::DBWrite(writer);
    writer.WriteString(nex_fields::ExitMsg, m_Value.m_Msg);
    writer.WriteInt(nex_fields::ExitErr, m_Value.m_Err);
}
atr_String nex_ExitException::AsString() const
{
    if (!m_Value.m_Msg.IsEmpty())
        return m_Value.m_Msg;
    atr_String text("Exit code: ");
    text += atr_String(static_cast<int>(m_Value.m_Err));
    return text;
}

atr_String nex_InvalidObjException::AsString() const
{
    return m_Value;
}

nex_SystemErrorException::nex_SystemErrorException(const omi_SystemErrorCode& code) : m_Value(code) {}
nex_SystemErrorException::nex_SystemErrorException(const cls_ReadVisitor& reader) : nex_Exception(reader)
{
    m_Value.m_NativeErrorCode = reader.ReadUInt(nex_fields::NativeErrorCode);
    m_Value.m_CRTErrorCode = reader.ReadUInt(nex_fields::CRTErrorCode);
}
void nex_SystemErrorException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_Exception::DBWrite(writer);
    writer.WriteUInt(nex_fields::NativeErrorCode, m_Value.m_NativeErrorCode);
    writer.WriteUInt(nex_fields::CRTErrorCode, m_Value.m_CRTErrorCode);
}
atr_String nex_SystemErrorException::AsString() const
{
    return atr_translate("%s").Arg(m_Value.GetText()).Result();
}

void nex_formalize() {}

bool nex_assertFormalize()
{
    return false;
}
