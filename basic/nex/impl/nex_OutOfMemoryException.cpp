#include "nex/nex_OutOfMemoryException.h"

#include <initializer_list>
#include <new>

#include "atr/atr_translate.h"
#include "cls/cls_Visitor.h"
#include "nex/impl/nex_PersistentFields.h"

namespace {

const char kProductMessage[] =
    "*** Error: An out of memory error occurred, or the Tavrin/Studio memory limit was reached.\n"
    " \n"
    "If the application ran out of memory, please create backup copies of your Tavrin/Studio databases and then try to save them.\n"
    "Database corruption may occur if an out of memory error occurs during the save operation.\n"
    " \n"
    "To change the Tavrin/Studio memory limit now, issue the following command in the Tavrin/Studio CLI: \n"
    " session.setValues(kernelMemoryLimit=valueInMBytes) \n"
    " \n"
    "To change the value for future Tavrin/Studio sessions, refer to the TAVRIN Installation and Licensing Guide for details on how to modify this value in your tavrin_v6.env file.\n"
    " \n"
    "It is recommended that you exit Tavrin/Studio and then restart it.\n"
    " \n"
    "On 32-bit versions of Windows, you can use the boot option /3GB /userva=SizeInMBytes to increase the amount of memory that can be used by Tavrin/Studio. Please refer to Microsoft's documentation for more detailed information.\n"
    "Alternatively, if you have access to a 64-bit operating system, you can try running Tavrin/Studio there, where the memory is not limited to 2 or 3GB. \n";

const char kGenericMessage[] =
    "*** Error: An out of memory error occurred. On 32-bit versions of Windows, you can use the boot option /3GB /userva=SizeInMBytes to increase the amount of memory that can be used by the application. Please refer to Microsoft's documentation for more detailed information. Alternatively, if you have access to a 64-bit operating system, you can try running the application there, where the memory is not limited to 2 or 3GB. \n";

atr_String* g_product = nullptr;
atr_String* g_generic = nullptr;

// An allocation failing while the exception itself is being built must not recurse.
thread_local bool t_throwing = false;

}  // namespace

nex_OutOfMemoryException::nex_OutOfMemoryException(nex_OutOfMemoryErrEnm reason) : m_Err(reason) {}

nex_OutOfMemoryException::nex_OutOfMemoryException(const atr_String& message, nex_OutOfMemoryErrEnm reason)
    : m_Msg(message), m_Err(reason)
{
    if (g_product)
        *g_product += message;
    if (g_generic)
        *g_generic += message;
}

nex_OutOfMemoryException::nex_OutOfMemoryException(const cls_ReadVisitor& reader)
    : nex_Exception(reader), m_Msg(reader.ReadString(nex_fields::Msg)), m_Err(nex_OutOfMemoryUnknown)
{
    const int32_t reason = reader.ReadInt(nex_fields::Err);
    if (reason < nex_OutOfMemoryUnknown || reason > nex_OutOfMemoryLimit)
        NEX_RAISE(cls_BadDataException, atr_translate("Out-of-memory reason %d is not known").Arg(reason).Result());
    m_Err = static_cast<nex_OutOfMemoryErrEnm>(reason);
    m_Uid = reader.ReadUid(nex_fields::Uid);
}

void nex_OutOfMemoryException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_Exception::DBWrite(writer);
    writer.WriteString(nex_fields::Msg, m_Msg);
    writer.WriteInt(nex_fields::Err, m_Err);
    writer.WriteUid(nex_fields::Uid, m_Uid);
}

atr_String nex_OutOfMemoryException::AsString() const
{
    return JournalMessage();
}

atr_String nex_OutOfMemoryException::JournalMessage() const
{
    return g_product ? *g_product : atr_String();
}

atr_String nex_OutOfMemoryException::PythonType() const
{
    return atr_String("OutOfMemory");
}

atr_String* nex_OutOfMemoryException::GetOutOfMemoryMsgGeneric()
{
    return g_generic;
}

atr_String* nex_OutOfMemoryException::GetOutOfMemoryMsgProduct()
{
    return g_product;
}

void nex_OutOfMemoryException::BuildMessages()
{
    FreeMessages();
    g_product = new (mem_OperatorNewThrow(sizeof(atr_String))) atr_String(kProductMessage);
    g_generic = new (mem_OperatorNewThrow(sizeof(atr_String))) atr_String(kGenericMessage);
}

void nex_OutOfMemoryException::FreeMessages()
{
    for (atr_String** text : {&g_product, &g_generic}) {
        if (*text) {
            (*text)->~atr_String();
            mem_Free(*text);
            *text = nullptr;
        }
    }
}

void nex_ThrowOutOfMemory(size_t)
{
    if (t_throwing)
        throw std::bad_alloc();
    t_throwing = true;
    try {
        NEX_RAISE(nex_OutOfMemoryException, nex_OutOfMemoryAllocation);
    } catch (...) {
        t_throwing = false;
        throw;
    }
}
