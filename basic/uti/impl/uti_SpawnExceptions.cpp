// Persistence of the spawn module's command exceptions.
#include "cls/cls_Visitor.h"
#include "uti/impl/uti_PersistentFields.h"
#include "uti/uti_Spawn.h"

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
