// The spawn module's command exceptions: texts and persistence.
#include "atr/atr_translate.h"
#include "cls/cls_Visitor.h"
#include "cow/cow_SystemErrorCode.h"
#include "uti/impl/uti_PersistentFields.h"
#include "uti/uti_Spawn.h"

uti_IOErrorException::uti_IOErrorException(const char* call, const uti_Spawn* spawn, int error)
    : m_call(call), m_spawn(spawn), m_error(error)
{
}

atr_String uti_IOErrorException::JournalMessage() const
{
    return atr_translate("%1$s failed (error %2$d): %3$s")
        .Arg(m_call)
        .Arg(static_cast<int>(m_error))
        .Arg(cow_SystemErrorCode(static_cast<uint32_t>(m_error)).GetText())
        .Result();
}

atr_String uti_IOErrorException::PythonType() const
{
    return atr_String("IOError");
}

uti_CmdFailedException::uti_CmdFailedException(const atr_String& message) : m_message(message) {}

atr_String uti_CmdFailedException::JournalMessage() const
{
    return m_message;
}

atr_String uti_CmdFailedException::PythonType() const
{
    return atr_String("CommandError");
}

uti_InterruptedException::uti_InterruptedException(const atr_String& message) : m_message(message) {}

atr_String uti_InterruptedException::JournalMessage() const
{
    return m_message;
}

atr_String uti_InterruptedException::PythonType() const
{
    return atr_String("KeyboardInterrupt");
}

uti_CommandNotFoundException::uti_CommandNotFoundException(const cow_String& command)
    : uti_CmdFailedException(atr_translate("Command not found: %1$s").Arg(command).Result()), m_command(command)
{
}

uti_IOErrorException::uti_IOErrorException(const cls_ReadVisitor& reader)
    : nex_CommandException(reader),
      m_call(reader.ReadString(uti_fields::Call)),
      m_spawn(nullptr),
      m_error(reader.ReadInt(uti_fields::Error))
{
}

void uti_IOErrorException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_CommandException::DBWrite(writer);
    writer.WriteString(uti_fields::Call, cow_String(m_call.c_str(), m_call.Length()));
    writer.WriteInt(uti_fields::Error, m_error);
}

uti_CmdFailedException::uti_CmdFailedException(const cls_ReadVisitor& reader)
    : nex_CommandException(reader), m_message(reader.ReadString(uti_fields::Message))
{
}

void uti_CmdFailedException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_CommandException::DBWrite(writer);
    writer.WriteString(uti_fields::Message, cow_String(m_message.c_str(), m_message.Length()));
}

uti_InterruptedException::uti_InterruptedException(const cls_ReadVisitor& reader)
    : nex_CommandException(reader), m_message(reader.ReadString(uti_fields::Message))
{
}

void uti_InterruptedException::DBWrite(const cls_WriteVisitor& writer) const
{
    nex_CommandException::DBWrite(writer);
    writer.WriteString(uti_fields::Message, cow_String(m_message.c_str(), m_message.Length()));
}

uti_CommandNotFoundException::uti_CommandNotFoundException(const cls_ReadVisitor& reader)
    : uti_CmdFailedException(reader), m_command(reader.ReadString(uti_fields::Command))
{
}

void uti_CommandNotFoundException::DBWrite(const cls_WriteVisitor& writer) const
{
    uti_CmdFailedException::DBWrite(writer);
    writer.WriteString(uti_fields::Command, m_command);
}
