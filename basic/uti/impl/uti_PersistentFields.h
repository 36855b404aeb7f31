// The persistent fields of the uti module's classes, numbered per class in writing order.
#ifndef UTI_PERSISTENTFIELDS_H
#define UTI_PERSISTENTFIELDS_H

#include "cls/cls_FieldHandle.h"

namespace uti_fields {

// uti_Coord3D
const cls_FieldHandle X(0, "m_x");
const cls_FieldHandle Y(1, "m_y");
const cls_FieldHandle Z(2, "m_z");
// uti_CoordCont3D: the count, then the coordinates of every point
const cls_FieldHandle NumCoords(0, "m_NumCoords");
const cls_FieldHandle Coords(1, "m_Coords");
// uti_IOErrorException
const cls_FieldHandle Call(0, "m_call");
const cls_FieldHandle Error(1, "m_error");
// uti_CmdFailedException, uti_InterruptedException
const cls_FieldHandle Message(0, "m_message");
// uti_CommandNotFoundException (after its base's message)
const cls_FieldHandle Command(1, "m_command");

}  // namespace uti_fields

#endif
